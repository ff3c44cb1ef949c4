// vmiFile::fill_node: the catalogue's records turned into the node tree, with
// the three options of the resource table, and the walks over a tree built
// from a catalogue of 100000 records.
#include <pthread.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "archive/vmiArchiveElement.h"
#include "archive/vmiFile.h"
#include "archive/vmiNode.h"
#include "archive/vmiObjCloud.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObject.h"
#include "archive/vmiVlkElement.h"
#include "contour/vmiVelmcontur.h"
#include "grid/vmiBaseGrid.h"
#include "host/qorResourceTable.h"
#include "tests/support/contourText.h"
#include "tests/support/fileEntries.h"
#include "tests/support/optionScope.h"
#include "tests/support/vlmWriter.h"

namespace {

using vlm::add_entry;
using vlm::process;

vlm::catalogue groups()
{
    return vlm::catalogue().separator().level1("Client", "Case").level2("Left", "Scans");
}

std::string scan(int nx = 2, int ny = 2)
{
    vlm::height_grid g;
    g.nx = nx;
    g.ny = ny;
    g.codes.assign(static_cast<std::size_t>(nx * ny), 5);
    return vlm::grid_entry(g);
}

std::string image()
{
    vlm::scan_image im;
    im.width = 2;
    im.height = 2;
    im.pixels = {1, 2, 3, 4};
    return vlm::pcim_entry(im);
}

// A small design; when finished, the model lets the base grid go.
std::string design(bool finished = true)
{
    return vlm::small_design(finished);
}

vmiObject* only_object(vmiNode* n)
{
    return n && n->no_of_objects() == 1 ? n->objects()[0] : nullptr;
}

std::vector<std::string> child_names(vmiNode* n)
{
    std::vector<std::string> names;
    for (vmiNode* c = n ? n->first_child() : nullptr; c; c = c->next())
        names.push_back(c->name().str());
    return names;
}

} // namespace

TEST(vmiFile, FillNode_BuildsRootLevelGroupsAndScanGroupNamedAfterTheLevel2Title)
{
    vmiFile f;
    process(f, {{5, scan()}}, groups().level3(1, 1, 0, 101, "2021-01-01", "scan", "", 5));
    ASSERT_NE(f.root(), nullptr);
    EXPECT_EQ(f.num_objects(), 1);
    EXPECT_EQ(f.root()->name(), utString("Data Base"));
    EXPECT_EQ(child_names(f.root()), std::vector<std::string>{"Client,Case"});
    vmiNode* l2 = f.root()->first_child()->first_child();
    ASSERT_NE(l2, nullptr);
    EXPECT_EQ(l2->name(), utString("Scans : Left"));
    EXPECT_EQ(l2->type(), vmiNode::level2_type);
    EXPECT_EQ(child_names(l2), std::vector<std::string>{"VelmScan(Scans)"});
    vmiNode* s = f.find_node(utString("SCAN_(LEFT)_2021-01-01"));
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->type(), vmiNode::scan_type);
    vmiObject* o = only_object(s);
    ASSERT_NE(o, nullptr);
    EXPECT_EQ(o->type(), vmiObject::grid_type);
    EXPECT_EQ(o->name(), utString("SCAN_(LEFT)_2021-01-01"));
    EXPECT_EQ(o->layer_name(), utString("SCAN_(LEFT)_2021-01-01"));
    EXPECT_EQ(o->level(), 10);
}

TEST(vmiFile, FillNode_ScanRecordOfType2206IsSkippedWithEveryOptionOn)
{
    vmiFile f;
    process(f, {{5, scan()}}, groups().level3(1, 1, 0, 206, "d", "scan", "", 5));
    ASSERT_NE(f.root(), nullptr);
    EXPECT_EQ(f.find_node(utString("VelmScan(Scans)")), nullptr);
    EXPECT_EQ(f.common_no_of_obj(), 0);
}

