#pragma once
// qorabsName: the NAME attribute, the item's name as the host shows it.
#include "host/qorabsAttribute.h"
#include "host/utString.h"

class qorabsName : public qorabsAttribute {
public:
    qorabsName() = default;
    // flags: the host's naming flags; a plug-in that has none passes 0.
    qorabsName(utString name, int flags) : name_(std::move(name)), flags_(flags) {}
    const utString& name() const { return name_; }
    int flags() const { return flags_; }

private:
    utString name_;
    int flags_ = 0;
};
