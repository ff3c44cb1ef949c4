#pragma once
// qorabsTranslatorCategory: the category a host files an import library under
// (for instance "FOOTWEAR"). Libraries hand it out as a shared pointer.
#include <memory>

#include "host/utString.h"

class qorabsTranslatorCategory {
public:
    explicit qorabsTranslatorCategory(utString name) : name_(std::move(name)) {}
    const utString& name() const { return name_; }

private:
    utString name_;
};

using qorabsTranslatorCategoryPtr = std::shared_ptr<qorabsTranslatorCategory>;