TEST(vmiFile, FillNode_Type2Of101And1BothGiveTheLeftSideAndAnImageOf201KeepsThePreviousScansSide)
{
    vmiFile f;
    process(f, {{5, scan()}, {6, image()}},
            groups()
                .level3(1, 1, 0, 102, "a", "", "", 5)
                .level3(1, 2, 0, 101, "b", "", "", 5)
                .level3(1, 3, 0, 2, "c", "", "", 5)
                .level3(1, 4, 0, 1, "d", "", "", 5)
                .level3(1, 5, 0, 201, "e", "", "", 6));
    vmiNode* group = f.find_node(utString("VelmScan(Scans)"));
    EXPECT_EQ(child_names(group), (std::vector<std::string>{"SCAN_(RIGHT)_a", "SCAN_(LEFT)_b", "SCAN_(RIGHT)_c",
                                                            "SCAN_(LEFT)_d", "SCAN_(LEFT)_d"}));
    vmiObject* im = only_object(group->last_child());
    ASSERT_NE(im, nullptr);
    EXPECT_EQ(im->name(), utString("IMAGE_(LEFT)_e"));
    EXPECT_EQ(im->type(), vmiObject::cloud_type);
}

TEST(vmiFile, FillNode_TwoScansGetLevels10And11AndTheFollowingImageTheSecondScansLevelAndLayer)
{
    vmiFile f;
    process(f, {{5, scan()}, {6, image()}},
            groups()
                .level3(1, 1, 0, 101, "first", "", "", 5)
                .level3(1, 2, 0, 102, "second", "", "", 5)
                .level3(1, 3, 0, 202, "pic", "", "", 6));
    vmiNode* group = f.find_node(utString("VelmScan(Scans)"));
    ASSERT_EQ(child_names(group).size(), 3u);
    vmiNode* first = group->first_child();
    vmiNode* second = first->next();
    vmiNode* img = second->next();
    EXPECT_EQ(only_object(first)->level(), 10);
    EXPECT_EQ(only_object(second)->level(), 11);
    EXPECT_EQ(only_object(img)->level(), 11);
    EXPECT_EQ(only_object(img)->layer_name(), utString("SCAN_(RIGHT)_second"));
    EXPECT_EQ(img->name(), utString("SCAN_(RIGHT)_second"));
    EXPECT_EQ(only_object(img)->name(), utString("IMAGE_(RIGHT)_pic"));
    EXPECT_EQ(f.common_no_of_obj(10), 1);
    // The image shares the level of its scan.
    EXPECT_EQ(f.common_no_of_obj(11), 2);
}

TEST(vmiFile, FillNode_LevelsStartAt10AgainInTheNextCatalogue)
{
    vmiFile f;
    process(f, {{5, scan()}}, groups().level3(1, 1, 0, 101, "a", "", "", 5).level3(1, 2, 0, 101, "b", "", "", 5));
    process(f, {{5, scan()}}, groups().level3(1, 1, 0, 101, "c", "", "", 5));
    EXPECT_EQ(only_object(f.find_node(utString("SCAN_(LEFT)_c")))->level(), 10);
    // The second catalogue's level-1 group joins the same root.
    EXPECT_EQ(child_names(f.root()), (std::vector<std::string>{"Client,Case", "Client,Case"}));
}

TEST(vmiFile, FillNode_WithScanDataOffAndImagesOnARecordOfType2Of2IsTakenAsAnImage)
{
    option_set off(vmiFile::opt_process_scan_data, 0);
    vmiFile f;
    process(f, {{6, image()}}, groups().level3(1, 1, 0, 2, "d", "", "", 6));
    vmiNode* group = f.find_node(utString("VelmScan(Scans)"));
    ASSERT_NE(group, nullptr);
    ASSERT_EQ(child_names(group).size(), 1u);
    vmiObject* im = only_object(group->first_child());
    ASSERT_NE(im, nullptr);
    // Its side is still set from type2; with no scan before it, its level is
    // 0 and its names are the latest built, the level-2 group's.
    EXPECT_EQ(im->name(), utString("IMAGE_(RIGHT)_d"));
    EXPECT_EQ(im->level(), 0);
    EXPECT_EQ(im->layer_name(), utString("Scans : Left"));
    EXPECT_EQ(group->first_child()->name(), utString("Scans : Left"));
}

TEST(vmiFile, FillNode_WithScanDataOffAScanModelEntryGivesNoObject)
{
    option_set off(vmiFile::opt_process_scan_data, 0);
    vmiFile f;
    process(f, {{5, scan()}}, groups().level3(1, 1, 0, 101, "d", "", "", 5));
    EXPECT_EQ(f.common_no_of_obj(), 0);
    // The scan group was made and stays empty.
    ASSERT_NE(f.find_node(utString("VelmScan(Scans)")), nullptr);
}

