#pragma once
// m0BspCurve: a non-uniform, optionally rational B-spline curve in 3-D.
//
// The curve owns its knot, control-point and weight vectors. It is built empty
// and filled through the setters, or built in one step from control points and
// an order (a chain of Bezier pieces joined at equal parameter steps).
//
// Evaluation never reads outside the three arrays: a basis function whose index
// has no knots, control point or weight behind it contributes nothing. A curve
// without knots or control points, or of negative degree or an order above
// max_order, evaluates to (0, 0, 0).
#include "curves/m01DVector.h"
#include "curves/m03DPoint.h"
#include "curves/m03DVector.h"

#include <vector>

class m0HalvingPoints;

class m0BspCurve {
public:
    // The library's curves are of order 2 to 5. An order above this is taken as
    // corrupt: the order-k constructor leaves the curve empty and evaluation gives
    // (0, 0, 0), so that no evaluation costs more than a bounded table.
    static constexpr int max_order = 16;
    // The highest derivative of a basis function the curve evaluates.
    static constexpr int max_derivative = 3;
    // At most this many rounds (a step tried: accepted or halved, one or two
    // evaluations) over one polyline approximation; the walk stops there and
    // returns what it has. A curve far larger than its tolerance (coordinates
    // of 1e12 and a tolerance of 0.1), or one whose steps keep halving, would
    // otherwise ask for billions of evaluations. An outline of an insole
    // takes a few thousand.
    static constexpr int max_approximation_rounds = 1 << 20;

    // How the basis functions are computed. Both give the same bits: the table
    // is what the curve uses; the plain recursion is kept to check it against.
    enum class BasisMethod { table, recursion };

    m0BspCurve();
    // Takes ownership of cpnts (deleted at once when the curve stays empty: null
    // cpnts, an order below 2 or above max_order).
    m0BspCurve(m03DVector* cpnts, const int& order);
    // Deep copy of other, flags included; a null other gives an empty curve.
    explicit m0BspCurve(m0BspCurve* other);
    ~m0BspCurve();
    m0BspCurve(const m0BspCurve&) = delete;
    m0BspCurve& operator=(const m0BspCurve&) = delete;

    int& degree() { return degree_; }
    int& no_of_cpnt() { return no_of_cpnt_; }
    int& closed() { return closed_; }
    int& extended() { return extended_; }
    const int& degree() const { return degree_; }
    const int& no_of_cpnt() const { return no_of_cpnt_; }
    const int& closed() const { return closed_; }
    const int& extended() const { return extended_; }
    m03DVector* cpnt_vector() { return cpnt_vector_; }
    m01DVector* knot_vector() { return knot_vector_; }
    m01DVector* weight_vector() { return weight_vector_; }
    const m03DVector* cpnt_vector() const { return cpnt_vector_; }
    const m01DVector* knot_vector() const { return knot_vector_; }
    const m01DVector* weight_vector() const { return weight_vector_; }

    void set_degree(const int& d) { degree_ = d; }
    void set_no_of_cpnt(const int& n) { no_of_cpnt_ = n; }
    void set_closed(const int& c) { closed_ = c; }
    void set_extended(const int& e) { extended_ = e; }
    // The curve takes ownership of the vector. A different vector held before is
    // deleted (the curve owns it; keeping it would leak); handing the held
    // vector in again changes nothing.
    void set_cpnt_vector(m03DVector* v);
    void set_knot_vector(m01DVector* v);
    // Null makes the curve non-rational (all weights 1).
    void set_weight_vector(m01DVector* v);

    BasisMethod basis_method() const { return basis_method_; }
    void set_basis_method(BasisMethod m) { basis_method_ = m; }

    // Point at t. An open curve goes on along straight lines beyond its knot
    // range; a closed one wraps t into the range.
    m03DPoint point(double t) const;
    // Derivatives with respect to t, of the rational curve when it has weights.
    // An open curve clamps t into the knot range; a closed one wraps it.
    m03DPoint first_der(double t) const;
    m03DPoint second_der(double t) const;
    m03DPoint third_der(double t) const;
    // Unit first derivative; (0, 0, 0) when it is shorter than 1e-30.
    m03DPoint tang(const double& t) const;
    // Unit forward difference over 1e-7; (0, 0, 0) when the step moves less than 1e-15.
    m03DPoint tang0(const double& t) const;
    // Unit normal of the plane through the points at t - 0.01, t and t + 0.01.
    m03DPoint normal(const double& t) const;

