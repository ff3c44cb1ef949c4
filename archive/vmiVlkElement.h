#pragma once
// vmiVlkElement: one record of the catalogue. Levels 1 and 2 name the groups
// (name0, name1); a level-3 record describes one data file: its kind (type1),
// its own number (indx), the record whose data gives its height grid
// (ref_indx), sub-kind and side (type2, modulo 100: 1 left, 2 right), date,
// name, comment and the number of the ".dat" entry holding it (data_indx).
#include "host/utString.h"

class vmiVlkElement {
public:
    explicit vmiVlkElement(const int& level) : level_(level) {}
    vmiVlkElement(const vmiVlkElement&) = delete;
    vmiVlkElement& operator=(const vmiVlkElement&) = delete;

    int level() const { return level_; }
    void level(const int& v) { level_ = v; }
    int type1() const { return type1_; }
    void type1(const int& v) { type1_ = v; }
    int indx() const { return indx_; }
    void indx(const int& v) { indx_ = v; }
    int ref_indx() const { return ref_indx_; }
    void ref_indx(const int& v) { ref_indx_ = v; }
    int type2() const { return type2_; }
    void type2(const int& v) { type2_ = v; }
    utString date() const { return date_; }
    void date(const utString& v) { date_ = v; }
    utString comment() const { return comment_; }
    void comment(const utString& v) { comment_ = v; }
    utString name0() const { return name0_; }
    void name0(const utString& v) { name0_ = v; }
    utString name1() const { return name1_; }
    void name1(const utString& v) { name1_ = v; }
    int data_indx() const { return data_indx_; }
    void data_indx(const int& v) { data_indx_ = v; }
    vmiVlkElement* next() const { return next_; }
    void next(vmiVlkElement* n) { next_ = n; }

private:
    int level_;
    int type1_ = 0;
    int indx_ = 0;
    int ref_indx_ = 0;
    int type2_ = 0;
    utString date_;
    utString comment_;
    utString name0_;
    utString name1_;
    int data_indx_ = 0;
    vmiVlkElement* next_ = nullptr;
};
