// The translator hierarchy as the host drives it: slots, the walk into an
// output sink, what a failed item hands over, and the compound's hooks.
#include "host/qorabsTranslator.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>

#include "host/qorabsAnnotationTranslator.h"
#include "host/qorabsContext.h"
#include "host/qorabsCurveTranslator.h"
#include "host/qorabsGroupTranslator.h"
#include "host/qorabsPointCloudTranslator.h"
#include "host/qorabsTriblockTranslator.h"
#include "host/stoClass.h"
#include "tests/translate/RecordingSink.h"
#include "tests/translate/VtableSlot.h"

namespace {

void set_name(qorabsAttributeSet& set, const char* name)
{
    qorabsName* n = nullptr;
    if (set.check_out(NAME, n))
        *n = qorabsName(utString(name), 0);
}

// A block translator whose conversion leaves geometry behind and then fails.
class FailingBlock : public qorabsTriblockTranslator {
public:
    void attributes(qorabsAttributeSet& set) override { set_name(set, "block"); }
    qorabsTranslationStatus create_triblock(giTriBlock& tb) override
    {
        tb.features().ensure<giNodeXYZ>()->add(giPoint3(1, 2, 3));
        return qorabsTranslationStatus(1);
    }
};

class GoodBlock : public qorabsTriblockTranslator {
public:
    void attributes(qorabsAttributeSet& set) override { set_name(set, "good"); }
    qorabsTranslationStatus create_triblock(giTriBlock& tb) override
    {
        tb.features().ensure<giNodeXYZ>()->add(giPoint3(1, 2, 3));
        return qorabsTranslationStatus(0);
    }
};

class FailingCurve : public qorabsCurveTranslator {
public:
    qorabsTranslationStatus create_curve(rnxCurvePtr3& c) override
    {
        c = std::make_shared<rnxNurbCurve3>(1, 2);
        return qorabsTranslationStatus(1);
    }
};

// A curve translator that claims success without a curve.
class LyingCurve : public qorabsCurveTranslator {
public:
    qorabsTranslationStatus create_curve(rnxCurvePtr3&) override { return qorabsTranslationStatus(0); }
};

class KeptCloud : public qorabsPointCloudTranslator {
public:
    annPointCloudData* data(int& release) override
    {
        release = 0;
        kept.features().ensure<giNodeXYZ>()->add(giPoint3(4, 5, 6));
        return &kept;
    }
    annPointCloudData kept;
};

// A mangler that tags names, to see whose mangler the walk uses.
class Tagger : public qorabsNameMangler {
public:
    explicit Tagger(const char* tag) : tag_(tag) {}
    utString do_mangling(const utString& name) const override { return tag_ + name; }

private:
    utString tag_;
};

class TaggingGroup : public qorabsGroupTranslator {
public:
    TaggingGroup(const char* name, const qorabsContext& context)
        : qorabsGroupTranslator(sto_class_annGroup(), giXform3(), context), name_(name)
    {
    }
    void attributes(qorabsAttributeSet& set) override { set_name(set, name_); }
    std::unique_ptr<qorabsNameMangler> create_name_mangler() const override
    {
        return std::make_unique<Tagger>(name_);
    }

private:
    const char* name_;
};

}  // namespace

TEST(qorabsTranslatorSlots, BaseOperationsSitInSlotsOneToTen)
{
    EXPECT_EQ(vtable_entry(&qorabsTranslator::process), entry_of_slot(1, 9));
    EXPECT_EQ(vtable_entry(&qorabsTranslator::attributes), entry_of_slot(2, 9));
    EXPECT_EQ(vtable_entry(&qorabsTranslator::set_transform), entry_of_slot(3, 9));
    EXPECT_EQ(vtable_entry(&qorabsTranslator::non_spts_supported), entry_of_slot(4, 9));
    EXPECT_EQ(vtable_entry(&qorabsTranslator::num_translators), entry_of_slot(5, 9));
    EXPECT_EQ(vtable_entry(&qorabsTranslator::current_translator), entry_of_slot(6, 9));
    EXPECT_EQ(vtable_entry(&qorabsTranslator::set_output), entry_of_slot(7, 9));
    EXPECT_EQ(vtable_entry(&qorabsTranslator::set_error), entry_of_slot(8, 9));
    EXPECT_EQ(vtable_entry(&qorabsTranslator::create_item), entry_of_slot(10, 9));
}

