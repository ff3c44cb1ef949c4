#pragma once
// vmiArchiveElement: one entry of the archive as read into memory, a link of
// the archive directory's list. It owns its decoded content.
#include "host/utString.h"

class vmiArchiveElement {
public:
    // Takes ownership of buf (allocated with new char[]).
    vmiArchiveElement(utString name, char* buf, const int& len, const int& type, const int& indx);
    ~vmiArchiveElement();
    vmiArchiveElement(const vmiArchiveElement&) = delete;
    vmiArchiveElement& operator=(const vmiArchiveElement&) = delete;

    const utString& name() const { return name_; }
    char* buf() const { return buf_; }
    void buf(char* b) { buf_ = b; }
    int len() const { return len_; }
    void len(const int& l) { len_ = l; }
    // 1 data file (".dat"), 2 catalogue (".vlk"), 0 other.
    int type() const { return type_; }
    void type(const int& t) { type_ = t; }
    // The entry's number, taken from its name.
    int indx() const { return indx_; }
    void indx(const int& i) { indx_ = i; }
    vmiArchiveElement* next() const { return next_; }
    void next(vmiArchiveElement* n) { next_ = n; }

private:
    utString name_;
    char* buf_;
    int len_;
    int type_;
    int indx_;
    vmiArchiveElement* next_ = nullptr;
};
