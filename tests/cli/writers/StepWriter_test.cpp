// `velmora convert -o X.step`, read back with Open CASCADE's STEP reader: the
// curves are the ones the dump shows, exactly.
#include <STEPCAFControl_Reader.hxx>

#include "tests/cli/writers/meshReadBack.h"
#include "tests/cli/writers/occtReadBack.h"

TEST(StepWriter, Write_DemoCurvesReadBackAsTheDumpsBSplines)
{
    const std::string demo = exact::demo_archive();
    const std::vector<exact::DumpCurve> curves = exact::dump_curves(demo);
    ASSERT_FALSE(curves.empty());
    const std::string file = exact::convert(demo, "demo.step");
    exact::expect_exact_curves<STEPCAFControl_Reader>(file, exact::raw_step_curves(file), curves);
}

TEST(StepWriter, Write_WithoutCurvesRefusesToWriteAnEmptyFile)
{
    const std::string out = std::string(VELMORA_BINARY_DIR) + "/exact-curves/none.step";
    const vlm::command_result r = vlm::run_command(
        exact::velmora(), {"convert", "--option", "vmiOptProcessOrthoticData=0", exact::demo_archive(), "-o", out});
    EXPECT_EQ(r.status, 3);
    EXPECT_NE(r.err.find("no curve to write"), std::string::npos) << r.err;
    EXPECT_FALSE(std::filesystem::exists(out));
}

TEST(StepWriter, Write_WithMeshesEachTriangleIsAFaceOnTheDumpsVertices)
{
    const std::string archive = exact::small_scan_archive("meshes_step.vlm", 6, 4);
    const std::vector<exact::DumpMesh> meshes = exact::dump_meshes(archive);
    ASSERT_EQ(meshes.size(), 1u);
    // 5 x 3 cells of two triangles.
    EXPECT_EQ(meshes[0].triangles, 30u);
    const std::string file = exact::convert(archive, "meshes.step", {"--meshes"});
    exact::expect_meshes_as_faces<STEPCAFControl_Reader>(file, meshes, true);
}

TEST(StepWriter, Write_WithoutMeshesAScanAloneIsNothingToWrite)
{
    const std::string archive = exact::small_scan_archive("no_meshes_step.vlm", 6, 4);
    const vlm::command_result r =
        vlm::run_command(exact::velmora(), {"convert", archive, "-o", archive + ".step"});
    EXPECT_EQ(r.status, 3) << r.err;
    EXPECT_FALSE(std::filesystem::exists(archive + ".step"));
}
