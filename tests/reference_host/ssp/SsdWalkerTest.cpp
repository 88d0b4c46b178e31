#include "tests/reference_host/model/DiagramTest.hpp"

using reference_host::Block;
using reference_host::PortKind;

namespace {

using SsdWalkerTest = DiagramTest;

TEST_F(SsdWalkerTest, SystemIsTheFirstElement)
{
    EXPECT_EQ(read(system("")).model->root().origin(), 1U);
}

TEST_F(SsdWalkerTest, AllKindsOfElementsAreCountedTogether)
{
    const auto model = read(system("<ssd:Connectors><ssd:Connector name='u' kind='input'/></ssd:Connectors>"
                                   "<ssd:Elements>"
                                   "<ssd:Component name='A'><ssd:Connectors>"
                                   "<ssd:Connector name='y' kind='output'/><ssd:Connector name='p'/>"
                                   "</ssd:Connectors></ssd:Component>"
                                   "<ssd:System name='S'/></ssd:Elements>"
                                   "<ssd:Connections><ssd:Connection startConnector='u' endElement='A' "
                                   "endConnector='p'/></ssd:Connections>"))
                           .model;
    const Block& component = *model->findByPath(u"A");
    EXPECT_EQ(model->root().ports(PortKind::Input)[0].origin, 2U);
    EXPECT_EQ(component.origin(), 3U);
    EXPECT_EQ(component.ports(PortKind::Output)[0].origin, 4U);
    EXPECT_EQ(component.ports(PortKind::Other)[0].origin, 5U);
    EXPECT_EQ(model->findByPath(u"S")->origin(), 6U);
    EXPECT_EQ(model->root().connections()[0].origin, 7U);
}

TEST_F(SsdWalkerTest, ElementsThatArePassedOverAreNotCounted)
{
    const auto model =
        read(
            system("<ssd:Annotations><ssd:System name='x'/></ssd:Annotations><x:System name='x' xmlns:x='u'/>"
                   "<ssd:Connector name='x' kind='output'/><ssd:Component name='x'/>"
                   "<ssd:Elements><ssd:SignalDictionaryReference name='bus'><ssd:Connectors>"
                   "<ssd:Connector name='x' kind='output'/></ssd:Connectors></ssd:SignalDictionaryReference>"
                   "<ssd:Component name='A'/></ssd:Elements>"))
            .model;
    EXPECT_EQ(model->findByPath(u"A")->origin(), 2U);
}

TEST_F(SsdWalkerTest, BlocksThatWereNotReadHaveNoOrigin)
{
    const auto model = read(system("")).model;
    Block& block = model->add(model->root(), u"A", reference_host::BlockKind::Component);
    block.addPort(PortKind::Output, u"y");
    EXPECT_EQ(block.origin(), 0U);
    EXPECT_EQ(block.ports(PortKind::Output)[0].origin, 0U);
}

}  // namespace
