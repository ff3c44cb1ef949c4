#include "archive/vmiDesignAhead.h"

#include <pthread.h>

#include <new>
#include <system_error>

#include "contour/vmiVelmcontur.h"
#include "grid/vmiBaseGrid.h"

vmiDesignAhead::vmiDesignAhead(bool enabled) : enabled_(enabled && std::thread::hardware_concurrency() > 1) {}

vmiDesignAhead::~vmiDesignAhead()
{
    wait();
    delete design_;
}

bool vmiDesignAhead::free() const
{
    return enabled_ && record_ == nullptr;
}

void vmiDesignAhead::start(const vmiVlkElement* record, const char* data, int length, int identifier,
                           vmiBaseGrid* grid, long long work_limit)
{
    if (!free() || record == nullptr) {
        delete grid;
        return;
    }
    record_ = record;
    identifier_ = identifier;
    try {
        thread_ = std::thread([this, data, length, identifier, grid, work_limit] {
            // Named for a debugger's or a profiler's list of the host's threads.
            pthread_setname_np(pthread_self(), "velmora-design");
            // The design keeps the grid; without a design it is freed here.
            // Nothing may leave the thread: a design that fails to build is
            // built again, by the record itself.
            try {
                design_ = new (std::nothrow)
                    vmiVelmcontur(const_cast<char*>(data), length, identifier, grid, work_limit);
            } catch (...) {
                design_ = nullptr;
                return;
            }
            if (!design_)
                delete grid;
        });
    } catch (const std::system_error&) {
        // No thread to be had: the record builds its own design.
        record_ = nullptr;
        delete grid;
    }
}

vmiVelmcontur* vmiDesignAhead::take(const vmiVlkElement* record, int identifier)
{
    if (record_ == nullptr || record != record_)
        return nullptr;
    wait();
    vmiVelmcontur* design = design_;
    design_ = nullptr;
    const bool same = identifier == identifier_;
    record_ = nullptr;
    if (!same) {
        delete design;
        return nullptr;
    }
    return design;
}

void vmiDesignAhead::wait()
{
    if (thread_.joinable())
        thread_.join();
}
