// Splines handed to the host as their NURBS form.
#include "translate/vmiSpline.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "archive/vmiObjSpline.h"
#include "curves/m03DVector.h"
#include "host/qorabsContext.h"
#include "tests/translate/RecordingSink.h"

namespace {

std::unique_ptr<vmiObjSpline> spline(int n)
{
    auto* v = new m03DVector(n);
    for (int k = 0; k < n; k++)
        v->set_point(k, m03DPoint(10.0 * k, (k % 2) * 5.0, 0.0));
    return std::make_unique<vmiObjSpline>(utString("LIMIT"), v);
}

}  // namespace

TEST(vmiSpline, Convert_GivesTheRecordsNurbForm)
{
    auto r = spline(5);
    rnxCurvePtr3 c;
    EXPECT_NE(vmiSpline(r.get()).convert(c), 0);
    ASSERT_TRUE(c);
    rnxCurvePtr3 expected;
    r->nurb(expected);
    ASSERT_TRUE(expected);
    EXPECT_EQ(c->order(), expected->order());
    EXPECT_EQ(c->knots(), expected->knots());
    EXPECT_EQ(c->points(), expected->points());
}

TEST(vmiSpline, Convert_RecordWithoutSplineGivesStatus1AndNoCurve)
{
    vmiObjSpline r(utString("EMPTY"), nullptr);
    rnxCurvePtr3 c;
    EXPECT_EQ(vmiSpline(&r).convert(c), 0);
    EXPECT_FALSE(c);
    qorabsContext context;
    RecordingSink sink;
    EXPECT_EQ(vmiSpline(&r).make_translator(context)->process(sink, nullptr), qorabsTranslationStatus(1));
    ASSERT_EQ(sink.events.size(), 1u);
    EXPECT_EQ(sink.events[0].kind, "curve");
    EXPECT_EQ(sink.events[0].status, 1);
}

TEST(vmiSpline, Convert_NullRecordGivesZero)
{
    rnxCurvePtr3 c;
    EXPECT_EQ(vmiSpline(nullptr).convert(c), 0);
}

TEST(vmiSpline, SetAttributes_CurveKindAndNoColourWhenZero)
{
    auto r = spline(3);
    r->level(21);
    qorabsAttributeSet set;
    vmiSpline(r.get()).set_attributes(set);
    ASSERT_EQ(set.size(), 3);
    EXPECT_EQ(set.id(0), CURVE);
    EXPECT_EQ(set.name()->name(), utString("LIMIT"));
    EXPECT_EQ(set.layer()->level(), 21);
    r->colour(2);
    qorabsAttributeSet coloured;
    vmiSpline(r.get()).set_attributes(coloured);
    ASSERT_EQ(coloured.size(), 4);
    EXPECT_EQ(coloured.id(3), COLOUR);
}
