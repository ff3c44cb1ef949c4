#pragma once
// vmiVelmcontur: one contour data file of an archive (an insole design),
// parsed in one go when it is built. It keeps the blank's outline objects, the
// working height grid that every height section changes, the insole outline
// with its map over that grid, and the objects produced (outline curves and the
// finished grid "FINISH_MODEL"), in the order produced.
#include <initializer_list>
#include <memory>
#include <variant>

#include "contour/vmiVelmCoReader.h"
#include "curves/m03DPoint.h"
#include "grid/vmiWorkBudget.h"
#include "host/coPageArr.h"
#include "host/giBox3.h"
#include "host/utString.h"

class m03DVector;
class m0BspCurve;
class vmiBaseGrid;
class vmiObject;
class vmiObjGrid;
class vmiObjPoly;
class vmiObjSpline;
class vmiPolylineGridMap;

class vmiVelmcontur {
public:
    // The most values one array key may hold: the reader's bound. A count
    // beyond it reads the array as absent (its values are passed over with
    // the rest of the line).
    static constexpr int max_array_count = vmiVelmCoReader::max_array_count;
    // The most points an outline ("Rohlingsdaten", "HContour2") may have, and
    // its longest length (the sum of its segments, model units: a hundred
    // metres). An insole outline has a few hundred points and is under a
    // metre long. The spline's approximation at 0.5 grows with the points and
    // the square root of the length, so together they keep it to some ten
    // thousand points an outline; an outline beyond either is not built.
    static constexpr int max_outline_points = 4096;
    static constexpr double max_outline_length = 1.0e5;
    // The longest insole outline "HContour2" takes, measured in grid cells
    // (the sum over its approximation's segments of |dx| / d_x + |dy| / d_y,
    // with the points held inside the grid). An outline goes round the
    // insole a few times this grid's width and length at most; a longer one
    // would make mapping it over the grid costly, and is not taken.
    static constexpr double max_contour_cells = 1 << 20;
    // The finest grid spacing the document accepts. Finer spacings put world
    // coordinates divided by the spacing out of reach of node indices.
    static constexpr double min_spacing = 1.0e-3;
    // The largest magnitude of a coordinate, margin or extent the document
    // accepts (model units, a kilometre). An outline with a coordinate beyond
    // it, or one that is not finite, is not built; a grid geometry beyond it is
    // refused.
    static constexpr double max_coordinate = 1.0e6;
    // The most stations a line ("HPlinie") may have. Every node inside the
    // line's outline projects onto the centre line, at a cost that grows with
    // its stations; a line has a handful of stations (a few dozen at most),
    // and one with more leaves the grid as it is.
    static constexpr int max_line_stations = 256;
    // The most heights a pad matrix ("HPelotteS") may hold: a 512 x 512 matrix,
    // far finer than any pad (a few centimetres at a fraction of a millimetre).
    // The matrix is refined to four times as many nodes before it is placed;
    // a larger one is not applied.
    static constexpr long long max_pad_matrix_nodes = 1LL << 18;

    // An array read from a key line: exactly the values read, never more. A
    // value asked for beyond them reads as 0.0.
    template <class T>
    struct TextArray {
        std::unique_ptr<T[]> values;
        int count = 0;
        bool present() const { return values != nullptr; }
        T at(const int& i) const { return i >= 0 && i < count ? values[i] : T(0); }
    };
    using FloatArray = TextArray<double>;
    using IntArray = TextArray<int>;

    // Builds and parses. Takes ownership of base_grid (may be null). The bytes
    // are only read during construction.
    // work_limit is the height sections' budget (tests and the fuzz targets
    // lower it).
    vmiVelmcontur(char* data, const int& length, const int& identifier, vmiBaseGrid* base_grid,
                  long long work_limit = vmiWorkBudget::max_design_work);
    ~vmiVelmcontur();
    vmiVelmcontur(const vmiVelmcontur&) = delete;
    vmiVelmcontur& operator=(const vmiVelmcontur&) = delete;

