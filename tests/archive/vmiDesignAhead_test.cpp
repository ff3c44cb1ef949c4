// vmiDesignAhead: a design built on a second thread is taken only by its
// record with the identifier it was built with; the tree a reader builds with
// designs ahead is the one it builds without, bit for bit, when designs are
// kept, refused, or skipped on the way.
#include "archive/vmiDesignAhead.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>

#include "archive/vmiFile.h"
#include "archive/vmiNode.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObject.h"
#include "archive/vmiVlkElement.h"
#include "contour/vmiVelmcontur.h"
#include "grid/vmiBaseGrid.h"
#include "tests/support/contourText.h"
#include "tests/support/demoArchive.h"
#include "tests/support/fileEntries.h"
#include "tests/support/vlmWriter.h"

namespace {

bool two_processors()
{
    return std::thread::hardware_concurrency() > 1;
}

// Everything the tree holds, as bytes: each node's name and type, each
// object's name, each design's identifier and its objects, and every grid
// node's coordinates to the bit.
void describe(vmiNode* n, std::string& out);

void describe(vmiObject* o, std::string& out)
{
    if (!o)
        return;
    out += "object " + o->name().str() + "\n";
    if (vmiObjGrid* g = o->grid())
        if (vmiBaseGrid* grid = g->grid()) {
            out += std::to_string(grid->x_size()) + "x" + std::to_string(grid->y_size()) + "\n";
            for (int j = 0; j < grid->y_size(); ++j)
                for (int i = 0; i < grid->x_size(); ++i)
                    out.append(reinterpret_cast<const char*>(&grid->point(i, j)), sizeof(m03DPoint));
        }
}

void describe(vmiNode* n, std::string& out)
{
    for (; n; n = n->next()) {
        out += "node " + n->name().str() + " " + std::to_string(n->type()) + "\n";
        for (vmiObject* o : n->objects())
            describe(o, out);
        if (vmiVelmcontur* v = n->velmcontur()) {
            out += "design " + std::to_string(v->identifier()) + " " + std::to_string(v->work().used()) + "\n";
            for (vmiObject* o : v->objects())
                describe(o, out);
        }
        describe(n->first_child(), out);
    }
}

// The tree the reader builds of path, with or without designs ahead, and the
// design work limit.
std::string tree_of(const std::string& path, bool ahead, long long work_limit = vmiWorkBudget::max_design_work)
{
    vmiFile f;
    f.set_designs_ahead(ahead);
    f.set_design_work_limit(work_limit);
    if (!f.read(utString(path)))
        return "nothing read";
    std::string out;
    describe(f.root(), out);
    return out;
}

class DemoFile {
public:
    // One file per test and process: ctest runs the tests side by side.
    DemoFile()
        : path_(testing::TempDir() + "vmiDesignAhead_" +
                testing::UnitTest::GetInstance()->current_test_info()->name() + "_" + std::to_string(getpid()) + ".vlm")
    {
        ok_ = vlm::demo::write_archive(path_);
    }
    ~DemoFile() { std::remove(path_.c_str()); }
    const std::string& path() const { return path_; }
    bool ok() const { return ok_; }

private:
    std::string path_;
    bool ok_ = false;
};

// A small design's text, kept for the designs built from it.
struct DesignText {
    std::string text = vlm::small_design(true);
    const char* data() const { return text.data(); }
    int length() const { return static_cast<int>(text.size()); }
};

}  // namespace

TEST(vmiDesignAhead, TakeOfARecordNeverHandedOverIsNull)
{
    vmiDesignAhead ahead(true);
    vmiVlkElement record(3);
    EXPECT_EQ(ahead.take(&record, 0), nullptr);
    EXPECT_EQ(ahead.free(), two_processors());
}

