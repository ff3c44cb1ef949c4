#pragma once
// vmiIntrusiveList: a singly linked list whose links are the elements' own
// next pointers, as the archive directory and the catalogue keep their
// elements. The list owns what it holds only through free(): the reader frees
// both lists after every catalogue, and the destructor frees what is left.
//
// T provides T* next() const and void next(T*).
template <class T>
class vmiIntrusiveList {
public:
    vmiIntrusiveList() = default;
    ~vmiIntrusiveList() { free(); }
    vmiIntrusiveList(const vmiIntrusiveList&) = delete;
    vmiIntrusiveList& operator=(const vmiIntrusiveList&) = delete;

    // Appends at the tail; the list takes the element. Null is ignored.
    void add(T* element)
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

    T* first() const { return head_; }

    int count() const
    {
        int n = 0;
        for (T* e = head_; e; e = e->next())
            ++n;
        return n;
    }

    // Deletes every element and empties the list.
    void free()
    {
        T* e = head_;
        while (e) {
            T* n = e->next();
            delete e;
            e = n;
        }
        head_ = tail_ = nullptr;
    }

protected:
    // The first element that pred accepts, else null.
    template <class Pred>
    T* find(Pred pred) const
    {
        for (T* e = head_; e; e = e->next())
            if (pred(*e))
                return e;
        return nullptr;
    }

private:
    T* head_ = nullptr;
    T* tail_ = nullptr;
};