TEST(vmiFile, FillNode_ImageBeforeAnyScanTakesLevel0AndTheLatestBuiltName)
{
    vmiFile f;
    process(f, {{6, image()}}, groups().level3(1, 1, 0, 150, "d", "", "", 6));
    vmiNode* group = f.find_node(utString("VelmScan(Scans)"));
    ASSERT_NE(group, nullptr);
    vmiObject* im = only_object(group->first_child());
    ASSERT_NE(im, nullptr);
    EXPECT_EQ(im->level(), 0);
    EXPECT_EQ(im->layer_name(), utString("Scans : Left"));
    EXPECT_EQ(im->name(), utString("IMAGE_d"));
}

TEST(vmiFile, FillNode_ModelWhoseRefIndxMatchesNoRecordIsBuiltWithoutAGrid)
{
    vmiFile f;
    process(f, {{8, design()}}, groups().level3(3, 1, 99, 2, "m", "", "", 8));
    vmiNode* models = f.find_node(utString("PCS models(Scans)"));
    ASSERT_NE(models, nullptr);
    vmiNode* model = models->first_child();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->name(), utString("MODEL_(RIGHT)_m"));
    EXPECT_EQ(model->type(), vmiNode::model_type);
    ASSERT_NE(model->velmcontur(), nullptr);
    EXPECT_EQ(model->velmcontur()->base_grid(), nullptr);
    EXPECT_EQ(model->velmcontur()->identifier(), 0);
    EXPECT_EQ(f.contour_counter(), 1);
    EXPECT_GT(f.common_no_of_obj(), 0);
}

TEST(vmiFile, FillNode_ModelTakesTheGridOfTheRecordItRefersToAndTheContourCounter)
{
    vmiFile f;
    process(f, {{5, scan(3, 4)}, {8, design()}, {9, design(false)}},
            groups()
                .level3(1, 7, 0, 101, "s", "", "", 5)
                .level3(3, 1, 7, 1, "m1", "", "", 9)
                .level3(3, 2, 7, 2, "m2", "", "", 8));
    vmiNode* models = f.find_node(utString("PCS models(Scans)"));
    EXPECT_EQ(child_names(models), (std::vector<std::string>{"MODEL_(LEFT)_m1", "MODEL_(RIGHT)_m2"}));
    vmiVelmcontur* first = models->first_child()->velmcontur();
    ASSERT_NE(first, nullptr);
    ASSERT_NE(first->base_grid(), nullptr);
    EXPECT_EQ(first->base_grid()->x_size(), 3);
    EXPECT_EQ(first->base_grid()->y_size(), 4);
    EXPECT_EQ(first->identifier(), 0);
    EXPECT_EQ(models->last_child()->velmcontur()->identifier(), 1);
    EXPECT_NE(f.find_obj(utString("FINISH_MODEL~1")), nullptr);
}

TEST(vmiFile, FillNode_ModelEntryThatIsNotContourTextMakesNoNode)
{
    vmiFile f;
    process(f, {{8, "0002 not a design"}, {9, scan()}},
            groups().level3(3, 1, 0, 1, "m", "", "", 8).level3(3, 2, 0, 1, "n", "", "", 9));
    vmiNode* models = f.find_node(utString("PCS models(Scans)"));
    ASSERT_NE(models, nullptr);
    EXPECT_EQ(models->first_child(), nullptr);
    EXPECT_EQ(f.contour_counter(), 0);
}

TEST(vmiFile, FillNode_RecordsBeforeAnyLevel2GroupAreSkipped)
{
    vmiFile f;
    process(f, {{5, scan()}, {8, design()}},
            vlm::catalogue()
                .separator()
                .level1("Client", "Case")
                .level3(1, 1, 0, 101, "early", "", "", 5)
                .level3(3, 2, 0, 1, "early", "", "", 8)
                .level2("Left", "Scans")
                .level3(1, 3, 0, 101, "late", "", "", 5));
    EXPECT_EQ(f.find_node(utString("SCAN_(LEFT)_early")), nullptr);
    EXPECT_EQ(f.find_node(utString("MODEL_(LEFT)_early")), nullptr);
    EXPECT_EQ(f.find_node(utString("PCS models(Scans)")), nullptr);
    EXPECT_EQ(f.contour_counter(), 0);
    // The skipped scan took no level.
    EXPECT_EQ(only_object(f.find_node(utString("SCAN_(LEFT)_late")))->level(), 10);
}

