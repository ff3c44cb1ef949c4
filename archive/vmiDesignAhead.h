#pragma once
// vmiDesignAhead: one design built on a second thread while the reader builds
// another.
//
// A model record costs nearly all its design: the height sections applied to
// a working grid. A design depends on nothing but its contour text, its base
// grid, its identifier and its work limit, and building one touches nothing
// of the reader's. So the reader keeps a second thread building designs
// before their records' turn: the first model's from the catalogue's start,
// while the scans are read; when a record builds its own design, the next
// model's; and when the thread is still at the record whose turn it is, the
// reader builds the next model's itself meanwhile and then hands the thread
// the model after. The reader still takes the designs in catalogue order and
// judges each (its work, its points) as before.
//
// A design built early gets the identifier its record will have if every
// model before it is kept. When one is not, the identifier is not the
// record's: the design is dropped and the record builds its own. Either way
// the tree is the one a single thread makes, bit for bit.
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
    // Whether the design held or being built is record's.
    bool holds(const vmiVlkElement* record) const { return record != nullptr && record == record_; }
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
