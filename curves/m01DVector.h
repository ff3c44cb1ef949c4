#pragma once
// m01DVector: a counted, owned array of doubles (curve parameters, knots).
// Vectors are passed by pointer, never copied by value.

class m01DVector {
public:
    explicit m01DVector(const int& n);
    explicit m01DVector(m01DVector* other);
    ~m01DVector();

    int& size() { return size_; }
    const int& size() const { return size_; }
    void set_size(const int& n) { size_ = n; }
    double& point(int i) { return data_[i]; }
    const double& point(int i) const { return data_[i]; }
    void set_point(const int& i, const double& v) { data_[i] = v; }
    double* get_data_pointer() { return data_; }
    const double* get_data_pointer() const { return data_; }

    void reverse();
    int check_params_order() const;
    void find_limit_range(double a, double b, int& first, int& last) const;
    void limit_params(double a, double b);
    void limit_params_closed(double a, double b);

private:
    m01DVector(const m01DVector&);
    m01DVector& operator=(const m01DVector&);

    int size_ = 0;
    double* data_ = nullptr;
};
