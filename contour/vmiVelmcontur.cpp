// The contour document: construction over a base grid, the top-level dispatch
// of sections, the blank ("Rohlingsdaten"), the grid geometry ("Kerneldata"),
// and the finishing step that closes the insole into "FINISH_MODEL".
#include "contour/vmiVelmcontur.h"

#include <cmath>
#include <new>
#include <string>

#include "archive/vmiObjGrid.h"
#include "archive/vmiObjPoly.h"
#include "archive/vmiObjSpline.h"
#include "archive/vmiObject.h"
#include "contour/vmiPolylineGridMap.h"
#include "contour/vmiVelmCoReader.h"
#include "curves/m03DVector.h"
#include "grid/vmiBaseGrid.h"
#include "host/giBox3.h"

namespace {

// Instruction numbers of the contour text.
constexpr int key_line = 101;
constexpr int open_blank = 200;
constexpr int close_blank = 299;
constexpr int open_height = 300;
constexpr int open_insole_3d = 500;
constexpr int open_kernel = 700;
constexpr int close_kernel = 799;
constexpr int end_of_document = 999;

// The working area without a base grid, and the margin around a base grid.
constexpr double default_x_extent = 160.0;
constexpr double default_y_extent = 320.0;
constexpr double margin_both_sides = 60.0;
constexpr double default_margin = 30.0;

const char* const outline_layer = "ORTHOTICS_DATA";
constexpr int outline_level = 20;
constexpr int outline_colour = 6;
constexpr int finished_colour = 3;

// Points along an axis: extent / spacing truncated toward zero; -1 when the
// quotient is not a number an int can hold.
long long node_count(const double& extent, const double& spacing)
{
    double q = extent / spacing;
    if (!(q >= 0.0 && q < 2147483648.0))
        return -1;
    return static_cast<long long>(q);
}

bool finite_within(const double& v, const double& bound)
{
    return std::isfinite(v) && std::fabs(v) <= bound;
}

}  // namespace

vmiVelmcontur::vmiVelmcontur(char* data, const int& length, const int& identifier,
                             vmiBaseGrid* base_grid, long long work_limit)
    : budget_(work_limit), identifier_(identifier), base_grid_(base_grid)
{
    if (!data || length < 1)
        return;
    reader_.reset(new (std::nothrow) vmiVelmCoReader(data, length));
    if (!reader_)
        return;
    status_ = 0;
    double xmin = 0.0, xmax = default_x_extent, ymin = 0.0, ymax = default_y_extent;
    if (base_grid_) {
        base_box_ = base_grid_->box();
        const giBox3& box = base_box_;
        xmin = box.min().x();
        xmax = box.max().x();
        ymin = box.min().y();
        ymax = box.max().y();
        xres_ = base_grid_->d_x();
        yres_ = base_grid_->d_y();
    }
    long long xnum = node_count(xmax - xmin + margin_both_sides, xres_);
    long long ynum = node_count(ymax - ymin + margin_both_sides, yres_);
    xnum_ = xnum < 0 ? 0 : static_cast<int>(xnum);
    ynum_ = ynum < 0 ? 0 : static_cast<int>(ynum);
    randx_ = default_margin;
    randy_ = default_margin;
    grid_pending_ = true;
    proc_Velmcontur();
}

vmiVelmcontur::~vmiVelmcontur()
{
    for (vmiObject* object : objects_)
        delete object;
}

