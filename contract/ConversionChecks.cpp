#include "contract/Check.hpp"
#include "host/Text.hpp"

#include <string>

// Text conversion and paths: host/Text.hpp.

using namespace contract;

namespace {

const std::string replacement = "\xEF\xBF\xBD";

std::string converted(const std::u16string& text)
{
    return toUtf8(text, *makeTextConverter("UTF-8"));
}

}  // namespace

ZM_CHECK(utf8OfEveryLengthOfCode, "toUtf8", "Wide text converts to one to four bytes a character.")
{
    expectEqual(toUtf8(u"A\u00E9\u20AC\U0001F321"), std::string("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8C\xA1"));
}

ZM_CHECK(utf8KeepsZeroUnits, "toUtf8", "Zero units of wide text are kept.")
{
    expectEqual(toUtf8(std::u16string(u"a\0b", 3)), std::string("a\0b", 3));
}

ZM_CHECK(utf8OfAnEmptyTextIsEmpty, "toUtf8", "An empty text converts to an empty one.")
{
    expectEqual(toUtf8(u""), std::string());
}

ZM_CHECK(utf8ReplacesUnpairedSurrogates, "toUtf8", "Each unpaired surrogate becomes U+FFFD.")
{
    const char16_t high = 0xD83C;
    const char16_t low = 0xDF21;
    expectEqual(toUtf8({high}), replacement);
    expectEqual(toUtf8({low, high}), replacement + replacement);
    expectEqual(toUtf8({u'a', high, u'b'}), "a" + replacement + "b");
    expectEqual(toUtf8({high, high, low}), replacement + "\xF0\x9F\x8C\xA1");
}

ZM_CHECK(utf16OfEveryLengthOfCode, "toUtf16", "Narrow text converts to one or two units a character.")
{
    expectEqual(toUtf16("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8C\xA1"), std::u16string(u"A\u00E9\u20AC\U0001F321"));
}

ZM_CHECK(utf16ReplacesIllFormedBytes, "toUtf16", "Each ill-formed sequence becomes U+FFFD; the rest is kept.")
{
    expectEqual(toUtf16("a\xFFz"), std::u16string(u"a\uFFFDz"));
    expectEqual(toUtf16("a\xC3"), std::u16string(u"a\uFFFD"));
    expectEqual(toUtf16("\x80z"), std::u16string(u"\uFFFDz"));
}

ZM_CHECK(utf16OfNullIsRefused, "toUtf16", "Null is no text.")
{
    expectHostError("toUtf16", [] { toUtf16(nullptr); });
}

ZM_CHECK(conversionLosesNothing, "toUtf16 toUtf8", "Well-formed text comes back from UTF-8 as it was.")
{
    std::u16string text;
    for (unsigned unit = 1; unit < 0xD800; unit += 37) {
        text += static_cast<char16_t>(unit);
    }
    text += u"\U00010000\U0010FFFF";
    expectEqual(toUtf16(toUtf8(text).c_str()), text);
}

ZM_CHECK(everyHostConvertsToUtf8,
         "makeTextConverter zmsvTextConverter::zmsvTextConverter zmsvTextConverter::~zmsvTextConverter",
         "There is a converter for UTF-8.")
{
    expectTrue(makeTextConverter("UTF-8") != nullptr, "the converter is not null");
}

ZM_CHECK(unknownEncodingIsRefused, "makeTextConverter",
         "An encoding that the host does not know is a host error.")
{
    expectHostError("makeTextConverter", [] { makeTextConverter("no such encoding"); });
}

ZM_CHECK(converterConvertsAsPlainUtf8, "toUtf8+converter makeTextConverter",
         "The UTF-8 converter gives what the plain conversion gives.")
{
    const std::u16string text = u"\u00C4\U0001F321";
    expectEqual(converted(text), std::string("\xC3\x84\xF0\x9F\x8C\xA1"));
}

ZM_CHECK(converterReplacesUnpairedSurrogates, "toUtf8+converter", "The UTF-8 converter writes U+FFFD, too.")
{
    expectEqual(converted({u'a', char16_t{0xD800}}), "a" + replacement);
}

ZM_CHECK(fileNameIsTheLastComponent, "extractFileName", "The file name is the last component of a path.")
{
    expectEqual(extractFileName(u"/data/runs/first.bin"), std::u16string(u"first.bin"));
    expectEqual(extractFileName(u"first.bin"), std::u16string(u"first.bin"));
    expectEqual(extractFileName(u"runs/Pr\u00FCfung"), std::u16string(u"Pr\u00FCfung"));
}

ZM_CHECK(noFileNameBehindASeparator, "extractFileName", "A path that ends in a separator has no file name.")
{
    expectEqual(extractFileName(u"/data/runs/"), std::u16string());
    expectEqual(extractFileName(u""), std::u16string());
}

ZM_CHECK(nativeFormKeepsTheParts, "makeNativeForm", "The native form of a path has the same parts.")
{
    expectEqual(makeNativeForm(u"runs/Pr\u00FCfung/first.bin", false),
                std::u16string(u"runs/Pr\u00FCfung/first.bin"));
    expectEqual(makeNativeForm(u"", false), std::u16string());
}

ZM_CHECK(normalFormResolvesDots, "makeNativeForm",
         "Normalising removes \".\" parts, doubled separators and \"..\".")
{
    expectEqual(makeNativeForm(u"runs/./first.bin", true), std::u16string(u"runs/first.bin"));
    expectEqual(makeNativeForm(u"runs//first.bin", true), std::u16string(u"runs/first.bin"));
    expectEqual(makeNativeForm(u"runs/old/../first.bin", true), std::u16string(u"runs/first.bin"));
}

ZM_CHECK(normalFormKeepsLeadingParents, "makeNativeForm",
         "Normalising keeps \"..\" that the text cannot resolve.")
{
    expectEqual(makeNativeForm(u"../first.bin", true), std::u16string(u"../first.bin"));
}
