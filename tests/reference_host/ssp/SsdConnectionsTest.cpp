#include "reference_host/ssp/SsdReader.hpp"

#include "tests/reference_host/model/DiagramTest.hpp"

using reference_host::Block;
using reference_host::Connection;
using reference_host::SsdDocument;

namespace {

class SsdConnectionsTest : public DiagramTest {
protected:
    /// A plant with input u and output y, and the components A and B likewise. The connections begin on
    /// line 4.
    static SsdDocument connect(const std::string& connections)
    {
        const std::string connectors =
            "<ssd:Connectors><ssd:Connector name='u' kind='input'/>"
            "<ssd:Connector name='y' kind='output'/></ssd:Connectors>";
        return read(system(connectors + "<ssd:Elements><ssd:Component name='A'>" + connectors +
                           "</ssd:Component><ssd:Component name='B'>" + connectors +
                           "</ssd:Component><ssd:SignalDictionaryReference name='Bus'/></ssd:Elements>\n" +
                           "<ssd:Connections>" + connections + "</ssd:Connections>"));
    }
};

TEST_F(SsdConnectionsTest, ConnectionsAreKeptInOrder)
{
    const SsdDocument document = connect(
        "<ssd:Connection startElement='A' startConnector='y' endElement='B' endConnector='u'/>"
        "<ssd:Connection startElement='B' startConnector='y' endElement='A' endConnector='u'/>");
    const std::vector<Connection>& connections = document.model->root().connections();
    ASSERT_EQ(connections.size(), 2U);
    EXPECT_EQ(connections[0].start.element, document.model->findByPath(u"A"));
    EXPECT_EQ(connections[0].start.connector, u"y");
    EXPECT_EQ(connections[0].end.element, document.model->findByPath(u"B"));
    EXPECT_EQ(connections[1].start.element, document.model->findByPath(u"B"));
    EXPECT_TRUE(document.warnings.empty());
}

TEST_F(SsdConnectionsTest, OmittedElementMeansTheEnclosingSystem)
{
    const SsdDocument document = connect(
        "<ssd:Connection startConnector='u' endElement='A' endConnector='u'/>"
        "<ssd:Connection startElement='A' startConnector='y' endConnector='y'/>");
    const Block& plant = document.model->root();
    ASSERT_EQ(plant.connections().size(), 2U);
    EXPECT_EQ(plant.connections()[0].start.element, &plant);
    EXPECT_EQ(plant.connections()[1].end.element, &plant);
    EXPECT_TRUE(document.warnings.empty());
}

TEST_F(SsdConnectionsTest, ConnectionsFollowARenamedBlock)
{
    const SsdDocument document =
        connect("<ssd:Connection startElement='A' startConnector='y' endElement='B' endConnector='u'/>");
    document.model->rename(*document.model->findByPath(u"A"), u"Alpha");
    EXPECT_EQ(document.model->root().connections().front().start.element->name(), u"Alpha");
}

TEST_F(SsdConnectionsTest, ConnectionsOfANestedSystemAreItsOwn)
{
    const SsdDocument document = read(elements(
        "<ssd:System name='S'><ssd:Connectors><ssd:Connector name='u' kind='input'/></ssd:Connectors>"
        "<ssd:Elements><ssd:Component name='A'><ssd:Connectors><ssd:Connector name='u' kind='input'/>"
        "</ssd:Connectors></ssd:Component></ssd:Elements><ssd:Connections>"
        "<ssd:Connection startConnector='u' endElement='A' "
        "endConnector='u'/></ssd:Connections></ssd:System>"));
    const Block& inner = *document.model->findByPath(u"S");
    ASSERT_EQ(inner.connections().size(), 1U);
    EXPECT_EQ(inner.connections().front().start.element, &inner);
    EXPECT_TRUE(document.model->root().connections().empty());
    EXPECT_TRUE(document.warnings.empty());
}

TEST_F(SsdConnectionsTest, ElementThatDoesNotExistIsAWarning)
{
    const SsdDocument document = connect(
        "\n<ssd:Connection startElement='Nobody' startConnector='y' endElement='B' endConnector='u'/>");
    ASSERT_EQ(document.warnings.size(), 1U);
    EXPECT_EQ(document.warnings[0].line, 5U);
    EXPECT_EQ(document.warnings[0].reason, "A connection ends at \"Nobody\", which \"plant\" does not hold.");
    const Connection& kept = document.model->root().connections().front();
    EXPECT_EQ(kept.start.element, nullptr);
    EXPECT_EQ(kept.start.elementName, u"Nobody");
}

TEST_F(SsdConnectionsTest, ConnectorThatDoesNotExistIsAWarning)
{
    const SsdDocument document =
        connect("<ssd:Connection startElement='A' startConnector='x' endElement='B' endConnector='u'/>");
    ASSERT_EQ(document.warnings.size(), 1U);
    EXPECT_EQ(document.warnings[0].reason,
              "A connection ends at connector \"x\", which \"plant/A\" does not have.");
}

TEST_F(SsdConnectionsTest, EachDanglingEndIsAWarning)
{
    EXPECT_EQ(connect("<ssd:Connection startElement='A' endElement='Nobody'/>").warnings.size(), 2U);
}

TEST_F(SsdConnectionsTest, ConnectionToASignalDictionaryIsNoWarning)
{
    const SsdDocument document =
        connect("<ssd:Connection startElement='A' startConnector='y' endElement='Bus' endConnector='s'/>");
    EXPECT_TRUE(document.warnings.empty());
    EXPECT_EQ(document.model->root().connections().front().end.elementName, u"Bus");
    EXPECT_EQ(document.model->blockCount(), 2U);
}

TEST_F(SsdConnectionsTest, ConnectionsMayComeBeforeTheirElements)
{
    const SsdDocument document =
        read(system("<ssd:Connections><ssd:Connection startElement='A' startConnector='y' endConnector='y'/>"
                    "</ssd:Connections><ssd:Elements><ssd:Component name='A'><ssd:Connectors>"
                    "<ssd:Connector name='y' kind='output'/></ssd:Connectors></ssd:Component></ssd:Elements>"
                    "<ssd:Connectors><ssd:Connector name='y' kind='output'/></ssd:Connectors>"));
    EXPECT_TRUE(document.warnings.empty());
}

}  // namespace