void vmiVelmcontur::proc_Velmcontur()
{
    struct Section {
        int number;
        const char* name;
        void (vmiVelmcontur::*read)();
    };
    // Tested in this order, the first match runs. A name is a prefix test,
    // so the longer of two names that start alike comes first ("HPelotteS"
    // before "HPelotte", "HSprenglinie" before "HSpreng").
    static const Section sections[] = {
        {open_height, "HPelotteS", &vmiVelmcontur::proc_HPelotteS},
        {open_height, "HContour2", &vmiVelmcontur::proc_HContour2},
        {open_height, "HGloba", &vmiVelmcontur::proc_HGloba},
        {open_height, "HPelotte", &vmiVelmcontur::proc_HPelotte},
        {open_height, "HPlinie", &vmiVelmcontur::proc_HPlinie},
        {open_height, "HPunkt", &vmiVelmcontur::proc_HPunkt},
        {open_height, "HTorsion", &vmiVelmcontur::proc_HTorsion},
        {open_height, "HSprenglinie", &vmiVelmcontur::proc_HSprenglinie},
        {open_height, "HSpreng", &vmiVelmcontur::proc_HSpreng},
        {open_height, "HFFootMod", &vmiVelmcontur::proc_HFFootMod},
        {open_height, "HGlaett", &vmiVelmcontur::proc_HGlaett},
        {open_height, "HAbzug", &vmiVelmcontur::proc_HAbzug},
        {open_blank, "Rohlingsdaten", &vmiVelmcontur::proc_Rohlingsdaten},
        {open_kernel, "Kerneldata", &vmiVelmcontur::proc_Kerneldata},
        {open_insole_3d, "3DBrandsohle", &vmiVelmcontur::proc_3DBrandsohle},
    };
    // Any other number, and a known number with another name, is passed over.
    for (int n = new_instruction(); n != 0 && n != end_of_document; n = new_instruction()) {
        for (const Section& section : sections) {
            if (section.number == n && test_string(section.name)) {
                // A height section may pass over every node of the working
                // grid; once the budget is spent none runs any more (its
                // key lines are passed over by this loop).
                if (n == open_height && !charge_section())
                    break;
                (this->*section.read)();
                break;
            }
        }
    }
    if (over_budget())
        return;
    finish_model();
}

void vmiVelmcontur::proc_Rohlingsdaten()
{
    utString name;
    int count = 0;
    FloatArray x, y, x_up, y_up, z_up;
    read_section("Rohlingsdaten", close_blank,
                 {{"name=", &name},
                  {"count=", &count},
                  {"xSpl=", &x, {&count}},
                  {"ySpl=", &y, {&count}},
                  {"xSplUp=", &x_up, {&count}},
                  {"ySplUp=", &y_up, {&count}},
                  {"zSplUp=", &z_up, {&count}},
                  {"height1=", &height1_},
                  {"height2=", &height2_}});
    if (count >= 1 && x.present() && y.present()) {
        // The name text itself takes the suffix, so an upper outline after a
        // lower one carries it twice ("sole~4(Upper)~4"): kept as designed.
        name += suffix();
        add_outline(outline(x, y, nullptr, count), name);
    }
    if (x_up.present() && y_up.present())
        add_outline(outline(x_up, y_up, &z_up, count), name + utString("(Upper)") + suffix());
}

void vmiVelmcontur::proc_Kerneldata()
{
    int xnum = xnum_, ynum = ynum_;
    double xres = xres_, yres = yres_, randx = randx_, randy = randy_;
    read_section("Kerneldata", close_kernel,
                 {{"xnum=", &xnum},
                  {"ynum=", &ynum},
                  {"xres=", &xres},
                  {"yres=", &yres},
                  {"randx=", &randx},
                  {"randy=", &randy}});
    // A geometry out of bounds (a grid beyond vmiBaseGrid::max_nodes, a
    // spacing that is not a number of at least min_spacing, a margin beyond
    // max_coordinate) is refused as a whole: the document keeps its working
    // grid and the geometry it was made with.
    // Each new grid is charged to the budget: a text that asks for one grid
    // after another is bounded like the height sections.
    if (budget_.spent()
        || (vmiBaseGrid::size_allowed(xnum, ynum)
            && !budget_.charge(static_cast<long long>(xnum) * ynum)))
        return;
    std::unique_ptr<vmiBaseGrid> grid = make_working_grid(xnum, ynum, xres, yres, randx, randy);
    if (!grid)
        return;
    xnum_ = xnum, ynum_ = ynum, xres_ = xres, yres_ = yres, randx_ = randx, randy_ = randy;
    // Whatever earlier sections did to the old grid is lost with it.
    work_grid_ = std::move(grid);
    grid_pending_ = false;
}

void vmiVelmcontur::proc_3DBrandsohle()
{
    // Recognised and nothing is read: its key lines are passed over by the
    // top-level loop.
    sections_.add(utString("3DBrandsohle"));
}

