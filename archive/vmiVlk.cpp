#include "archive/vmiVlk.h"

vmiVlkElement* vmiVlk::get(const int& indx) const
{
    return find([&](const vmiVlkElement& e) { return e.indx() == indx; });
}
