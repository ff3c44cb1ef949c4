#pragma once
// occtReadBack: a STEP or IGES file read back with Open CASCADE's XCAF
// readers, its curves compared with the dump's (exactCurves.h).
#include <BRep_Tool.hxx>
#include <Geom_BSplineCurve.hxx>
#include <IGESCAFControl_Reader.hxx>
#include <Interface_Static.hxx>
#include <STEPCAFControl_Reader.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDataStd_Name.hxx>
#include <TDocStd_Document.hxx>
#include <Geom_TrimmedCurve.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <IGESControl_Reader.hxx>
#include <IGESGeom_BSplineCurve.hxx>
#include <Interface_InterfaceModel.hxx>
#include <STEPControl_Reader.hxx>
#include <StepGeom_BSplineCurveWithKnots.hxx>
#include <StepGeom_BSplineCurveWithKnotsAndRationalBSplineCurve.hxx>
#include <StepGeom_CartesianPoint.hxx>
#include <TColStd_Array1OfInteger.hxx>
#include <TColgp_Array1OfPnt.hxx>

#include <map>

#include "cli/cad/OcctScene.h"
#include "tests/cli/writers/exactCurves.h"

namespace exact {

struct Named {
    std::string name;
    TopoDS_Shape shape;
};

// The named free shapes of a STEP or IGES file, as the XCAF readers give them.
template <class Reader>
inline std::vector<Named> read_named(const std::string& path)
{
    OcctScene::silence();
    // The IGES reader would cut a curve at every corner (an inner knot of
    // the degree's multiplicity): the test wants it as written.
    Interface_Static::SetIVal("read.iges.bspline.continuity", 0);
    Handle(TDocStd_Document) doc;
    XCAFApp_Application::GetApplication()->NewDocument("MDTV-XCAF", doc);
    Reader reader;
    reader.SetNameMode(true);
    EXPECT_EQ(reader.ReadFile(path.c_str()), IFSelect_RetDone);
    EXPECT_TRUE(reader.Transfer(doc));
    TDF_LabelSequence labels;
    XCAFDoc_DocumentTool::ShapeTool(doc->Main())->GetFreeShapes(labels);
    std::vector<Named> out;
    for (int i = 1; i <= labels.Length(); ++i) {
        Named n;
        Handle(TDataStd_Name) name;
        if (labels.Value(i).FindAttribute(TDataStd_Name::GetID(), name)) {
            const TCollection_ExtendedString& s = name->Get();
            std::vector<char> bytes(static_cast<std::size_t>(s.LengthOfCString()) + 1);
            char* p = bytes.data();
            s.ToUTF8CString(p);
            n.name = bytes.data();
        }
        n.shape = XCAFDoc_DocumentTool::ShapeTool(doc->Main())->GetShape(labels.Value(i));
        out.push_back(n);
    }
    return out;
}

// The B-spline of the shape's one edge, with its parameter range.
inline Handle(Geom_BSplineCurve) bspline_of(const TopoDS_Shape& shape)
{
    TopExp_Explorer e(shape, TopAbs_EDGE);
    if (!e.More()) return nullptr;
    double a = 0.0, b = 0.0;
    Handle(Geom_Curve) c = BRep_Tool::Curve(TopoDS::Edge(e.Current()), a, b);
    if (auto t = Handle(Geom_TrimmedCurve)::DownCast(c)) c = t->BasisCurve();
    return Handle(Geom_BSplineCurve)::DownCast(c);
}

inline exact::FileCurve file_curve(Handle(Geom_BSplineCurve) c)
{
    // The reader makes a closed curve periodic: the same curve, its knots
    // and poles counted otherwise. Opened again it is the curve written.
    if (c->IsPeriodic()) {
        c = Handle(Geom_BSplineCurve)::DownCast(c->Copy());
        c->SetNotPeriodic();
    }
    exact::FileCurve f;
    f.degree = c->Degree();
    std::vector<double> knots;
    std::vector<int> mults;
    for (int i = 1; i <= c->NbKnots(); ++i) {
        knots.push_back(c->Knot(i));
        mults.push_back(c->Multiplicity(i));
    }
    f.knots = exact::flat(knots, mults);
    for (int i = 1; i <= c->NbPoles(); ++i) {
        const gp_Pnt p = c->Pole(i);
        f.points.push_back({p.X(), p.Y(), p.Z()});
        if (c->IsRational()) f.weights.push_back(c->Weight(i));
    }
    return f;
}


// The B-spline curves of a STEP file as its entities hold them, in file
// order: the readers' shapes may differ in form (a closed curve made
// periodic), so the check reads what the file says.
inline std::vector<exact::FileCurve> raw_step_curves(const std::string& path)
{
    OcctScene::silence();
    STEPControl_Reader reader;
    EXPECT_EQ(reader.ReadFile(path.c_str()), IFSelect_RetDone);
    std::vector<exact::FileCurve> out;
    const Handle(Interface_InterfaceModel) model = reader.Model();
    for (int e = 1; e <= model->NbEntities(); ++e) {
        const Handle(Standard_Transient) ent = model->Value(e);
        Handle(StepGeom_BSplineCurveWithKnots) k = Handle(StepGeom_BSplineCurveWithKnots)::DownCast(ent);
        Handle(TColStd_HArray1OfReal) weights;
        Handle(StepGeom_BSplineCurve) b = k;
        Handle(TColStd_HArray1OfInteger) mults;
        Handle(TColStd_HArray1OfReal) knots;
        if (!k.IsNull()) {
            mults = k->KnotMultiplicities();
            knots = k->Knots();
        } else if (auto r = Handle(StepGeom_BSplineCurveWithKnotsAndRationalBSplineCurve)::DownCast(ent)) {
            b = r;
            mults = r->KnotMultiplicities();
            knots = r->Knots();
            weights = r->WeightsData();
        } else {
            continue;
        }
        exact::FileCurve f;
        f.degree = b->Degree();
        std::vector<double> kv;
        std::vector<int> mv;
        for (int i = knots->Lower(); i <= knots->Upper(); ++i) kv.push_back(knots->Value(i));
        for (int i = mults->Lower(); i <= mults->Upper(); ++i) mv.push_back(mults->Value(i));
        f.knots = exact::flat(kv, mv);
        const Handle(StepGeom_HArray1OfCartesianPoint) pts = b->ControlPointsList();
        for (int i = pts->Lower(); i <= pts->Upper(); ++i) {
            const Handle(TColStd_HArray1OfReal) c = pts->Value(i)->Coordinates();
            f.points.push_back({c->Value(1), c->Value(2), c->Value(3)});
        }
        if (!weights.IsNull())
            for (int i = weights->Lower(); i <= weights->Upper(); ++i) f.weights.push_back(weights->Value(i));
        out.push_back(f);
    }
    return out;
}

// The same for an IGES file's B-spline entities (126).
inline std::vector<exact::FileCurve> raw_iges_curves(const std::string& path)
{
    OcctScene::silence();
    IGESControl_Reader reader;
    EXPECT_EQ(reader.ReadFile(path.c_str()), IFSelect_RetDone);
    std::vector<exact::FileCurve> out;
    const Handle(Interface_InterfaceModel) model = reader.Model();
    for (int e = 1; e <= model->NbEntities(); ++e) {
        const Handle(IGESGeom_BSplineCurve) c = Handle(IGESGeom_BSplineCurve)::DownCast(model->Value(e));
        if (c.IsNull()) continue;
        exact::FileCurve f;
        f.degree = c->Degree();
        for (int i = -c->Degree(); i <= c->UpperIndex() + 1; ++i) f.knots.push_back(c->Knot(i));
        for (int i = 0; i <= c->UpperIndex(); ++i) {
            const gp_Pnt p = c->Pole(i);
            f.points.push_back({p.X(), p.Y(), p.Z()});
            f.weights.push_back(c->Weight(i));
        }
        out.push_back(f);
    }
    return out;
}

// The read-back curve as an Open CASCADE B-spline, to evaluate.
inline Handle(Geom_BSplineCurve) geom_of(const exact::FileCurve& f)
{
    std::vector<double> knots;
    std::vector<int> mults;
    for (double k : f.knots) {
        if (knots.empty() || k != knots.back()) {
            knots.push_back(k);
            mults.push_back(1);
        } else {
            ++mults.back();
        }
    }
    TColgp_Array1OfPnt poles(1, static_cast<int>(f.points.size()));
    TColStd_Array1OfReal weights(1, static_cast<int>(f.points.size()));
    for (std::size_t i = 0; i < f.points.size(); ++i) {
        poles.SetValue(static_cast<int>(i) + 1, gp_Pnt(f.points[i][0], f.points[i][1], f.points[i][2]));
        weights.SetValue(static_cast<int>(i) + 1, f.weights.empty() ? 1.0 : f.weights[i]);
    }
    TColStd_Array1OfReal k(1, static_cast<int>(knots.size()));
    TColStd_Array1OfInteger m(1, static_cast<int>(knots.size()));
    for (std::size_t i = 0; i < knots.size(); ++i) {
        k.SetValue(static_cast<int>(i) + 1, knots[i]);
        m.SetValue(static_cast<int>(i) + 1, mults[i]);
    }
    return new Geom_BSplineCurve(poles, weights, k, m, f.degree);
}

// Shared by the STEP and the IGES suite: every dump curve is a named shape of
// the file (read as a host's reader reads it), the file holds the same
// B-spline, and that evaluates where m0BspCurve puts the dump's curve.
template <class Reader>
inline void expect_exact_curves(const std::string& file, const std::vector<exact::FileCurve>& raw,
                                const std::vector<exact::DumpCurve>& curves)
{
    const std::vector<Named> shapes = read_named<Reader>(file);
    ASSERT_EQ(shapes.size(), curves.size());
    ASSERT_EQ(raw.size(), curves.size());
    for (std::size_t k = 0; k < curves.size(); ++k) {
        const exact::DumpCurve& d = curves[k];
        EXPECT_EQ(shapes[k].name, d.mangled);
        EXPECT_FALSE(bspline_of(shapes[k].shape).IsNull()) << d.mangled;
        exact::expect_same(raw[k], d);
        const Handle(Geom_BSplineCurve) c = geom_of(raw[k]);
        double worst = 0.0;
        for (int i = 0; i <= exact::evaluations; ++i) {
            const double t = d.first() + (d.last() - d.first()) * i / exact::evaluations;
            const gp_Pnt p = c->Value(t);
            const ScenePoint q = d.evaluate(t);
            worst = std::max(worst, p.Distance(gp_Pnt(q[0], q[1], q[2])));
        }
        EXPECT_LE(worst, exact::evaluation_mm) << d.mangled;
    }
}

} // namespace exact
