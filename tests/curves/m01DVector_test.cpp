#include "curves/m01DVector.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <type_traits>

namespace {

std::unique_ptr<m01DVector> make_params(std::initializer_list<double> values)
{
    auto v = std::make_unique<m01DVector>(static_cast<int>(values.size()));
    int i = 0;
    for (double x : values)
        v->set_point(i++, x);
    return v;
}

void expect_values(const m01DVector& v, std::initializer_list<double> want)
{
    ASSERT_EQ(v.size(), static_cast<int>(want.size()));
    int i = 0;
    for (double x : want) {
        EXPECT_EQ(v.point(i), x) << "at " << i;
        i++;
    }
}

}  // namespace

TEST(m01DVector, Constructor_SetsCountAndStorage)
{
    m01DVector v(4);
    EXPECT_EQ(v.size(), 4);
    EXPECT_NE(v.get_data_pointer(), nullptr);
}

TEST(m01DVector, Constructor_NegativeCountMakesEmptyVector)
{
    m01DVector v(-3);
    EXPECT_EQ(v.size(), 0);
    EXPECT_EQ(v.get_data_pointer(), nullptr);
    EXPECT_EQ(v.check_params_order(), 1);
}

TEST(m01DVector, CopyByValue_IsNotAllowed)
{
    static_assert(!std::is_copy_constructible_v<m01DVector>);
    static_assert(!std::is_copy_assignable_v<m01DVector>);
    SUCCEED();
}

TEST(m01DVector, CopyFromPointer_IsDeep)
{
    auto v = make_params({1.0, 2.0, 3.0});
    m01DVector copy(v.get());
    v->point(0) = 9.0;
    EXPECT_NE(copy.get_data_pointer(), v->get_data_pointer());
    expect_values(copy, {1.0, 2.0, 3.0});
}

TEST(m01DVector, SizeAndSetSize_RewriteOnlyTheCount)
{
    auto v = make_params({1.0, 2.0, 3.0});
    double* storage = v->get_data_pointer();
    v->set_size(1);
    EXPECT_EQ(v->size(), 1);
    v->size() = 3;
    EXPECT_EQ(v->get_data_pointer(), storage);
    expect_values(*v, {1.0, 2.0, 3.0});
}

TEST(m01DVector, PointAndSetPoint_ReachTheSameSlot)
{
    m01DVector v(2);
    v.set_point(1, 2.5);
    EXPECT_EQ(v.point(1), 2.5);
    v.point(0) = -1.0;
    EXPECT_EQ(v.get_data_pointer()[0], -1.0);
}

TEST(m01DVector, Reverse_OddCountKeepsMiddle)
{
    auto v = make_params({1.0, 2.0, 3.0});
    v->reverse();
    expect_values(*v, {3.0, 2.0, 1.0});
}

TEST(m01DVector, Reverse_EvenCountSwapsAll)
{
    auto v = make_params({1.0, 2.0, 3.0, 4.0});
    v->reverse();
    expect_values(*v, {4.0, 3.0, 2.0, 1.0});
}

TEST(m01DVector, CheckParamsOrder_EqualNeighboursAreInOrder)
{
    EXPECT_EQ(make_params({0.0, 1.0, 1.0, 2.0})->check_params_order(), 1);
}

TEST(m01DVector, CheckParamsOrder_DecreaseIsOutOfOrder)
{
    EXPECT_EQ(make_params({0.0, 2.0, 1.0})->check_params_order(), 0);
}

TEST(m01DVector, CheckParamsOrder_SingleValueIsInOrder)
{
    EXPECT_EQ(make_params({5.0})->check_params_order(), 1);
}

TEST(m01DVector, FindLimitRange_FirstAboveAAndFirstAboveB)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0});
    int first = -1;
    int last = -1;
    v->find_limit_range(0.5, 2.0, first, last);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(last, 3);
    v->find_limit_range(1.0, 10.0, first, last);
    EXPECT_EQ(first, 2);
    EXPECT_EQ(last, 4);
}

