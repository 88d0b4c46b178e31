#include "contract/Check.hpp"
#include "contract/Values.hpp"

#include <string>

// Text values.

using namespace contract;

ZM_CHECK(textIsARowOfUtf16Units, "nvCreateString nvGetUString", "Narrow text becomes a row of UTF-16 units.")
{
    const OwnedArray value(nvCreateString("Gr\u00F6\u00DFe \U0001F321"));
    expectEqual(nvGetUString(value.get()), std::u16string(u"Gr\u00F6\u00DFe \U0001F321"));
    expectEqual(nvGetNumberOfElements(value.get()), std::size_t{8});
    expectTrue(nvIsA(value.get(), "char"), "its class is char");
}

ZM_CHECK(textEndsAtZeroWithoutALength, "nvCreateString", "Text without a length ends at its first zero.")
{
    const OwnedArray value(nvCreateString("ab\0c"));
    expectEqual(nvGetNumberOfElements(value.get()), std::size_t{2});
    expectEqual(nvGetUString(value.get()), std::u16string(u"ab"));
}

ZM_CHECK(emptyTextIsAnEmptyValue, "nvCreateString", "An empty text is an empty value of class char.")
{
    const OwnedArray value(nvCreateString(""));
    expectTrue(nvIsEmpty(value.get()), "it is empty");
    expectTrue(nvIsA(value.get(), "char"), "its class is char");
}

ZM_CHECK(textWithoutAPointerIsRefused, "nvCreateString", "Null is no text.")
{
    expectHostError("nvCreateString", [] { nvCreateString(nullptr); });
}

ZM_CHECK(countedTextKeepsZeroUnits, "nvCreateString+length", "Text with a length keeps its zero units.")
{
    const std::string text("a\0b", 3);
    const OwnedArray value(nvCreateString(text.data(), text.size()));
    expectEqual(nvGetUString(value.get()), std::u16string(u"a\0b", 3));
    expectEqual(nvArrayToStdString(value.get()), text);
}

ZM_CHECK(countedTextTakesItsLengthOnly, "nvCreateString+length", "Text with a length is no longer than that.")
{
    const OwnedArray value(nvCreateString("abcdef", 3));
    expectEqual(nvArrayToStdString(value.get()), std::string("abc"));
}

ZM_CHECK(countedTextOfNullAndZeroIsEmpty, "nvCreateString+length", "Null with length 0 is an empty text.")
{
    const OwnedArray value(nvCreateString(nullptr, 0));
    expectTrue(nvIsEmpty(value.get()) && nvIsA(value.get(), "char"), "an empty text");
}

ZM_CHECK(countedTextOfNullIsRefused, "nvCreateString+length", "Null with a length is refused.")
{
    expectHostError("nvCreateString", [] { nvCreateString(nullptr, 3); });
}

ZM_CHECK(countedIllFormedTextIsReplaced, "nvCreateString+length", "An ill-formed byte becomes U+FFFD.")
{
    const OwnedArray value(nvCreateString("a\xFFz", 3));
    expectEqual(nvGetUString(value.get()), std::u16string(u"a\uFFFDz"));
}

ZM_CHECK(wideTextIsKept, "nvCreateUString nvGetUString", "Wide text is kept as it is.")
{
    const std::u16string text = u"Pr\u00FCfung \U0001F321";
    expectEqual(nvGetUString(makeString(text).get()), text);
}

ZM_CHECK(wideTextKeepsUnpairedSurrogates, "nvCreateUString nvGetUString",
         "Wide text keeps unpaired surrogates and zero units.")
{
    const std::u16string text{u'a', char16_t{0xD800}, u'\0', char16_t{0xDC00}};
    expectEqual(nvGetUString(makeString(text).get()), text);
}

ZM_CHECK(wideTextIsOfClassChar, "nvCreateUString", "Wide text is a row of class char, one element a unit.")
{
    const OwnedArray value = makeString(std::u16string(u"abc"));
    expectTrue(nvIsA(value.get(), "char"), "its class is char");
    expectEqual(nvGetNumberOfElements(value.get()), std::size_t{3});
}

ZM_CHECK(wideTextOfNullAndZeroIsEmpty, "nvCreateUString", "Null with length 0 is an empty text.")
{
    const OwnedArray value(nvCreateUString(nullptr, 0));
    expectTrue(nvIsEmpty(value.get()) && nvIsA(value.get(), "char"), "an empty text");
}

ZM_CHECK(wideTextOfNullIsRefused, "nvCreateUString", "Null with a length is refused.")
{
    expectHostError("nvCreateUString", [] { nvCreateUString(nullptr, 3); });
}

ZM_CHECK(narrowTextIsUtf8, "nvArrayToStdString", "The narrow text of a value is UTF-8.")
{
    expectEqual(nvArrayToStdString(makeString(std::u16string(u"\u20AC")).get()), std::string("\xE2\x82\xAC"));
}

ZM_CHECK(narrowTextReplacesUnpairedSurrogates, "nvArrayToStdString",
         "An unpaired surrogate is U+FFFD in narrow text.")
{
    const std::u16string text{u'a', char16_t{0xD800}};
    expectEqual(nvArrayToStdString(makeString(text).get()), std::string("a\xEF\xBF\xBD"));
}

ZM_CHECK(wideTextOfAnEmptyValueIsEmpty, "nvGetUString", "The text of any empty value is empty.")
{
    expectEqual(nvGetUString(makeEmpty().get()), std::u16string());
    expectEqual(nvGetUString(makeCells(0).get()), std::u16string());
}

ZM_CHECK(narrowTextOfAnEmptyValueIsEmpty, "nvArrayToStdString",
         "The narrow text of any empty value is empty.")
{
    expectEqual(nvArrayToStdString(makeEmpty().get()), std::string());
}

ZM_CHECK(wideTextOfANumberIsRefused, "nvGetUString", "A number has no text.")
{
    const OwnedArray number = makeDouble(1);
    expectHostError("nvGetUString", [&] { nvGetUString(number.get()); });
}

ZM_CHECK(narrowTextOfANumberIsRefused, "nvArrayToStdString", "A number has no narrow text.")
{
    const OwnedArray number = makeDouble(1);
    expectHostError("nvArrayToStdString", [&] { nvArrayToStdString(number.get()); });
}
