// ReportPage: escaping, base64, the model script and what the page holds.
#include "cli/report/ReportPage.h"

#include <gtest/gtest.h>

#include <sstream>

TEST(ReportPage, Escape_MarkupIsQuotedAndBytesThatAreNotUtf8BecomeReplacement)
{
    EXPECT_EQ(ReportPage::escape("<a href=\"x\">&'"), "&lt;a href=&quot;x&quot;&gt;&amp;&#39;");
    EXPECT_EQ(ReportPage::escape("M\xC3\xBCller"), "M\xC3\xBCller");
    EXPECT_EQ(ReportPage::escape("M\xFCller\x01"), "M&#xFFFD;ller&#xFFFD;");
}

TEST(ReportPage, Base64_MatchesTheStandardsVectors)
{
    // RFC 4648, section 10.
    EXPECT_EQ(ReportPage::base64(""), "");
    EXPECT_EQ(ReportPage::base64("f"), "Zg==");
    EXPECT_EQ(ReportPage::base64("fo"), "Zm8=");
    EXPECT_EQ(ReportPage::base64("foo"), "Zm9v");
    EXPECT_EQ(ReportPage::base64("foob"), "Zm9vYg==");
    EXPECT_EQ(ReportPage::base64("fooba"), "Zm9vYmE=");
    EXPECT_EQ(ReportPage::base64("foobar"), "Zm9vYmFy");
    EXPECT_EQ(ReportPage::base64(std::string("\xFF\x00\xFE", 3)), "/wD+");
}

TEST(ReportPage, ModelScript_AssignsADataUri)
{
    EXPECT_EQ(ReportPage::model_script("glTF"), "window.velmoraModel = \"data:model/gltf-binary;base64,Z2xURg==\";\n");
}

TEST(ReportPage, Write_TreeCountsBoxesPicturesAndViewer)
{
    Scene s;
    SceneGroup& g = s.top.add(SceneGroup{});
    g.name = "<patient>";
    g.placement = {1, 0, 0, 10, 0, 1, 0, 0, 0, 0, 1, 0};
    SceneMesh m;
    m.info.name = "SCAN";
    m.vertices = {{0, 0, 1}, {2, 0, 1}, {0, 3, 4}};
    m.triangles = {{0, 1, 2}};
    g.add(m);
    const std::vector<PreviewFolder::Written> pics = {
        {PreviewPicture::scan, 0, "<patient>/SCAN", "SCAN.png", 100, 50, 1.0, 4.0}};
    ReportPage::Files files;
    files.archive = "a.vlm";
    files.model = "a.glb";
    files.model_script = "a.glb.js";
    for (const bool viewer : {true, false}) {
        files.viewer = viewer;
        std::ostringstream out;
        ReportPage::write(out, s, pics, files);
        const std::string page = out.str();
        EXPECT_NE(page.find("&lt;patient&gt;"), std::string::npos);
        EXPECT_NE(page.find("3 vertices, 1 triangles"), std::string::npos);
        // Placed as the host places it: x moved by 10.
        EXPECT_NE(page.find("x 10.00 .. 12.00, y 0.00 .. 3.00, z 1.00 .. 4.00"), std::string::npos);
        EXPECT_NE(page.find("src=\"SCAN.png\""), std::string::npos);
        EXPECT_NE(page.find("<script src=\"a.glb.js\"></script>"), std::string::npos);
        EXPECT_EQ(page.find("<model-viewer") != std::string::npos, viewer);
        EXPECT_EQ(page.find("model-viewer-umd.min.js") != std::string::npos, true);
        // Nothing the page loads is a module or fetched: it opens from file://.
        EXPECT_EQ(page.find("type=\"module\""), std::string::npos);
    }
}
