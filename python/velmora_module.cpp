// The `velmora` Python module: velmora.load(path) imports an archive through
// the plug-in exactly as the command line does (PluginLoader, DumpSink) and
// hands back the tree the host received as Python objects. Every geometry
// array is a read-only numpy view of the sink's own storage: the arrays keep
// the whole import alive through their base object, so nothing is copied
// between the sink and Python.
#include <pybind11/numpy.h>
#include <pybind11/eval.h>
#include <pybind11/pybind11.h>

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "cli/CommandInputs.h"
#include "cli/PluginLoader.h"
#include "cli/ReadDiagnosis.h"
#include "cli/Utf8.h"
#include "cli/dump/DumpSink.h"
#include "cli/writers/SceneText.h"
#include "host/qorResourceTable.h"

namespace py = pybind11;

namespace {

// The arrays reinterpret the host's element types as rows of plain numbers.
static_assert(std::is_standard_layout_v<giPoint3> && sizeof(giPoint3) == 3 * sizeof(double));
static_assert(std::is_standard_layout_v<giTriangle> && sizeof(giTriangle) == 3 * sizeof(int));
static_assert(std::is_standard_layout_v<giColour> && sizeof(giColour) == 4);
static_assert(giXform3::size == 12);

// What one load() made: the sink holding the walk's items. Shared by every
// Python object and array taken from it.
using Owner = std::shared_ptr<const DumpSink>;

struct Item {
    Owner owner;
    const DumpItem* item = nullptr;
};
struct Group : Item {};
struct TriBlock : Item {};
struct Curve : Item {};
struct PointCloud : Item {};

// The most lines a group's repr prints: a hostile archive may hold many
// thousands of items, and a repr is for reading.
constexpr std::size_t max_repr_lines = 500;

// A read-only array over data, whose base keeps owner (and so data) alive.
template <class T>
py::array view(const Owner& owner, const T* data, std::vector<py::ssize_t> shape,
               std::vector<py::ssize_t> strides)
{
    py::capsule base(new Owner(owner), [](void* p) { delete static_cast<Owner*>(p); });
    py::array a(py::dtype::of<T>(), std::move(shape), std::move(strides), data, base);
    py::detail::array_proxy(a.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return a;
}

py::array points_view(const Owner& owner, const std::vector<giPoint3>& v)
{
    const auto* d = reinterpret_cast<const double*>(v.data());
    return view(owner, d, {static_cast<py::ssize_t>(v.size()), 3},
                {static_cast<py::ssize_t>(sizeof(giPoint3)), static_cast<py::ssize_t>(sizeof(double))});
}

py::array values_view(const Owner& owner, const std::vector<double>& v)
{
    return view(owner, v.data(), {static_cast<py::ssize_t>(v.size())}, {static_cast<py::ssize_t>(sizeof(double))});
}

// Names are bytes in no declared encoding: each valid UTF-8 sequence is the
// character it encodes and every other byte the character of its own value,
// as the dump writes them.
py::str text(const std::string& bytes)
{
    return py::str(Utf8::from_bytes(bytes));
}

// A triangle block laid back on the height grid it was made from.
struct HeightGrid {
    py::array z;
    py::tuple origin;
    py::tuple spacing;
};

// The most nodes a grid laid back from a block may have: the plug-in's own
// bound on a grid, so that a block of scattered vertices cannot ask for an
// unbounded array.
constexpr long long max_grid_nodes = 1LL << 21;

// The distinct values of v sorted, and the smallest step between two of them
// (0 with fewer than two).
double smallest_step(std::vector<double> v, double& first, double& last)
{
    std::sort(v.begin(), v.end());
    v.erase(std::unique(v.begin(), v.end()), v.end());
    first = v.front();
    last = v.back();
    double step = 0.0;
    for (std::size_t k = 1; k < v.size(); ++k)
        if (step == 0.0 || v[k] - v[k - 1] < step) step = v[k] - v[k - 1];
    return step;
}

// Node index of value x on the axis first + k * step, or -1 when x lies
// between nodes.
long long node_of(double x, double first, double step)
{
    const double k = std::nearbyint((x - first) / step);
    if (std::fabs(first + k * step - x) > 1e-6 * step) return -1;
    return static_cast<long long>(k);
}

HeightGrid height_grid(const DumpItem& item)
{
    const std::vector<giPoint3>& p = item.points;
    if (p.empty()) throw py::value_error("the triangle block has no vertices");
    std::vector<double> xs, ys;
    xs.reserve(p.size());
    ys.reserve(p.size());
    for (const giPoint3& q : p) {
        if (!std::isfinite(q.x()) || !std::isfinite(q.y()) || !std::isfinite(q.z()))
            throw py::value_error("the triangle block has a vertex that is not finite");
        xs.push_back(q.x());
        ys.push_back(q.y());
    }
    double x0 = 0, x1 = 0, y0 = 0, y1 = 0;
    const double dx = smallest_step(xs, x0, x1);
    const double dy = smallest_step(ys, y0, y1);
    if (dx <= 0 || dy <= 0) throw py::value_error("the triangle block's vertices span no grid");
    const long long nx = node_of(x1, x0, dx) + 1;
    const long long ny = node_of(y1, y0, dy) + 1;
    if (nx < 2 || ny < 2 || nx > max_grid_nodes / ny)
        throw py::value_error("the triangle block's vertices lie on no grid of at most 2^21 nodes");
    py::array_t<double> z({static_cast<py::ssize_t>(ny), static_cast<py::ssize_t>(nx)});
    double* out = z.mutable_data();
    std::fill(out, out + nx * ny, std::numeric_limits<double>::quiet_NaN());
    for (const giPoint3& q : p) {
        const long long i = node_of(q.x(), x0, dx);
        const long long j = node_of(q.y(), y0, dy);
        if (i < 0 || j < 0 || i >= nx || j >= ny)
            throw py::value_error("the triangle block's vertices lie on no regular grid");
        double& node = out[j * nx + i];
        // The walls and floor of an insole's closed solid stand under its
        // edge nodes: the highest vertex of a node is the surface's.
        if (std::isnan(node) || q.z() > node) node = q.z();
    }
    // The spacing over the whole width, which rounds less than one step.
    return {z, py::make_tuple(x0, y0), py::make_tuple((x1 - x0) / static_cast<double>(nx - 1),
                                                      (y1 - y0) / static_cast<double>(ny - 1))};
}

py::object as_python(const Owner& owner, const DumpItem* item)
{
    switch (item->kind) {
    case DumpItem::group: return py::cast(Group{{owner, item}});
    case DumpItem::triblock: return py::cast(TriBlock{{owner, item}});
    case DumpItem::curve: return py::cast(Curve{{owner, item}});
    case DumpItem::pointcloud: return py::cast(PointCloud{{owner, item}});
    }
    return py::none();
}

std::string quoted(const DumpItem& item)
{
    return py::repr(text(item.name)).cast<std::string>();
}

// "layer 'Scans' (10), colour 3" or what of it the item has.
std::string attributes(const DumpItem& item)
{
    std::string s;
    if (item.has_layer)
        s += ", layer " + py::repr(text(item.layer_name)).cast<std::string>() + " (" + std::to_string(item.level) + ")";
    if (item.has_colour) s += ", colour " + std::to_string(item.colour);
    if (item.status != 0) s += ", failed (status " + std::to_string(item.status) + ")";
    return s;
}

std::string placement(const giXform3& x)
{
    const giXform3 identity;
    if (x == identity) return "";
    const double* m = x.data();
    bool turned = false;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) turned = turned || m[r * 4 + c] != identity.data()[r * 4 + c];
    return std::string(", at (") + SceneText::number(m[3]) + ", " + SceneText::number(m[7]) + ", " + SceneText::number(m[11]) + ")" +
           (turned ? " turned" : "");
}

std::string line_of(const DumpItem& item)
{
    switch (item.kind) {
    case DumpItem::group:
        return "Group " + quoted(item) + placement(item.xform) + ": " + std::to_string(item.children.size()) +
               (item.children.size() == 1 ? " member" : " members");
    case DumpItem::triblock:
        return "TriBlock " + quoted(item) + attributes(item) + ": " + std::to_string(item.points.size()) +
               " vertices, " + std::to_string(item.triangles.size()) + " triangles";
    case DumpItem::curve: {
        std::string s = "Curve " + quoted(item) + attributes(item);
        if (item.nurb)
            s += ": order " + std::to_string(item.nurb->order()) + ", " + std::to_string(item.nurb->num_points()) +
                 " points" + (item.nurb->has_weights() ? ", rational" : "");
        return s;
    }
    case DumpItem::pointcloud:
        return "PointCloud " + quoted(item) + attributes(item) + ": " + std::to_string(item.points.size()) +
               " points";
    }
    return "?";
}

void tree_lines(const DumpItem& item, int depth, std::vector<std::string>& lines, std::size_t& left_out)
{
    if (lines.size() >= max_repr_lines) {
        ++left_out;
    } else {
        lines.push_back(std::string(static_cast<std::size_t>(depth) * 2, ' ') + line_of(item));
    }
    for (const auto& child : item.children) tree_lines(*child, depth + 1, lines, left_out);
}

std::string tree_repr(const DumpItem& item)
{
    std::vector<std::string> lines;
    std::size_t left_out = 0;
    tree_lines(item, 0, lines, left_out);
    std::string s;
    for (const std::string& l : lines) s += (s.empty() ? "" : "\n") + l;
    if (left_out > 0) s += "\n... " + std::to_string(left_out) + " more items";
    return s;
}

// The folder of libqorabs.so as this process loaded it: the plug-in is
// installed beside the host's library, in the build tree and in a prefix.
std::string host_library_dir()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&qor_resource_table_inquire), &info) == 0 || !info.dli_fname) return {};
    std::error_code ec;
    const std::filesystem::path lib = std::filesystem::canonical(info.dli_fname, ec);
    return ec ? std::string() : lib.parent_path().string();
}