TEST(vmiDesignAhead, DesignBuiltAheadIsTheRecordsWithItsIdentifier)
{
    if (!two_processors())
        GTEST_SKIP() << "one processor: nothing is built ahead";
    const DesignText text;
    vmiDesignAhead ahead(true);
    vmiVlkElement record(3), other(3);
    ahead.start(&record, text.data(), text.length(), 7, nullptr, vmiWorkBudget::max_design_work);
    EXPECT_FALSE(ahead.free());
    // Another record does not get it, nor waits for it.
    EXPECT_EQ(ahead.take(&other, 7), nullptr);
    std::unique_ptr<vmiVelmcontur> design(ahead.take(&record, 7));
    ASSERT_NE(design, nullptr);
    EXPECT_EQ(design->identifier(), 7);
    EXPECT_TRUE(ahead.free());
    // The same as the record builds itself.
    std::string text_copy = text.text;
    vmiVelmcontur own(text_copy.data(), text.length(), 7, nullptr, vmiWorkBudget::max_design_work);
    std::string a, b;
    for (vmiObject* o : design->objects())
        describe(o, a);
    for (vmiObject* o : own.objects())
        describe(o, b);
    EXPECT_FALSE(a.empty());
    EXPECT_EQ(a, b);
}

TEST(vmiDesignAhead, DesignBuiltWithAnotherIdentifierIsDroppedAndTheRecordBuildsItsOwn)
{
    if (!two_processors())
        GTEST_SKIP() << "one processor: nothing is built ahead";
    const DesignText text;
    vmiDesignAhead ahead(true);
    vmiVlkElement record(3);
    ahead.start(&record, text.data(), text.length(), 3, new vmiBaseGrid(4, 4, 1.0, 1.0),
                vmiWorkBudget::max_design_work);
    // The record before was not kept: this one gets 2, not 3.
    EXPECT_EQ(ahead.take(&record, 2), nullptr);
    EXPECT_TRUE(ahead.free());
}

TEST(vmiDesignAhead, DesignNeverTakenIsFreedWithTheHelper)
{
    // Checked by the leak checker of the sanitizer builds.
    const DesignText text;
    vmiDesignAhead ahead(true);
    vmiVlkElement record(3);
    ahead.start(&record, text.data(), text.length(), 0, new vmiBaseGrid(4, 4, 1.0, 1.0),
                vmiWorkBudget::max_design_work);
}

TEST(vmiDesignAhead, DisabledBuildsNothingAndFreesTheGridHandedOver)
{
    const DesignText text;
    vmiDesignAhead ahead(false);
    EXPECT_FALSE(ahead.free());
    vmiVlkElement record(3);
    ahead.start(&record, text.data(), text.length(), 0, new vmiBaseGrid(4, 4, 1.0, 1.0),
                vmiWorkBudget::max_design_work);
    EXPECT_EQ(ahead.take(&record, 0), nullptr);
}

TEST(vmiDesignAhead, DemoTreeIsTheSameWithAndWithoutDesignsAhead)
{
    DemoFile demo;
    ASSERT_TRUE(demo.ok());
    const std::string alone = tree_of(demo.path(), false);
    ASSERT_NE(alone, "nothing read");
    EXPECT_NE(alone.find("design 3"), std::string::npos);
    EXPECT_TRUE(tree_of(demo.path(), true) == alone) << "the trees differ";
}

TEST(vmiDesignAhead, DesignsRefusedOnTheWayGiveTheSameTree)
{
    // A work limit between the lighter and the heavier designs' work refuses
    // some: the design built ahead after a refused one was given the
    // identifier it would have had, which is not its record's, and is built
    // again.
    DemoFile demo;
    ASSERT_TRUE(demo.ok());
    vmiFile f;
    f.set_designs_ahead(false);
    ASSERT_TRUE(f.read(utString(demo.path())));
    long long least = vmiWorkBudget::max_design_work, most = 0;
    std::string unused;
    for (const char* name : {"PCS models(Erstversorgung)", "PCS models(Kontrolle)"}) {
        vmiNode* models = f.find_node(utString(name));
        ASSERT_NE(models, nullptr) << name;
        for (vmiNode* m = models->first_child(); m; m = m->next()) {
            ASSERT_NE(m->velmcontur(), nullptr);
            least = std::min(least, m->velmcontur()->work().used());
            most = std::max(most, m->velmcontur()->work().used());
        }
    }
    ASSERT_LT(least, most);
    const long long limit = (least + most) / 2;
    const std::string alone = tree_of(demo.path(), false, limit);
    // Some designs kept (numbered from 0), not all four.
    EXPECT_NE(alone.find("design 0"), std::string::npos);
    EXPECT_EQ(alone.find("design 3"), std::string::npos);
    EXPECT_TRUE(tree_of(demo.path(), true, limit) == alone) << "the trees differ";
}