void vmiVelmcontur::finish_model()
{
    if (!contour_ || !contour_map_ || !grid())
        return;
    work_grid_->make_closed_solid(*contour_map_);
    // The finished model may outlive the document's budget.
    work_grid_->set_budget(nullptr);
    vmiObjGrid* model
        = new (std::nothrow) vmiObjGrid(utString("FINISH_MODEL") + suffix(), work_grid_.get());
    if (!model)
        return;
    work_grid_.release();  // the model owns the working grid from now on
    model->colour(finished_colour);
    add(model);
    // The finished model no longer needs the design's base grid.
    base_grid_.reset();
}

vmiBaseGrid* vmiVelmcontur::grid()
{
    if (grid_pending_) {
        grid_pending_ = false;
        work_grid_ = make_working_grid(xnum_, ynum_, xres_, yres_, randx_, randy_);
    }
    // Whichever grid works now (one cut to the insole outline, say) is
    // charged to the document's budget.
    if (work_grid_)
        work_grid_->set_budget(&budget_);
    return work_grid_.get();
}

std::unique_ptr<vmiBaseGrid> vmiVelmcontur::make_grid(const long long& xnum, const long long& ynum,
                                                      const double& xres, const double& yres)
{
    if (xnum < 1 || ynum < 1 || !vmiBaseGrid::size_allowed(xnum, ynum))
        return nullptr;
    if (!(xres >= min_spacing && yres >= min_spacing) || !finite_within(xres, max_coordinate)
        || !finite_within(yres, max_coordinate))
        return nullptr;
    std::unique_ptr<vmiBaseGrid> grid(
        new (std::nothrow) vmiBaseGrid(static_cast<int>(xnum), static_cast<int>(ynum), xres, yres));
    if (grid && !grid->points_array())
        grid.reset();
    return grid;
}

bool vmiVelmcontur::charge_section()
{
    if (budget_.spent())
        return false;
    // The grid to come when it is not made yet.
    long long nodes = 0;
    if (work_grid_)
        nodes = static_cast<long long>(work_grid_->x_size()) * work_grid_->y_size();
    else if (grid_pending_)
        nodes = static_cast<long long>(xnum_) * ynum_;
    return budget_.charge(nodes);
}

std::unique_ptr<vmiBaseGrid>
vmiVelmcontur::make_working_grid(const int& xnum, const int& ynum, const double& xres,
                                 const double& yres, const double& randx, const double& randy)
{
    if (!finite_within(randx, max_coordinate) || !finite_within(randy, max_coordinate))
        return nullptr;
    std::unique_ptr<vmiBaseGrid> grid = make_grid(xnum, ynum, xres, yres);
    if (!grid || !base_grid_)
        return grid;
    // The base grid goes in with a margin of randx, randy on the low sides,
    // its lower left corner at (randx, randy).
    grid->merge_doubled(*base_grid_, randx - base_box_.min().x(), randy - base_box_.min().y());
    return grid;
}

m03DVector* vmiVelmcontur::outline(const FloatArray& x, const FloatArray& y, const FloatArray* z,
                                   const int& n)
{
    if (!x.present() || !y.present() || n < 1 || n > max_outline_points)
        return nullptr;
    std::unique_ptr<double[]> xs(new (std::nothrow) double[n]);
    std::unique_ptr<double[]> ys(new (std::nothrow) double[n]);
    std::unique_ptr<double[]> zs(new (std::nothrow) double[n]);
    if (!xs || !ys || !zs)
        return nullptr;
    double length = 0.0;
    for (int i = 0; i < n; ++i) {
        xs[i] = x.at(i);
        ys[i] = y.at(i);
        zs[i] = z ? z->at(i) : 0.0;
        if (!finite_within(xs[i], max_coordinate) || !finite_within(ys[i], max_coordinate)
            || !finite_within(zs[i], max_coordinate))
            return nullptr;
        if (i > 0)
            length += (m03DPoint(xs[i], ys[i], zs[i]) - m03DPoint(xs[i - 1], ys[i - 1], zs[i - 1]))
                          .module();
    }
    if (length > max_outline_length)
        return nullptr;
    return create_polyline0(xs.get(), ys.get(), zs.get(), n);
}

utString vmiVelmcontur::suffix() const
{
    return utString("~") + utString(std::to_string(identifier_));
}

