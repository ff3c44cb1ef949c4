// The host's small types the import relies on: resource table, attribute
// set, placements, colours, sets and geometry features.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/annPointCloudData.h"
#include "host/giColour.h"
#include "host/giTriBlock.h"
#include "host/giXform3.h"
#include "host/intcoSet.h"
#include "host/qorResourceTable.h"
#include "host/qorabsAttributeSet.h"
#include "host/qorabsTranslatorCategory.h"
#include "host/qouFileType.h"
#include "host/utStringcoSet.h"

// ---- resource table ----

TEST(qorResourceTable, EnteredOptionReadsItsDefaultOfOne)
{
    qorResourceTable table;
    utBoolcoResourceKey key(utString("optA"));
    EXPECT_EQ(table.enter(key, utBoolcoResource(1)), 1);
    EXPECT_EQ(table.bool_value(key, 0), 1);
    ASSERT_NE(table.find(key), nullptr);
    EXPECT_EQ(table.find(key)->default_value(), 1);
}

TEST(qorResourceTable, ValueSetByTheHostIsReadAtTheNextLookUp)
{
    qorResourceTable table;
    utBoolcoResourceKey key(utString("optA"));
    table.enter(key, utBoolcoResource(1));
    table.set_bool(key, 0);
    EXPECT_EQ(table.bool_value(key, 1), 0);
    table.set_bool(key, 5);
    EXPECT_EQ(table.bool_value(key, 0), 1);
    table.set_bool(key, 0);
    table.reset();
    EXPECT_EQ(table.bool_value(key, 0), 1);
}

TEST(qorResourceTable, EnteringAgainKeepsTheValueInForce)
{
    qorResourceTable table;
    utBoolcoResourceKey key(utString("optA"));
    table.set_bool(key, 0);
    table.enter(key, utBoolcoResource(1));
    EXPECT_EQ(table.bool_value(key, 1), 0);
    EXPECT_EQ(table.size(), 1);
    EXPECT_EQ(table.key_name(0), utString("optA"));
    EXPECT_EQ(table.key_name(1), utString());
}

TEST(qorResourceTable, UnknownKeyGivesTheFallback)
{
    qorResourceTable table;
    EXPECT_EQ(table.bool_value(utBoolcoResourceKey(utString("nothing")), 1), 1);
    EXPECT_EQ(table.bool_value(utBoolcoResourceKey(utString("nothing")), 0), 0);
    EXPECT_EQ(table.find(utBoolcoResourceKey(utString("nothing"))), nullptr);
}

TEST(qorResourceTable, InquireGivesTheOneTableOfTheProcess)
{
    EXPECT_NE(qor_resource_table_inquire(), nullptr);
    EXPECT_EQ(qor_resource_table_inquire(), qor_resource_table_inquire());
}

// ---- attribute set ----

TEST(qorabsAttributeSet, CheckOut_KeepsTheOrderOfFirstCheckOut)
{
    qorabsAttributeSet set;
    qorabsAttribute* kind = nullptr;
    qorabsName* name = nullptr;
    qorabsLayer* layer = nullptr;
    EXPECT_EQ(set.check_out(CURVE, kind), 1);
    EXPECT_EQ(set.check_out(NAME, name), 1);
    EXPECT_EQ(set.check_out(LAYER, layer), 1);
    qorabsName* again = nullptr;
    EXPECT_EQ(set.check_out(NAME, again), 1);
    EXPECT_EQ(again, name);
    ASSERT_EQ(set.size(), 3);
    EXPECT_EQ(set.id(0), CURVE);
    EXPECT_EQ(set.id(1), NAME);
    EXPECT_EQ(set.id(2), LAYER);
    EXPECT_EQ(set.id(3), 0);
}

TEST(qorabsAttributeSet, CheckOut_WrongClassForTheIdGivesNull)
{
    qorabsAttributeSet set;
    qorabsName before;
    qorabsName* name = &before;
    EXPECT_EQ(set.check_out(LAYER, name), 0);
    EXPECT_EQ(name, nullptr);
    qorabsAttribute* kind = nullptr;
    EXPECT_EQ(set.check_out(NAME, kind), 0);
    EXPECT_EQ(set.size(), 0);
}

TEST(qorabsAttributeSet, CheckedOutValuesAreReadBack)
{
    qorabsAttributeSet set;
    qorabsLayer* layer = nullptr;
    qorabsColour* colour = nullptr;
    set.check_out(LAYER, layer);
    *layer = qorabsLayer(11, utString("SCAN"));
    set.check_out(COLOUR, colour);
    *colour = qorabsColour(4);
    EXPECT_EQ(set.layer()->level(), 11);
    EXPECT_EQ(set.layer()->name(), utString("SCAN"));
    EXPECT_EQ(set.colour()->index(), 4);
    EXPECT_EQ(set.name(), nullptr);
}

