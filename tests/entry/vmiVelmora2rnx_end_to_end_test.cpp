// One import from end to end as a host runs it: the library loaded with
// dlopen, an archive holding scans, a scan image and orthotic models read
// with read_input, and the translators walked into a sink. Checks the groups
// and their names, the objects with their levels and layers, the models'
// outlines and finished grids, the side-by-side layout, and the options
// switching kinds of records off.
#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/entry/PluginHost.h"
#include "tests/support/contourText.h"
#include "tests/support/vlmWriter.h"

using plugin_host::run_import;

namespace {

std::string scan_model(int nx, int ny, float dx, float dy)
{
    vlm::height_grid g;
    g.nx = nx;
    g.ny = ny;
    g.dx = dx;
    g.dy = dy;
    g.codes.assign(static_cast<std::size_t>(nx * ny), 10);
    return vlm::chunk_chain(vlm::grid_entry(g), 300);
}

std::string scan_image()
{
    vlm::scan_image im;
    im.width = 3;
    im.height = 2;
    im.pixels = {255, 0, 100, 100, 100, 100};
    return vlm::chunk(vlm::pcim_entry(im));
}

std::string design()
{
    return vlm::chunk_chain(vlm::small_design(), 1000);
}

// An archive of every kind of record: a left scan with its image and a right
// scan, a model over the left scan in the first visit, one over the right
// scan in the second.
std::string write_archive()
{
    vlm::archive a;
    a.add("VLM00005.dat", scan_model(4, 3, 2.0f, 1.5f));
    a.add("VLM00006.dat", scan_image());
    a.add("VLM00007.dat", scan_model(2, 2, 1.0f, 1.0f));
    a.add("VLM00008.dat", design());
    a.add("00000.vlk", vlm::catalogue()
                           .header("Velmora")
                           .separator()
                           .level1("Miller", "Anna")
                           .level2("2021-03-01", "Visit")
                           .level3(1, 1, 0, 101, "20210301", "scan", "", 5)
                           .level3(1, 2, 0, 201, "20210302", "image", "", 6)
                           .level3(1, 3, 0, 102, "20210303", "scan", "", 7)
                           .level3(3, 4, 1, 1, "20210304", "model", "", 8)
                           .level2("2021-04-01", "Control")
                           .level3(3, 5, 3, 2, "20210401", "model", "", 8)
                           .text());
    const std::string path = vlm::temp_path("import_end_to_end.vlm");
    EXPECT_TRUE(a.write(path));
    return path;
}

const SinkEvent* find(const std::vector<SinkEvent>& events, const std::string& kind, const std::string& name,
                      int nth = 0)
{
    for (const SinkEvent& e : events)
        if (e.kind == kind && e.name == name && nth-- == 0)
            return &e;
    return nullptr;
}

int count(const std::vector<SinkEvent>& events, const std::string& kind)
{
    int n = 0;
    for (const SinkEvent& e : events)
        n += e.kind == kind;
    return n;
}

// The names of the items directly inside the group opened at events[open].
std::vector<std::string> members(const std::vector<SinkEvent>& events, const SinkEvent* open)
{
    std::vector<std::string> names;
    std::size_t k = static_cast<std::size_t>(open - events.data()) + 1;
    for (; k < events.size() && events[k].depth > open->depth; ++k)
        if (events[k].depth == open->depth + 1 && events[k].kind != "end")
            names.push_back(events[k].name);
    return names;
}

// The item right inside the group opened at open (its first member).
const SinkEvent* first_member(const std::vector<SinkEvent>& events, const SinkEvent* open)
{
    const SinkEvent* next = open + 1;
    return next < events.data() + events.size() && next->depth == open->depth + 1 ? next : nullptr;
}

// The archive of write_archive, removed again at the end of the test.
struct written_archive {
    written_archive() : path(write_archive()) {}
    ~written_archive() { std::remove(path.c_str()); }
    written_archive(const written_archive&) = delete;
    written_archive& operator=(const written_archive&) = delete;
    std::string path;
};

} // namespace