void vmiVelmcontur::add_outline(m03DVector* points, utString name)
{
    // An outline that could not be built is skipped, not added empty.
    if (!points)
        return;
    vmiObjSpline* spline = new (std::nothrow) vmiObjSpline(std::move(name), points);
    if (!spline) {
        delete points;
        return;
    }
    spline->colour(outline_colour);
    spline->layer_name(utString(outline_layer));
    spline->level(outline_level);
    add(spline);
}

// Reading: every operation forwards to the reader.
int vmiVelmcontur::new_instruction()
{
    return reader_->new_instruction();
}
int vmiVelmcontur::test_string(const char* s)
{
    return reader_->test_string(s);
}
char* vmiVelmcontur::get_text()
{
    return reader_->get_text();
}
double vmiVelmcontur::get_tfloat()
{
    return reader_->get_tfloat();
}
double* vmiVelmcontur::get_tfloat_array(const int& n)
{
    return reader_->get_tfloat_array(n);
}
int vmiVelmcontur::get_tint()
{
    return reader_->get_tint();
}
int* vmiVelmcontur::get_tint_array(const int& n)
{
    return reader_->get_tint_array(n);
}

long long vmiVelmcontur::KeyCount::value() const
{
    if (!a)
        return factor;
    long long v = static_cast<long long>(factor) * *a;
    if (b)
        v *= *b;
    return v;
}

void vmiVelmcontur::read_section(const char* name, const int& close,
                                 std::initializer_list<Key> keys)
{
    sections_.add(utString(name));
    for (int n = new_instruction(); n != 0 && n != close; n = new_instruction()) {
        if (n != key_line)
            continue;
        for (const Key& key : keys) {
            if (test_string(key.key)) {
                read_key(key);
                break;
            }
        }
    }
}

void vmiVelmcontur::read_key(const Key& key)
{
    if (utString* const* text = std::get_if<utString*>(&key.target)) {
        char* value = get_text();
        **text = utString(value ? value : "");
        delete[] value;
    } else if (const SeenText* seen = std::get_if<SeenText>(&key.target)) {
        read_key(Key{key.key, seen->text});
        *seen->seen = true;
    } else if (int* const* i = std::get_if<int*>(&key.target)) {
        **i = get_tint();
    } else if (double* const* d = std::get_if<double*>(&key.target)) {
        **d = get_tfloat();
    } else if (const SameValue* both = std::get_if<SameValue>(&key.target)) {
        *both->a = get_tfloat();
        *both->b = *both->a;
    } else if (FloatArray* const* fa = std::get_if<FloatArray*>(&key.target)) {
        read_array(**fa, key.count.value());
    } else if (IntArray* const* ia = std::get_if<IntArray*>(&key.target)) {
        read_array(**ia, key.count.value());
    }
}

// An array read again replaces the earlier one. A count below 1 or beyond
// max_array_count reads as absent; the values on the line are passed over by
// the next instruction.
void vmiVelmcontur::read_array(FloatArray& array, const long long& count)
{
    array = FloatArray();
    if (count < 1 || count > max_array_count)
        return;
    array.values.reset(get_tfloat_array(static_cast<int>(count)));
    array.count = array.values ? static_cast<int>(count) : 0;
}

void vmiVelmcontur::read_array(IntArray& array, const long long& count)
{
    array = IntArray();
    if (count < 1 || count > max_array_count)
        return;
    array.values.reset(get_tint_array(static_cast<int>(count)));
    array.count = array.values ? static_cast<int>(count) : 0;
}

void vmiVelmcontur::add(vmiObjGrid* object)
{
    add(vmiObject::wrap(object));
}
void vmiVelmcontur::add(vmiObjPoly* object)
{
    add(vmiObject::wrap(object));
}
void vmiVelmcontur::add(vmiObjSpline* object)
{
    add(vmiObject::wrap(object));
}

void vmiVelmcontur::add(vmiObject* object)
{
    if (object)
        objects_.add(object);
}

void vmiVelmcontur::shift_f_array(double* values, const double& delta, const int& n)
{
    if (!values)
        return;
    for (int i = 0; i < n; ++i)
        values[i] += delta;
}
