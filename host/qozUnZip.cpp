#include "host/qozUnZip.h"

#include <zip.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace {

// The archives in memory, in order of registration. Imports may run on
// several threads, so the list is guarded.
std::mutex memory_archives_lock;
std::vector<const qozMemoryArchive*>& memory_archives()
{
    static std::vector<const qozMemoryArchive*> list;
    return list;
}

} // namespace

qozMemoryArchive::qozMemoryArchive(utString name, const void* data, std::size_t size)
    : name_(std::move(name)), data_(data), size_(size)
{
    std::lock_guard<std::mutex> guard(memory_archives_lock);
    memory_archives().push_back(this);
}

qozMemoryArchive::~qozMemoryArchive()
{
    std::lock_guard<std::mutex> guard(memory_archives_lock);
    auto& list = memory_archives();
    list.erase(std::remove(list.begin(), list.end(), this), list.end());
}

bool qozMemoryArchive::find(const utString& name, const void*& data, std::size_t& size)
{
    std::lock_guard<std::mutex> guard(memory_archives_lock);
    const auto& list = memory_archives();
    for (auto it = list.rbegin(); it != list.rend(); ++it)
        if ((*it)->name_ == name) {
            data = (*it)->data_;
            size = (*it)->size_;
            return true;
        }
    return false;
}

qozUnZip::~qozUnZip()
{
    close();
}

int qozUnZip::open(const utString& name)
{
    close();
    const void* data = nullptr;
    std::size_t size = 0;
    if (qozMemoryArchive::find(name, data, size))
        return open_memory(data, size);
    int error = 0;
    // Read-only, and without ZIP_CHECKCONS: an archive whose local headers
    // disagree mildly with its central directory is still read as far as it goes.
    return adopt(zip_open(name.c_str(), ZIP_RDONLY, &error));
}

int qozUnZip::open_memory(const void* data, std::size_t size)
{
    close();
    // libzip takes an empty source for an empty archive; an empty file is
    // refused as no ZIP, and so are no bytes here.
    if (!data || size == 0)
        return 0;
    zip_error_t error;
    zip_error_init(&error);
    // libzip reads the bytes where they are (freep 0: they stay the caller's).
    zip_source_t* source = zip_source_buffer_create(data, size, 0, &error);
    zip_t* a = source ? zip_open_from_source(source, ZIP_RDONLY, &error) : nullptr;
    if (!a && source)
        zip_source_free(source);   // a refused source stays ours
    zip_error_fini(&error);
    return adopt(a);
}

int qozUnZip::adopt(zip* a)
{
    if (!a)
        return 0;
    zip_int64_t n = zip_get_num_entries(a, 0);
    if (n < 0) {
        zip_discard(a);
        return 0;
    }
    archive_ = a;
    count_ = n;
    index_ = -1;
    return 1;
}

void qozUnZip::close()
{
    close_entry();
    if (archive_)
        zip_discard(archive_);   // read-only: nothing to write back
    archive_ = nullptr;
    count_ = 0;
    index_ = -1;
}

void qozUnZip::close_entry()
{
    if (entry_)
        zip_fclose(entry_);
    entry_ = nullptr;
    entry_failed_ = false;
    ++generation_;
}

int qozUnZip::next_archive()
{
    if (!archive_ || index_ >= count_)
        return 0;
    close_entry();
    ++index_;
    return index_ < count_ ? 1 : 0;
}

utString qozUnZip::archive_name() const
{
    if (!archive_ || index_ < 0 || index_ >= count_)
        return utString();
    const char* n = zip_get_name(archive_, static_cast<zip_uint64_t>(index_), ZIP_FL_ENC_RAW);
    return utString(n ? n : "");
}

std::int64_t qozUnZip::archive_size() const
{
    if (!archive_ || index_ < 0 || index_ >= count_)
        return -1;
    zip_stat_t st;
    zip_stat_init(&st);
    if (zip_stat_index(archive_, static_cast<zip_uint64_t>(index_), ZIP_FL_ENC_RAW, &st) != 0 ||
        !(st.valid & ZIP_STAT_SIZE) || st.size > static_cast<zip_uint64_t>(INT64_MAX))
        return -1;
    return static_cast<std::int64_t>(st.size);
}

std::int64_t qozUnZip::read(char* buf, std::int64_t n)
{
    if (!archive_ || index_ < 0 || index_ >= count_ || entry_failed_ || !buf || n <= 0)
        return 0;
    if (!entry_) {
        entry_ = zip_fopen_index(archive_, static_cast<zip_uint64_t>(index_), 0);
        if (!entry_) {
            // Encrypted, an unknown method, a damaged local header: an empty stream.
            entry_failed_ = true;
            return 0;
        }
    }
    zip_int64_t got = zip_fread(entry_, buf, static_cast<zip_uint64_t>(n));
    if (got <= 0) {
        // The end, or damaged data (a short entry, a bad checksum): the stream ends here.
        entry_failed_ = true;
        return 0;
    }
    return got;
}

qozUnZipStreamBuf::qozUnZipStreamBuf(qozUnZip& unzip) : unzip_(unzip), generation_(unzip.generation_)
{
    setg(buffer_, buffer_, buffer_);
}

qozUnZipStreamBuf::int_type qozUnZipStreamBuf::underflow()
{
    if (gptr() < egptr())
        return traits_type::to_int_type(*gptr());
    if (generation_ != unzip_.generation_)
        return traits_type::eof();
    std::int64_t got = unzip_.read(buffer_, buffer_size);
    if (got <= 0)
        return traits_type::eof();
    setg(buffer_, buffer_, buffer_ + got);
    return traits_type::to_int_type(*gptr());
}
