#include "archive/vmiVlk.h"

#include "archive/vmiVlkElement.h"

vmiVlk::~vmiVlk()
{
    free();
}

void vmiVlk::add(vmiVlkElement* element)
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

vmiVlkElement* vmiVlk::get(const int& indx) const
{
    for (vmiVlkElement* e = head_; e; e = e->next())
        if (e->indx() == indx)
            return e;
    return nullptr;
}

int vmiVlk::count() const
{
    int n = 0;
    for (vmiVlkElement* e = head_; e; e = e->next())
        ++n;
    return n;
}

void vmiVlk::free()
{
    vmiVlkElement* e = head_;
    while (e) {
        vmiVlkElement* n = e->next();
        delete e;
        e = n;
    }
    head_ = tail_ = nullptr;
}
