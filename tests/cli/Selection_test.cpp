// Selection: which objects --select and --only keep, on a scene and on a dump
// tree shaped like an import (patient, visit, scan and model groups).
#include "cli/Selection.h"

#include <gtest/gtest.h>

#include "cli/dump/DumpSink.h"

namespace {

const std::vector<std::string> insole_path = {"Data Base", "Beispiel,Erika", "Kontrolle : 2024-09-12",
                                              "PCS models(Kontrolle)", "MODEL_(LEFT)_2024-09-16",
                                              "FINISH_MODEL~2"};
const std::vector<std::string> scan_path = {"Data Base", "Beispiel,Erika", "Kontrolle : 2024-09-12",
                                            "VelmScan(Kontrolle)", "SCAN_(LEFT)_2024-09-12",
                                            "SCAN_(LEFT)_2024-09-12"};

Selection with(std::vector<std::string> patterns, std::vector<std::string> only = {})
{
    Selection s;
    s.patterns = std::move(patterns);
    s.only = std::move(only);
    return s;
}

SceneGroup group(const std::string& name)
{
    SceneGroup g;
    g.name = name;
    g.mangled = "m_" + name;
    return g;
}

SceneMesh mesh(const std::string& name)
{
    SceneMesh m;
    m.info.name = name;
    m.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    m.triangles = {{0, 1, 2}};
    return m;
}

// Data Base / Visit / {VelmScan(V) / SCAN_(LEFT) / {SCAN mesh, IMAGE cloud},
//                      PCS models(V) / MODEL_(LEFT) / {blank curve, FINISH_MODEL~0 mesh}}
Scene scene()
{
    Scene s;
    s.top.name = "demo";
    s.archive = "demo.vlm";
    s.options = {{"vmiOptProcessScanData", 1}};
    SceneGroup& base = s.top.add(group("Data Base"));
    SceneGroup& visit = base.add(group("Visit"));
    SceneGroup& scans = visit.add(group("VelmScan(V)"));
    SceneGroup& left = scans.add(group("SCAN_(LEFT)"));
    left.add(mesh("SCAN_(LEFT)"));
    ScenePointCloud c;
    c.info.name = "IMAGE_(LEFT)";
    c.points = {{0, 0, 0}};
    c.colours = {{1, 2, 3}};
    left.add(c);
    SceneGroup& models = visit.add(group("PCS models(V)"));
    SceneGroup& model = models.add(group("MODEL_(LEFT)"));
    model.placement[3] = 7.0;
    SceneCurve k;
    k.info.name = "blank_L~0";
    model.add(k);
    model.add(mesh("FINISH_MODEL~0"));
    return s;
}

std::vector<std::string> names(const Scene& s)
{
    std::vector<std::string> out;
    for (const ScenePlacedItem& it : s.placed_items(1.0)) out.push_back(it.info().name);
    return out;
}

std::unique_ptr<DumpItem> dump_item(DumpItem::Kind kind, const std::string& name)
{
    auto i = std::make_unique<DumpItem>();
    i->kind = kind;
    i->name = name;
    return i;
}

} // namespace

TEST(Selection, Selects_StarSpansSlashesOverTheWholePath)
{
    EXPECT_TRUE(with({"*/PCS models*/*/FINISH_MODEL*"}).selects(insole_path, Selection::Kind::insole));
    EXPECT_FALSE(with({"*/PCS models*/*/FINISH_MODEL*"}).selects(scan_path, Selection::Kind::scan));
    // The whole path must match: a pattern for a part of it does not.
    EXPECT_FALSE(with({"FINISH_MODEL*"}).selects(insole_path, Selection::Kind::insole));
    EXPECT_TRUE(with({"*FINISH_MODEL~[0-9]"}).selects(insole_path, Selection::Kind::insole));
}

TEST(Selection, Selects_AGroupsPathSelectsEverythingInsideIt)
{
    const Selection visit = with({"Data Base/*/Kontrolle*"});
    EXPECT_TRUE(visit.selects(insole_path, Selection::Kind::insole));
    EXPECT_TRUE(visit.selects(scan_path, Selection::Kind::scan));
    EXPECT_FALSE(with({"Data Base/*/Erstversorgung*"}).selects(scan_path, Selection::Kind::scan));
}

TEST(Selection, Selects_AnyOfSeveralPatterns)
{
    const Selection s = with({"nothing", "*/VelmScan(*"});
    EXPECT_TRUE(s.selects(scan_path, Selection::Kind::scan));
    EXPECT_FALSE(s.selects(insole_path, Selection::Kind::insole));
}

