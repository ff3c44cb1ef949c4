// ColourPalette: the colour a writer gives an item by its colour index.
#include "cli/writers/ColourPalette.h"

#include <gtest/gtest.h>

#include "cli/writers/Scene.h"

TEST(ColourPalette, Colour_FinishedModelIsGreenAndOutlinesMagenta)
{
    EXPECT_EQ(ColourPalette::colour(3), (ColourPalette::Rgb{0, 255, 0}));
    EXPECT_EQ(ColourPalette::colour(6), (ColourPalette::Rgb{255, 0, 255}));
}

TEST(ColourPalette, Colour_NoIndexAndUnknownIndicesAreTheFallback)
{
    EXPECT_EQ(ColourPalette::colour(SceneItemInfo::no_colour), ColourPalette::fallback);
    EXPECT_EQ(ColourPalette::colour(ColourPalette::size), ColourPalette::fallback);
    EXPECT_EQ(ColourPalette::colour(-12345), ColourPalette::fallback);
    EXPECT_FALSE(ColourPalette::known(ColourPalette::size));
    EXPECT_TRUE(ColourPalette::known(0));
}
