#include "cli/cad/OcctScene.h"

#include <map>
#include <utility>
#include <vector>

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRep_Builder.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Message_PrinterOStream.hxx>
#include <Standard_Failure.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColStd_Array1OfReal.hxx>
#include <TColgp_Array1OfPnt.hxx>
#include <TCollection_ExtendedString.hxx>
#include <TDF_Label.hxx>
#include <TDataStd_Name.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Edge.hxx>
#include <TopoDS_Shell.hxx>
#include <TopoDS_Vertex.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <gp_Pnt.hxx>

#include "cli/Utf8.h"

namespace {

gp_Pnt placed(const ScenePlacement& world, const ScenePoint& p)
{
    const ScenePoint q = scene_apply(world, p);
    return gp_Pnt(q[0], q[1], q[2]);
}

} // namespace

std::string OcctScene::utf8(const std::string& bytes)
{
    return Utf8::from_bytes(bytes);
}

Handle(Geom_BSplineCurve) OcctScene::curve(const SceneCurve& c, const ScenePlacement& world)
{
    if (!c.is_valid() || c.order - 1 > Geom_BSplineCurve::MaxDegree()) return nullptr;
    const int n = static_cast<int>(c.points.size());
    TColgp_Array1OfPnt poles(1, n);
    for (int i = 0; i < n; ++i) poles.SetValue(i + 1, placed(world, c.points[static_cast<std::size_t>(i)]));
    std::vector<double> knots;
    std::vector<int> mults;
    for (double k : c.knots) {
        if (knots.empty() || k != knots.back()) {
            knots.push_back(k);
            mults.push_back(1);
        } else {
            ++mults.back();
        }
    }
    TColStd_Array1OfReal k(1, static_cast<int>(knots.size()));
    TColStd_Array1OfInteger m(1, static_cast<int>(mults.size()));
    for (std::size_t i = 0; i < knots.size(); ++i) {
        k.SetValue(static_cast<int>(i) + 1, knots[i]);
        m.SetValue(static_cast<int>(i) + 1, mults[i]);
    }
    try {
        if (c.weights.empty()) return new Geom_BSplineCurve(poles, k, m, c.order - 1);
        TColStd_Array1OfReal w(1, n);
        for (int i = 0; i < n; ++i) w.SetValue(i + 1, c.weights[static_cast<std::size_t>(i)]);
        return new Geom_BSplineCurve(poles, w, k, m, c.order - 1);
    } catch (const Standard_Failure&) {
        // Knots closer than Open CASCADE tells apart, or an inner knot
        // repeated beyond the degree: no B-spline of its kind.
        return nullptr;
    }
}

TopoDS_Shape OcctScene::shell(const SceneMesh& m, const ScenePlacement& world)
{
    BRep_Builder builder;
    TopoDS_Shell shell;
    builder.MakeShell(shell);
    std::vector<TopoDS_Vertex> vertices(m.vertices.size());
    const auto vertex = [&](std::uint32_t i) -> const TopoDS_Vertex& {
        if (vertices[i].IsNull()) builder.MakeVertex(vertices[i], placed(world, m.vertices[i]), Precision::Confusion());
        return vertices[i];
    };
    // Each edge once, from its lower to its higher vertex; a triangle that
    // runs the other way takes it reversed, so that neighbours share it.
    std::map<std::pair<std::uint32_t, std::uint32_t>, TopoDS_Edge> edges;
    const auto edge = [&](std::uint32_t a, std::uint32_t b) {
        const std::pair<std::uint32_t, std::uint32_t> key(std::min(a, b), std::max(a, b));
        auto it = edges.find(key);
        if (it == edges.end())
            it = edges.emplace(key, BRepBuilderAPI_MakeEdge(vertex(key.first), vertex(key.second)).Edge()).first;
        return a < b ? it->second : TopoDS::Edge(it->second.Reversed());
    };
    std::size_t faces = 0;
    for (const auto& t : m.triangles) {
        const gp_Pnt a = placed(world, m.vertices[t[0]]), b = placed(world, m.vertices[t[1]]),
                     c = placed(world, m.vertices[t[2]]);
        // A triangle without area has no plane.
        if (gp_Vec(a, b).Crossed(gp_Vec(a, c)).Magnitude() <= Precision::Confusion() * Precision::Confusion()) continue;
        if (a.Distance(b) <= Precision::Confusion() || b.Distance(c) <= Precision::Confusion() ||
            c.Distance(a) <= Precision::Confusion())
            continue;
        try {
            BRepBuilderAPI_MakeWire wire(edge(t[0], t[1]), edge(t[1], t[2]), edge(t[2], t[0]));
            if (!wire.IsDone()) continue;
            BRepBuilderAPI_MakeFace face(wire.Wire(), true);
            if (!face.IsDone()) continue;
            builder.Add(shell, face.Face());
            ++faces;
        } catch (const Standard_Failure&) {
            continue;
        }
    }
    if (faces == 0) return TopoDS_Shape();
    return shell;
}

void OcctScene::silence()
{
    Message::DefaultMessenger()->RemovePrinters(STANDARD_TYPE(Message_PrinterOStream));
}

OcctScene::Document OcctScene::document(const Scene& scene, double scale, bool meshes)
{
    silence();
    Document d;
    Handle(XCAFApp_Application) app = XCAFApp_Application::GetApplication();
    app->NewDocument("MDTV-XCAF", d.doc);
    Handle(XCAFDoc_ShapeTool) shapes = XCAFDoc_DocumentTool::ShapeTool(d.doc->Main());
    for (const ScenePlacedItem& item : scene.placed_items(scale)) {
        TopoDS_Shape shape;
        if (item.curve) {
            const Handle(Geom_BSplineCurve) c = curve(*item.curve, item.world);
            if (c.IsNull()) {
                ++d.left_out;
                continue;
            }
            shape = BRepBuilderAPI_MakeEdge(c).Edge();
        } else if (item.mesh && meshes) {
            shape = shell(*item.mesh, item.world);
            if (shape.IsNull()) {
                ++d.left_out;
                continue;
            }
        } else {
            continue;
        }
        const TDF_Label label = shapes->AddShape(shape, false);
        TDataStd_Name::Set(label, TCollection_ExtendedString(utf8(item.info().mangled).c_str(), true));
        ++d.shapes;
    }
    return d;
}
