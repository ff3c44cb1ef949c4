#pragma once
// vmiArchiveDir: the entries read from the archive since the last catalogue,
// in archive order. The directory owns its elements only through free(): the
// reader frees it after every catalogue, and its destructor frees what is left.
class vmiArchiveElement;

class vmiArchiveDir {
public:
    vmiArchiveDir() = default;
    ~vmiArchiveDir();
    vmiArchiveDir(const vmiArchiveDir&) = delete;
    vmiArchiveDir& operator=(const vmiArchiveDir&) = delete;

    // Appends at the tail; the directory takes the element.
    void add(vmiArchiveElement* element);
    // The first element of this type and number, else null.
    vmiArchiveElement* get(const int& type, const int& indx) const;
    vmiArchiveElement* first() const { return head_; }
    int count() const;
    // Deletes every element with its buffer and empties the list.
    void free();

private:
    vmiArchiveElement* head_ = nullptr;
    vmiArchiveElement* tail_ = nullptr;
};