[[noreturn]] void raise(const char* kind, const std::string& path, const std::string& reason)
{
    py::module_ m = py::module_::import("velmora");
    py::object error = m.attr(kind)(path, reason);
    PyErr_SetObject(error.get_type().ptr(), error.ptr());
    throw py::error_already_set();
}

py::object load(const py::object& file, bool scans, bool images, bool models)
{
    const std::string path = py::str(py::module_::import("os").attr("fspath")(file)).cast<std::string>();
    if (const std::string why = CommandInputs::unreadable_file(path); !why.empty()) raise("FileError", path, why);
    auto sink = std::make_shared<DumpSink>();
    PluginLoader plugin(PluginLoader::library_path(host_library_dir()));
    const std::vector<std::pair<std::string, int>> options = {
        {PluginLoader::option_names()[0], scans ? 1 : 0},
        {PluginLoader::option_names()[1], images ? 1 : 0},
        {PluginLoader::option_names()[2], models ? 1 : 0},
    };
    PluginLoader::Outcome outcome;
    {
        py::gil_scoped_release unlocked;
        outcome = plugin.import_archive(path, options, *sink);
    }
    switch (outcome) {
    case PluginLoader::no_library: raise("PluginError", plugin.path(), plugin.reason());
    case PluginLoader::nothing_imported: raise("NothingImportedError", path, nothing_imported(path));
    case PluginLoader::imported: break;
    }
    if (sink->top().empty()) raise("NothingImportedError", path, nothing_imported(path));
    bool geometry = false;
    std::vector<const DumpItem*> open = {sink->top().front().get()};
    while (!open.empty() && !geometry) {
        const DumpItem* i = open.back();
        open.pop_back();
        geometry = i->kind != DumpItem::group;
        for (const auto& c : i->children) open.push_back(c.get());
    }
    if (!geometry) {
        const std::string why = no_geometry_imported(path);
        py::object category = py::module_::import("velmora").attr("NoGeometryWarning");
        if (!why.empty() && PyErr_WarnEx(category.ptr(), (path + ": " + why).c_str(), 1) != 0)
            throw py::error_already_set();
    }
    const Owner owner = std::move(sink);
    return as_python(owner, owner->top().front().get());
}

