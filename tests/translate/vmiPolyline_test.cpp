// Polylines handed to the host as curves of degree 1.
#include "translate/vmiPolyline.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "archive/vmiObjPoly.h"
#include "curves/m03DVector.h"
#include "host/qorabsContext.h"
#include "tests/translate/RecordingSink.h"
#include "translate/vmiPolylineTranslator.h"

namespace {

std::unique_ptr<vmiObjPoly> polyline(int n)
{
    auto* v = new m03DVector(n);
    for (int k = 0; k < n; k++)
        v->set_point(k, m03DPoint(k, 2.0 * k, 0.25));
    auto r = std::make_unique<vmiObjPoly>(utString("OUTLINE"), v);
    r->level(20);
    r->layer_name(utString("MODEL_(RIGHT)_d"));
    return r;
}

}  // namespace

TEST(vmiPolyline, Convert_ThreePointsGetKnots0_0_Half_1_1)
{
    auto r = polyline(3);
    rnxCurvePtr3 c;
    EXPECT_NE(vmiPolyline(r.get()).convert(c), 0);
    ASSERT_TRUE(c);
    EXPECT_EQ(c->order(), 2);
    EXPECT_EQ(c->knots(), (std::vector<double>{0.0, 0.0, 0.5, 1.0, 1.0}));
}

TEST(vmiPolyline, Convert_ControlPointsAreThePointsWithWeightOne)
{
    auto r = polyline(3);
    rnxCurvePtr3 c;
    vmiPolyline(r.get()).convert(c);
    ASSERT_EQ(c->num_points(), 3);
    EXPECT_EQ(c->point(2), giPoint3(2.0, 4.0, 0.25));
    EXPECT_EQ(c->weights(), (std::vector<double>{1.0, 1.0, 1.0}));
}

TEST(vmiPolyline, Convert_InnerKnotsAreIndexDividedByNMinus1)
{
    auto r = polyline(4);
    rnxCurvePtr3 c;
    vmiPolyline(r.get()).convert(c);
    ASSERT_EQ(c->num_knots(), 6);
    EXPECT_EQ(c->knot(2), 1.0 / 3.0);
    EXPECT_EQ(c->knot(3), 2.0 / 3.0);
    EXPECT_EQ(c->knot(4), 1.0);
}

TEST(vmiPolyline, Convert_OnePointGivesAnInvalidCurveAndStatus1)
{
    auto r = polyline(1);
    rnxCurvePtr3 c;
    EXPECT_EQ(vmiPolyline(r.get()).convert(c), 0);
    ASSERT_TRUE(c);
    EXPECT_EQ(c->knots(), (std::vector<double>{0.0, 1.0, 1.0}));
    qorabsContext context;
    RecordingSink sink;
    vmiPolyline(r.get()).make_translator(context)->process(sink, nullptr);
    ASSERT_EQ(sink.events.size(), 1u);
    EXPECT_EQ(sink.events[0].status, 1);
    EXPECT_FALSE(sink.events[0].curve);
}

TEST(vmiPolyline, Convert_WithoutRecordOrPointsLeavesTheCurveAlone)
{
    rnxCurvePtr3 before = std::make_shared<rnxNurbCurve3>(2, 2);
    rnxCurvePtr3 c = before;
    EXPECT_EQ(vmiPolyline(nullptr).convert(c), 0);
    EXPECT_EQ(c, before);
    vmiObjPoly empty(utString("E"), nullptr);
    EXPECT_EQ(vmiPolyline(&empty).convert(c), 0);
    EXPECT_EQ(c, before);
}

TEST(vmiPolyline, Walk_DeliversCurveWithCurveNameLayerAndColour)
{
    auto r = polyline(3);
    r->colour(6);
    qorabsContext context;
    RecordingSink sink;
    qorabsTranslatorcoPrf t = vmiPolyline(r.get()).make_translator(context);
    ASSERT_TRUE(dynamic_cast<vmiPolylineTranslator*>(t.get()));
    EXPECT_EQ(t->process(sink, nullptr), qorabsTranslationStatus(0));
    ASSERT_EQ(sink.events.size(), 1u);
    const SinkEvent& e = sink.events[0];
    EXPECT_EQ(e.kind, "curve");
    EXPECT_EQ(e.status, 0);
    EXPECT_EQ(e.attribute_ids, (std::vector<int>{CURVE, NAME, LAYER, COLOUR}));
    EXPECT_EQ(e.name, "OUTLINE");
    EXPECT_EQ(e.level, 20);
    EXPECT_EQ(e.colour, 6);
    ASSERT_TRUE(e.curve);
    EXPECT_EQ(e.curve->num_points(), 3);
}

TEST(vmiPolyline, Convert_CountAboveTheKernelsBoundGivesAnInvalidCurveWithoutReading)
{
    auto* v = new m03DVector(2);
    // A count that lies about the storage: the kernel refuses such a curve,
    // and no point is read.
    v->set_size(rnxNurbCurve3::max_points + 1);
    vmiObjPoly r(utString("HUGE"), v);
    rnxCurvePtr3 c;
    EXPECT_EQ(vmiPolyline(&r).convert(c), 0);
    ASSERT_TRUE(c);
    EXPECT_EQ(c->num_points(), 0);
    v->set_size(2);
}
