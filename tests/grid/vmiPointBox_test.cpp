// vmiPointBox: the box of points gathered in plain doubles is the box the
// host's giBox3 makes by merging them one by one, to the bit.
#include "grid/vmiPointBox.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

#include "archive/vmiObjAttr.h"
#include "grid/vmiBaseGrid.h"

namespace {

bool same_bits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

void expect_same_box(const giBox3& a, const giBox3& b)
{
    EXPECT_TRUE(same_bits(a.min().x(), b.min().x()) && same_bits(a.min().y(), b.min().y()) &&
                same_bits(a.min().z(), b.min().z()));
    EXPECT_TRUE(same_bits(a.max().x(), b.max().x()) && same_bits(a.max().y(), b.max().y()) &&
                same_bits(a.max().z(), b.max().z()));
    EXPECT_EQ(a.is_valid(), b.is_valid());
}

giBox3 merged(const std::vector<m03DPoint>& pts)
{
    giBox3 b;
    for (const m03DPoint& p : pts) b.merge(giPoint3(p.x(), p.y(), p.z()));
    return b;
}

constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

// The records' own box of a point array, reached from a test.
struct BoxOf : vmiObjAttr {
    using vmiObjAttr::box_of;
};

} // namespace

TEST(vmiPointBox, Box_IsTheHostsMergedBoxToTheBit)
{
    const std::vector<std::vector<m03DPoint>> cases = {
        {{1, 2, 3}},
        {{1, 2, 3}, {-4, 5, -6}, {0.5, -7, 8}},
        // Two equal zeros: the first stays, in the minimum and the maximum.
        {{-0.0, 0.0, 1}, {0.0, -0.0, 2}},
        {{0.0, -0.0, 1}, {-0.0, 0.0, 2}, {-1, 1, 0}},
        // A NaN coordinate changes nothing where the others are numbers.
        {{not_a_number, 1, 1}, {2, not_a_number, 3}, {-2, 4, not_a_number}},
    };
    for (const auto& pts : cases) {
        vmiPointBox gathered;
        for (const m03DPoint& p : pts) gathered.take(p.x(), p.y(), p.z());
        ASSERT_TRUE(gathered.complete());
        expect_same_box(gathered.box(), merged(pts));
        EXPECT_TRUE(same_bits(gathered.box().min().x(), merged(pts).min().x()));
    }
}

TEST(vmiPointBox, IncompleteWithoutPointsOrWhenACoordinateIsNeverANumber)
{
    vmiPointBox none;
    EXPECT_FALSE(none.complete());
    vmiPointBox no_x;
    no_x.take(not_a_number, 1, 1);
    no_x.take(not_a_number, 2, 2);
    EXPECT_FALSE(no_x.complete());
}

TEST(vmiPointBox, BoxOfPointsAndOfAGridAreTheMergedOnesEvenWithACoordinateNeverANumber)
{
    // box_of falls back to the host's merges: the partly filled box is kept.
    const std::vector<m03DPoint> pts = {{not_a_number, 1, 1}, {not_a_number, -2, 5}};
    std::vector<m03DPoint> copy = pts;
    expect_same_box(BoxOf::box_of(copy.data(), static_cast<int>(copy.size())), merged(pts));
    const std::vector<m03DPoint> fine = {{3, 1, 1}, {-0.0, -2, 5}, {0.0, 7, -1}};
    copy = fine;
    expect_same_box(BoxOf::box_of(copy.data(), static_cast<int>(copy.size())), merged(fine));

    // A grid: only the nodes above empty_z count; one whose x is never a
    // number keeps the host's own box of them, and an empty one its extent.
    vmiBaseGrid g(3, 2, 1.0, 2.0);
    g.set_z(1, 0, 4.0);
    g.set_z(2, 1, -3.0);
    std::vector<m03DPoint> heights = {g.point(1, 0), g.point(2, 1)};
    expect_same_box(g.box(), merged(heights));
    g.point(1, 0, m03DPoint(not_a_number, 0.0, 4.0));
    g.point(2, 1, m03DPoint(not_a_number, 2.0, -3.0));
    giBox3 partly;
    partly.merge(giPoint3(not_a_number, 0.0, 4.0));
    partly.merge(giPoint3(not_a_number, 2.0, -3.0));
    partly.merge(giPoint3(0.0, 0.0, vmiBaseGrid::empty_z));
    partly.merge(giPoint3(3.0, 4.0, vmiBaseGrid::empty_z));
    expect_same_box(g.box(), partly);
    vmiBaseGrid empty(2, 2, 1.5, 1.0);
    expect_same_box(empty.box(), giBox3(giPoint3(0, 0, vmiBaseGrid::empty_z), giPoint3(3.0, 2.0, vmiBaseGrid::empty_z)));
}
