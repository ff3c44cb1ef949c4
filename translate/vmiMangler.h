#pragma once
// vmiMangler: the name mangler of a group: a member's name becomes the
// group's name, "_", and the member's name, so that members of different
// groups stay apart in the host ("VelmScan(A)" + "SCAN_(LEFT)_x" gives
// "VelmScan(A)_SCAN_(LEFT)_x").
#include "host/qorabsNameMangler.h"

class vmiMangler : public qorabsNameMangler {
public:
    explicit vmiMangler(utString prefix) : prefix_(std::move(prefix)) {}

    // 1. prefix + "_" + name.
    utString do_mangling(const utString& name) const override;
    // 2.
    ~vmiMangler() override;

    const utString& prefix() const { return prefix_; }

private:
    utString prefix_;
};
