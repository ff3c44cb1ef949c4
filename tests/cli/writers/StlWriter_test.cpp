// StlWriter on a scene built by hand: only the meshes' triangles, placed and
// scaled.
#include "cli/writers/StlWriter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/cli/writers/SampleScene.h"

using sample_scene::read_at;
using sample_scene::written;

TEST(StlWriter, Write_HoldsOnlyTheMeshesTrianglesPlacedAndScaled)
{
    const std::string stl = written(StlWriter::write, sample_scene::scene(), 0.001);
    ASSERT_EQ(stl.size(), StlWriter::header_size + 4 + 2 * 50);
    EXPECT_EQ(stl.rfind("solid", 0), std::string::npos);
    EXPECT_EQ(stl.rfind("velmora convert: sample", 0), 0u);
    EXPECT_EQ(read_at<std::uint32_t>(stl, 80), 2u);
    // Triangle 0: normal +z, first vertex (0, 0, 1) at (0.1, 0.2, 0.001).
    EXPECT_EQ(read_at<float>(stl, 84 + 8), 1.0f);
    EXPECT_EQ(read_at<float>(stl, 84 + 12), static_cast<float>(0.1));
    EXPECT_EQ(read_at<float>(stl, 84 + 16), static_cast<float>(0.2));
    EXPECT_EQ(read_at<float>(stl, 84 + 20), static_cast<float>(0.001));
    EXPECT_EQ(read_at<std::uint16_t>(stl, 84 + 48), 0u);
}

TEST(StlWriter, Normal_IsZeroForATriangleWithoutArea)
{
    EXPECT_EQ(StlWriter::normal({0, 0, 0}, {1, 1, 1}, {2, 2, 2}), (ScenePoint{0, 0, 0}));
    EXPECT_EQ(StlWriter::normal({0, 0, 0}, {0, 2, 0}, {2, 0, 0}), (ScenePoint{0, 0, -1}));
}

TEST(StlWriter, Write_HeaderNamesTheSceneInUtf8CutBetweenCharacters)
{
    Scene s = sample_scene::scene();
    // "velmora convert: " is 17 bytes; 62 'a' leave one byte, too few for a
    // two-byte character, which is then left out whole.
    s.top.name = std::string(62, 'a') + "\xDF";
    const std::string stl = written(StlWriter::write, s, 1.0);
    ASSERT_GE(stl.size(), StlWriter::header_size);
    EXPECT_EQ(stl.substr(0, StlWriter::header_size), "velmora convert: " + std::string(62, 'a') + " ");
    s.top.name = "Fu\xDF";
    EXPECT_EQ(written(StlWriter::write, s, 1.0).substr(0, 22), "velmora convert: Fu\xC3\x9F ");
}
