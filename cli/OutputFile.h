#pragma once
// OutputFile: a result file that appears whole or not at all. The bytes go to
// a hidden temporary file in the target's folder (".NAME.XXXXXX"), which
// commit() renames onto the target; a rename within one folder replaces the
// target at once, so a reader never sees half a file, and an earlier result
// under the same name stays until the new one is complete. A file not
// committed is removed when the object goes, and on SIGINT, SIGTERM or SIGHUP
// too: an interrupted run leaves neither a half result nor its temporary.
//
// Also the checks of where a result may go: never onto the archive it is made
// from, whatever name leads there (a hard link, a symbolic link, "./").
#include <fstream>
#include <ostream>
#include <string>

class OutputFile {
public:
    // How many temporaries a signal can remove at once: one per file being
    // written, and a process writes one result at a time (a batch gives each
    // file its own process). Beyond it a temporary is still removed on every
    // path but a signal.
    static constexpr int max_guarded = 8;

    // Why output may not be written when input is the archive read, or
    // empty: "is the input archive" when both name the same file (the same
    // device and inode), "is a directory" when output is one.
    static std::string refusal(const std::string& input, const std::string& output);

    // Makes the temporary next to path; ok() says whether that worked,
    // error() why not (the system's words).
    explicit OutputFile(const std::string& path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    bool ok() const { return error_.empty(); }
    const std::string& error() const { return error_; }
    // Where the bytes go until commit(); only when ok().
    std::ostream& stream() { return out_; }
    const std::string& temporary() const { return temporary_; }

    // Closes the temporary and renames it onto the target; empty on success,
    // else the reason (the temporary is removed then).
    std::string commit();

private:
    void discard();

    std::string path_;
    std::string temporary_;
    std::string error_;
    std::ofstream out_;
    int slot_ = -1;
    bool done_ = false;
};
