#pragma once
// vmiDesignAhead: one design built on a second thread while the reader builds
// another.
//
// A model record costs nearly all its design: the height sections applied to
// a working grid. A design depends on nothing but its contour text, its base
// grid, its identifier and its work limit, and building one touches nothing
// of the reader's. So when the reader comes to a model record, it hands the
// design of the next model record to a second thread before it builds its
// own, and the two are built at once. The reader still takes the designs in
// catalogue order and judges each (its work, its points) as before.
//
// The design built ahead gets the identifier its record will have if the
// model being built now is kept. When that one is not kept, the identifier is
// not the record's: the design built ahead is dropped and the record builds
// its own. Either way the tree is the one a single thread makes, bit for bit.
#include <thread>

class vmiBaseGrid;
class vmiVelmcontur;
class vmiVlkElement;

class vmiDesignAhead {
public:
    // Without enabled, or on a machine with one processor, nothing is ever
    // built ahead.
    explicit vmiDesignAhead(bool enabled);
    // Waits for the thread; a design not taken is dropped.
    ~vmiDesignAhead();
    vmiDesignAhead(const vmiDesignAhead&) = delete;
    vmiDesignAhead& operator=(const vmiDesignAhead&) = delete;

    // Whether a design may be handed over now: enabled, and no design is
    // held or being built.
    bool free() const;
    // Builds on a second thread the design of record from length bytes of
    // contour text at data, over grid (taken in every case, may be null),
    // with this identifier and work limit. The text must stay as it is until
    // the design is taken or dropped. When no thread can be started, nothing
    // is built and the grid is freed.
    void start(const vmiVlkElement* record, const char* data, int length, int identifier,
               vmiBaseGrid* grid, long long work_limit);
    // The design built ahead for record with this identifier, waiting for
    // it: the caller's from here on. Null when none was handed over for
    // record, or it was built with another identifier (it is dropped), or it
    // could not be built: the record then builds its own.
    vmiVelmcontur* take(const vmiVlkElement* record, int identifier);

private:
    // Waits for the thread, if one runs.
    void wait();

    bool enabled_ = false;
    std::thread thread_;
    const vmiVlkElement* record_ = nullptr;
    int identifier_ = 0;
    vmiVelmcontur* design_ = nullptr;
};
