#pragma once
// ReadDiagnosis: the reasons the reader gives while it walks an archive, put
// into words, in the order they arose: every chunk chain that ended other
// than at its entry's end, and every archive, entry or record it refused. The
// plug-in reports nothing to its host, so the command line reads the archive
// again with the reader itself when it needs to say why an import was empty.
#include <string>
#include <vector>

#include "archive/vmiReadObserver.h"

// The message of an import that produced nothing: "nothing imported", and
// the first reason the reader gives for path when it gives one.
std::string nothing_imported(const std::string& path);
// The message of an import that produced groups but no geometry (every
// record skipped, say for a bound): "no geometry imported" and the first
// reason the reader gives for path, or empty when it gives none.
std::string no_geometry_imported(const std::string& path);

class ReadDiagnosis : public vmiReadObserver {
public:
    // archive: the file being read, for a closer look at an entry the unzip
    // service could not decode.
    explicit ReadDiagnosis(std::string archive) : archive_(std::move(archive)) {}

    void entry(const utString& name, vmiEntryKind type, int indx, std::int64_t stored_size,
               const char* content, int len, int chunks, vmiChainEnd end) override;
    void skipped(const vmiReadSkip& why) override;

    const std::vector<std::string>& reasons() const { return reasons_; }

    // The reasons the reader gives for the archive at path, with the options
    // the host's resource table holds.
    static std::vector<std::string> of(const std::string& path);

    // A refusal in words, without the file's name.
    std::string describe(const vmiReadSkip& why) const;
    // Why a chain of chunks chunks ended, in words ("cut short ...").
    static std::string describe(vmiChainEnd end, int chunks);
    // The first bytes of an entry as text, every byte outside printable ASCII
    // as '?', so that a magic shows on one line whatever it holds.
    static std::string printable(std::string bytes);
    // "catalogue", "data entry" or "entry", by the name's kind.
    static std::string kind_word(const utString& name);

private:
    std::string unreadable(const vmiReadSkip& why) const;

    std::string archive_;
    std::vector<std::string> reasons_;
};
