#include "archive/vmiArchiveElement.h"

#include <utility>

vmiArchiveElement::vmiArchiveElement(utString name, char* buf, const int& len, const vmiEntryKind& type,
                                     const int& indx)
    : name_(std::move(name)), buf_(buf), len_(len), type_(type), indx_(indx)
{
}

vmiArchiveElement::~vmiArchiveElement()
{
    delete[] buf_;
}
