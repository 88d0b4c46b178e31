#include "host/Text.hpp"

#include <gtest/gtest.h>

namespace {

TEST(Path, HasItsLastComponentAsFileName)
{
    EXPECT_EQ(extractFileName(u"/data/runs/first.bin"), u"first.bin");
    EXPECT_EQ(extractFileName(u"first.bin"), u"first.bin");
    EXPECT_EQ(extractFileName(u"runs/Prüfung"), u"Prüfung");
}

TEST(Path, HasNoFileNameBehindASeparator)
{
    EXPECT_EQ(extractFileName(u"/data/runs/"), u"");
    EXPECT_EQ(extractFileName(u""), u"");
}

TEST(Path, InNativeFormKeepsItsParts)
{
    EXPECT_EQ(makeNativeForm(u"runs/Prüfung/first.bin", false), u"runs/Prüfung/first.bin");
    EXPECT_EQ(makeNativeForm(u"", false), u"");
}

TEST(Path, NormalizedLosesDotsAndDoubledSeparators)
{
    EXPECT_EQ(makeNativeForm(u"runs/./first.bin", true), u"runs/first.bin");
    EXPECT_EQ(makeNativeForm(u"runs//first.bin", true), u"runs/first.bin");
    EXPECT_EQ(makeNativeForm(u"runs/old/../first.bin", true), u"runs/first.bin");
}

TEST(Path, NormalizedKeepsWhatTheTextCannotResolve)
{
    EXPECT_EQ(makeNativeForm(u"../first.bin", true), u"../first.bin");
}

}  // namespace
