// m01DVector: parameter lists and their trimming to a range, also across the seam
// of a closed curve.
#include "curves/m01DVector.h"

#include <cmath>
#include <new>

namespace {

// A value is appended to a trimmed parameter list only when it exceeds the last
// appended value by more than this.
constexpr double param_step = 1e-6;
// A closed curve's start below its first parameter by less than this is taken as
// the first parameter instead of being moved on by a period.
constexpr double seam_snap = 1e-7;

double* new_values(int n)
{
    if (n <= 0)
        return nullptr;
    // Zeroed although nothing reads a value before it is set: the same bits on
    // every machine.
    return new (std::nothrow) double[n]();
}

// Appends v when it exceeds the last written value by more than param_step and
// there is room; the first value is always written.
void append_increasing(double* out, int capacity, int& count, double v)
{
    if (count >= capacity)
        return;
    if (count == 0 || v - out[count - 1] > param_step)
        out[count++] = v;
}

}  // namespace

m01DVector::m01DVector(const int& n)
{
    // A negative count is a caller error: the vector is then empty (size 0, no storage).
    if (n <= 0)
        return;
    size_ = n;
    data_ = new_values(n);
}

m01DVector::m01DVector(m01DVector* other)
{
    if (other == nullptr || other->size_ <= 0)
        return;
    size_ = other->size_;
    data_ = new_values(size_);
    if (data_ == nullptr || other->data_ == nullptr)
        return;
    for (int i = 0; i < size_; i++)
        data_[i] = other->data_[i];
}

m01DVector::~m01DVector()
{
    delete[] data_;
}

void m01DVector::reverse()
{
    if (data_ == nullptr)
        return;
    for (int i = 0; i < size_ / 2; i++) {
        double tmp = data_[i];
        data_[i] = data_[size_ - 1 - i];
        data_[size_ - 1 - i] = tmp;
    }
}

int m01DVector::check_params_order() const
{
    if (data_ == nullptr || size_ <= 1)
        return 1;
    // Equal neighbours are in order.
    for (int i = 0; i < size_ - 1; i++) {
        if (data_[i] > data_[i + 1])
            return 0;
    }
    return 1;
}

void m01DVector::find_limit_range(double a, double b, int& first, int& last) const
{
    first = 0;
    last = 0;
    if (data_ == nullptr || size_ <= 0)
        return;
    while (first < size_ - 1 && data_[first] <= a)
        first++;
    last = first;
    while (last < size_ && data_[last] <= b)
        last++;
}

void m01DVector::limit_params(double a, double b)
{
    int first = 0;
    int last = 0;
    find_limit_range(a, b, first, last);
    int capacity = last - first + 2;
    double* out = new_values(capacity);
    if (out == nullptr)
        return;
    int count = 0;
    append_increasing(out, capacity, count, a);
    for (int j = first; j < last; j++)
        append_increasing(out, capacity, count, data_[j]);
    // A b within param_step of the last interior value is dropped and that value
    // ends the list: kept as designed.
    append_increasing(out, capacity, count, b);
    delete[] data_;
    data_ = out;
    size_ = count;
}

void m01DVector::limit_params_closed(double a, double b)
{
    // Without values there is no period: the list is trimmed as an open one.
    if (data_ == nullptr || size_ <= 0) {
        limit_params(a, b);
        return;
    }
    double period = data_[size_ - 1] - data_[0];
    if (a < data_[0]) {
        if (std::fabs(a - data_[0]) < seam_snap)
            a = data_[0];
        else
            a = a + period;
    }
    if (b >= a) {
        limit_params(a, b);
        return;
    }
    int first = 0;
    int last = 0;
    find_limit_range(a, b, first, last);
    // The wrapping branch writes at most size + 2 values.
    int capacity = size_ + 2;
    double* out = new_values(capacity);
    if (out == nullptr)
        return;
    int count = 0;
    append_increasing(out, capacity, count, a);
    for (int j = first; j < size_; j++)
        append_increasing(out, capacity, count, data_[j]);
    // Every value before index last comes back one period on, whether or not it
    // lies below b: kept as designed.
    for (int j = 0; j < last; j++)
        append_increasing(out, capacity, count, data_[j] + period);
    append_increasing(out, capacity, count, b + period);
    delete[] data_;
    data_ = out;
    size_ = count;
}
