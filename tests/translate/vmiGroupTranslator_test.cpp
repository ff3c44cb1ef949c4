// Group translators: names, members and the walk through a tree.
#include "translate/vmiGroupTranslator.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "archive/vmiObjCloud.h"
#include "archive/vmiObjGrid.h"
#include "archive/vmiObjPoly.h"
#include "archive/vmiObjSpline.h"
#include "archive/vmiObject.h"
#include "curves/m03DPoint.h"
#include "curves/m03DVector.h"
#include "host/qorabsContext.h"
#include "host/stoClass.h"
#include "tests/translate/RecordingSink.h"
#include "tests/translate/VtableSlot.h"
#include "translate/vmiMangler.h"
#include "translate/vmiObjectTranslator.h"
#include "translate/vmiPointsCloudTranslator.h"
#include "translate/vmiPolylineTranslator.h"
#include "translate/vmiSplineTranslator.h"
#include "translate/vmiTriblockTranslator.h"

namespace {

std::unique_ptr<vmiObject> grid_object(const char* name)
{
    auto* pts = new m03DPoint[4]{{0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}};
    auto o = std::make_unique<vmiObject>(new vmiObjGrid(utString(name), pts, 2, 2, 1.0, 1.0));
    o->level(10);
    o->layer_name(utString(name));
    return o;
}

std::unique_ptr<vmiObject> poly_object(const char* name)
{
    auto* v = new m03DVector(2);
    v->set_point(0, m03DPoint(0, 0, 0));
    v->set_point(1, m03DPoint(1, 0, 0));
    return std::make_unique<vmiObject>(new vmiObjPoly(utString(name), v));
}

std::unique_ptr<vmiObject> spline_object(const char* name)
{
    auto* v = new m03DVector(3);
    for (int k = 0; k < 3; k++)
        v->set_point(k, m03DPoint(10.0 * k, 3.0 * (k % 2), 0));
    return std::make_unique<vmiObject>(new vmiObjSpline(utString(name), v));
}

std::unique_ptr<vmiObject> cloud_object(const char* name)
{
    auto* p = new m03DPoint[1]{{1, 2, 3}};
    auto* c = new int[1]{0x0000FF};
    return std::make_unique<vmiObject>(new vmiObjCloud(utString(name), p, c, 1));
}

}  // namespace

TEST(vmiGroupTranslator, Walk_ChildOfVelmScanGroupIsMangledWithTheGroupName)
{
    qorabsContext context;
    auto scan = grid_object("SCAN_(LEFT)_x");
    auto group = vmiGroupTranslator::make(utString("VelmScan(A)"), giXform3(), context);
    auto leaf = vmiGroupTranslator::make(utString("SCAN_(LEFT)_x"), giXform3(), context);
    leaf->add_object(scan.get());
    group->add_translator(leaf);
    RecordingSink sink;
    group->process(sink, nullptr);
    ASSERT_EQ(sink.events.size(), 5u);
    EXPECT_EQ(sink.events[0].mangled, "VelmScan(A)");
    EXPECT_EQ(sink.events[1].kind, "begin");
    EXPECT_EQ(sink.events[1].name, "SCAN_(LEFT)_x");
    EXPECT_EQ(sink.events[1].mangled, "VelmScan(A)_SCAN_(LEFT)_x");
    EXPECT_EQ(sink.events[2].kind, "triblock");
    EXPECT_EQ(sink.events[2].mangled, "SCAN_(LEFT)_x_SCAN_(LEFT)_x");
    EXPECT_EQ(sink.events[3].kind, "end");
    EXPECT_EQ(sink.events[4].kind, "end");
}

TEST(vmiGroupTranslator, Attributes_NameOnlyAndNeverColour)
{
    qorabsContext context;
    vmiGroupTranslator g(utString("Data Base"), giXform3(), context);
    qorabsAttributeSet set;
    g.attributes(set);
    ASSERT_EQ(set.size(), 1);
    EXPECT_EQ(set.id(0), NAME);
    EXPECT_EQ(set.name()->name(), utString("Data Base"));
    EXPECT_EQ(set.name()->flags(), 0);
    EXPECT_FALSE(set.has(COLOUR));
}

TEST(vmiGroupTranslator, CreateNameMangler_IsAVmiManglerWithTheGroupName)
{
    qorabsContext context;
    vmiGroupTranslator g(utString("PCS models(B)"), giXform3(), context);
    std::unique_ptr<qorabsNameMangler> m = g.create_name_mangler();
    auto* vm = dynamic_cast<vmiMangler*>(m.get());
    ASSERT_NE(vm, nullptr);
    EXPECT_EQ(vm->prefix(), utString("PCS models(B)"));
}

TEST(vmiGroupTranslator, Construct_GroupOfTheHostsGroupClassWithTheNodesXform)
{
    qorabsContext context;
    giXform3 x;
    x.premultiply_translation(giVector3(12.5, -3.0, 0.0));
    vmiGroupTranslator g(utString("G"), x, context);
    EXPECT_EQ(g.compound_object_type(), sto_class_annGroup());
    EXPECT_EQ(g.compound_object_type()->name(), utString("annGroup"));
    EXPECT_EQ(g.context(), &context);
    RecordingSink sink;
    g.process(sink, nullptr);
    ASSERT_EQ(sink.events.size(), 2u);
    EXPECT_EQ(sink.events[0].xform, x);
}

