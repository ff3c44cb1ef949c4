#include "cli/dump/DigestQueue.h"

#include <pthread.h>

#include <system_error>

DigestQueue::DigestQueue() : two_processors_(std::thread::hardware_concurrency() > 1) {}

DigestQueue::~DigestQueue()
{
    stop();
}

bool DigestQueue::fits(std::size_t bytes) const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return bytes <= max_pending_bytes && !no_thread_ && two_processors_;
}

bool DigestQueue::take(const std::vector<giPoint3>& v, std::optional<ArrayDigest>& out)
{
    return queue(v, out);
}

bool DigestQueue::take(const std::vector<giTriangle>& v, std::optional<ArrayDigest>& out)
{
    return queue(v, out);
}

bool DigestQueue::take(const std::vector<giColour>& v, std::optional<ArrayDigest>& out)
{
    return queue(v, out);
}

template <class T>
std::vector<T> DigestQueue::spare()
{
    for (auto it = spares_.begin(); it != spares_.end(); ++it)
        if (auto* kept = std::get_if<std::vector<T>>(&*it)) {
            std::vector<T> buffer = std::move(*kept);
            spares_.erase(it);
            return buffer;
        }
    return {};
}

template <class T>
bool DigestQueue::queue(const std::vector<T>& v, std::optional<ArrayDigest>& out)
{
    const std::size_t bytes = v.size() * sizeof(T);
    if (!fits(bytes))
        return false;
    std::vector<T> copy;
    {
        std::unique_lock<std::mutex> lock(mutex_);
        if (!thread_.joinable()) {
            try {
                thread_ = std::thread([this] { run(); });
            } catch (const std::system_error&) {
                no_thread_ = true;
                return false;
            }
        }
        // Without room for the copy the walk does not wait for the thread:
        // the caller hashes the array itself meanwhile.
        if (pending_ != 0 && pending_ + bytes > max_pending_bytes)
            return false;
        pending_ += bytes;
        copy = spare<T>();
    }
    try {
        // The count and bounds are taken here, while the walk holds the
        // array; the thread hashes the copy.
        out = ArrayDigest::bounds_of(v);
        copy.assign(v.begin(), v.end());
    } catch (...) {
        std::lock_guard<std::mutex> lock(mutex_);
        pending_ -= bytes;
        changed_.notify_all();
        throw;
    }
    {
        std::lock_guard<std::mutex> lock(mutex_);
        jobs_.push_back(Job{Copy(std::move(copy)), &out, bytes});
    }
    changed_.notify_all();
    return true;
}

void DigestQueue::run()
{
    // Named for a debugger's or a profiler's list of threads.
    pthread_setname_np(pthread_self(), "velmora-digest");
    for (;;) {
        Job job;
        {
            std::unique_lock<std::mutex> lock(mutex_);
            changed_.wait(lock, [&] { return !jobs_.empty() || stopping_; });
            if (jobs_.empty())
                return;
            job = std::move(jobs_.front());
            jobs_.pop_front();
        }
        std::exception_ptr failed;
        try {
            (*job.out)->sha256 = std::visit([](const auto& copy) { return ArrayDigest::sha256_of(copy); }, job.copy);
        } catch (...) {
            failed = std::current_exception();
        }
        {
            std::lock_guard<std::mutex> lock(mutex_);
            pending_ -= job.bytes;
            if (failed && !failed_)
                failed_ = failed;
            std::size_t same = 0;
            for (const Copy& kept : spares_)
                same += kept.index() == job.copy.index();
            if (same < max_spares)
                spares_.push_back(std::move(job.copy));
        }
        changed_.notify_all();
    }
}

void DigestQueue::finish()
{
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [&] { return jobs_.empty() && pending_ == 0; });
    if (failed_) {
        std::exception_ptr failed = failed_;
        failed_ = nullptr;
        std::rethrow_exception(failed);
    }
}

void DigestQueue::stop()
{
    {
        std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
    }
    changed_.notify_all();
    if (thread_.joinable())
        thread_.join();
}
