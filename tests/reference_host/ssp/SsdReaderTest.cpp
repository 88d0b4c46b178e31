#include "reference_host/ssp/SsdReader.hpp"

#include "tests/reference_host/model/DiagramTest.hpp"

using reference_host::Block;
using reference_host::BlockKind;
using reference_host::Model;
using reference_host::Port;
using reference_host::PortKind;
using reference_host::SsdDocument;

namespace {

class SsdReaderTest : public DiagramTest {
protected:
    static std::vector<std::u16string> paths(const Model& model)
    {
        std::vector<std::u16string> all;
        for (const Block* block : model.blocks()) {
            all.push_back(block->path());
        }
        return all;
    }

    static std::vector<std::u16string> names(const std::vector<Port>& ports)
    {
        std::vector<std::u16string> all;
        all.reserve(ports.size());
        for (const Port& port : ports) {
            all.push_back(port.name);
        }
        return all;
    }
};

TEST_F(SsdReaderTest, ModelBearsTheNameOfTheOutermostSystem)
{
    EXPECT_EQ(read(system("")).model->name(), u"plant");
}

TEST_F(SsdReaderTest, ComponentsAndNestedSystemsBecomeBlocks)
{
    const SsdDocument document =
        read(elements("<ssd:Component name='A'/><ssd:System name='S'><ssd:Elements>"
                      "<ssd:Component name='B'/><ssd:System name='T'/></ssd:Elements></ssd:System>"
                      "<ssd:Component name='C'/>"));
    EXPECT_EQ(paths(*document.model),
              (std::vector<std::u16string>{u"plant/A", u"plant/S", u"plant/S/B", u"plant/S/T", u"plant/C"}));
    EXPECT_EQ(document.model->findByPath(u"A")->kind(), BlockKind::Component);
    EXPECT_EQ(document.model->findByPath(u"S/T")->kind(), BlockKind::System);
}

TEST_F(SsdReaderTest, ZidsAreGivenInDocumentOrder)
{
    const SsdDocument document =
        read(elements("<ssd:Component name='A'/><ssd:System name='S'><ssd:Elements><ssd:Component name='B'/>"
                      "</ssd:Elements></ssd:System><ssd:Component name='C'/>"));
    std::uint32_t expected = 0;
    for (const Block* block : document.model->blocks()) {
        EXPECT_EQ(block->number(), ++expected);
    }
    EXPECT_EQ(document.model->findByPath(u"C")->zid(), "plant:4");
}

TEST_F(SsdReaderTest, OutputConnectorsAreNumberedInDocumentOrder)
{
    const SsdDocument document =
        read(elements("<ssd:Component name='A'><ssd:Connectors>"
                      "<ssd:Connector name='z' kind='output'/><ssd:Connector name='u' kind='input'/>"
                      "<ssd:Connector name='a' kind='output'/></ssd:Connectors></ssd:Component>"));
    const Block& block = *document.model->findByPath(u"A");
    EXPECT_EQ(names(block.ports(PortKind::Output)), (std::vector<std::u16string>{u"z", u"a"}));
    EXPECT_EQ(names(block.ports(PortKind::Input)), (std::vector<std::u16string>{u"u"}));
}

TEST_F(SsdReaderTest, OnlyTheKindOutputMakesAnOutputPort)
{
    const SsdDocument document = read(elements(
        "<ssd:Component name='A'><ssd:Connectors><ssd:Connector name='1' kind='parameter'/>"
        "<ssd:Connector name='2' kind='calculatedParameter'/><ssd:Connector name='3' "
        "kind='structuralParameter'/>"
        "<ssd:Connector name='4' kind='constant'/><ssd:Connector name='5' kind='local'/>"
        "<ssd:Connector name='6' kind='inout'/><ssd:Connector name='7' kind='unspecified'/>"
        "<ssd:Connector name='8'/><ssd:Connector name='9' kind='Output'/></ssd:Connectors></ssd:Component>"));
    const Block& block = *document.model->findByPath(u"A");
    EXPECT_TRUE(block.ports(PortKind::Output).empty());
    EXPECT_TRUE(block.ports(PortKind::Input).empty());
    EXPECT_EQ(block.ports(PortKind::Other).size(), 9U);
}

TEST_F(SsdReaderTest, SystemsHaveOutputPortsToo)
{
    const SsdDocument document =
        read(elements("<ssd:System name='S'><ssd:Connectors><ssd:Connector name='y' "
                      "kind='output'/></ssd:Connectors></ssd:System>"));
    EXPECT_EQ(document.model->findByPath(u"S")->ports(PortKind::Output).size(), 1U);
}

TEST_F(SsdReaderTest, NamesKeepEveryScript)
{
    const SsdDocument document = read(elements("<ssd:Component name='灌漑 &#x20BB7; Ω &amp; &lt;é&gt;'/>"));
    EXPECT_EQ(document.model->blocks().front()->name(), u"灌漑 𠮷 Ω & <é>");
}

TEST_F(SsdReaderTest, Utf16DocumentsAreRead)
{
    const std::string narrow =
        "<?xml version='1.0' encoding='UTF-16'?>" + elements("<ssd:Component name='A'/>");
    std::string wide = "\xFF\xFE";
    for (const char unit : narrow) {
        wide += unit;
        wide += '\0';
    }
    EXPECT_EQ(read(wide).model->blockCount(), 1U);
}

TEST_F(SsdReaderTest, UnknownElementsAndAttributesArePassedOver)
{
    const SsdDocument document =
        read(system("<ssd:Novelty><ssd:Elements><ssd:Component name='no'/></ssd:Elements></ssd:Novelty>\n"
                    "<ssd:Elements tool='x'><ssd:Component name='A' colour='red'><ssd:Annotations>"
                    "<ssd:Component/></ssd:Annotations></ssd:Component></ssd:Elements>"));
    EXPECT_EQ(paths(*document.model), (std::vector<std::u16string>{u"plant/A"}));
}

TEST_F(SsdReaderTest, KnownElementsInStrangePlacesArePassedOver)
{
    const SsdDocument document =
        read(system("<ssd:Component name='no'/><ssd:Connector name='no' kind='output'/><ssd:Elements>"
                    "<ssd:Component name='A'><ssd:Elements><ssd:Component "
                    "name='no'/></ssd:Elements></ssd:Component></ssd:Elements>"));
    EXPECT_EQ(paths(*document.model), (std::vector<std::u16string>{u"plant/A"}));
}

TEST_F(SsdReaderTest, SlashAndColonInAnElementNameAreEscaped)
{
    EXPECT_EQ(paths(*read(elements("<ssd:Component name='Kreis 1/2'/><ssd:System name='Plant::Motor'/>"
                                   "<ssd:Component name='50 %'/><ssd:Component name='%2F'/>"))
                         .model),
              (std::vector<std::u16string>{u"plant/Kreis 1%2F2", u"plant/Plant%3A%3AMotor", u"plant/50 %",
                                           u"plant/%252F"}));
}

TEST_F(SsdReaderTest, EscapedNamesAreConnected)
{
    const SsdDocument document = read(
        system("<ssd:Elements><ssd:Component name='A/B'><ssd:Connectors><ssd:Connector name='y/z' "
               "kind='output'/></ssd:Connectors></ssd:Component></ssd:Elements><ssd:Connections>"
               "<ssd:Connection startElement='A/B' startConnector='y/z' endElement='A/B' endConnector='y/z'/>"
               "</ssd:Connections>"));
    EXPECT_TRUE(document.warnings.empty());
    EXPECT_EQ(document.model->root().connections().front().start.element,
              document.model->findByPath(u"A%2FB"));
}

TEST_F(SsdReaderTest, EmptyAndMissingNamesAreRefused)
{
    EXPECT_EQ(refusal(elements("<ssd:Component name=''/>"), 3), "The name \"\" is empty.");
    EXPECT_EQ(refusal(elements("<ssd:Component/>"), 3), "A Component has no name.");
    EXPECT_EQ(refusal(elements("<ssd:System/>"), 3), "A System has no name.");
    EXPECT_EQ(refusal(elements("<ssd:Component name='A'><ssd:Connectors>\n<ssd:Connector kind='output'/>"
                               "</ssd:Connectors></ssd:Component>"),
                      4),
              "A Connector has no name.");
}

TEST_F(SsdReaderTest, SiblingsOfOneNameAreRefused)
{
    EXPECT_EQ(refusal(elements("<ssd:Component name='A'/>\n<ssd:System name='A'/>"), 4),
              "The name \"A\" is taken in \"plant\".");
}

TEST_F(SsdReaderTest, ModelNameFollowsTheSameRules)
{
    const std::string head =
        "<ssd:SystemStructureDescription "
        "xmlns:ssd='http://ssp-standard.org/SSP1/SystemStructureDescription'>\n";
    EXPECT_EQ(refusal(head + "<ssd:System/></ssd:SystemStructureDescription>", 2), "A System has no name.");
    EXPECT_EQ(read(head + "<ssd:System name='a:b'/></ssd:SystemStructureDescription>").model->name(),
              u"a%3Ab");
}

TEST_F(SsdReaderTest, DescriptionHasExactlyOneSystem)
{
    const std::string head =
        "<ssd:SystemStructureDescription "
        "xmlns:ssd='http://ssp-standard.org/SSP1/SystemStructureDescription'>\n";
    EXPECT_EQ(refusal(head + "</ssd:SystemStructureDescription>", 2), "The description has no System.");
    EXPECT_EQ(
        refusal(head + "<ssd:System name='a'/>\n<ssd:System name='b'/></ssd:SystemStructureDescription>", 3),
        "The description has a second System.");
}

TEST_F(SsdReaderTest, ManyBlocksAreRead)
{
    constexpr std::size_t systems = 1000;
    constexpr std::size_t components = 99;
    std::string content;
    for (std::size_t i = 0; i < systems; ++i) {
        const std::string number = std::to_string(i);
        content += "<ssd:System name='S" + number + "'><ssd:Elements>";
        for (std::size_t j = 0; j < components; ++j) {
            content +=
                "<ssd:Component name='C" + std::to_string(j) +
                "'><ssd:Connectors><ssd:Connector name='y' kind='output'/></ssd:Connectors></ssd:Component>";
        }
        content += "</ssd:Elements></ssd:System>";
    }
    const SsdDocument document = read(elements(content));
    EXPECT_EQ(document.model->blockCount(), systems * (components + 1));
    const Block* last = document.model->findByPath(u"S999/C98");
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(last->zid(), "plant:100000");
    EXPECT_EQ(document.model->findByHandle(last->handle()), last);
}

TEST_F(SsdReaderTest, CountsAreBounded)
{
    const std::string three = system(
        "<ssd:Elements><ssd:Component name='A'/><ssd:Component name='B'/></ssd:Elements><ssd:Connections>"
        "<ssd:Connection/><ssd:Connection/><ssd:Connection/></ssd:Connections>");
    EXPECT_EQ(read(three, {.blocks = 3, .connections = 3}).model->blockCount(), 2U);
    EXPECT_EQ(refusal(three, 3, {.blocks = 2}), "The document has more than 2 blocks.");
    EXPECT_EQ(refusal(three, 3, {.connections = 2}), "The document has more than 2 connections.");
}

TEST_F(SsdReaderTest, ForeignNamesAreEscapedAndShortenedInErrors)
{
    const std::string name = "&#xA;\xC2\x9B" + std::string(5'000'000, 'n');
    const std::string twice = "<ssd:Component name='" + name + "'/>";
    const std::string reason = refusal(elements(twice + twice), 3);
    EXPECT_TRUE(reason.starts_with("The name \"\\n\\u009bnnn")) << reason;
    EXPECT_LT(reason.size(), 200U);
}

}  // namespace