TEST(qorabsTranslatorSlots, FamilyOperationsFollowSlotTen)
{
    EXPECT_EQ(vtable_entry(&qorabsTriblockTranslator::create_triblock), entry_of_slot(11, 9));
    EXPECT_EQ(vtable_entry(&qorabsCurveTranslator::create_curve), entry_of_slot(11, 9));
    EXPECT_EQ(vtable_entry(&qorabsAnnotationTranslator::create_annotation), entry_of_slot(11, 9));
    EXPECT_EQ(vtable_entry(&qorabsPointCloudTranslator::data), entry_of_slot(12, 9));
}

TEST(qorabsTranslatorSlots, CompoundOperationsSitInSlotsElevenToTwentyTwo)
{
    using C = qorabsCompoundTranslator;
    EXPECT_EQ(vtable_entry(&C::make_compound_object), entry_of_slot(11, 9));
    EXPECT_EQ(vtable_entry(&C::handle_spt_transform), entry_of_slot(12, 9));
    EXPECT_EQ(vtable_entry(&C::add_geometry), entry_of_slot(13, 9));
    EXPECT_EQ(vtable_entry(&C::add_named_item), entry_of_slot(14, 9));
    EXPECT_EQ(vtable_entry(&C::type_name), entry_of_slot(15, 9));
    EXPECT_EQ(vtable_entry(&C::item_was_rejected), entry_of_slot(16, 9));
    EXPECT_EQ(vtable_entry(&C::create_name_mangler), entry_of_slot(17, 9));
    EXPECT_EQ(vtable_entry(&C::handle_conversion_transform), entry_of_slot(18, 9));
    EXPECT_EQ(vtable_entry(&C::compound_object_type), entry_of_slot(19, 9));
    EXPECT_EQ(vtable_entry(&C::spt_name), entry_of_slot(20, 9));
    EXPECT_EQ(vtable_entry(&C::add_inherited_attributes), entry_of_slot(21, 9));
    EXPECT_EQ(vtable_entry(&C::is_structure), entry_of_slot(22, 9));
    EXPECT_EQ(vtable_entry(&qorabsGroupTranslator::type_name), entry_of_slot(15, 9));
    EXPECT_EQ(vtable_entry(&qorabsNameMangler::do_mangling), entry_of_slot(1, 2));
}

TEST(qorabsTranslator, Walk_FailedBlockHandsOverAnEmptyBlock)
{
    FailingBlock t;
    RecordingSink sink;
    EXPECT_EQ(t.process(sink, nullptr), qorabsTranslationStatus(1));
    ASSERT_EQ(sink.events.size(), 1u);
    EXPECT_EQ(sink.events[0].status, 1);
    EXPECT_TRUE(sink.events[0].points.empty());
    EXPECT_EQ(sink.events[0].name, "block");
}

TEST(qorabsTranslator, Walk_FailedCurveHandsOverNoCurve)
{
    FailingCurve failing;
    LyingCurve lying;
    RecordingSink sink;
    EXPECT_EQ(failing.process(sink, nullptr), qorabsTranslationStatus(1));
    EXPECT_EQ(lying.process(sink, nullptr), qorabsTranslationStatus(1));
    ASSERT_EQ(sink.events.size(), 2u);
    EXPECT_FALSE(sink.events[0].curve);
    EXPECT_EQ(sink.events[1].status, 1);
    EXPECT_FALSE(sink.events[1].curve);
}

TEST(qorabsTranslator, Walk_CloudKeptByTheTranslatorIsNotDeleted)
{
    KeptCloud t;
    RecordingSink sink;
    EXPECT_EQ(t.process(sink, nullptr), qorabsTranslationStatus(0));
    ASSERT_EQ(sink.events.size(), 1u);
    EXPECT_EQ(sink.events[0].points.size(), 1u);
    EXPECT_EQ(t.kept.num_points(), 1);
}

TEST(qorabsTranslator, Walk_BaseCloudWithoutDataHandsOverEmptyData)
{
    qorabsPointCloudTranslator t;
    RecordingSink sink;
    EXPECT_EQ(t.process(sink, nullptr), qorabsTranslationStatus(1));
    ASSERT_EQ(sink.events.size(), 1u);
    EXPECT_EQ(sink.events[0].kind, "pointcloud");
    EXPECT_TRUE(sink.events[0].points.empty());
}

