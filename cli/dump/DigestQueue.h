#pragma once
// DigestQueue: the summary's digests, taken on a second thread while the walk
// goes on to the next item.
//
// The arrays the walk hands over are valid during the call only, so each is
// copied into a buffer the queue keeps and reuses; the second thread hashes
// the copy while the walk converts the next item. At most max_pending_bytes
// of copies wait at once: an array that finds no room (or is larger than
// that) is not queued, take() answers false and the caller digests it at
// once, so that both threads hash when the walk is ahead of the thread.
// finish() waits for every digest handed over; the digests are the ones
// ArrayDigest::of gives, written where take() was told: the count and
// bounds at once, the sha256 by the thread.
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <variant>
#include <vector>

#include "cli/dump/ArrayDigest.h"

class DigestQueue {
public:
    // The copies of two of the demo's items (its largest, a block of
    // 0.87 MB): the thread hashes one item while the walk converts the
    // next. Every copy waiting raises the import's peak, so a larger item
    // (a scan four times as fine makes blocks of 13 MB) is digested in the
    // call.
    static constexpr std::size_t max_pending_bytes = std::size_t(2) << 20;
    // Buffers kept for reuse once hashed, of each element type: the next
    // item's copy then lands on pages already there.
    static constexpr std::size_t max_spares = 1;

    DigestQueue();
    // Waits for the thread; a digest it could not take is left empty.
    ~DigestQueue();
    DigestQueue(const DigestQueue&) = delete;
    DigestQueue& operator=(const DigestQueue&) = delete;

    // Whether arrays of this many bytes together can be queued: not above
    // max_pending_bytes, and a second thread is to be had.
    bool fits(std::size_t bytes) const;
    // Queues a copy of v, whose digest goes to out, which must stay where it
    // is until finish(). False when v does not fit, or finds no room now:
    // nothing is queued.
    bool take(const std::vector<giPoint3>& v, std::optional<ArrayDigest>& out);
    bool take(const std::vector<giTriangle>& v, std::optional<ArrayDigest>& out);
    bool take(const std::vector<giColour>& v, std::optional<ArrayDigest>& out);
    // Waits until every queued digest is written; rethrows what the thread
    // met (storage running out).
    void finish();

private:
    using Copy = std::variant<std::vector<giPoint3>, std::vector<giTriangle>, std::vector<giColour>>;
    struct Job {
        Copy copy;
        std::optional<ArrayDigest>* out;
        std::size_t bytes;
    };
    template <class T>
    bool queue(const std::vector<T>& v, std::optional<ArrayDigest>& out);
    // A spare buffer of T (empty when none is kept); under the lock.
    template <class T>
    std::vector<T> spare();
    void run();
    void stop();

    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Job> jobs_;
    std::size_t pending_ = 0;  // bytes queued or being hashed
    bool stopping_ = false;
    bool no_thread_ = false;   // a thread could not be started: nothing is queued
    // Asked of the system once: fits() runs for every item.
    const bool two_processors_;
    std::exception_ptr failed_;
    std::vector<Copy> spares_;
    std::thread thread_;
};