TEST(m01DVector, FindLimitRange_NothingAboveAStopsAtLastIndex)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0});
    int first = -1;
    int last = -1;
    v->find_limit_range(5.0, 9.0, first, last);
    EXPECT_EQ(first, 3);
    EXPECT_EQ(last, 4);
    v->find_limit_range(5.0, 1.0, first, last);
    EXPECT_EQ(first, 3);
    EXPECT_EQ(last, 3);
}

TEST(m01DVector, FindLimitRange_EmptyListGivesZeroes)
{
    m01DVector v(0);
    int first = -1;
    int last = -1;
    v.find_limit_range(0.0, 1.0, first, last);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(last, 0);
}

TEST(m01DVector, LimitParams_KeepsAInteriorValuesAndB)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0});
    v->limit_params(0.5, 2.5);
    expect_values(*v, {0.5, 1.0, 2.0, 2.5});
}

TEST(m01DVector, LimitParams_BWithin1e6OfLastValueIsDropped)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0});
    v->limit_params(0.5, 2.0000005);
    // b is dropped and 2 stays as the end: kept as designed.
    expect_values(*v, {0.5, 1.0, 2.0});
}

TEST(m01DVector, LimitParams_InteriorValueWithin1e6OfAIsDropped)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0});
    v->limit_params(0.9999995, 1.5);
    expect_values(*v, {0.9999995, 1.5});
}

TEST(m01DVector, LimitParams_EmptyListGivesAAndB)
{
    m01DVector v(0);
    v.limit_params(0.25, 0.75);
    expect_values(v, {0.25, 0.75});
}

TEST(m01DVector, LimitParamsClosed_WrapShiftsEveryValueBeforeLast)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0, 4.0});
    v->limit_params_closed(3.5, 0.5);
    // 0 + 4 is dropped as equal to 4; b + period = 4.5 does not exceed 7.
    expect_values(*v, {3.5, 4.0, 5.0, 6.0, 7.0});
}

TEST(m01DVector, LimitParamsClosed_ShiftedValuesBeyondBAreNotNarrowed)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0, 4.0});
    v->limit_params_closed(2.5, 0.5);
    // 5 and 6 lie beyond b + period = 4.5 and still come back: kept as designed.
    expect_values(*v, {2.5, 3.0, 4.0, 5.0, 6.0});
}

TEST(m01DVector, LimitParamsClosed_WrapAppendsBPlusPeriodWhenAbove)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0, 4.0});
    v->limit_params_closed(0.5, 0.25);
    expect_values(*v, {0.5, 1.0, 2.0, 3.0, 4.0, 4.25});
}

TEST(m01DVector, LimitParamsClosed_BAfterAIsAnOpenLimit)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0, 4.0});
    v->limit_params_closed(1.5, 3.5);
    expect_values(*v, {1.5, 2.0, 3.0, 3.5});
}

TEST(m01DVector, LimitParamsClosed_StartJustBelowFirstSnapsToIt)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0, 4.0});
    v->limit_params_closed(-5e-8, 1.5);
    expect_values(*v, {0.0, 1.0, 1.5});
}

TEST(m01DVector, LimitParamsClosed_StartBelowFirstMovesOnAPeriod)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0, 4.0});
    // -0.5 becomes 3.5, which is above b = 3.75: an open limit from 3.5.
    v->limit_params_closed(-0.5, 3.75);
    expect_values(*v, {3.5, 3.75});
}

TEST(m01DVector, LimitParamsClosed_StartBeyondTheListStaysWithinRoom)
{
    auto v = make_params({0.0, 1.0, 2.0, 3.0, 4.0});
    // Nothing exceeds a = 10, so only a remains.
    v->limit_params_closed(10.0, 5.0);
    expect_values(*v, {10.0});
}

TEST(m01DVector, LimitParamsClosed_EmptyListIsAnOpenLimit)
{
    m01DVector v(0);
    v.limit_params_closed(0.5, 0.25);
    expect_values(v, {0.5});
}
