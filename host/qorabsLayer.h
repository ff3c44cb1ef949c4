#pragma once
// qorabsLayer: the LAYER attribute, the level (layer number) and its name.
#include "host/qorabsAttribute.h"
#include "host/utString.h"

class qorabsLayer : public qorabsAttribute {
public:
    qorabsLayer() = default;
    qorabsLayer(int level, utString name) : level_(level), name_(std::move(name)) {}
    int level() const { return level_; }
    const utString& name() const { return name_; }

private:
    int level_ = 0;
    utString name_;
};