TEST(vmiFile, FillNode_Level2GroupBeforeAnyLevel1GroupStaysOutOfTheTree)
{
    vmiFile f;
    process(f, {{5, scan()}},
            vlm::catalogue()
                .separator()
                .level2("Orphan", "Group")
                .level3(1, 1, 0, 101, "orphan", "", "", 5)
                .level1("Client", "Case")
                .level2("Left", "Scans")
                .level3(1, 2, 0, 101, "kept", "", "", 5));
    EXPECT_EQ(f.find_node(utString("Group : Orphan")), nullptr);
    EXPECT_EQ(f.find_node(utString("SCAN_(LEFT)_orphan")), nullptr);
    // The scan under the orphan group took level 10 all the same.
    EXPECT_EQ(only_object(f.find_node(utString("SCAN_(LEFT)_kept")))->level(), 11);
}

TEST(vmiFile, FillNode_WithEveryOptionOffLevelGroupsStayAndTheLevel2GroupsAreEmpty)
{
    option_set scans(vmiFile::opt_process_scan_data, 0);
    option_set images(vmiFile::opt_process_image_data, 0);
    option_set orthotics(vmiFile::opt_process_orthotic_data, 0);
    vmiFile f;
    process(f, {{5, scan()}, {6, image()}, {8, design()}},
            groups()
                .level3(1, 1, 0, 101, "s", "", "", 5)
                .level3(1, 2, 0, 201, "i", "", "", 6)
                .level3(3, 3, 1, 1, "m", "", "", 8));
    ASSERT_EQ(f.num_objects(), 1);
    vmiNode* l2 = f.find_node(utString("Scans : Left"));
    ASSERT_NE(l2, nullptr);
    EXPECT_EQ(l2->first_child(), nullptr);
    EXPECT_FALSE(f.scan_data_on());
    EXPECT_FALSE(f.image_data_on());
    EXPECT_FALSE(f.orthotic_data_on());
}

TEST(vmiFile, FillNode_OptionsAreReadAgainAtEveryCatalogue)
{
    vmiFile f;
    {
        option_set off(vmiFile::opt_process_scan_data, 0);
        process(f, {{5, scan()}}, groups().level3(1, 1, 0, 101, "off", "", "", 5));
    }
    process(f, {{5, scan()}}, groups().level3(1, 1, 0, 101, "on", "", "", 5));
    EXPECT_EQ(f.find_node(utString("SCAN_(LEFT)_off")), nullptr);
    EXPECT_NE(f.find_node(utString("SCAN_(LEFT)_on")), nullptr);
}

TEST(vmiFile, FillNode_ReadOfAWholeArchiveReportsTheRoot)
{
    vlm::archive a;
    a.add("VLM00005.dat", vlm::chunk_chain(scan(), 100));
    a.add("00000.vlk", groups().level3(1, 1, 0, 101, "d", "", "", 5).text());
    const std::string path = vlm::temp_path("fill_whole.vlm");
    ASSERT_TRUE(a.write(path));
    vmiFile f;
    EXPECT_EQ(f.read(utString(path)), 1);
    EXPECT_EQ(f.common_no_of_obj(), 1);
    std::remove(path.c_str());
}

namespace {

struct big_walk {
    vmiFile* file;
    int count = -1;
    vmiObject* found = nullptr;
    vmiNode* missing = reinterpret_cast<vmiNode*>(1);
};

void* walk_big(void* arg)
{
    auto* w = static_cast<big_walk*>(arg);
    w->count = w->file->common_no_of_obj();
    w->found = w->file->find_obj(utString("SCAN_(LEFT)_last"));
    w->missing = w->file->find_node(utString("nowhere"));
    return nullptr;
}

} // namespace

