#include "cli/cad/DxfWriter.h"

#include <dxflib/dl_dxf.h>

#include <cstring>
#include <map>
#include <memory>
#include <vector>

#include "cli/cad/FileByName.h"
#include "cli/cad/OcctScene.h"
#include "cli/writers/SceneText.h"

namespace {

// SPLINE flags: rational, planar.
constexpr int spline_rational = 4;
constexpr int spline_planar = 8;

struct Spline {
    const SceneCurve* curve;
    ScenePlacement world;
    std::string layer;
};

void tables(DL_Dxf& dxf, DL_WriterA& dw, const std::vector<std::string>& layers)
{
    dw.sectionTables();
    dxf.writeVPort(dw);
    dw.tableLinetypes(3);
    dxf.writeLinetype(dw, DL_LinetypeData("BYBLOCK", "BYBLOCK", 0, 0, 0.0));
    dxf.writeLinetype(dw, DL_LinetypeData("BYLAYER", "BYLAYER", 0, 0, 0.0));
    dxf.writeLinetype(dw, DL_LinetypeData("CONTINUOUS", "Continuous", 0, 0, 0.0));
    dw.tableEnd();
    dw.tableLayers(static_cast<int>(layers.size()) + 1);
    dxf.writeLayer(dw, DL_LayerData("0", 0), DL_Attributes("", DL_Codes::black, 100, "CONTINUOUS", 1.0));
    for (const std::string& l : layers)
        dxf.writeLayer(dw, DL_LayerData(l, 0), DL_Attributes("", DL_Codes::magenta, 100, "CONTINUOUS", 1.0));
    dw.tableEnd();
    dw.tableStyle(1);
    dxf.writeStyle(dw, DL_StyleData("standard", 0, 2.5, 1.0, 0.0, 0, 2.5, "txt", ""));
    dw.tableEnd();
    dxf.writeView(dw);
    dxf.writeUcs(dw);
    dw.tableAppid(1);
    dxf.writeAppid(dw, "ACAD");
    dw.tableEnd();
    dxf.writeDimStyle(dw, 1, 1, 1, 1, 1);
    dxf.writeBlockRecord(dw);
    dw.tableEnd();
    dw.sectionEnd();
    dw.sectionBlocks();
    for (const char* b : {"*Model_Space", "*Paper_Space", "*Paper_Space0"}) {
        dxf.writeBlock(dw, DL_BlockData(b, 0, 0.0, 0.0, 0.0));
        dxf.writeEndBlock(dw, b);
    }
    dw.sectionEnd();
}

void spline(DL_Dxf& dxf, DL_WriterA& dw, const Spline& s)
{
    const SceneCurve& c = *s.curve;
    const int flags = spline_planar | (c.weights.empty() ? 0 : spline_rational);
    dxf.writeSpline(dw, DL_SplineData(c.order - 1, static_cast<int>(c.knots.size()), static_cast<int>(c.points.size()), 0, flags),
                    DL_Attributes(s.layer, 256, -1, "BYLAYER", 1.0));
    // dxflib's own numbers keep 16 decimals, which rounds small values: the
    // shortest exact form goes out as text instead.
    for (double k : c.knots) dw.dxfString(40, SceneText::number(k));
    for (std::size_t i = 0; i < c.points.size(); ++i) {
        const ScenePoint p = scene_apply(s.world, c.points[i]);
        dw.dxfString(10, SceneText::number(p[0]));
        dw.dxfString(20, SceneText::number(p[1]));
        dw.dxfString(30, "0.0");
        if (!c.weights.empty()) dw.dxfString(41, SceneText::number(c.weights[i]));
    }
}

} // namespace

std::string DxfWriter::layer_name(const std::string& name)
{
    std::string out = OcctScene::utf8(name);
    for (char& ch : out)
        if (static_cast<unsigned char>(ch) < 0x20 || std::strchr(layer_forbidden, ch)) ch = '_';
    return out.empty() ? "0" : out;
}

std::string DxfWriter::write(const Scene& scene, double scale, std::ostream& out)
{
    std::vector<Spline> splines;
    std::vector<std::string> layers;
    // One layer per model group; two models of one name (in two visits) get
    // a number each after the first.
    std::map<std::vector<std::string>, std::string> layer_of_path;
    std::map<std::string, int> uses;
    for (const ScenePlacedItem& item : scene.placed_items(scale)) {
        if (!item.curve || !item.curve->is_valid()) continue;
        auto it = layer_of_path.find(item.path);
        if (it == layer_of_path.end()) {
            std::string l = layer_name(item.path.empty() ? std::string() : item.path.back());
            if (const int n = uses[l]++; n > 0) {
                l += '~';
                l += std::to_string(n + 1);
            }
            it = layer_of_path.emplace(item.path, l).first;
            layers.push_back(l);
        }
        splines.push_back({item.curve, item.world, it->second});
    }
    if (splines.empty()) return "no curve to write";
    // dxflib writes by file name only.
    return FileByName::write(out, ".dxf", [&](const std::string& path) -> std::string {
        DL_Dxf dxf;
        std::unique_ptr<DL_WriterA> dw(dxf.out(path.c_str(), DL_Codes::AC1015));
        if (!dw) return "dxflib cannot open the file";
        dxf.writeHeader(*dw);
        dw->dxfString(9, "$INSUNITS");
        dw->dxfInt(70, 4);
        dw->sectionEnd();
        tables(dxf, *dw, layers);
        dw->sectionEntities();
        for (const Spline& s : splines) spline(dxf, *dw, s);
        dw->sectionEnd();
        dxf.writeObjects(*dw);
        dxf.writeObjectsEnd(*dw);
        dw->dxfEOF();
        dw->close();
        return {};
    });
}
