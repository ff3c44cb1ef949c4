#pragma once
// vmiArchiveDir: the entries read from the archive since the last catalogue,
// in archive order. The elements own the data buffers; whatever no catalogue
// consumed goes with the directory, so that nothing leaks.
#include "archive/vmiArchiveElement.h"
#include "archive/vmiIntrusiveList.h"

class vmiArchiveDir : public vmiIntrusiveList<vmiArchiveElement> {
public:
    // The first element of this kind and number, else null.
    vmiArchiveElement* get(const vmiEntryKind& type, const int& indx) const;
};