TEST(qorabsTranslator, Walk_MembersAreMangledByTheirOwnGroupOnly)
{
    qorabsContext context;
    auto outer = std::make_shared<TaggingGroup>("outer:", context);
    auto inner = std::make_shared<TaggingGroup>("inner:", context);
    inner->add_translator(std::make_shared<GoodBlock>());
    outer->add_translator(inner);
    outer->add_translator(std::make_shared<FailingBlock>());
    RecordingSink sink;
    EXPECT_EQ(outer->process(sink, nullptr), qorabsTranslationStatus(0));
    ASSERT_EQ(sink.events.size(), 6u);
    EXPECT_EQ(sink.events[0].mangled, "outer:");
    EXPECT_EQ(sink.events[1].mangled, "outer:inner:");
    EXPECT_EQ(sink.events[2].mangled, "inner:good");
    EXPECT_EQ(sink.events[2].depth, 2);
    EXPECT_EQ(sink.events[3].kind, "end");
    EXPECT_EQ(sink.events[4].mangled, "outer:block");
    EXPECT_EQ(sink.events[5].kind, "end");
    EXPECT_EQ(sink.events[5].depth, 0);
    EXPECT_EQ(outer->num_items(), 1);
    EXPECT_EQ(outer->num_rejected(), 1);
}

TEST(qorabsTranslator, Walk_CompoundWithoutManglerKeepsMemberNames)
{
    qorabsContext context;
    qorabsGroupTranslator g(sto_class_annGroup(), giXform3(), context);
    g.add_translator(std::make_shared<GoodBlock>());
    g.add_translator(qorabsTranslatorcoPrf());
    EXPECT_EQ(g.num_translators(), 1);
    EXPECT_TRUE(g.current_translator(0));
    EXPECT_FALSE(g.current_translator(1));
    EXPECT_FALSE(g.current_translator(-1));
    RecordingSink sink;
    g.process(sink, nullptr);
    ASSERT_EQ(sink.events.size(), 3u);
    EXPECT_EQ(sink.events[0].name, "");
    EXPECT_EQ(sink.events[1].mangled, "good");
}

TEST(qorabsTranslator, Walk_HostTransformIsAppliedOnTopOfThePlacement)
{
    qorabsContext context;
    giXform3 own;
    own.premultiply_translation(giVector3(1.0, 2.0, 3.0));
    qorabsGroupTranslator g(sto_class_annGroup(), own, context);
    RecordingSink untouched;
    g.process(untouched, nullptr);
    EXPECT_EQ(untouched.events[0].xform, own);
    giXform3 host;
    host.premultiply_translation(giVector3(10.0, 0.0, 0.0));
    g.set_transform(host);
    RecordingSink moved;
    g.process(moved, nullptr);
    EXPECT_EQ(moved.events[0].xform.translation(), giVector3(11.0, 2.0, 3.0));
}

TEST(qorabsTranslator, BaseAnswers_ForAHostThatAsks)
{
    qorabsContext context;
    qorabsGroupTranslator g(sto_class_annGroup(), giXform3(), context);
    EXPECT_STREQ(g.type_name(), "group");
    EXPECT_EQ(g.is_structure(), 0);
    EXPECT_EQ(g.non_spts_supported(), 0);
    EXPECT_TRUE(g.spt_name().empty());
    EXPECT_FALSE(g.create_name_mangler());
    qorabsAttributeSet set;
    g.add_inherited_attributes(set);
    EXPECT_EQ(set.size(), 0);
    GoodBlock b;
    EXPECT_EQ(b.num_translators(), 0);
    EXPECT_FALSE(b.current_translator(0));
    EXPECT_EQ(b.context(), nullptr);
    std::ostringstream out;
    b.set_output(&out);
    b.set_error(&out);
    EXPECT_EQ(b.output(), &out);
    EXPECT_EQ(b.error(), &out);
}

TEST(qorabsTranslator, Dispatch_OverridesAreReachedThroughTheBase)
{
    GoodBlock good;
    qorabsTranslator& t = good;
    qorabsAttributeSet set;
    t.attributes(set);
    EXPECT_EQ(set.name()->name(), utString("good"));
    qorabsTriblockTranslator& tb = good;
    giTriBlock block;
    EXPECT_EQ(tb.create_triblock(block), qorabsTranslationStatus(0));
    EXPECT_EQ(block.num_vertices(), 1);
}
