#include "host/qorabsNameMangler.h"

utString qorabsNameMangler::do_mangling(const utString& name) const
{
    return name;
}

qorabsNameMangler::~qorabsNameMangler() = default;
