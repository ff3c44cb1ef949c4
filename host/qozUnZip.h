#pragma once
// qozUnZip, qozUnZipStreamBuf: the host's unzip service. A plug-in opens an
// archive, walks its entries one after the other and reads the current entry
// as a byte stream; it never sees the ZIP format itself.
//
// Contract for a host's vendor (what the plug-in relies on):
// - open(name) returns 1 when the file is a readable ZIP archive, else 0
//   (a missing file, a file that is not a ZIP, a truncated one). Nothing it
//   is given makes it crash.
// - Entries come in archive order (the order of the central directory).
//   Before the first next_archive() there is no current entry; each call moves
//   to the next entry and returns 1, and returns 0 once the last one is passed
//   (and on every call after that).
// - archive_name() is the current entry's name as stored, byte for byte (no
//   character-set conversion); empty when there is no current entry.
// - archive_size() is the current entry's uncompressed size as the archive
//   declares it; -1 when there is no current entry or it is not known. It is a
//   declaration only: the stream below yields what the entry really holds.
// - qozUnZipStreamBuf reads the current entry's decoded bytes (stored and
//   deflated entries, with or without data descriptors, zip64 included). A
//   damaged or unsupported entry ends its stream early; reading never fails
//   in any other way. Moving to the next entry ends every stream of the
//   previous one.
// - An archive the host already holds in memory (an attachment, a download)
//   is opened the same way: open_memory(data, size) directly, or, for a
//   plug-in that opens its archive by name, open(name) while a
//   qozMemoryArchive of that name lives. The bytes are not copied; they must
//   stay as they are while the archive is open.
#include <cstddef>
#include <cstdint>
#include <streambuf>

#include "host/utString.h"

struct zip;
struct zip_file;

class qozUnZip {
public:
    qozUnZip() = default;
    ~qozUnZip();
    qozUnZip(const qozUnZip&) = delete;
    qozUnZip& operator=(const qozUnZip&) = delete;

    int open(const utString& name);
    // As open, over size bytes at data instead of a file.
    int open_memory(const void* data, std::size_t size);
    void close();
    int next_archive();
    utString archive_name() const;
    std::int64_t archive_size() const;

    // Reads up to n decoded bytes of the current entry into buf; returns the
    // count, 0 at the end of the entry (or when it cannot be read further).
    // The stream buffer below is built on it.
    std::int64_t read(char* buf, std::int64_t n);

private:
    void close_entry();
    // Takes the archive libzip opened (or refused: null); 1 when taken.
    int adopt(zip* archive);

    zip* archive_ = nullptr;
    zip_file* entry_ = nullptr;   // opened at the first read of the current entry
    bool entry_failed_ = false;   // the current entry cannot be read (further)
    std::int64_t count_ = 0;      // entries in the archive
    std::int64_t index_ = -1;     // current entry; -1 before the first, count_ after the last
    std::int64_t generation_ = 0; // counts entry changes, so that streams of an old entry end
    friend class qozUnZipStreamBuf;
};

// An archive in memory under a name: while the object lives, qozUnZip::open
// with that name reads the bytes at data instead of a file of that name. A
// later registration of the same name hides an earlier one until it ends.
// Neither the name nor the bytes are copied by open; the bytes must outlive
// the registration and every archive opened through it.
class qozMemoryArchive {
public:
    qozMemoryArchive(utString name, const void* data, std::size_t size);
    ~qozMemoryArchive();
    qozMemoryArchive(const qozMemoryArchive&) = delete;
    qozMemoryArchive& operator=(const qozMemoryArchive&) = delete;

    // The bytes registered under name (the latest registration), or false.
    static bool find(const utString& name, const void*& data, std::size_t& size);

private:
    utString name_;
    const void* data_;
    std::size_t size_;
};

// A read-only stream over the current entry of a qozUnZip. Wrap it in a
// std::istream. It reads through a small buffer of its own and supports no
// seeking and no putback beyond what std::streambuf gives.
class qozUnZipStreamBuf : public std::streambuf {
public:
    explicit qozUnZipStreamBuf(qozUnZip& unzip);
    qozUnZipStreamBuf(const qozUnZipStreamBuf&) = delete;
    qozUnZipStreamBuf& operator=(const qozUnZipStreamBuf&) = delete;

protected:
    int_type underflow() override;

private:
    static constexpr int buffer_size = 64 * 1024;
    qozUnZip& unzip_;
    std::int64_t generation_;
    char buffer_[buffer_size];
};
