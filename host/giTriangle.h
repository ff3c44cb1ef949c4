#pragma once
// giTriangle: three vertex indices of a triangle block, in winding order.
class giTriangle {
public:
    giTriangle() = default;
    giTriangle(int a, int b, int c) : a_(a), b_(b), c_(c) {}
    int a() const { return a_; }
    int b() const { return b_; }
    int c() const { return c_; }
    friend bool operator==(const giTriangle& x, const giTriangle& y)
    {
        return x.a_ == y.a_ && x.b_ == y.b_ && x.c_ == y.c_;
    }

private:
    int a_ = 0, b_ = 0, c_ = 0;
};
