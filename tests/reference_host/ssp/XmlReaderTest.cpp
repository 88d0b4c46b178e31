#include "tests/reference_host/model/DiagramTest.hpp"

#include <fstream>

namespace {

using XmlReaderTest = DiagramTest;

TEST_F(XmlReaderTest, UnclosedElementIsRefused)
{
    EXPECT_EQ(refusal(elements("\n<ssd:Component name='A'>"), 4),
              "The document is not XML: Opening and ending tag mismatch: Component line 4 and Elements.");
}

TEST_F(XmlReaderTest, MalformedXmlInsideAPassedOverElementIsRefused)
{
    EXPECT_EQ(refusal(system("<ssd:Annotations>\n<a b></a></ssd:Annotations>"), 4),
              "The document is not XML: Specification mandates value for attribute b.");
}

TEST_F(XmlReaderTest, EmptyDocumentIsRefused)
{
    EXPECT_EQ(refusal("", 1), "The document is not XML: Document is empty.");
}

TEST_F(XmlReaderTest, TruncatedDocumentIsRefused)
{
    const std::string whole = elements("<ssd:Component name='A'/>");
    for (std::size_t length = 0; length + 1 < whole.size(); ++length) {  // the last byte is a line feed
        hostError("InvalidDiagram", [&] { read(whole.substr(0, length)); });
    }
}

TEST_F(XmlReaderTest, TextAfterTheDocumentIsRefused)
{
    EXPECT_EQ(refusal(system("") + "<more/>", 4),
              "The document is not XML: Extra content at the end of the document.");
}

TEST_F(XmlReaderTest, BadUtf8IsRefused)
{
    for (const char* bad : {"\xFF", "\xC0\xAF", "\xC3"}) {
        EXPECT_EQ(refusal(elements(std::string("\n<ssd:Component name='") + bad + "'/>"), 4),
                  "The document is not XML: Input is not proper UTF-8, indicate encoding.");
    }
}

TEST_F(XmlReaderTest, CharactersOutsideXmlAreRefused)
{
    EXPECT_EQ(refusal(elements("\n<ssd:Component name='\xED\xA0\x80'/>"), 4),
              "The document is not XML: Char 0xD800 out of allowed range.");
    EXPECT_EQ(refusal(elements("\n<ssd:Component name='\xF4\x90\x80\x80'/>"), 4),
              "The document is not XML: Char 0x110000 out of allowed range.");
}

TEST_F(XmlReaderTest, EntityBombIsRefused)
{
    const std::string bomb =
        "<!DOCTYPE d [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;'>]>\n";
    EXPECT_EQ(refusal("<?xml version='1.0'?>\n" + bomb + elements("<ssd:Component name='&b;'/>"), 2),
              "A document type is not accepted, because it may define entities.");
}

TEST_F(XmlReaderTest, DocumentTypeFromElsewhereIsRefused)
{
    EXPECT_EQ(refusal("<!DOCTYPE d SYSTEM 'd.dtd'>" + system(""), 1),
              "A document type is not accepted, because it may define entities.");
}

TEST_F(XmlReaderTest, UndefinedEntityIsRefused)
{
    EXPECT_EQ(refusal(elements("<ssd:Component name='&a;'/>"), 3),
              "The document is not XML: Entity 'a' not defined.");
}

TEST_F(XmlReaderTest, NestingIsBounded)
{
    const std::string nested = elements("\n<ssd:Component name='A'/>");
    EXPECT_EQ(read(nested, {.depth = 4}).model->blockCount(), 1U);
    EXPECT_EQ(refusal(nested, 4, {.depth = 3}), "Elements are nested more than 3 deep.");
}

TEST_F(XmlReaderTest, NestingInsideAPassedOverElementIsBounded)
{
    std::string deep;
    for (int i = 0; i < 100000; ++i) {
        deep += "<a>";
    }
    EXPECT_EQ(refusal(system(deep), 3), "Elements are nested more than 256 deep.");
}

TEST_F(XmlReaderTest, SystemsMayBeNestedAHundredDeep)
{
    constexpr int depth = 100;
    std::string nested = "<ssd:Component name='A'/>";
    for (int i = 0; i < depth; ++i) {
        nested.insert(0, "<ssd:System name='S'><ssd:Elements>");
        nested += "</ssd:Elements></ssd:System>";
    }
    EXPECT_EQ(read(elements(nested)).model->blockCount(), depth + 1U);
}

TEST_F(XmlReaderTest, SizeIsBounded)
{
    const std::string document = elements("<ssd:Component name='A'/>");
    EXPECT_EQ(read(document, {.bytes = document.size()}).model->blockCount(), 1U);
    EXPECT_EQ(refusal(document, 1, {.bytes = document.size() - 1}),
              "The document is larger than " + std::to_string(document.size() - 1) + " bytes.");
}

TEST_F(XmlReaderTest, NodesAndAttributesAreCounted)
{
    const std::string document =
        system("<a/> <b c='' d=''/> <!-- e -->");  // with 2 elements and 3 attributes
    EXPECT_EQ(read(document, {.nodes = 10, .attributes = 6}).model->blockCount(), 0U);
    EXPECT_EQ(refusal(document, 3, {.nodes = 7}), "The document has more than 7 XML nodes.");
    EXPECT_EQ(refusal(document, 3, {.attributes = 5}), "The document has more than 5 attributes.");
}

TEST_F(XmlReaderTest, LongAttributesAndTextsTakeLinearTime)
{
    EXPECT_EQ(read(system("<a b='" + std::string(9'000'000, 'x') + "'/>")).model->blockCount(), 0U);
    EXPECT_EQ(refusal(system("<a b='" + std::string(64'000'000, 'x') + "'/>"), 3),
              "The document has more than 10000000 bytes in one attribute.");
    EXPECT_EQ(read(system(std::string(64'000'000, 'x'))).model->blockCount(), 0U);
}

TEST_F(XmlReaderTest, DocumentLongerThanOneReadIsWhole)
{
    const std::string name(1U << 20U, 'n');
    EXPECT_EQ(read(elements("<ssd:Component name='" + name + "'/>")).model->blocks().front()->name().size(),
              name.size());
}

}  // namespace
