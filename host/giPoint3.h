#pragma once
// giPoint3 / giVector3: the host's 3-D point and vector, three doubles.

class giPoint3 {
public:
    giPoint3() = default;
    giPoint3(double x, double y, double z) : x_(x), y_(y), z_(z) {}
    double x() const { return x_; }
    double y() const { return y_; }
    double z() const { return z_; }
    void set(double x, double y, double z) { x_ = x; y_ = y; z_ = z; }
    friend bool operator==(const giPoint3& a, const giPoint3& b)
    {
        return a.x_ == b.x_ && a.y_ == b.y_ && a.z_ == b.z_;
    }

private:
    double x_ = 0.0, y_ = 0.0, z_ = 0.0;
};

using giVector3 = giPoint3;
