#include "archive/vmiArchiveDir.h"

#include "archive/vmiArchiveElement.h"

vmiArchiveDir::~vmiArchiveDir()
{
    // The elements own the data buffers; whatever no catalogue consumed goes
    // with the directory so that nothing leaks.
    free();
}

void vmiArchiveDir::add(vmiArchiveElement* element)
{
    if (!element)
        return;
    element->next(nullptr);
    if (tail_)
        tail_->next(element);
    else
        head_ = element;
    tail_ = element;
}

vmiArchiveElement* vmiArchiveDir::get(const int& type, const int& indx) const
{
    for (vmiArchiveElement* e = head_; e; e = e->next())
        if (e->type() == type && e->indx() == indx)
            return e;
    return nullptr;
}

int vmiArchiveDir::count() const
{
    int n = 0;
    for (vmiArchiveElement* e = head_; e; e = e->next())
        ++n;
    return n;
}

void vmiArchiveDir::free()
{
    vmiArchiveElement* e = head_;
    while (e) {
        vmiArchiveElement* n = e->next();
        delete e;
        e = n;
    }
    head_ = tail_ = nullptr;
}
