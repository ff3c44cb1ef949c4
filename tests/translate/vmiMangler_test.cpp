// The name mangler of a group's children.
#include "translate/vmiMangler.h"

#include <gtest/gtest.h>

#include "host/utString.h"

TEST(vmiMangler, DoMangling_JoinsPrefixAndNameWithUnderscore)
{
    vmiMangler m(utString("VelmScan(A)"));
    EXPECT_EQ(m.do_mangling(utString("SCAN_(LEFT)_x")), utString("VelmScan(A)_SCAN_(LEFT)_x"));
    EXPECT_EQ(m.do_mangling(utString("")), utString("VelmScan(A)_"));
}
