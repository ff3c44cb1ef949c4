#pragma once
// vmiArchiveElement: one entry of the archive as read into memory, a link of
// the archive directory's list. It owns its decoded content.
#include "host/utString.h"

// What an entry is, by its name's extension.
enum class vmiEntryKind {
    other = 0,      // any other name; read past
    data = 1,       // ".dat": a chain of compressed chunks
    catalogue = 2,  // ".vlk": the catalogue text
};

class vmiArchiveElement {
public:
    // Takes ownership of buf (allocated with new char[]).
    vmiArchiveElement(utString name, char* buf, const int& len, const vmiEntryKind& type, const int& indx);
    ~vmiArchiveElement();
    vmiArchiveElement(const vmiArchiveElement&) = delete;
    vmiArchiveElement& operator=(const vmiArchiveElement&) = delete;

    const utString& name() const { return name_; }
    char* buf() const { return buf_; }
    void buf(char* b) { buf_ = b; }
    int len() const { return len_; }
    void len(const int& l) { len_ = l; }
    vmiEntryKind type() const { return type_; }
    void type(const vmiEntryKind& t) { type_ = t; }
    // The entry's number, taken from its name.
    int indx() const { return indx_; }
    void indx(const int& i) { indx_ = i; }
    vmiArchiveElement* next() const { return next_; }
    void next(vmiArchiveElement* n) { next_ = n; }

private:
    utString name_;
    char* buf_;
    int len_;
    vmiEntryKind type_;
    int indx_;
    vmiArchiveElement* next_ = nullptr;
};
