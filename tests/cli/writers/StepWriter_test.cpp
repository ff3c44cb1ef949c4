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
    exact::expect_scan_meshes_read_back<STEPCAFControl_Reader>("step", true);
}

TEST(StepWriter, Write_WithoutMeshesAScanAloneIsNothingToWrite)
{
    exact::expect_scan_alone_refused("step");
}
