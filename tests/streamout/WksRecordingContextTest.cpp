#include "streamout/WksRecordingContext.hpp"

#include "tests/streamout/VirtualSlot.hpp"

#include <gtest/gtest.h>

namespace streamout {
namespace {

bool isStructFormat(const std::string& format)
{
    return WksRecordingContext(u"out", u"plant", "source", format, "", "", false).usingStructFormat();
}

TEST(WksRecordingContext, VirtualOperationsStandInTheirSlots)
{
    EXPECT_EQ(slotOf(&WksRecordingContext::getSourceID), 2U);
    EXPECT_EQ(slotOf(&WksRecordingContext::getModelName), 3U);
    EXPECT_EQ(slotOf(&WksRecordingContext::getVariableName), 4U);
    EXPECT_EQ(slotOf(&WksRecordingContext::getFormat), 5U);
    EXPECT_EQ(slotOf(&WksRecordingContext::getDecimation), 6U);
    EXPECT_EQ(slotOf(&WksRecordingContext::getMaxPoints), 7U);
    EXPECT_EQ(slotOf(&WksRecordingContext::getFixedPtAsDoubleFlag), 8U);
    EXPECT_EQ(slotOf(&WksRecordingContext::usingStructFormat), 9U);
}

TEST(WksRecordingContext, KeepsEachArgumentInItsPlace)
{
    const WksRecordingContext context(u"out", u"plant", "source", "struct", "2", "1000", true);

    EXPECT_EQ(context.getVariableName(), u"out");
    EXPECT_EQ(context.getModelName(), u"plant");
    EXPECT_EQ(context.getSourceID(), "source");
    EXPECT_EQ(context.getFormat(), "struct");
    EXPECT_EQ(context.getDecimation(), "2");
    EXPECT_EQ(context.getMaxPoints(), "1000");
    EXPECT_TRUE(context.getFixedPtAsDoubleFlag());
}

TEST(WksRecordingContext, FixedPointFlagMayBeFalse)
{
    EXPECT_FALSE(WksRecordingContext(u"", u"", "", "", "", "", false).getFixedPtAsDoubleFlag());
}

TEST(WksRecordingContext, KeepsTextExactlyAsGiven)
{
    // A code unit 0, an unpaired surrogate, a line break, blanks at both ends.
    const std::u16string wide(u" a\0\xD800\n ", 6);
    const std::string narrow(" a\0\xFF\n ", 6);
    const WksRecordingContext context(wide, wide, narrow, narrow, narrow, narrow, false);

    EXPECT_EQ(context.getVariableName(), wide);
    EXPECT_EQ(context.getModelName(), wide);
    EXPECT_EQ(context.getSourceID(), narrow);
    EXPECT_EQ(context.getFormat(), narrow);
    EXPECT_EQ(context.getDecimation(), narrow);
    EXPECT_EQ(context.getMaxPoints(), narrow);
}

TEST(WksRecordingContext, ThreeFormatsAreStructFormats)
{
    EXPECT_TRUE(isStructFormat("struct"));
    EXPECT_TRUE(isStructFormat("structwithtime"));
    EXPECT_TRUE(isStructFormat("struct2D"));
}

TEST(WksRecordingContext, LetterCaseMakesAnotherFormat)
{
    EXPECT_FALSE(isStructFormat("Struct"));
    EXPECT_FALSE(isStructFormat("StructWithTime"));
    EXPECT_FALSE(isStructFormat("struct2d"));
}

TEST(WksRecordingContext, ABlankOrACodeUnit0MakesAnotherFormat)
{
    EXPECT_FALSE(isStructFormat("struct "));
    EXPECT_FALSE(isStructFormat("structwithtime "));
    EXPECT_FALSE(isStructFormat(" struct2D"));
    EXPECT_FALSE(isStructFormat(std::string("struct\0", 7)));
}

TEST(WksRecordingContext, OtherFormatsAreNotStructFormats)
{
    EXPECT_FALSE(isStructFormat(""));
    EXPECT_FALSE(isStructFormat("array"));
    EXPECT_FALSE(isStructFormat("struct2"));
    EXPECT_FALSE(isStructFormat("structs"));
}

}  // namespace
}  // namespace streamout