    coPageArr<vmiObject*>& objects() { return objects_; }
    int no_of_objects() const { return objects_.size(); }
    // The i-th object, 0-based, unchecked.
    vmiObject* object(const int& i) { return objects_[i]; }

    // -1: built over no data; 0: parsed.
    int status() const { return status_; }
    // The work the height sections did (vmiWorkBudget). Once it is spent the
    // sections left are passed over and the design is incomplete: the reader
    // does not take it.
    const vmiWorkBudget& work() const { return budget_; }
    bool over_budget() const { return budget_.spent(); }
    int identifier() const { return identifier_; }
    int xnum() const { return xnum_; }
    int ynum() const { return ynum_; }
    double xres() const { return xres_; }
    double yres() const { return yres_; }
    double randx() const { return randx_; }
    double randy() const { return randy_; }
    double height1() const { return height1_; }
    double height2() const { return height2_; }
    int smoothing_factor() const { return smoothing_factor_; }
    // The working grid while the document holds it: null once "FINISH_MODEL"
    // has taken it, or when no grid of the asked geometry could be made.
    vmiBaseGrid* working_grid() { return grid(); }
    vmiBaseGrid* base_grid() { return base_grid_.get(); }
    // The insole outline and its map over the working grid ("HContour2").
    m03DVector* contour() { return contour_.get(); }
    vmiPolylineGridMap* contour_map() { return contour_map_.get(); }

    // The names of the sections read, in file order (for tools that show what
    // a design holds, and for the tests).
    const coPageArr<utString>& sections() const { return sections_; }

    // Contour geometry: points, polylines, curves and placements built from
    // the coordinate arrays of the sections. Every result is new and belongs
    // to the caller.
    static m03DVector* create_polyline0(double* x, double* y, double* z, const int& n);
    static m03DPoint* create_polyline(double* x, double* y, double* z, const int& n);
    static m0BspCurve* create_bsp_curve(m03DVector* points, const int& order);
    static double* create_transform(double* params);
    static m03DPoint transform0(m03DPoint p, double* m);
    static void transform0(m03DPoint* pts, const int& n, double* m);
    static void transform0(m03DVector* v, double* m);
    static m03DPoint transform(m03DPoint p, double* m);
    static void transform(m03DPoint* pts, const int& n, double* m);
    static void transform(m03DVector* v, double* m);
    static double lines_intersect(m03DPoint p1, m03DPoint p2, m03DPoint q1, m03DPoint q2,
                                  m03DPoint& r);
    static void get_min_max_x_intersect(m03DPoint a, m03DPoint b, m03DVector* poly,
                                        m03DPoint& min_point, m03DPoint& max_point);
    static void get_y_min_max(vmiBaseGrid* grid, m03DVector* poly, int& ymin, int& ymax);
    static m03DPoint middle(m03DVector* poly);

private:
    // One float that sets two values at once.
    struct SameValue {
        double* a;
        double* b;
    };
    // A text whose line was read at all (an empty text included).
    struct SeenText {
        utString* text;
        bool* seen;
    };
    // Where a key's value goes, by its type: text, int, float, or an array of
    // floats or ints read with a count (an ignored key reads into a scratch).
    using KeyTarget
        = std::variant<utString*, SeenText, int*, double*, SameValue, FloatArray*, IntArray*>;
    // The count of an array key, taken when its line is read: fixed when a is
    // null, else factor * (*a) (* (*b) when b is given).
    struct KeyCount {
        const int* a = nullptr;
        const int* b = nullptr;
        int factor = 1;
        long long value() const;
    };
    struct Key {
        const char* key;
        KeyTarget target;
        KeyCount count{};
    };

    // Top level and the sections of the blank and the grid.
    void proc_Velmcontur();
    void proc_Rohlingsdaten();
    void proc_Kerneldata();
    void proc_3DBrandsohle();
    void finish_model();
    // The height sections.
    void proc_HPelotteS();
    void proc_HContour2();
    void proc_HGloba();
    void proc_HPelotte();
    void proc_HPlinie();
    void proc_HPunkt();
    void proc_HTorsion();
    void proc_HSprenglinie();
    void proc_HSpreng();
    void proc_HFFootMod();
    void proc_HGlaett();
    void proc_HAbzug();

