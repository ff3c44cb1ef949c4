#include "cli/ArchiveListing.h"

#include "archive/vmiArchiveDir.h"
#include "archive/vmiArchiveElement.h"
#include "archive/vmiVlkElement.h"
#include "cli/Sha256.h"

namespace {

ListedRecord listed_record(const vmiVlkElement& e, vmiArchiveDir& archive)
{
    ListedRecord r;
    r.level = e.level();
    r.type1 = e.type1();
    r.indx = e.indx();
    r.ref_indx = e.ref_indx();
    r.type2 = e.type2();
    r.date = e.date().str();
    r.name1 = e.name1().str();
    r.comment = e.comment().str();
    r.name0 = e.name0().str();
    r.data_indx = e.data_indx();
    if (const vmiArchiveElement* data = archive.get(vmiEntryKind::data, r.data_indx)) {
        r.data_found = true;
        r.data_magic = ArchiveListing::magic_of(data->buf(), data->len());
    }
    return r;
}

} // namespace

std::optional<std::string> ArchiveListing::magic_of(const char* content, int len)
{
    if (content == nullptr || len < 4) return std::nullopt;
    return printable(std::string(content, 4));
}

void ArchiveListing::entry(const utString& name, vmiEntryKind type, int indx, std::int64_t stored_size,
                           const char* content, int len, int chunks, vmiChainEnd end)
{
    ReadDiagnosis::entry(name, type, indx, stored_size, content, len, chunks, end);
    ListedEntry e;
    e.name = name.str();
    e.type = type;
    e.number = indx;
    e.stored_size = stored_size;
    if (type != vmiEntryKind::other) e.size = content ? len : 0;
    e.chunks = chunks;
    e.chain = end;
    e.magic = magic_of(content, len);
    if (content != nullptr && len > 0) e.sha256 = Sha256::hex(content, static_cast<std::size_t>(len));
    entries_.push_back(std::move(e));
}

void ArchiveListing::catalogue(const utString& name, int indx, int size, bool found, bool separator,
                               const vmiVlkElement* records, vmiArchiveDir& archive)
{
    ListedCatalogue c;
    c.entry = name.str();
    c.number = indx;
    c.size = size;
    c.found = found;
    c.separator = separator;
    for (const vmiVlkElement* e = records; e != nullptr; e = e->next())
        c.records.push_back(listed_record(*e, archive));
    catalogues_.push_back(std::move(c));
}
