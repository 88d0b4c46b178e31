#include "tests/reference_host/model/DiagramTest.hpp"

namespace {

class XmlEncodingTest : public DiagramTest {
protected:
    /// A document with a component of that name; all given as characters below 256.
    static std::string narrow(const std::string& declaration, const std::string& name)
    {
        return declaration + elements("<ssd:Component name='" + name + "'/>");
    }

    static std::string wide(const std::u16string& text, bool isLittle)
    {
        std::string bytes;
        for (const char16_t unit : text) {
            const auto low = static_cast<char>(unit & 0xFFU);
            const auto high = static_cast<char>(unit >> 8U);
            bytes += isLittle ? low : high;
            bytes += isLittle ? high : low;
        }
        return bytes;
    }

    static std::u16string wideDocument(const std::u16string& name)
    {
        std::u16string text;
        for (const char c : narrow("<?xml version='1.0' encoding='utf-16'?>", "@")) {
            text += c == '@' ? name : std::u16string(1, static_cast<unsigned char>(c));
        }
        return text;
    }

    static std::u16string nameIn(const std::string& document)
    {
        return read(document).model->blocks().front()->name();
    }
};

TEST_F(XmlEncodingTest, Utf8IsReadDeclaredOrNot)
{
    EXPECT_EQ(nameIn(narrow("", "ä")), u"ä");
    EXPECT_EQ(nameIn(narrow("<?xml version='1.0'?>", "ä")), u"ä");
    EXPECT_EQ(nameIn(narrow("\xEF\xBB\xBF<?xml version='1.0' encoding = \"uTf-8\"?>", "ä")), u"ä");
}

TEST_F(XmlEncodingTest, Utf16IsReadInEitherOrder)
{
    const std::u16string document = wideDocument(u"\u9F8D \U0001F409");
    for (const bool isLittle : {true, false}) {
        EXPECT_EQ(nameIn(wide(u"\uFEFF" + document, isLittle)), u"\u9F8D \U0001F409");
        EXPECT_EQ(nameIn(wide(document, isLittle)), u"\u9F8D \U0001F409") << "without the mark";
    }
}

TEST_F(XmlEncodingTest, Latin1IsRead)
{
    EXPECT_EQ(nameIn(narrow("<?xml version='1.0' encoding='iso-8859-1'?>", "\xE4\xFF")), u"äÿ");
}

TEST_F(XmlEncodingTest, Windows1252IsRead)
{
    EXPECT_EQ(nameIn(narrow("<?xml version='1.0' encoding='windows-1252'?>", "\x80\xE4")), u"€ä");
}

TEST_F(XmlEncodingTest, UnknownAndContradictoryEncodingsAreRefused)
{
    EXPECT_EQ(refusal(narrow("<?xml version='1.0' encoding='no-such'?>", "a"), 1),
              "The document is not XML: Unsupported encoding no-such.");
    EXPECT_EQ(refusal(narrow("<?xml version='1.0' encoding='UTF-16'?>", "a"), 1),
              "The document is not XML: Document labelled UTF-16 but has UTF-8 content.");
}

TEST_F(XmlEncodingTest, IllFormedUtf16IsRefused)
{
    const auto refuse = [](const std::string& document) {
        hostError("InvalidDiagram", [&] { read(document); });
    };
    refuse(wide(wideDocument(std::u16string(1, u'\xD800') + u"' x='"), true));
    refuse(wide(wideDocument(std::u16string(1, u'\xDC00')), false));
}

TEST_F(XmlEncodingTest, OtherInstructionsDeclareNothing)
{
    EXPECT_EQ(nameIn(narrow("<?xml-stylesheet encoding='windows-1252'?>", "ä")), u"ä");
}

TEST_F(XmlEncodingTest, NamesFollowTheSameRulesInEveryEncoding)
{
    EXPECT_EQ(refusal(system("<\xC2\xB5/>"), 3),
              refusal("<?xml version='1.0' encoding='ISO-8859-1'?>" + system("<\xB5/>"), 3));
}

}  // namespace
