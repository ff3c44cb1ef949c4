#pragma once
// qorabsNameMangler: makes the names of a group's members unique in the host.
// A group translator creates one (create_name_mangler) and the walk applies it
// to the NAME of each member before the member reaches the output sink.
//
// Slots: 1 do_mangling, 2 destructor.
#include "host/utString.h"

class qorabsNameMangler {
public:
    // The base keeps the name as it is.
    virtual utString do_mangling(const utString& name) const;
    virtual ~qorabsNameMangler();
};
