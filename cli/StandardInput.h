#pragma once
// StandardInput: an archive read from standard input (`velmora convert -`),
// for pipelines. The reader opens an archive by name and seeks in it (a ZIP's
// directory is at its end), so the bytes are copied into a temporary file
// that is unlinked as soon as it is made: it has no name to leave behind,
// however the command ends, and it is opened as /proc/self/fd/N while the
// copy is held.
#include <string>

class StandardInput {
public:
    // Copies all of file descriptor fd (standard input by default) into the
    // temporary; ok() says whether that worked, error() why not.
    explicit StandardInput(int fd = 0);
    ~StandardInput();
    StandardInput(const StandardInput&) = delete;
    StandardInput& operator=(const StandardInput&) = delete;

    bool ok() const { return error_.empty(); }
    const std::string& error() const { return error_; }
    // A name that opens the copy while this object lives.
    const std::string& path() const { return path_; }

private:
    int copy_ = -1;
    std::string path_;
    std::string error_;
};