TEST(qorabsColour, DefaultColourIsInvalid)
{
    EXPECT_FALSE(qorabsColour().is_valid());
    EXPECT_TRUE(qorabsColour(0).is_valid());
}

// ---- identity types ----

TEST(qouFileType, ConvertsTheRegistryIdToInt)
{
    EXPECT_EQ(static_cast<int>(qouFileType(qouVELMORA)), static_cast<int>(qouVELMORA));
    EXPECT_NE(static_cast<int>(qouFileType(qouVELMORA)), 0);
}

TEST(coSet, AddKeepsFirstOrderAndDropsRepeats)
{
    intcoSet s;
    s.add(5);
    s.add(3);
    s.add(5);
    ASSERT_EQ(s.size(), 2);
    EXPECT_EQ(s[0], 5);
    EXPECT_EQ(s[1], 3);
    utStringcoSet e;
    EXPECT_TRUE(e.empty());
    e.add(utString("vlm"));
    EXPECT_TRUE(e.contains(utString("vlm")));
}

TEST(qorabsTranslatorCategory, KeepsItsName)
{
    qorabsTranslatorCategoryPtr c = std::make_shared<qorabsTranslatorCategory>(utString("FOOTWEAR"));
    EXPECT_EQ(c->name(), utString("FOOTWEAR"));
}

// ---- placements ----

TEST(giXform3, DefaultIsTheIdentity)
{
    giXform3 x;
    for (int r = 0; r < 3; r++)
        for (int c = 0; c < 4; c++)
            EXPECT_EQ(x(r, c), r == c ? 1.0 : 0.0);
    EXPECT_EQ(x(3, 0), 0.0);
    EXPECT_EQ(x(0, 4), 0.0);
}

TEST(giXform3, PremultiplyTranslation_AddsToTheLastColumnOnly)
{
    giXform3 x;
    x.premultiply_translation(giVector3(2.5, -1.0, 0.0));
    x.premultiply_translation(giVector3(1.0, 0.25, 0.0));
    EXPECT_EQ(x.translation(), giVector3(3.5, -0.75, 0.0));
    EXPECT_EQ(x(0, 0), 1.0);
    EXPECT_EQ(x(0, 1), 0.0);
    EXPECT_EQ(x.data()[3], 3.5);
    EXPECT_EQ(x.data()[7], -0.75);
}

TEST(giXform3, Premultiply_AppliesTheOtherAfterThis)
{
    const double rot[12] = {0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0};
    giXform3 r(rot);
    giXform3 t;
    t.premultiply_translation(giVector3(1.0, 0.0, 0.0));
    giXform3 x = t;
    x.premultiply(r);  // first move by (1, 0, 0), then turn by 90 degrees
    EXPECT_EQ(x.apply(giPoint3(0, 0, 0)), giPoint3(0, 1, 0));
    EXPECT_EQ(x.apply(giPoint3(1, 0, 0)), giPoint3(0, 2, 0));
}

// ---- colours and features ----

TEST(giColour, KeepsTheLowByteOfEachComponent)
{
    giColour c(0x1234, -1, 256, 7);
    EXPECT_EQ(c.r(), 0x34);
    EXPECT_EQ(c.g(), 255);
    EXPECT_EQ(c.b(), 0);
    EXPECT_EQ(c.a(), 7);
}

TEST(giFeaturePool, HoldsOneFeatureOfEachKind)
{
    giTriBlock tb;
    EXPECT_EQ(tb.vertices(), nullptr);
    EXPECT_EQ(tb.triangles(), nullptr);
    giNodeXYZ* v = tb.features().ensure<giNodeXYZ>();
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(tb.features().ensure<giNodeXYZ>(), v);
    EXPECT_EQ(tb.features().insert(std::make_unique<giNodeXYZ>()), 0);
    EXPECT_EQ(tb.features().insert(nullptr), 0);
    EXPECT_EQ(tb.features().size(), 1);
    EXPECT_EQ(tb.vertices(), v);
}

TEST(giFeatureArray, CountAboveTheBoundIsRefused)
{
    giNodeXYZ v;
    EXPECT_EQ(v.resize(giNodeXYZ::max_count + 1), 0);
    EXPECT_EQ(v.resize(-1), 0);
    EXPECT_EQ(v.size(), 0);
    EXPECT_EQ(v.resize(3), 1);
    EXPECT_EQ(v.size(), 3);
}

TEST(giFeatureArray, IndexOutsideIsIgnoredAndReadsDefault)
{
    annColArr c;
    c.resize(1);
    c.set(5, giColour(1, 2, 3, 4));
    c.set(-1, giColour(1, 2, 3, 4));
    EXPECT_EQ(c.get(0), giColour());
    EXPECT_EQ(c.get(9), giColour());
    annPointCloudData d;
    EXPECT_EQ(d.num_points(), 0);
    EXPECT_EQ(d.colours(), nullptr);
}