TEST(Selection, Selects_OnlyKindsAndModelsAreOutlinesAndInsoles)
{
    const Selection models = with({}, {"models"});
    EXPECT_TRUE(models.selects(insole_path, Selection::Kind::insole));
    EXPECT_TRUE(models.selects(insole_path, Selection::Kind::outline));
    EXPECT_FALSE(models.selects(scan_path, Selection::Kind::scan));
    EXPECT_FALSE(models.selects(scan_path, Selection::Kind::image));
    const Selection two = with({}, {"scans", "images"});
    EXPECT_TRUE(two.selects(scan_path, Selection::Kind::scan));
    EXPECT_TRUE(two.selects(scan_path, Selection::Kind::image));
    EXPECT_FALSE(two.selects(insole_path, Selection::Kind::insole));
    // Kind and pattern must both hold.
    EXPECT_FALSE(with({"*/VelmScan(*"}, {"insoles"}).selects(scan_path, Selection::Kind::scan));
    EXPECT_TRUE(with({}, {"insoles"}).only_insoles());
    EXPECT_FALSE(with({}, {"insoles", "scans"}).only_insoles());
    EXPECT_FALSE(with({}).only_insoles());
}

TEST(Selection, MeshKind_FinishedModelsAreInsolesEveryOtherMeshAScan)
{
    EXPECT_EQ(Selection::mesh_kind("FINISH_MODEL~12"), Selection::Kind::insole);
    EXPECT_EQ(Selection::mesh_kind("SCAN_(LEFT)_x"), Selection::Kind::scan);
    EXPECT_EQ(Selection::mesh_kind("x FINISH_MODEL"), Selection::Kind::scan);
    EXPECT_STREQ(Selection::kind_name(Selection::Kind::image), "image");
}

TEST(Selection, Selects_Latin1NamesAreMatchedAsUtf8)
{
    const std::vector<std::string> path = {"Data Base", "M\xFCller,Hans", "FINISH_MODEL~0"};
    EXPECT_TRUE(with({"*/M\xC3\xBCller*"}).selects(path, Selection::Kind::insole));
    EXPECT_EQ(Selection::path_text(path), "Data Base/M\xC3\xBCller,Hans/FINISH_MODEL~0");
}

TEST(Selection, ApplyScene_KeepsSelectedObjectsInOrderAndDropsEmptyGroups)
{
    const Scene s = with({}, {"models"}).apply(scene());
    EXPECT_EQ(names(s), (std::vector<std::string>{"blank_L~0", "FINISH_MODEL~0"}));
    EXPECT_EQ(s.archive, "demo.vlm");
    EXPECT_EQ(s.options.size(), 1u);
    const SceneGroup& visit = s.top.groups.at(0).groups.at(0);
    // The scan group held nothing selected, so it is gone.
    ASSERT_EQ(visit.groups.size(), 1u);
    EXPECT_EQ(visit.groups[0].name, "PCS models(V)");
    // Placements stay.
    EXPECT_EQ(visit.groups[0].groups.at(0).placement[3], 7.0);
}

TEST(Selection, ApplyScene_WithoutAMatchLeavesNoItems)
{
    EXPECT_EQ(with({"nothing"}).apply(scene()).num_items(), 0u);
    EXPECT_EQ(with({"*"}).apply(scene()).num_items(), 4u);
}

TEST(Selection, ApplyDumpTree_KeepsEveryGroupAndOnlySelectedLeaves)
{
    std::vector<std::unique_ptr<DumpItem>> top;
    top.push_back(dump_item(DumpItem::group, "Data Base"));
    auto scans = dump_item(DumpItem::group, "VelmScan(V)");
    scans->children.push_back(dump_item(DumpItem::triblock, "SCAN_(LEFT)"));
    scans->children.push_back(dump_item(DumpItem::pointcloud, "IMAGE_(LEFT)"));
    auto models = dump_item(DumpItem::group, "PCS models(V)");
    models->children.push_back(dump_item(DumpItem::curve, "blank_L~0"));
    models->children.push_back(dump_item(DumpItem::triblock, "FINISH_MODEL~0"));
    top[0]->children.push_back(std::move(scans));
    top[0]->children.push_back(std::move(models));
    with({}, {"insoles", "images"}).apply(top);
    ASSERT_EQ(top.size(), 1u);
    ASSERT_EQ(top[0]->children.size(), 2u);
    ASSERT_EQ(top[0]->children[0]->children.size(), 1u);
    EXPECT_EQ(top[0]->children[0]->children[0]->name, "IMAGE_(LEFT)");
    ASSERT_EQ(top[0]->children[1]->children.size(), 1u);
    EXPECT_EQ(top[0]->children[1]->children[0]->name, "FINISH_MODEL~0");
    // Nothing selected: the groups stay, empty.
    with({"nothing"}).apply(top);
    ASSERT_EQ(top[0]->children.size(), 2u);
    EXPECT_TRUE(top[0]->children[0]->children.empty());
    EXPECT_TRUE(top[0]->children[1]->children.empty());
}
