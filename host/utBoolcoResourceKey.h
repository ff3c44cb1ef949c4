#pragma once
// utBoolcoResourceKey: the name under which a boolean option is kept in the
// host's resource table.
#include "host/utString.h"

class utBoolcoResourceKey {
public:
    explicit utBoolcoResourceKey(utString name) : name_(std::move(name)) {}
    const utString& name() const { return name_; }

private:
    utString name_;
};
