#include "cli/ReadDiagnosis.h"

#include "archive/vmiFile.h"
#include "cli/ZipEntryMethod.h"

namespace {

std::string record_of(const vmiReadSkip& why)
{
    return "record " + std::to_string(why.record) + " of catalogue " + why.entry.str();
}

std::string data_entry(const vmiReadSkip& why)
{
    return "data entry " + std::to_string(why.data_indx);
}

std::string over(const vmiReadSkip& why)
{
    return std::string(why.bound ? why.bound : "a bound") + " (" + std::to_string(why.value) + " > " +
           std::to_string(why.limit) + ")";
}

} // namespace

void ReadDiagnosis::entry(const utString& name, vmiEntryKind type, int indx, std::int64_t stored_size,
                          const char* content, int len, int chunks, vmiChainEnd end)
{
    (void)indx; (void)stored_size; (void)content; (void)len;
    if (type == vmiEntryKind::data && end != vmiChainEnd::end)
        reasons_.push_back("data entry " + name.str() + ": " + describe(end, chunks));
}

void ReadDiagnosis::skipped(const vmiReadSkip& why)
{
    reasons_.push_back(describe(why));
}

std::string nothing_imported(const std::string& path)
{
    const std::vector<std::string> reasons = ReadDiagnosis::of(path);
    return reasons.empty() ? "nothing imported" : "nothing imported: " + reasons.front();
}

std::string no_geometry_imported(const std::string& path)
{
    const std::vector<std::string> reasons = ReadDiagnosis::of(path);
    return reasons.empty() ? std::string() : "no geometry imported: " + reasons.front();
}

std::vector<std::string> ReadDiagnosis::of(const std::string& path)
{
    ReadDiagnosis diagnosis(path);
    vmiFile reader;
    reader.set_observer(&diagnosis);
    (void)reader.read(utString(path));
    return diagnosis.reasons_;
}

std::string ReadDiagnosis::printable(std::string bytes)
{
    for (char& c : bytes)
        if (static_cast<unsigned char>(c) < 0x20 || static_cast<unsigned char>(c) > 0x7E) c = '?';
    return bytes;
}

std::string ReadDiagnosis::kind_word(const utString& name)
{
    vmiFile reader;
    utString n = name;
    vmiEntryKind kind = vmiEntryKind::other;
    (void)reader.check_arhive_file_name(n, kind);
    return kind == vmiEntryKind::catalogue ? "catalogue" : kind == vmiEntryKind::data ? "data entry" : "entry";
}

std::string ReadDiagnosis::describe(vmiChainEnd end, int chunks)
{
    const std::string after = " after " + std::to_string(chunks) + (chunks == 1 ? " chunk" : " chunks");
    switch (end) {
    case vmiChainEnd::end: return "chunk chain complete" + after;
    case vmiChainEnd::limit:
        return "chunk chain stopped at max_chunks (" + std::to_string(vmiFile::max_chunks) + ")";
    case vmiChainEnd::budget:
        return "chunk chain stopped at max_entry_bytes (" + std::to_string(vmiFile::max_entry_bytes) +
               " bytes)" + after;
    case vmiChainEnd::negative_size: return "chunk chain ended at a header with a negative size" + after;
    case vmiChainEnd::cut_short: return "chunk chain cut short" + after;
    case vmiChainEnd::bad_stream: return "chunk chain holds a damaged zlib stream (kept as far as it goes)";
    }
    return "chunk chain ended";
}

std::string ReadDiagnosis::unreadable(const vmiReadSkip& why) const
{
    const std::string subject = kind_word(why.entry) + " " + why.entry.str();
    const std::optional<ZipEntryMethod> m = ZipEntryMethod::of(archive_, why.entry.str());
    if (m && m->encrypted) return subject + " is encrypted, which this build cannot read";
    if (m && !m->supported)
        return subject + " uses ZIP compression method " + ZipEntryMethod::name_of(m->method) + " (" +
               std::to_string(m->method) + "), which this build cannot read";
    return subject + " could not be decoded: it declares " + std::to_string(why.value) +
           " bytes and none came";
}

std::string ReadDiagnosis::describe(const vmiReadSkip& why) const
{
    const std::string catalogue = "catalogue " + why.entry.str();
    switch (why.reason) {
    case vmiSkipReason::not_a_zip: return "not a ZIP archive the unzip service can open";
    case vmiSkipReason::entry_unreadable: return unreadable(why);
    case vmiSkipReason::no_catalogue: return "the archive holds no catalogue entry (.vlk)";
    case vmiSkipReason::catalogue_empty: return catalogue + " is empty";
    case vmiSkipReason::catalogue_not_found: return catalogue + " is not numbered 0, the only number read";
    case vmiSkipReason::catalogue_cut:
        return catalogue + " is longer than catalogue_buffer (" + std::to_string(why.value) + " > " +
               std::to_string(why.limit) + " bytes); the rest is not read";
    case vmiSkipReason::no_separator: return catalogue + " has no separator line (\"-\"), so no records";
    case vmiSkipReason::no_records: return catalogue + " has no records behind its separator line";
    case vmiSkipReason::unknown_record:
        return record_of(why) + " skipped: type1 " + std::to_string(why.value) + ", type2 " +
               std::to_string(why.limit) + " is no kind the reader takes";
    case vmiSkipReason::no_group: return record_of(why) + " skipped: it comes before any level-2 group";
    case vmiSkipReason::option_off:
        return record_of(why) + " skipped: option " + std::string(why.bound ? why.bound : "?") + " is 0";
    case vmiSkipReason::entry_not_found:
        return record_of(why) + " skipped: no " + data_entry(why) + " comes before the catalogue";
    case vmiSkipReason::wrong_magic:
        return record_of(why) + " skipped: " + data_entry(why) + " starts with \"" + printable(why.found) + "\", not \"" +
               why.wanted + "\"";
    case vmiSkipReason::bad_record:
        return record_of(why) + " skipped: " + data_entry(why) + " holds a record that cannot be read";
    case vmiSkipReason::bound_exceeded: return record_of(why) + " skipped: it exceeds " + over(why);
    }
    return "refused";
}
