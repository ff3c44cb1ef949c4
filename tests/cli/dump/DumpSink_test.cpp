// DumpSink: the tree of items a host's walk delivers, nested as the walk
// begins and ends groups.
#include "cli/dump/DumpSink.h"

#include <gtest/gtest.h>

TEST(DumpSink, NestsMembersInOrderAndIgnoresAnUnmatchedEnd)
{
    DumpSink sink;
    qorabsAttributeSet none;
    sink.end_group();
    sink.begin_group(none, utString("a"), giXform3());
    sink.begin_group(none, utString("b"), giXform3());
    sink.end_group();
    sink.curve(none, utString("c"), qorabsTranslationStatus(1), nullptr);
    sink.end_group();
    sink.end_group();
    sink.begin_group(none, utString("d"), giXform3());
    sink.end_group();
    ASSERT_EQ(sink.top().size(), 2u);
    const DumpItem& a = *sink.top()[0];
    ASSERT_EQ(a.children.size(), 2u);
    EXPECT_EQ(a.children[0]->mangled, "b");
    EXPECT_EQ(a.children[1]->mangled, "c");
    EXPECT_EQ(sink.top()[1]->mangled, "d");
}
