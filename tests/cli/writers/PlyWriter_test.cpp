// PlyWriter on a scene built by hand: the header's counts and names and the
// binary body of placed, coloured vertices.
#include "cli/writers/PlyWriter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "tests/cli/writers/SampleScene.h"

using sample_scene::read_at;
using sample_scene::written;

namespace {

std::string written_with_curves(const Scene& s)
{
    std::ostringstream out;
    return PlyWriter::write(s, 1.0, out, true).empty() ? out.str() : std::string();
}

} // namespace

TEST(PlyWriter, Write_HeaderCountsVerticesFacesAndEdgesAndNamesItems)
{
    const std::string ply = written_with_curves(sample_scene::scene());
    EXPECT_EQ(ply.rfind("ply\nformat binary_little_endian 1.0\n", 0), 0u);
    EXPECT_NE(ply.find("element vertex 43\n"), std::string::npos);
    EXPECT_NE(ply.find("element face 2\n"), std::string::npos);
    // 32 segments of the spline, 2 of the polyline.
    EXPECT_NE(ply.find("element edge 34\n"), std::string::npos);
    EXPECT_NE(ply.find("comment object VelmScan(A)_PCIM_2 in Data_Base/VelmScan(A): vertices 4 count 3,"),
              std::string::npos);
    EXPECT_NE(ply.find("property uchar red\nproperty uchar green\nproperty uchar blue\n"), std::string::npos);
}

TEST(PlyWriter, Write_BodyHoldsPlacedFloatVerticesColoursAndOffsetIndices)
{
    const std::string ply = written_with_curves(sample_scene::scene());
    EXPECT_NE(ply.find("property float x\nproperty float y\nproperty float z\n"), std::string::npos);
    const std::size_t body = ply.find("end_header\n") + 11;
    const std::size_t vertex = 3 * 4 + 3;
    // Vertex 1: the mesh's (10, 0, 1) moved by (100, 200, 0), green.
    EXPECT_EQ(read_at<float>(ply, body + vertex + 0), 110.0f);
    EXPECT_EQ(read_at<float>(ply, body + vertex + 4), 200.0f);
    EXPECT_EQ(read_at<float>(ply, body + vertex + 8), 1.0f);
    EXPECT_EQ(read_at<std::uint8_t>(ply, body + vertex + 12), 0);
    EXPECT_EQ(read_at<std::uint8_t>(ply, body + vertex + 13), 255);
    // Vertex 6: the cloud's third point keeps its own grey.
    EXPECT_EQ(read_at<std::uint8_t>(ply, body + 6 * vertex + 12), 240);
    const std::size_t faces = body + 43 * vertex;
    EXPECT_EQ(read_at<std::uint8_t>(ply, faces), 3);
    EXPECT_EQ(read_at<std::int32_t>(ply, faces + 1 + 13 + 4), 3);
    // The first edge joins the spline's first two samples, vertices 7 and 8.
    const std::size_t edges = faces + 2 * 13;
    EXPECT_EQ(read_at<std::int32_t>(ply, edges), 7);
    EXPECT_EQ(read_at<std::int32_t>(ply, edges + 4), 8);
    EXPECT_EQ(ply.size(), edges + 34 * 8);
}

TEST(PlyWriter, Write_LeavesCurvesOutUnlessAskedButNamesThem)
{
    const std::string ply = written(PlyWriter::write, sample_scene::scene(), 1.0);
    // 4 mesh vertices and 3 points; no edge element at all.
    EXPECT_NE(ply.find("element vertex 7\n"), std::string::npos);
    EXPECT_EQ(ply.find("element edge"), std::string::npos);
    EXPECT_NE(ply.find("comment object PCS_models(B)_sole~4 in Data_Base/PCS_models(B): vertices 7 count 0,"),
              std::string::npos);
    const std::size_t body = ply.find("end_header\n") + 11;
    EXPECT_EQ(ply.size(), body + 7 * 15 + 2 * 13);
}

TEST(PlyWriter, Write_NamesAreUtf8)
{
    Scene s = sample_scene::scene();
    s.top.name = "Fu\xDF";
    const std::string ply = written(PlyWriter::write, s, 1.0);
    EXPECT_NE(ply.find("comment Fu\xC3\x9F, written by velmora convert\n"), std::string::npos);
}
