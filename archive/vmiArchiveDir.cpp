#include "archive/vmiArchiveDir.h"

vmiArchiveElement* vmiArchiveDir::get(const vmiEntryKind& type, const int& indx) const
{
    return find([&](const vmiArchiveElement& e) { return e.type() == type && e.indx() == indx; });
}
