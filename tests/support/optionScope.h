#pragma once
// option_set: turns one of the plug-in's options (a switch in the host's
// resource table) to a value for a scope, then back on, the options' default.
#include "host/qorResourceTable.h"
#include "host/utBoolcoResourceKey.h"
#include "host/utString.h"

class option_set {
public:
    option_set(const char* key, int value) : key_(utString(key))
    {
        qor_resource_table_inquire()->set_bool(key_, value);
    }
    ~option_set() { qor_resource_table_inquire()->set_bool(key_, 1); }
    option_set(const option_set&) = delete;
    option_set& operator=(const option_set&) = delete;

private:
    utBoolcoResourceKey key_;
};