TEST(vmiFile, FillNode_CatalogueOf100000RecordsIsWalkedOnASmallStack)
{
    // 99999 level-2 groups in one level-1 group, the last with a scan: the
    // walks loop over the level-2 list and fit in 256 KiB of stack.
    constexpr int records = 100000;
    vmiFile f;
    add_entry(f, vmiEntryKind::data, 5, scan());
    f.catalogue().add(new vmiVlkElement(1));
    for (int k = 0; k < records - 2; ++k) {
        vmiVlkElement* e = new vmiVlkElement(2);
        e->name1(utString("g"));
        f.catalogue().add(e);
    }
    vmiVlkElement* s = new vmiVlkElement(3);
    s->type1(1);
    s->type2(101);
    s->date(utString("last"));
    s->data_indx(5);
    f.catalogue().add(s);
    f.fill_node();
    f.catalogue().free();
    f.archive().free();

    big_walk w{&f};
    pthread_attr_t attr;
    ASSERT_EQ(pthread_attr_init(&attr), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attr, 256 * 1024), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attr, walk_big, &w), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attr);
    // The last level-2 group's object is counted once for it and once for
    // each level-2 group before it.
    EXPECT_EQ(w.count, records - 2);
    EXPECT_NE(w.found, nullptr);
    EXPECT_EQ(w.missing, nullptr);
}

TEST(vmiFile, FillNode_RecordsWhosePointsWouldPassTheTreesBudgetAreSkipped)
{
    // The budget is lowered to 10 points: two 2 x 2 scans fit, a third scan
    // and the image do not, nor does a model with its grids.
    vmiFile f;
    f.set_point_budget(10);
    process(f, {{5, scan()}, {6, image()}, {8, design()}},
            groups()
                .level3(1, 1, 0, 101, "a", "", "", 5)
                .level3(1, 2, 0, 101, "b", "", "", 5)
                .level3(1, 3, 0, 101, "c", "", "", 5)
                .level3(1, 4, 0, 201, "i", "", "", 6)
                .level3(3, 5, 0, 1, "m", "", "", 8));
    EXPECT_NE(f.find_node(utString("SCAN_(LEFT)_a")), nullptr);
    EXPECT_NE(f.find_node(utString("SCAN_(LEFT)_b")), nullptr);
    EXPECT_EQ(f.find_node(utString("SCAN_(LEFT)_c")), nullptr);
    EXPECT_EQ(f.find_obj(utString("IMAGE_(LEFT)_i")), nullptr);
    EXPECT_EQ(f.find_node(utString("MODEL_(LEFT)_m")), nullptr);
    EXPECT_EQ(f.contour_counter(), 0);
    EXPECT_EQ(f.tree_points(), 8);
    // A record that does fit is still taken after one that did not.
    vmiFile g;
    g.set_point_budget(7);
    process(g, {{5, scan(3, 3)}, {6, scan(1, 1)}},
            groups().level3(1, 1, 0, 101, "big", "", "", 5).level3(1, 2, 0, 101, "small", "", "", 6));
    EXPECT_EQ(g.find_node(utString("SCAN_(LEFT)_big")), nullptr);
    EXPECT_EQ(only_object(g.find_node(utString("SCAN_(LEFT)_small")))->level(), 10);
}

TEST(vmiFile, FillNode_RecordFillingTheBudgetExactlyIsTakenAndOnePointPastIsNot)
{
    // Two 2 x 2 scans hold 8 points: with a budget of 8 both are taken, with
    // 7 the second is not.
    for (long long budget : {8LL, 7LL}) {
        vmiFile f;
        f.set_point_budget(budget);
        process(f, {{5, scan()}},
                groups().level3(1, 1, 0, 101, "a", "", "", 5).level3(1, 2, 0, 101, "b", "", "", 5));
        EXPECT_NE(f.find_node(utString("SCAN_(LEFT)_a")), nullptr) << budget;
        EXPECT_EQ(f.find_node(utString("SCAN_(LEFT)_b")) != nullptr, budget == 8) << budget;
        EXPECT_EQ(f.tree_points(), budget == 8 ? 8 : 4) << budget;
    }
}

TEST(vmiFile, TreeBudget_HoldsTheLargestGridAndTheLargestImage)
{
    // A scan or an image at its own bound must still fit the budget of a
    // tree, or it could never be read.
    EXPECT_GE(vmiFile::max_tree_points, vmiBaseGrid::max_nodes);
    EXPECT_GE(vmiFile::max_tree_points, vmiFile::max_image_pixels);
}
