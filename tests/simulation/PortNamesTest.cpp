#include "simulation/PortNames.hpp"

#include "tests/recorder/RecorderTest.hpp"

namespace recorder {
namespace {

class PortNamesTest : public RecorderTest {
protected:
    std::string reasonFor(const char* name) const
    {
        const PortSearch search = findPort(m_model, name);
        EXPECT_FALSE(search.port.has_value());
        return search.reason;
    }
};

TEST_F(PortNamesTest, PortIsFoundByItsName)
{
    EXPECT_EQ(findPort(m_model, "Klima/Luft:CO₂").port, carbonDioxide());
}

TEST_F(PortNamesTest, PortIsFoundByItsNumber)
{
    EXPECT_EQ(findPort(m_model, "Klima/Luft:2").port, carbonDioxide());
}

TEST_F(PortNamesTest, ModelNameMayStandInFront)
{
    EXPECT_EQ(findPort(m_model, "Gewächshaus/ポンプ:流量").port, (OutputPort{m_pump, 0}));
}

TEST_F(PortNamesTest, NameComesBeforeNumber)
{
    m_air->addPort(reference_host::PortKind::Output, u"1");
    EXPECT_EQ(findPort(m_model, "Klima/Luft:1").port, (OutputPort{m_air, 2}));
}

TEST_F(PortNamesTest, PortNameMayHoldAColon)
{
    m_air->addPort(reference_host::PortKind::Output, u"x:y");
    EXPECT_EQ(findPort(m_model, "Klima/Luft:x:y").port, (OutputPort{m_air, 2}));
}

TEST_F(PortNamesTest, WhatIsWrongWithANameIsSaid)
{
    EXPECT_EQ(reasonFor("Klima/Luft"), "a port is named by its block's path, \":\" and its name or number");
    EXPECT_EQ(reasonFor("Klima/Wasser:1"), "there is no such block");
    EXPECT_EQ(reasonFor(":1"), "there is no such block");
    EXPECT_EQ(reasonFor("Klima/Luft:"), "the block has no such output port");
    EXPECT_EQ(reasonFor("Klima/Luft:0"), "the block has no such output port");
    EXPECT_EQ(reasonFor("Klima/Luft:3"), "the block has no such output port");
    EXPECT_EQ(reasonFor("Klima/Luft:1 "), "the block has no such output port");
    EXPECT_EQ(reasonFor("ポンプ:A"), "several ports of the block have this name; give the port's number");
}

TEST_F(PortNamesTest, NameOfAPortFindsItAgain)
{
    EXPECT_EQ(portName(carbonDioxide()), "Klima/Luft:CO₂");
    EXPECT_EQ(findPort(m_model, portName(carbonDioxide())).port, carbonDioxide());
}

TEST_F(PortNamesTest, PortThatSharesItsNameIsNamedByItsNumber)
{
    EXPECT_EQ(portName({m_pump, 2}), "ポンプ:3");
}

}  // namespace
}  // namespace recorder
