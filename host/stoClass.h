#pragma once
// stoClass: the host's description of a class of stored objects. A compound
// translator is made with the class of the object it creates in the host
// (for groups sto_class_annGroup()).
#include "host/utString.h"

class stoClass {
public:
    explicit stoClass(const char* name) : name_(name) {}
    const utString& name() const { return name_; }

private:
    utString name_;
};

// The host's group class ("annGroup"). Always the same object.
const stoClass* sto_class_annGroup();
