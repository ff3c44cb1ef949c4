#pragma once
// vmiVlk: the records of the catalogue being processed, in file order.
class vmiVlkElement;

class vmiVlk {
public:
    vmiVlk() = default;
    ~vmiVlk();
    vmiVlk(const vmiVlk&) = delete;
    vmiVlk& operator=(const vmiVlk&) = delete;

    // Appends at the tail; the list takes the record.
    void add(vmiVlkElement* element);
    vmiVlkElement* first() const { return head_; }
    // The first record whose indx equals the argument, else null.
    vmiVlkElement* get(const int& indx) const;
    int count() const;
    // Deletes every record and empties the list.
    void free();

private:
    vmiVlkElement* head_ = nullptr;
    vmiVlkElement* tail_ = nullptr;
};