TEST(vmiVelmora2rnx, EndToEnd_GroupsCarryTheCatalogueNamesFromTheRootDown)
{
    written_archive archive;
    plugin_host::import_result r = run_import(archive.path);
    ASSERT_EQ(r.result, 1);
    ASSERT_EQ(r.translators, 1);
    const std::vector<SinkEvent>& ev = r.events;
    ASSERT_FALSE(ev.empty());
    EXPECT_EQ(ev[0].kind, "begin");
    EXPECT_EQ(ev[0].name, "Data Base");
    EXPECT_EQ(ev[0].mangled, "Data Base");
    EXPECT_EQ(members(ev, &ev[0]), std::vector<std::string>{"Miller,Anna"});
    const SinkEvent* level1 = find(ev, "begin", "Miller,Anna");
    ASSERT_NE(level1, nullptr);
    EXPECT_EQ(level1->mangled, "Data Base_Miller,Anna");
    EXPECT_EQ(members(ev, level1), (std::vector<std::string>{"Visit : 2021-03-01", "Control : 2021-04-01"}));
    const SinkEvent* visit = find(ev, "begin", "Visit : 2021-03-01");
    ASSERT_NE(visit, nullptr);
    EXPECT_EQ(members(ev, visit), (std::vector<std::string>{"VelmScan(Visit)", "PCS models(Visit)"}));
    const SinkEvent* control = find(ev, "begin", "Control : 2021-04-01");
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(members(ev, control), std::vector<std::string>{"PCS models(Control)"});
    const SinkEvent* scans = find(ev, "begin", "VelmScan(Visit)");
    ASSERT_NE(scans, nullptr);
    EXPECT_EQ(scans->mangled, "Visit : 2021-03-01_VelmScan(Visit)");
    // Groups carry no colour.
    EXPECT_FALSE(scans->has_colour);
}

TEST(vmiVelmora2rnx, EndToEnd_ScansAndTheImageComeWithTheirLevelsAndLayers)
{
    written_archive archive;
    plugin_host::import_result r = run_import(archive.path);
    const std::vector<SinkEvent>& ev = r.events;
    const SinkEvent* scans = find(ev, "begin", "VelmScan(Visit)");
    ASSERT_NE(scans, nullptr);
    EXPECT_EQ(members(ev, scans), (std::vector<std::string>{"SCAN_(LEFT)_20210301", "SCAN_(LEFT)_20210301",
                                                            "SCAN_(RIGHT)_20210303"}));
    const SinkEvent* left = find(ev, "triblock", "SCAN_(LEFT)_20210301");
    ASSERT_NE(left, nullptr);
    EXPECT_EQ(left->status, 0);
    EXPECT_EQ(left->level, 10);
    EXPECT_EQ(left->layer_name, "SCAN_(LEFT)_20210301");
    EXPECT_EQ(left->mangled, "SCAN_(LEFT)_20210301_SCAN_(LEFT)_20210301");
    EXPECT_EQ(left->points.size(), 12u);
    EXPECT_EQ(left->triangles.size(), 12u);

    const SinkEvent* image = find(ev, "pointcloud", "IMAGE_(LEFT)_20210302");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->level, 10);
    EXPECT_EQ(image->layer_name, "SCAN_(LEFT)_20210301");
    EXPECT_FALSE(image->has_colour);
    ASSERT_EQ(image->points.size(), 6u);
    for (const giPoint3& p : image->points)
        EXPECT_EQ(p.z(), -5.0);
    ASSERT_EQ(image->colours.size(), 6u);
    EXPECT_TRUE(image->colours[0] == giColour(240, 240, 240, 0));
    EXPECT_TRUE(image->colours[2] == giColour(100, 100, 100, 0));

    const SinkEvent* right = find(ev, "triblock", "SCAN_(RIGHT)_20210303");
    ASSERT_NE(right, nullptr);
    EXPECT_EQ(right->level, 11);
    EXPECT_EQ(right->layer_name, "SCAN_(RIGHT)_20210303");
}

TEST(vmiVelmora2rnx, EndToEnd_ModelsHoldTheirOutlinesAndTheFinishedModel)
{
    written_archive archive;
    plugin_host::import_result r = run_import(archive.path);
    const std::vector<SinkEvent>& ev = r.events;
    const SinkEvent* models = find(ev, "begin", "PCS models(Visit)");
    ASSERT_NE(models, nullptr);
    EXPECT_EQ(members(ev, models), std::vector<std::string>{"MODEL_(LEFT)_20210304"});
    const SinkEvent* model = find(ev, "begin", "MODEL_(LEFT)_20210304");
    ASSERT_NE(model, nullptr);
    const std::vector<std::string> inside = members(ev, model);
    ASSERT_FALSE(inside.empty());
    EXPECT_EQ(inside.front(), "sole~0");
    EXPECT_EQ(inside.back(), "FINISH_MODEL~0");
    const SinkEvent* outline = first_member(ev, model);
    ASSERT_NE(outline, nullptr);
    EXPECT_EQ(outline->kind, "curve");
    EXPECT_EQ(outline->status, 0);
    EXPECT_TRUE(outline->curve);
    const SinkEvent* finished = find(ev, "triblock", "FINISH_MODEL~0");
    ASSERT_NE(finished, nullptr);
    EXPECT_EQ(finished->status, 0);
    EXPECT_GT(finished->points.size(), 3u);
    EXPECT_EQ(finished->mangled, "MODEL_(LEFT)_20210304_FINISH_MODEL~0");
    // The second visit's model is the second contour record.
    const SinkEvent* second = find(ev, "begin", "MODEL_(RIGHT)_20210401");
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(members(ev, second).back(), "FINISH_MODEL~1");
}

