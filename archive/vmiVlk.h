#pragma once
// vmiVlk: the records of the catalogue being processed, in file order.
#include "archive/vmiIntrusiveList.h"
#include "archive/vmiVlkElement.h"

class vmiVlk : public vmiIntrusiveList<vmiVlkElement> {
public:
    // The first record whose indx equals the argument, else null.
    vmiVlkElement* get(const int& indx) const;
};
