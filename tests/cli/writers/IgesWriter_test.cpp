// `velmora convert -o X.igs`, read back with Open CASCADE's IGES reader: the
// curves are the ones the dump shows, exactly.
#include <IGESCAFControl_Reader.hxx>

#include "tests/cli/writers/meshReadBack.h"
#include "tests/cli/writers/occtReadBack.h"
#include "tests/support/vlmWriter.h"

TEST(IgesWriter, Write_DemoCurvesReadBackAsTheDumpsBSplines)
{
    const std::string demo = exact::demo_archive();
    const std::vector<exact::DumpCurve> curves = exact::dump_curves(demo);
    ASSERT_FALSE(curves.empty());
    const std::string file = exact::convert(demo, "demo.igs");
    exact::expect_exact_curves<IGESCAFControl_Reader>(file, exact::raw_iges_curves(file), curves);
}

TEST(IgesWriter, Write_IgesExtensionInEitherSpellingWritesIges)
{
    const std::string file = exact::convert(exact::demo_archive(), "demo.IGES");
    const std::string text = vlm::read_file(file);
    // The start section's line ends in column 73 with "S".
    ASSERT_GT(text.size(), 80u);
    EXPECT_EQ(text[72], 'S');
}

TEST(IgesWriter, Write_WithMeshesEachTriangleIsAFaceOnTheDumpsVertices)
{
    exact::expect_scan_meshes_read_back<IGESCAFControl_Reader>("igs", false);
}

TEST(IgesWriter, Write_WithoutMeshesAScanAloneIsNothingToWrite)
{
    exact::expect_scan_alone_refused("igs");
}