TEST(vmiVelmora2rnx, EndToEnd_MembersLieSideBySideInXAndEachGroupInItsOwnBandInY)
{
    written_archive archive;
    plugin_host::import_result r = run_import(archive.path);
    const std::vector<SinkEvent>& ev = r.events;
    // The left scan is 6 x 3, its image 2 x 1, the right scan 1 x 1.
    const SinkEvent* left = find(ev, "begin", "SCAN_(LEFT)_20210301", 0);
    const SinkEvent* image = find(ev, "begin", "SCAN_(LEFT)_20210301", 1);
    const SinkEvent* right = find(ev, "begin", "SCAN_(RIGHT)_20210303");
    ASSERT_TRUE(left && image && right);
    EXPECT_TRUE(left->xform.translation() == giVector3(0, 0, 0));
    EXPECT_TRUE(image->xform.translation() == giVector3(6, 0, 0));
    EXPECT_TRUE(right->xform.translation() == giVector3(8, 0, 0));
    // The model group's band starts above the scans' highest member.
    const SinkEvent* model = find(ev, "begin", "MODEL_(LEFT)_20210304");
    ASSERT_NE(model, nullptr);
    EXPECT_TRUE(model->xform.translation() == giVector3(0, 3, 0));
    // The next visit's models stack above that band.
    const SinkEvent* second = find(ev, "begin", "MODEL_(RIGHT)_20210401");
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->xform.translation().x(), 0.0);
    EXPECT_GT(second->xform.translation().y(), 3.0);
    // Groups themselves are not moved.
    EXPECT_TRUE(find(ev, "begin", "PCS models(Control)")->xform == giXform3());
}

TEST(vmiVelmora2rnx, EndToEnd_ImageOptionOffLeavesTheImageOut)
{
    written_archive archive;
    option_set off("vmiOptProcessImageData", 0);
    plugin_host::import_result r = run_import(archive.path);
    ASSERT_EQ(r.result, 1);
    EXPECT_EQ(count(r.events, "pointcloud"), 0);
    const SinkEvent* scans = find(r.events, "begin", "VelmScan(Visit)");
    ASSERT_NE(scans, nullptr);
    EXPECT_EQ(members(r.events, scans),
              (std::vector<std::string>{"SCAN_(LEFT)_20210301", "SCAN_(RIGHT)_20210303"}));
    EXPECT_EQ(find(r.events, "triblock", "SCAN_(RIGHT)_20210303")->level, 11);
}

TEST(vmiVelmora2rnx, EndToEnd_ScanOptionOffKeepsOnlyTheImageUnderTheLatestGroupName)
{
    written_archive archive;
    option_set off("vmiOptProcessScanData", 0);
    plugin_host::import_result r = run_import(archive.path);
    ASSERT_EQ(r.result, 1);
    EXPECT_EQ(find(r.events, "triblock", "SCAN_(LEFT)_20210301"), nullptr);
    EXPECT_EQ(find(r.events, "triblock", "SCAN_(RIGHT)_20210303"), nullptr);
    const SinkEvent* scans = find(r.events, "begin", "VelmScan(Visit)");
    ASSERT_NE(scans, nullptr);
    EXPECT_EQ(members(r.events, scans), std::vector<std::string>{"Visit : 2021-03-01"});
    const SinkEvent* image = find(r.events, "pointcloud", "IMAGE_(LEFT)_20210302");
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->level, 0);
    EXPECT_EQ(image->layer_name, "Visit : 2021-03-01");
    // The models are still built.
    EXPECT_NE(find(r.events, "triblock", "FINISH_MODEL~0"), nullptr);
}

TEST(vmiVelmora2rnx, EndToEnd_OrthoticOptionOffLeavesTheModelsOut)
{
    written_archive archive;
    option_set off("vmiOptProcessOrthoticData", 0);
    plugin_host::import_result r = run_import(archive.path);
    ASSERT_EQ(r.result, 1);
    EXPECT_EQ(find(r.events, "begin", "PCS models(Visit)"), nullptr);
    EXPECT_EQ(find(r.events, "begin", "PCS models(Control)"), nullptr);
    EXPECT_EQ(count(r.events, "curve"), 0);
    const SinkEvent* control = find(r.events, "begin", "Control : 2021-04-01");
    ASSERT_NE(control, nullptr);
    EXPECT_TRUE(members(r.events, control).empty());
    EXPECT_NE(find(r.events, "triblock", "SCAN_(LEFT)_20210301"), nullptr);
}

TEST(vmiVelmora2rnx, EndToEnd_OptionsAreReadAgainAtTheNextImport)
{
    written_archive archive;
    {
        option_set off("vmiOptProcessImageData", 0);
        EXPECT_EQ(count(run_import(archive.path).events, "pointcloud"), 0);
    }
    EXPECT_EQ(count(run_import(archive.path).events, "pointcloud"), 1);
}
