#pragma once
// qorabsLibSource: a library that brings data into the host (as opposed to
// one that writes the host's data out). It adds no operation of its own.
#include "host/qorabsLibBase.h"

class qorabsLibSource : public qorabsLibBase {
public:
    using qorabsLibBase::qorabsLibBase;
};