TEST(vmiGroupTranslator, AddObject_MakesTheTranslatorThatFitsTheType)
{
    qorabsContext context;
    auto grid = grid_object("g");
    auto poly = poly_object("p");
    auto spl = spline_object("s");
    auto cld = cloud_object("c");
    EXPECT_TRUE(dynamic_cast<vmiTriblockTranslator*>(vmi_object_translator(grid.get(), context).get()));
    EXPECT_TRUE(dynamic_cast<vmiPolylineTranslator*>(vmi_object_translator(poly.get(), context).get()));
    EXPECT_TRUE(dynamic_cast<vmiSplineTranslator*>(vmi_object_translator(spl.get(), context).get()));
    EXPECT_TRUE(dynamic_cast<vmiPointsCloudTranslator*>(vmi_object_translator(cld.get(), context).get()));
}

TEST(vmiGroupTranslator, AddObject_SkipsNullAndObjectsOfOtherTypes)
{
    qorabsContext context;
    vmiGroupTranslator g(utString("G"), giXform3(), context);
    vmiObject none;
    EXPECT_EQ(g.add_object(nullptr), 0);
    EXPECT_EQ(g.add_object(&none), 0);
    EXPECT_EQ(g.num_translators(), 0);
    auto grid = grid_object("g");
    EXPECT_EQ(g.add_object(grid.get()), 1);
    EXPECT_EQ(g.num_translators(), 1);
}

TEST(vmiGroupTranslator, Walk_DeliversMembersInOrderWithTheirKinds)
{
    qorabsContext context;
    auto grid = grid_object("g");
    auto poly = poly_object("p");
    auto spl = spline_object("s");
    auto cld = cloud_object("c");
    auto g = vmiGroupTranslator::make(utString("MODEL_(LEFT)_d"), giXform3(), context);
    for (vmiObject* o : {grid.get(), poly.get(), spl.get(), cld.get()})
        g->add_object(o);
    RecordingSink sink;
    EXPECT_EQ(g->process(sink, nullptr), qorabsTranslationStatus(0));
    std::vector<std::string> kinds;
    std::vector<std::string> mangled;
    for (const SinkEvent& e : sink.events) {
        kinds.push_back(e.kind);
        mangled.push_back(e.mangled);
    }
    EXPECT_EQ(kinds, (std::vector<std::string>{"begin", "triblock", "curve", "curve", "pointcloud", "end"}));
    EXPECT_EQ(mangled[1], "MODEL_(LEFT)_d_g");
    EXPECT_EQ(mangled[4], "MODEL_(LEFT)_d_c");
    EXPECT_EQ(g->num_items(), 4);
    EXPECT_EQ(g->num_rejected(), 0);
}

TEST(vmiGroupTranslator, Walk_MemberWithoutGeometryIsCountedAsRejected)
{
    qorabsContext context;
    vmiObject empty_spline(new vmiObjSpline(utString("none"), nullptr));
    auto g = vmiGroupTranslator::make(utString("G"), giXform3(), context);
    g->add_object(&empty_spline);
    RecordingSink sink;
    g->process(sink, nullptr);
    ASSERT_EQ(sink.events.size(), 3u);
    EXPECT_EQ(sink.events[1].status, 1);
    EXPECT_EQ(g->num_items(), 0);
    EXPECT_EQ(g->num_rejected(), 1);
}

// The operations the library overrides sit in the slots the host expects.
TEST(vmiGroupTranslator, Slots_OverriddenOperationsSitInTheirSlots)
{
    EXPECT_EQ(vtable_entry(&vmiGroupTranslator::attributes), entry_of_slot(2, 9));
    EXPECT_EQ(vtable_entry(&vmiGroupTranslator::create_name_mangler), entry_of_slot(17, 9));
    EXPECT_EQ(vtable_entry(&vmiTriblockTranslator::attributes), entry_of_slot(2, 9));
    EXPECT_EQ(vtable_entry(&vmiTriblockTranslator::create_triblock), entry_of_slot(11, 9));
    EXPECT_EQ(vtable_entry(&vmiPolylineTranslator::create_curve), entry_of_slot(11, 9));
    EXPECT_EQ(vtable_entry(&vmiSplineTranslator::create_curve), entry_of_slot(11, 9));
    EXPECT_EQ(vtable_entry(&vmiPointsCloudTranslator::attributes), entry_of_slot(2, 9));
    EXPECT_EQ(vtable_entry(&vmiPointsCloudTranslator::data), entry_of_slot(12, 9));
    EXPECT_EQ(vtable_entry(&vmiMangler::do_mangling), entry_of_slot(1, 2));
}

TEST(vmiGroupTranslator, Slots_OverridesAreReachedThroughTheHostBases)
{
    qorabsContext context;
    auto g = vmiGroupTranslator::make(utString("VelmScan(A)"), giXform3(), context);
    qorabsCompoundTranslator* base = g.get();
    std::unique_ptr<qorabsNameMangler> m = base->create_name_mangler();
    ASSERT_TRUE(m);
    EXPECT_EQ(m->do_mangling(utString("x")), utString("VelmScan(A)_x"));
    qorabsTranslator* t = g.get();
    qorabsAttributeSet set;
    t->attributes(set);
    EXPECT_EQ(set.name()->name(), utString("VelmScan(A)"));
}