    // Index of the knot span holding t (see the .cpp for its deliberate first probe).
    int get_knot_interval(const double& t) const;
    // N(i, order) at t over nknots knots; 0 for an index without knots behind it
    // or an order outside 1 .. max_order.
    static double get_base_function(const double* knots, const int& nknots, int order,
                                    const double& t, int i);
    // The der-th derivative of N(i, order) at t (der 0 is the value) by the plain
    // Cox-de Boor recursion: the reference the tables are checked against.
    static double basis_reference(const double* knots, const int& nknots, int order,
                                  const double& t, int i, int der);

    // Parameter of the curve point nearest q, by chord bisection. The curve
    // evaluations made are added to *evaluations when it is given.
    double projection(const m03DPoint& q, long long* evaluations = nullptr) const;
    // The same parameter, bit for bit, taking the points of the search's first
    // levels from kept (points of this curve) and keeping those it computes
    // there: for many projections onto one curve. The evaluations counted are
    // those of projection(), whether a point was kept or computed.
    double projection(const m03DPoint& q, m0HalvingPoints& kept, long long* evaluations = nullptr) const;
    // point(projection(q)).
    m03DPoint min_dist_point(const m03DPoint& q) const;
    // Reverses the direction in place; knots on [0, u] stay on [0, u].
    void reverse();

    // New polyline (owned by the caller) through the curve from t_start to
    // t_end, each chord's midpoint within tol of the curve's. Never null.
    m03DVector* approximate(const double& t_start, const double& t_end, const double& tol) const;
    // The same over the curve's valid range, knot[degree] to knot[m - degree - 1].
    m03DVector* approximate(const double& tol) const;

private:
    friend class m0BspCurveTestAccess;

    static double get_base_function_first_der(const double* knots, const int& nknots, int order,
                                              const double& t, int i);
    static double get_base_function_second_der(const double* knots, const int& nknots, int order,
                                               const double& t, int i);
    static double get_base_function_third_der(const double* knots, const int& nknots, int order,
                                              const double& t, int i);
    // values[d][c]: the d-th derivative of N(first + c, order) at t, for
    // c < count <= max_order and d <= max_der <= max_derivative.
    static void basis_table(const double* knots, int nknots, int order, double t, int first,
                            int count, int max_der, double values[][max_order]);
    // values[d][c] for the order functions of the span starting at first + order - 1,
    // with only the band of non-zero entries computed where the knots allow.
    static void span_table(const double* knots, int nknots, int order, double t, int first, int max_der,
                           double values[][max_order]);
    // One entry of the table: the der-th derivative of N(i, order) at t.
    static double single_basis(const double* knots, int nknots, int order, double t, int i, int der);

    // 1 when the curve has knots, control points and a degree in 0 .. max_order - 1.
    int evaluable() const;
    int knot_count() const;
    int cpnt_count() const;
    int weight_count() const;
    double wrapped(double t) const;
    double clamped(double t) const;
    // Interior evaluation: a[d] = sum of w*N^(d)*P, w[d] = sum of w*N^(d), over
    // the span of t, for d <= max_der (every weight 1 without weights).
    void span_sums(double t, int max_der, m03DPoint* a, double* w) const;
    m03DPoint interior_point(double t) const;
    m03DPoint continue_before(double t) const;
    m03DPoint continue_after(double t) const;
    m03DPoint derivative(double t, int der) const;
    double projection_counted(const m03DPoint& q, m0HalvingPoints* kept, long long& made) const;
    // node: where the range (t0, t1) stands in kept's tree (0: nowhere).
    double projection0(const m03DPoint& q, double t0, m03DPoint p0, double t1, m03DPoint p1,
                       m0HalvingPoints* kept, unsigned node, long long& evaluations) const;
    // Walks one span of approximate(); returns 0 when the rounds are spent.
    int approximate_span(double a, double b, double tol, m03DPoint& prev, std::vector<m03DPoint>& out,
                         int& steps) const;
    static m01DVector* simplify_param_vector(m01DVector* v);

    int degree_ = 0;
    int no_of_cpnt_ = 0;
    m01DVector* knot_vector_ = nullptr;
    m03DVector* cpnt_vector_ = nullptr;
    m01DVector* weight_vector_ = nullptr;
    int closed_ = 0;
    int extended_ = 0;
    BasisMethod basis_method_ = BasisMethod::table;
};