namespace {

// The tree a catalogue makes of data entries, with or without designs ahead,
// and the contour counter after it.
std::string catalogue_tree(bool ahead, long long work_limit, const std::vector<std::pair<int, std::string>>& data,
                           const vlm::catalogue& c)
{
    vmiFile f;
    f.set_designs_ahead(ahead);
    f.set_design_work_limit(work_limit);
    vlm::process(f, data, c);
    std::string out;
    describe(f.root(), out);
    return out + "counter " + std::to_string(f.contour_counter()) + "\n";
}

// A design that asks for a working grid of 600 x 600 nodes and does nothing
// else: 360000 units of work at once.
std::string heavy_design()
{
    return vlm::contour_text().kerneldata(600, 600, 1.0, 1.0, 10.0, 10.0).end().text();
}

// Three models over one scan: a heavy design refused by a work limit of
// 100000, then two small designs that are kept, as 0 and 1; the first of
// them is built ahead while the heavy one is, as if the heavy one were kept.
std::string three_models_tree(bool ahead)
{
    return catalogue_tree(ahead, 100000,
                          {{7, heavy_design()}, {8, vlm::small_design(true)}, {9, vlm::small_design(false)}},
                          vlm::catalogue()
                              .separator()
                              .level1("Client", "Case")
                              .level2("Left", "Scans")
                              .level3(3, 1, 0, 101, "heavy", "", "", 7)
                              .level3(3, 2, 0, 102, "kept", "", "", 8)
                              .level3(3, 3, 0, 101, "also", "", "", 9));
}

// A model before any level-2 group (skipped: its design, started at once on
// the second thread, is dropped), then two models that are kept.
std::string skipped_first_tree(bool ahead)
{
    return catalogue_tree(ahead, vmiWorkBudget::max_design_work,
                          {{7, vlm::small_design(true)}, {8, vlm::small_design(false)}},
                          vlm::catalogue()
                              .separator()
                              .level1("Client", "Case")
                              .level3(3, 1, 0, 101, "nowhere", "", "", 7)
                              .level2("Left", "Scans")
                              .level3(3, 2, 0, 102, "first", "", "", 8)
                              .level3(3, 3, 0, 101, "second", "", "", 7));
}

}  // namespace

TEST(vmiDesignAhead, DesignAfterARefusedOneIsBuiltAgainWithItsOwnIdentifier)
{
    const std::string alone = three_models_tree(false);
    EXPECT_NE(alone.find("design 0"), std::string::npos);
    EXPECT_NE(alone.find("design 1"), std::string::npos);
    EXPECT_NE(alone.find("object FINISH_MODEL~0"), std::string::npos);
    EXPECT_NE(alone.find("counter 2"), std::string::npos);
    EXPECT_EQ(three_models_tree(true), alone);
}

TEST(vmiDesignAhead, ModelSkippedBeforeAnyGroupGivesTheSameTree)
{
    const std::string alone = skipped_first_tree(false);
    EXPECT_NE(alone.find("node MODEL_(RIGHT)_first"), std::string::npos);
    EXPECT_NE(alone.find("design 1"), std::string::npos);
    EXPECT_NE(alone.find("counter 2"), std::string::npos);
    EXPECT_EQ(skipped_first_tree(true), alone);
}
