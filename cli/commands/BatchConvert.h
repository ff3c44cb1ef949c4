#pragma once
// BatchConvert: `velmora convert A.vlm B.vlm ... -d OUTDIR -f FORMAT [-j N]`.
// Every archive becomes OUTDIR/<stem>.<ext>, N at a time.
//
// Each archive is converted in a process of its own, forked from the command:
// the host's resource table, which carries the plug-in's options into each
// read, is one table per process with no lock, so two imports in one process
// at once would set each other's options. The command loads the plug-in once
// before the first fork, and every worker starts with it loaded. A worker's
// diagnostics come back through a pipe and are printed whole, one file's lines
// together; a worker that dies by a signal is a failure of its file, not of
// the batch.
//
// On a terminal a progress line (files done, failed, elapsed time) is redrawn
// in place on standard error; every failure is printed with its reason as it
// comes, and one summary line ends the run. The exit status is the highest of
// the files' statuses.
#include <functional>
#include <ostream>
#include <string>
#include <vector>

class BatchConvert {
public:
    // The most workers at once: more than any machine a lab runs this on has
    // cores, and a bound on the processes one command may fork.
    static constexpr int max_jobs = 256;
    // How often the progress line is redrawn while no worker ends, in ms.
    static constexpr int progress_interval_ms = 250;

    struct Job {
        std::string input;
        std::string output;
    };

    // Converts one archive to one file and returns its exit status, printing
    // its diagnostics on err (run in a worker process).
    using Convert = std::function<int(const std::string& input, const std::string& output, std::ostream& err)>;

    // The workers by default: the processors online, within 1 to max_jobs.
    static int default_jobs();
    // Why a -j value is refused ("TEXT: reason"), or empty for 1 to max_jobs.
    static std::string jobs_error(const std::string& text);

    // Each input's output: folder/<stem>.<extension>. Empty on success, else
    // the reason two inputs cannot both be written (the same output name), or
    // that an input is standard input ("-"), which a batch cannot share.
    static std::string plan(const std::vector<std::string>& inputs, const std::string& folder,
                            const std::string& extension, std::vector<Job>& jobs);

    // Runs every job, jobs at a time, and returns the highest exit status.
    // progress draws the progress line on err.
    static int run(const std::vector<Job>& jobs, int workers, const Convert& convert, std::ostream& err,
                   bool progress);
};
