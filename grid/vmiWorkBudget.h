#pragma once
// vmiWorkBudget: the work the height sections of one design may do together.
// Every section is charged the nodes of the working grid it may pass over, a
// smoothing pass the nodes it reads, and a pad, line or point each search of
// its profile curve. A design whose sections would pass the budget is not
// built: a few hundred sections over a fine grid, or a profile that asks for
// its longest search at every node, would otherwise hold the host for
// minutes.
#include <climits>

class vmiWorkBudget {
public:
    // The most work units of one design's height sections. One unit is one
    // node read or written, a few nanoseconds on a large grid, so the budget
    // is some half a second's work. The demo's designs, which use every
    // section, take up to 2^22 units; a design with ten profiled pads of ten
    // thousand nodes each, smoothed, on a 440 x 760 grid takes about 2^25.5.
    static constexpr long long max_design_work = 1LL << 27;
    // The units one evaluation of a profile curve counts for: a quartic
    // segment takes about as long as thirty node reads.
    static constexpr long long evaluation_units = 32;

    explicit vmiWorkBudget(long long limit = max_design_work) : limit_(limit) {}

    // Counts n more units; false once the units counted pass the limit, and
    // from then on for every charge.
    bool charge(long long n)
    {
        if (n < 0)
            n = 0;
        if (used_ > limit_ || n > limit_ - used_) {
            used_ = n > LLONG_MAX - used_ ? LLONG_MAX : used_ + n;
            return false;
        }
        used_ += n;
        return true;
    }
    bool spent() const { return used_ > limit_; }
    long long used() const { return used_; }
    long long limit() const { return limit_; }

private:
    long long limit_;
    long long used_ = 0;
};
