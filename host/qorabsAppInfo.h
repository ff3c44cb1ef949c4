#pragma once
// qorabsAppInfo: what the host tells a library about itself when it asks for
// the library's instance (get_instance).
#include "host/utString.h"

class qorabsAppInfo {
public:
    qorabsAppInfo() = default;
    qorabsAppInfo(utString name, utString version) : name_(std::move(name)), version_(std::move(version)) {}
    const utString& name() const { return name_; }
    const utString& version() const { return version_; }

private:
    utString name_;
    utString version_;
};
