// `velmora convert -o X.dxf`, read back with dxflib's reader: each model's
// curves are planar SPLINE entities on the model's layer, with the dump's
// knots, control points (x, y) and weights.
#include <dxflib/dl_creationadapter.h>
#include <dxflib/dl_dxf.h>

#include "cli/cad/DxfWriter.h"
#include "tests/cli/writers/exactCurves.h"

namespace {

struct ReadSpline {
    std::string layer;
    int flags = 0;
    exact::FileCurve curve;
};

class SplineReader : public DL_CreationAdapter {
public:
    std::vector<ReadSpline> splines;
    std::vector<std::string> layers;
    int units = -1;

    void addLayer(const DL_LayerData& data) override { layers.push_back(data.name); }
    void addSpline(const DL_SplineData& data) override
    {
        splines.push_back({attributes.getLayer(), data.flags, {}});
        splines.back().curve.degree = static_cast<int>(data.degree);
    }
    void addKnot(const DL_KnotData& data) override { splines.back().curve.knots.push_back(data.k); }
    void addControlPoint(const DL_ControlPointData& data) override
    {
        splines.back().curve.points.push_back({data.x, data.y, data.z});
        splines.back().curve.weights.push_back(data.w);
    }
    void setVariableInt(const std::string& name, int value, int) override
    {
        if (name == "$INSUNITS") units = value;
    }
};

} // namespace

TEST(DxfWriter, Write_DemoOutlinesReadBackAsTheDumpsSplines)
{
    const std::string demo = exact::demo_archive();
    const std::vector<exact::DumpCurve> curves = exact::dump_curves(demo);
    ASSERT_FALSE(curves.empty());
    SplineReader r;
    DL_Dxf dxf;
    ASSERT_TRUE(dxf.in(exact::convert(demo, "demo.dxf"), &r));
    EXPECT_EQ(r.units, 4);  // millimetres
    ASSERT_EQ(r.splines.size(), curves.size());
    for (std::size_t k = 0; k < curves.size(); ++k) {
        const exact::DumpCurve& d = curves[k];
        EXPECT_EQ(r.splines[k].layer, DxfWriter::layer_name(d.model));
        EXPECT_EQ(r.splines[k].flags & 8, 8);  // planar
        exact::FileCurve f = r.splines[k].curve;
        if (d.weights.empty()) f.weights.assign(f.weights.size(), 1.0);
        exact::expect_same(f, d, true);
        // Seen from above, the spline is the dump's curve: its points where
        // m0BspCurve puts them, z aside.
        double worst = 0.0;
        for (int i = 0; i <= exact::evaluations; ++i) {
            const double t = d.first() + (d.last() - d.first()) * i / exact::evaluations;
            exact::DumpCurve planar = d;
            for (std::size_t j = 0; j < planar.local.size(); ++j) planar.local[j] = f.points[j];
            planar.world = scene_identity();
            const ScenePoint a = planar.evaluate(t), b = d.evaluate(t);
            worst = std::max(worst, std::hypot(a[0] - b[0], a[1] - b[1]));
        }
        EXPECT_LE(worst, exact::evaluation_mm) << d.mangled;
    }
    // One layer per model, each model of the demo holding one outline.
    for (const exact::DumpCurve& d : curves)
        EXPECT_EQ(std::count(r.layers.begin(), r.layers.end(), DxfWriter::layer_name(d.model)), 1);
}

TEST(DxfWriter, LayerName_ReplacesWhatALayerNameCannotHold)
{
    EXPECT_EQ(DxfWriter::layer_name("Visit : 2024/03"), "Visit _ 2024_03");
    EXPECT_EQ(DxfWriter::layer_name(""), "0");
    EXPECT_EQ(DxfWriter::layer_name("M\xFCller"), "M\xC3\xBCller");
}
