#include "translate/vmiMangler.h"

utString vmiMangler::do_mangling(const utString& name) const
{
    return prefix_ + utString("_") + name;
}

vmiMangler::~vmiMangler() = default;
