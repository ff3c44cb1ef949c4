#pragma once
// qorabsColour: the COLOUR attribute, a colour index of the host's palette.
// A default colour is invalid ("no colour"): a translator that holds one does
// not hand it over.
#include "host/qorabsAttribute.h"

class qorabsColour : public qorabsAttribute {
public:
    qorabsColour() = default;
    explicit qorabsColour(int index) : index_(index), valid_(true) {}
    bool is_valid() const { return valid_; }
    int index() const { return index_; }

private:
    int index_ = 0;
    bool valid_ = false;
};
