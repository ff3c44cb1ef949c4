#include "host/qozUnZip.h"

#include <zip.h>

qozUnZip::~qozUnZip()
{
    close();
}

int qozUnZip::open(const utString& name)
{
    close();
    int error = 0;
    // Read-only, and without ZIP_CHECKCONS: an archive whose local headers
    // disagree mildly with its central directory is still read as far as it goes.
    zip_t* a = zip_open(name.c_str(), ZIP_RDONLY, &error);
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
