#include "curves/m01DVector.h"

#include <gtest/gtest.h>

TEST(M01DVector, Constructor_SetsCount)
{
    m01DVector v(4);
    EXPECT_EQ(v.size(), 4);
    EXPECT_NE(v.get_data_pointer(), nullptr);
}
