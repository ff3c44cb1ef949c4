// ObjWriter on a scene built by hand: groups by mangled name, placed vertices
// with their palette colours, faces, lines and points.
#include "cli/writers/ObjWriter.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "tests/cli/writers/SampleScene.h"

namespace {

std::vector<std::string> lines_starting(const std::string& text, const std::string& prefix)
{
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (line.rfind(prefix, 0) == 0) out.push_back(line);
    return out;
}

} // namespace

using sample_scene::written;

TEST(ObjWriter, Write_NamesEachItemByItsMangledNameInItsGroupPath)
{
    const std::string obj = written(ObjWriter::write, sample_scene::scene(), 1.0);
    EXPECT_EQ(lines_starting(obj, "g "),
              (std::vector<std::string>{"g VelmScan(A)_SCAN_(LEFT)_1", "g VelmScan(A)_PCIM_2",
                                        "g PCS_models(B)_sole~4", "g PCS_models(B)_LIMIT"}));
    EXPECT_EQ(lines_starting(obj, "# in "),
              (std::vector<std::string>{"# in Data_Base/VelmScan(A)", "# in Data_Base/VelmScan(A)",
                                        "# in Data_Base/PCS_models(B)", "# in Data_Base/PCS_models(B)"}));
}

TEST(ObjWriter, Write_FlattensPlacementsAndColoursVerticesByPalette)
{
    const std::string obj = written(ObjWriter::write, sample_scene::scene(), 1.0);
    const std::vector<std::string> v = lines_starting(obj, "v ");
    // 4 mesh vertices, 3 points, 2 * 16 + 1 spline samples, 3 polyline points.
    ASSERT_EQ(v.size(), 4u + 3u + 33u + 3u);
    // (10, 0, 1) moved by (100, 200, 0); colour index 3 is green.
    EXPECT_EQ(v[1], "v 110 200 1 0 1 0");
    // Point colours are the cloud's own: (0, 128, 0) at the point (1, 0, -5).
    EXPECT_EQ(v[5], "v 101 200 -5 0 0.5019608 0");
    // The polyline's (5, 5, 0) turned a quarter, raised by 5, moved by 100;
    // without a colour index it is the palette's light grey.
    const std::string grey = "0.7529412";
    EXPECT_EQ(v[41], "v 95 5 5 " + grey + ' ' + grey + ' ' + grey);
}

TEST(ObjWriter, Write_FacesLinesAndPointsCountVerticesAcrossItems)
{
    const std::string obj = written(ObjWriter::write, sample_scene::scene(), 1.0);
    EXPECT_EQ(lines_starting(obj, "f "), (std::vector<std::string>{"f 1 2 3", "f 2 4 3"}));
    EXPECT_EQ(lines_starting(obj, "p "), (std::vector<std::string>{"p 5 6 7"}));
    const std::vector<std::string> l = lines_starting(obj, "l ");
    ASSERT_EQ(l.size(), 2u);
    EXPECT_EQ(l[1], "l 41 42 43");
    EXPECT_EQ(l[0].rfind("l 8 9 ", 0), 0u);
}

TEST(ObjWriter, Write_SplitsLargeCloudsIntoShortPointLines)
{
    Scene s;
    ScenePointCloud c = sample_scene::cloud();
    c.points.resize(ObjWriter::points_per_line + 1);
    s.top.add(c);
    const std::string obj = written(ObjWriter::write, s, 1.0);
    const std::vector<std::string> p = lines_starting(obj, "p ");
    ASSERT_EQ(p.size(), 2u);
    EXPECT_EQ(p[1], "p " + std::to_string(ObjWriter::points_per_line + 1));
}

TEST(ObjWriter, Token_ReplacesSpacesAndControlBytesAndNamesTheUnnamed)
{
    EXPECT_EQ(ObjWriter::token("PCS models(B)\r\tx"), "PCS_models(B)__x");
    EXPECT_EQ(ObjWriter::token(""), "unnamed");
    // Latin-1 from the archive becomes UTF-8; UTF-8 stays as it is.
    EXPECT_EQ(ObjWriter::token("caf\xE9"), "caf\xC3\xA9");
    EXPECT_EQ(ObjWriter::token("caf\xC3\xA9"), "caf\xC3\xA9");
}

TEST(ObjWriter, Write_LeavesOutAMeshWithABadIndexButKeepsTheCount)
{
    Scene s;
    SceneMesh bad = sample_scene::mesh();
    bad.triangles.push_back({0, 1, 9});
    s.top.add(bad);
    s.top.add(sample_scene::mesh());
    const std::string obj = written(ObjWriter::write, s, 1.0);
    EXPECT_EQ(lines_starting(obj, "v ").size(), 4u);
    EXPECT_EQ(lines_starting(obj, "f "), (std::vector<std::string>{"f 1 2 3", "f 2 4 3"}));
}

TEST(ObjWriter, Write_EachCoordinateIsItsFloatInShortestForm)
{
    Scene s;
    SceneMesh m = sample_scene::mesh();
    // 0.1 as a double is 0.1000000000000000055...; its float is 0.100000001490116...,
    // whose shortest float form is "0.1"; 1/3 needs all of a float's digits.
    m.vertices[0] = {0.1, 1.0 / 3.0, 123456.789};
    s.top.add(m);
    const std::string obj = written(ObjWriter::write, s, 1.0);
    EXPECT_NE(obj.find("\nv 0.1 0.33333334 123456.79 0 1 0\n"), std::string::npos) << obj;
}
