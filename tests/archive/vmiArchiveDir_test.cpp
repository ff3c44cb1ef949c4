// The archive directory and the catalogue list.
#include <gtest/gtest.h>

#include "archive/vmiArchiveDir.h"
#include "archive/vmiArchiveElement.h"
#include "archive/vmiVlk.h"
#include "archive/vmiVlkElement.h"

TEST(VmiArchiveDir, GetFindsTheFirstElementOfTypeAndNumber)
{
    vmiArchiveDir dir;
    vmiArchiveElement* a = new vmiArchiveElement("00001.dat", new char[1], 1, vmiEntryKind::data, 1);
    vmiArchiveElement* b = new vmiArchiveElement("XX00001.dat", new char[2], 2, vmiEntryKind::data, 1);
    vmiArchiveElement* c = new vmiArchiveElement("00000.vlk", new char[3], 3, vmiEntryKind::catalogue, 1);
    dir.add(a);
    dir.add(b);
    dir.add(c);
    EXPECT_EQ(dir.get(vmiEntryKind::data, 1), a);
    EXPECT_EQ(dir.get(vmiEntryKind::catalogue, 1), c);
    EXPECT_EQ(dir.get(vmiEntryKind::data, 2), nullptr);
    EXPECT_EQ(dir.count(), 3);
    EXPECT_EQ(dir.first(), a);
    EXPECT_EQ(a->next(), b);
    dir.free();
    EXPECT_EQ(dir.count(), 0);
    EXPECT_EQ(dir.get(vmiEntryKind::data, 1), nullptr);
}

TEST(VmiVlk, GetFindsTheFirstRecordOfANumberInFileOrder)
{
    vmiVlk list;
    vmiVlkElement* a = new vmiVlkElement(3);
    a->indx(5);
    vmiVlkElement* b = new vmiVlkElement(3);
    b->indx(5);
    list.add(new vmiVlkElement(1));
    list.add(a);
    list.add(b);
    EXPECT_EQ(list.get(5), a);
    EXPECT_EQ(list.get(6), nullptr);
    EXPECT_EQ(list.count(), 3);
    EXPECT_EQ(list.first()->level(), 1);
    list.free();
    EXPECT_EQ(list.first(), nullptr);
}

TEST(VmiVlkElement, StartsWithZerosAndEmptyStrings)
{
    vmiVlkElement e(2);
    EXPECT_EQ(e.level(), 2);
    EXPECT_EQ(e.type1(), 0);
    EXPECT_EQ(e.indx(), 0);
    EXPECT_EQ(e.ref_indx(), 0);
    EXPECT_EQ(e.type2(), 0);
    EXPECT_EQ(e.data_indx(), 0);
    EXPECT_TRUE(e.date().empty());
    EXPECT_TRUE(e.comment().empty());
    EXPECT_TRUE(e.name0().empty());
    EXPECT_TRUE(e.name1().empty());
    EXPECT_EQ(e.next(), nullptr);
}
