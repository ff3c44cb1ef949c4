#pragma once
// m01DVector: a counted, owned array of doubles (curve parameters, knots).
// Vectors are passed by pointer, never copied by value. A count of zero or below
// makes an empty vector (size 0, null storage); an allocation failure leaves the
// storage null with the count set, and the routines then act as on an empty list.

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
    // 1 when the values never decrease (equal neighbours are in order), else 0.
    int check_params_order() const;
    // first: the first index whose value exceeds a (size-1 when none does);
    // last: the first index from first on whose value exceeds b, or size.
    void find_limit_range(double a, double b, int& first, int& last) const;
    // Keeps a, the values inside, and b; a value within 1e-6 of the one before it
    // is dropped, b included.
    void limit_params(double a, double b);
    // The same for one period of a closed curve's parameters; when b comes before a
    // the list runs across the seam and continues one period on.
    void limit_params_closed(double a, double b);

private:
    m01DVector(const m01DVector&);
    m01DVector& operator=(const m01DVector&);

    int size_ = 0;
    double* data_ = nullptr;
};
