#pragma once
// vmiReadObserver: an optional listener of vmiFile::read for tools that show
// what an archive holds before any interpretation (`velmora inspect`) and why
// the reader refused something (the diagnosis of an empty import). The reader
// calls it while it walks the archive; an observer never changes what is
// read, and the plug-in itself never installs one.
#include <cstdint>

#include "archive/vmiArchiveElement.h"
#include "archive/vmiReadReason.h"
#include "host/utString.h"

class vmiArchiveDir;
class vmiVlkElement;

class vmiReadObserver {
public:
    virtual ~vmiReadObserver() = default;

    // Every ZIP entry, in archive order. type and indx are those of
    // check_arhive_file_name; stored_size is the entry's uncompressed size in
    // the ZIP. content/len is the decoded content: for a data entry the joined
    // chunk buffer (null, 0 when it had no chunk), for a catalogue the bytes
    // read (at most catalogue_buffer), for any other entry null, 0. chunks is
    // the number of chunks joined and end why the chain ended (data entries;
    // 0 and end otherwise). The content is only valid during the call.
    virtual void entry(const utString& name, vmiEntryKind type, int indx, std::int64_t stored_size,
                       const char* content, int len, int chunks, vmiChainEnd end)
    {
        (void)name; (void)type; (void)indx; (void)stored_size; (void)content; (void)len; (void)chunks;
        (void)end;
    }

    // A catalogue entry has been parsed, right before the node tree would be
    // built from it. found: the catalogue element (number 0) was in the
    // directory; separator: a "-" line was met; records: the head of the
    // record list the parser made (null when none); archive: the directory as
    // this catalogue sees it (the data entries read since the last catalogue).
    virtual void catalogue(const utString& name, int indx, int size, bool found, bool separator,
                           const vmiVlkElement* records, vmiArchiveDir& archive)
    {
        (void)name; (void)indx; (void)size; (void)found; (void)separator; (void)records; (void)archive;
    }

    // The reader refused the archive, an entry or a record, and why. Called
    // where it happens: an entry's refusals right after its entry() call, a
    // record's while the catalogue's records are turned into nodes.
    virtual void skipped(const vmiReadSkip& why) { (void)why; }
};
