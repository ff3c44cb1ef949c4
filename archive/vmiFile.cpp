#include "archive/vmiFile.h"

#include <new>

#include "archive/vmiArchiveElement.h"
#include "archive/vmiNode.h"
#include "archive/vmiReadObserver.h"
#include "grid/vmiGridMemory.h"
#include "host/qozUnZip.h"

namespace {

// An entry that declares bytes but whose stream gives none: the unzip service
// could not decode it (an unknown compression method, encryption, damage).
bool unreadable(std::istream& in, std::int64_t stored_size)
{
    return stored_size > 0 && in.peek() == std::istream::traits_type::eof();
}

} // namespace

vmiFile::vmiFile() = default;

vmiFile::~vmiFile()
{
    // The tree takes its objects and contour records with it.
    delete root_;
    catalogue_.free();
    archive_.free();
}

int vmiFile::num_objects() const
{
    return root_ ? 1 : 0;
}

int vmiFile::read(utString file_name)
{
    int result = 0;
    // The grids' arrays let go during the read serve the grids made after
    // them; what is kept is freed when the read is over.
    vmiGridMemory::Scope keep_grid_arrays;
    try {
        read_entries(file_name);
        result = num_objects() > 0;
    } catch (...) {
        // Out of memory part way (nothing else is thrown): the read fails;
        // what the tree holds so far stays until the file is destroyed.
        catalogue_.free();
    }
    // Data entries after the last catalogue have no catalogue to serve.
    archive_.free();
    return result;
}

void vmiFile::read_entries(const utString& file_name)
{
    qozUnZip unzip;
    if (!unzip.open(file_name)) {
        skip(vmiReadSkip(vmiSkipReason::not_a_zip));
        return;
    }
    bool catalogue_met = false;
    while (unzip.next_archive()) {
        utString name = unzip.archive_name();
        vmiEntryKind type = vmiEntryKind::other;
        int indx = check_arhive_file_name(name, type);
        qozUnZipStreamBuf buf(unzip);
        std::istream in(&buf);
        if (type == vmiEntryKind::catalogue) {
            catalogue_met = true;
            read_catalogue_entry(in, name, indx, unzip.archive_size());
        } else if (type == vmiEntryKind::data) {
            read_data_entry(in, name, indx, unzip.archive_size());
        } else if (observer_) {
            observer_->entry(name, type, indx, unzip.archive_size(), nullptr, 0, 0, vmiChainEnd::end);
        }
    }
    if (!catalogue_met)
        skip(vmiReadSkip(vmiSkipReason::no_catalogue));
}

void vmiFile::skip(vmiReadSkip why) const
{
    if (observer_)
        observer_->skipped(why);
}


void vmiFile::read_catalogue_entry(std::istream& in, const utString& name, const int& indx,
                                   std::int64_t stored_size)
{
    const bool refused = observer_ && unreadable(in, stored_size);
    // A catalogue longer than the buffer is cut there; only the observer hears of it.
    char* buf = new char[catalogue_buffer];
    in.read(buf, catalogue_buffer);
    int got = static_cast<int>(in.gcount());
    if (observer_) {
        observer_->entry(name, vmiEntryKind::catalogue, indx, stored_size, buf, got, 0, vmiChainEnd::end);
        if (refused)
            skip(vmiReadSkip(vmiSkipReason::entry_unreadable, name).with_bound(nullptr, stored_size, 0));
        else if (got <= 0)
            skip(vmiReadSkip(vmiSkipReason::catalogue_empty, name));
        else if (got == catalogue_buffer && in.peek() != std::istream::traits_type::eof())
            skip(vmiReadSkip(vmiSkipReason::catalogue_cut, name).with_bound("catalogue_buffer", stored_size,
                            catalogue_buffer));
    }
    if (got > 0)
        archive_.add(new vmiArchiveElement(name, buf, got, vmiEntryKind::catalogue, indx));
    else
        delete[] buf;
    // Processed at once: it sees only the data entries before it, and those
    // are gone for any later catalogue.
    vlk_name_ = name;
    vlk_indx_ = indx;
    vlk_size_ = got;
    proc_vlk();
    catalogue_.free();
    archive_.free();
}

void vmiFile::read_data_entry(std::istream& in, const utString& name, const int& indx,
                              std::int64_t stored_size)
{
    const bool refused = observer_ && unreadable(in, stored_size);
    int len = 0;
    int chunks = 0;
    vmiChainEnd end = vmiChainEnd::end;
    char* buf = extract_all_ZIP(in, len, chunks, &end);
    if (observer_) {
        observer_->entry(name, vmiEntryKind::data, indx, stored_size, buf, len, chunks, end);
        if (refused)
            skip(vmiReadSkip(vmiSkipReason::entry_unreadable, name).with_bound(nullptr, stored_size, 0));
    }
    if (buf)
        archive_.add(new vmiArchiveElement(name, buf, len, vmiEntryKind::data, indx));
}

int vmiFile::check_arhive_file_name(utString& name, vmiEntryKind& type)
{
    type = vmiEntryKind::other;
    const int n = name.length();
    if (n > 4) {
        const std::string ext = name.str().substr(static_cast<std::size_t>(n - 4));
        if (ext == ".dat")
            type = vmiEntryKind::data;
        else if (ext == ".vlk")
            type = vmiEntryKind::catalogue;
    }
    if (n <= 9)
        return 0;
    // The five characters right before the extension carry the number.
    return get_text_int(const_cast<char*>(name.data()) + (n - 9), 5);
}

int vmiFile::get_text_int(char* text, const int& count)
{
    if (count < 1 || !text)
        return 0;
    // Accumulated in unsigned arithmetic: a run of digits longer than an int
    // holds wraps instead of overflowing.
    unsigned value = 0;
    for (int k = 0; k < count; ++k)
        if (text[k] >= '0' && text[k] <= '9')
            value = value * 10u + static_cast<unsigned>(text[k] - '0');
    return static_cast<int>(value);
}

int vmiFile::get_text8_int(char* text)
{
    if (!text)
        return 0;
    // Only upper-case letters are digits: "0000000a" reads as 0.
    std::uint32_t value = 0;
    for (int k = 0; k < 8; ++k) {
        const char c = text[k];
        if (c >= '0' && c <= '9')
            value = value * 16u + static_cast<std::uint32_t>(c - '0');
        else if (c >= 'A' && c <= 'F')
            value = value * 16u + static_cast<std::uint32_t>(c - 'A' + 10);
    }
    // Eight hexadecimal digits are a 32-bit signed size: "FFFFFFFF" is -1.
    return static_cast<std::int32_t>(value);
}