    // Notes the section name, then reads key lines until close (or the end),
    // each into the first key of keys that matches; other instructions and
    // unknown keys are passed over.
    void read_section(const char* name, const int& close, std::initializer_list<Key> keys);
    void read_key(const Key& key);
    void read_array(FloatArray& array, const long long& count);
    void read_array(IntArray& array, const long long& count);

    // A new grid of the given geometry, or null when it is out of bounds.
    static std::unique_ptr<vmiBaseGrid> make_grid(const long long& xnum, const long long& ynum,
                                                  const double& xres, const double& yres);
    // A working grid of the given geometry holding the base grid (when there
    // is one) with its margin; null when the geometry is out of bounds.
    // Charges a height section the nodes of the working grid; false once
    // the budget is spent.
    bool charge_section();
    std::unique_ptr<vmiBaseGrid> make_working_grid(const int& xnum, const int& ynum,
                                                   const double& xres, const double& yres,
                                                   const double& randx, const double& randy);
    // A polyline of n points from the arrays (z absent: 0.0), values beyond an
    // array reading as 0.0; null when x or y is absent, n < 1, n is beyond
    // max_outline_points, a coordinate is not finite or beyond max_coordinate,
    // or the polyline is longer than max_outline_length.
    static m03DVector* outline(const FloatArray& x, const FloatArray& y, const FloatArray* z,
                               const int& n);
    // "~" and the identifier, as the document appends it to names.
    utString suffix() const;
    // Whether the working grid can take poly as the insole outline: at least
    // two points, all finite, and not longer than max_contour_cells.
    bool contour_fits(m03DVector* poly);
    void add_outline(m03DVector* points, utString name);

    // Reading, forwarded to the reader.
    int new_instruction();
    int test_string(const char* s);
    char* get_text();
    double get_tfloat();
    double* get_tfloat_array(const int& n);
    int get_tint();
    int* get_tint_array(const int& n);

    void add(vmiObjGrid* object);
    void add(vmiObjPoly* object);
    void add(vmiObjSpline* object);
    void add(vmiObject* object);
    static void shift_f_array(double* values, const double& delta, const int& n);
    // n values of an array as a modifier takes them (new[], at least `least`
    // of them), values the file did not give reading 0.0; null when the array
    // is absent.
    static double* copy_values(const FloatArray& array, const int& n, const int& least = 0);
    // The pad matrix's heights placed by the matrix m (may be null) and
    // resampled into a fresh grid of the working grid's geometry.
    std::unique_ptr<vmiBaseGrid> place_pad(const FloatArray& mata, const int& xm, const int& ym,
                                           const double& xre, const double& yre, double* m);
    // The working grid's extents: nodes times spacing.
    double extent_x();
    double extent_y();
    // The working grid, made on first use: a design's "Kerneldata" usually
    // replaces the grid the document starts with before any section has
    // touched it, and a grid is costly to make (the base grid doubled and
    // merged in), so the starting one is made only when a section needs it.
    vmiBaseGrid* grid();

    int status_ = -1;
    // Declared before the grids that are charged to it.
    vmiWorkBudget budget_;
    std::unique_ptr<vmiVelmCoReader> reader_;
    int identifier_ = 0;
    int xnum_ = 0;
    int ynum_ = 0;
    double xres_ = 0.5;
    double yres_ = 0.5;
    double randx_ = 30.0;
    double randy_ = 30.0;
    double height1_ = 0.0;
    double height2_ = 0.0;
    int smoothing_factor_ = 1;
    std::unique_ptr<vmiBaseGrid> base_grid_;
    // The base grid's box, taken once: nothing changes the base grid.
    giBox3 base_box_;
    std::unique_ptr<vmiBaseGrid> work_grid_;
    // True while work_grid_ is still to be made with the geometry above.
    bool grid_pending_ = false;
    std::unique_ptr<vmiPolylineGridMap> contour_map_;
    std::unique_ptr<m03DVector> contour_;
    coPageArr<vmiObject*> objects_;
    coPageArr<utString> sections_;
};
