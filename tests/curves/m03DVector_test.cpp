#include "curves/m03DVector.h"

#include <gtest/gtest.h>

TEST(M03DVector, Constructor_PointsStartAtOrigin)
{
    m03DVector v(3);
    ASSERT_EQ(v.size(), 3);
    ASSERT_NE(v.get_point_array(), nullptr);
    for (int i = 0; i < 3; i++)
        EXPECT_TRUE(v.point(i) == m03DPoint(0.0, 0.0, 0.0));
}