const char* errors_source = R"(
class Error(Exception):
    """An archive that could not be imported: path and reason, as velmora says them."""
    def __init__(self, path, reason):
        super().__init__(f"{path}: {reason}")
        self.path = path
        self.reason = reason


class FileError(Error, OSError):
    """The archive cannot be read (no such file, a directory, ...)."""


class PluginError(Error):
    """The plug-in could not be loaded; path is the plug-in file."""


class NothingImportedError(Error):
    """The import produced nothing; reason says why the reader refused."""


class NoGeometryWarning(UserWarning):
    """The import produced groups but no geometry."""
)";

} // namespace

PYBIND11_MODULE(velmora, m)
{
    m.doc() = "Velmora archives imported through the velmora2rnx plug-in, as a host receives them.";
    py::exec(errors_source, m.attr("__dict__"));

    py::class_<Item>(m, "Item", "What every member of the tree carries: its names and attributes.")
        .def_property_readonly("name", [](const Item& i) { return text(i.item->name); }, "The NAME attribute.")
        .def_property_readonly("mangled", [](const Item& i) { return text(i.item->mangled); },
                               "The name as its group's mangler made it.")
        .def_property_readonly(
            "layer", [](const Item& i) -> py::object { return i.item->has_layer ? py::object(text(i.item->layer_name)) : py::none(); },
            "The layer's name, or None.")
        .def_property_readonly(
            "level", [](const Item& i) -> py::object { return i.item->has_layer ? py::object(py::int_(i.item->level)) : py::none(); },
            "The layer's number, or None.")
        .def_property_readonly(
            "colour", [](const Item& i) -> py::object { return i.item->has_colour ? py::object(py::int_(i.item->colour)) : py::none(); },
            "The colour index, or None when none was set.")
        .def_property_readonly("status", [](const Item& i) { return i.item->status; },
                               "0 when the conversion succeeded, 1 when it failed (no geometry then).")
        .def("__repr__", [](const Item& i) { return line_of(*i.item); });

    py::class_<Group, Item>(m, "Group", "A group: its placement and its members in order.")
        .def_property_readonly(
            "placement",
            [](const Group& g) { return view(g.owner, g.item->xform.data(), {3, 4}, {4 * sizeof(double), sizeof(double)}); },
            "A 3 x 4 matrix: a point p is placed at R p + t, t the last column.")
        .def_property_readonly(
            "children",
            [](const Group& g) {
                py::list l;
                for (const auto& c : g.item->children) l.append(as_python(g.owner, c.get()));
                return l;
            },
            "The members in the order the host received them.")
        .def("__len__", [](const Group& g) { return g.item->children.size(); })
        .def("__getitem__",
             [](const Group& g, py::ssize_t k) {
                 const auto n = static_cast<py::ssize_t>(g.item->children.size());
                 if (k < 0) k += n;
                 if (k < 0 || k >= n) throw py::index_error("group member index out of range");
                 return as_python(g.owner, g.item->children[static_cast<std::size_t>(k)].get());
             })
        .def("__iter__", [](const Group& g) { return py::iter(py::cast(g).attr("children")); })
        .def(
            "walk",
            [](const Group& g) {
                py::list l;
                std::vector<const DumpItem*> stack;
                for (auto it = g.item->children.rbegin(); it != g.item->children.rend(); ++it) stack.push_back(it->get());
                while (!stack.empty()) {
                    const DumpItem* i = stack.back();
                    stack.pop_back();
                    l.append(as_python(g.owner, i));
                    for (auto it = i->children.rbegin(); it != i->children.rend(); ++it) stack.push_back(it->get());
                }
                return l;
            },
            "Every item below the group, depth first, in the order the host received them.")
        .def("__repr__", [](const Group& g) { return tree_repr(*g.item); });

    py::class_<TriBlock, Item>(m, "TriBlock", "A triangle block: vertices (n x 3) and triangles (m x 3).")
        .def_property_readonly("vertices", [](const TriBlock& t) { return points_view(t.owner, t.item->points); })
        .def_property_readonly("triangles",
                               [](const TriBlock& t) {
                                   const auto& v = t.item->triangles;
                                   return view(t.owner, reinterpret_cast<const int*>(v.data()),
                                               {static_cast<py::ssize_t>(v.size()), 3},
                                               {static_cast<py::ssize_t>(sizeof(giTriangle)), sizeof(int)});
                               })
        .def(
            "height_grid", [](const TriBlock& t) { return height_grid(*t.item); },
            "The block laid back on the height grid it was made from (a new array, not a view): z[j, i] is\n"
            "the height of the node at origin + (i * spacing[0], j * spacing[1]), NaN where the block has\n"
            "no vertex. Where several vertices stand on one node (the walls and floor of an insole's\n"
            "closed solid stand under its edge nodes) the highest, the surface's, is taken. Raises\n"
            "ValueError when the vertices lie on no regular grid.")
        .def(
            "to_meshio",
            [](const TriBlock& t) {
                py::object meshio = py::module_::import("meshio");
                py::object self = py::cast(t);
                py::list cells;
                cells.append(py::make_tuple("triangle", self.attr("triangles")));
                return meshio.attr("Mesh")(self.attr("vertices"), cells);
            },
            "The block as a meshio.Mesh of triangles.");

    py::class_<HeightGrid>(m, "HeightGrid", "A height grid: z (rows along y, columns along x), origin and spacing.")
        .def_readonly("z", &HeightGrid::z, "Heights, ny x nx; NaN where the grid has no node.")
        .def_readonly("origin", &HeightGrid::origin, "(x, y) of node z[0, 0].")
        .def_readonly("spacing", &HeightGrid::spacing, "(dx, dy) between neighbouring nodes.")
        .def("__repr__", [](const HeightGrid& g) {
            const py::tuple s = g.spacing;
            return "HeightGrid " + std::to_string(g.z.shape(1)) + " x " + std::to_string(g.z.shape(0)) + ", spacing " +
                   SceneText::number(s[0].cast<double>()) + " x " + SceneText::number(s[1].cast<double>());
        });

    py::class_<Curve, Item>(m, "Curve", "A NURBS curve as the host received it.")
        .def_property_readonly("order", [](const Curve& c) { return c.item->nurb ? c.item->nurb->order() : 0; })
        .def_property_readonly("degree", [](const Curve& c) { return c.item->nurb ? c.item->nurb->degree() : -1; })
        .def_property_readonly("points",
                               [](const Curve& c) {
                                   static const std::vector<giPoint3> none;
                                   return points_view(c.owner, c.item->nurb ? c.item->nurb->points() : none);
                               })
        .def_property_readonly("knots",
                               [](const Curve& c) {
                                   static const std::vector<double> none;
                                   return values_view(c.owner, c.item->nurb ? c.item->nurb->knots() : none);
                               })
        .def_property_readonly(
            "weights",
            [](const Curve& c) -> py::object {
                if (!c.item->nurb || !c.item->nurb->has_weights()) return py::none();
                return values_view(c.owner, c.item->nurb->weights());
            },
            "One weight per point, or None for a polynomial curve.");

    py::class_<PointCloud, Item>(m, "PointCloud", "A coloured point cloud: points (n x 3), colours (n x 3, RGB).")
        .def_property_readonly("points", [](const PointCloud& p) { return points_view(p.owner, p.item->points); })
        .def_property_readonly("colours", [](const PointCloud& p) {
            const auto& v = p.item->colours;
            return view(p.owner, reinterpret_cast<const std::uint8_t*>(v.data()), {static_cast<py::ssize_t>(v.size()), 3},
                        {static_cast<py::ssize_t>(sizeof(giColour)), 1});
        });

    m.def("load", &load, py::arg("path"), py::arg("scans") = true, py::arg("images") = true,
          py::arg("models") = true,
          "Imports the archive at path through the plug-in and returns its root Group. scans, images and\n"
          "models set the plug-in's options (vmiOptProcessScanData, ...ImageData, ...OrthoticData).\n"
          "Raises FileError, PluginError or NothingImportedError with velmora's reason; warns with\n"
          "NoGeometryWarning when only groups came.");
}
