#pragma once
// ArchiveListing: what `velmora inspect` shows of an archive. It listens to
// vmiFile::read as a vmiReadObserver and keeps, in archive order, every entry
// with the digest of its decoded content and every catalogue with the records
// the parser made, so that the listing is the archive exactly as the reader
// walked it, and the reasons the reader gave on the way.
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "archive/vmiReadObserver.h"
#include "cli/ReadDiagnosis.h"

struct ListedEntry {
    std::string name;
    vmiEntryKind type = vmiEntryKind::other;
    int number = 0;
    std::int64_t stored_size = 0;
    std::optional<int> size;          // decoded bytes; none for an "other" entry
    int chunks = 0;
    vmiChainEnd chain = vmiChainEnd::end;  // data entries: why the chunk chain ended
    std::optional<std::string> magic; // first four bytes, none when shorter
    std::optional<std::string> sha256;
};

struct ListedRecord {
    int level = 0;
    int type1 = 0;
    int indx = 0;
    int ref_indx = 0;
    int type2 = 0;
    std::string date;
    std::string name1;
    std::string comment;
    std::string name0;
    int data_indx = 0;
    // Level 3: whether a data entry numbered data_indx was visible to the
    // catalogue, and that entry's magic (none when shorter than four bytes).
    bool data_found = false;
    std::optional<std::string> data_magic;
};

struct ListedCatalogue {
    std::string entry;
    int number = 0;
    int size = 0;
    bool found = false;
    bool separator = false;
    std::vector<ListedRecord> records;
};

class ArchiveListing : public ReadDiagnosis {
public:
    // archive: the file being read (see ReadDiagnosis); empty when unknown.
    explicit ArchiveListing(std::string archive = {}) : ReadDiagnosis(std::move(archive)) {}

    void entry(const utString& name, vmiEntryKind type, int indx, std::int64_t stored_size,
               const char* content, int len, int chunks, vmiChainEnd end) override;
    void catalogue(const utString& name, int indx, int size, bool found, bool separator,
                   const vmiVlkElement* records, vmiArchiveDir& archive) override;

    const std::vector<ListedEntry>& entries() const { return entries_; }
    const std::vector<ListedCatalogue>& catalogues() const { return catalogues_; }

    // The first four bytes as text with every byte outside printable ASCII as
    // '?', or none when there are fewer than four.
    static std::optional<std::string> magic_of(const char* content, int len);

private:
    std::vector<ListedEntry> entries_;
    std::vector<ListedCatalogue> catalogues_;
};
