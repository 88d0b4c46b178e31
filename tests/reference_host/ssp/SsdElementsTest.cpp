#include "tests/reference_host/model/DiagramTest.hpp"

namespace {

class XmlNamespacesTest : public DiagramTest {
protected:
    static std::size_t blockCount(const std::string& document) { return read(document).model->blockCount(); }

    static constexpr const char* m_first = "http://ssp-standard.org/SSP1/SystemStructureDescription";
    static constexpr const char* m_second = "http://ssp-standard.org/SSP2/SystemStructureDescription";

    /// One component; every element with the prefix, which the outermost element declares.
    static std::string prefixed(const std::string& prefix, const std::string& uri)
    {
        return "<" + prefix + ":SystemStructureDescription xmlns:" + prefix + "='" + uri + "'><" + prefix +
               ":System name='p'><" + prefix + ":Elements><" + prefix + ":Component name='A'/></" + prefix +
               ":Elements></" + prefix + ":System></" + prefix + ":SystemStructureDescription>";
    }
};

TEST_F(XmlNamespacesTest, AnyPrefixOfTheNamespaceWillDo)
{
    EXPECT_EQ(blockCount(prefixed("ssd", m_first)), 1U);
    EXPECT_EQ(blockCount(prefixed("x", m_first)), 1U);
    EXPECT_EQ(blockCount(prefixed("ssd", m_second)), 1U);
}

TEST_F(XmlNamespacesTest, NamespaceMayBeTheDefault)
{
    EXPECT_EQ(blockCount(std::string("<SystemStructureDescription xmlns='") + m_first +
                         "'><System name='p'><Elements><Component name='A'/></Elements></System>"
                         "</SystemStructureDescription>"),
              1U);
}

TEST_F(XmlNamespacesTest, VersionTwoIsReadLikeVersionOne)
{
    EXPECT_EQ(
        blockCount(std::string("<SystemStructureDescription version='2.0' xmlns='") + m_first +
                   "'><System name='p'><Elements><Component name='A'><Connectors><Connector name='y' "
                   "kind='output'><Clock name='c'/></Connector></Connectors></Component></Elements></System>"
                   "</SystemStructureDescription>"),
        1U);
}

TEST_F(XmlNamespacesTest, OutermostElementOfAnotherNamespaceIsRefused)
{
    EXPECT_EQ(
        refusal(prefixed("ssd", "http://example.org/other"), 1),
        "The outermost element is \"ssd:SystemStructureDescription\", not SSP's SystemStructureDescription.");
    EXPECT_EQ(
        refusal("<SystemStructureDescription/>", 1),
        "The outermost element is \"SystemStructureDescription\", not SSP's SystemStructureDescription.");
    EXPECT_EQ(refusal("\n<html/>", 2),
              "The outermost element is \"html\", not SSP's SystemStructureDescription.");
}

TEST_F(XmlNamespacesTest, UndeclaredPrefixIsPassedOver)
{
    EXPECT_EQ(blockCount(elements("<osp:Component name='no'/><ssd:Component name='A'><osp:Algorithm>"
                                  "<osp:Step size='1'/></osp:Algorithm></ssd:Component>")),
              1U);
}

TEST_F(XmlNamespacesTest, UndeclaredSsdIsTakenForTheNamespace)
{
    EXPECT_EQ(
        blockCount("<ssd:SystemStructureDescription><ssd:System name='p'><ssd:Elements>"
                   "<ssd:Component name='A'/></ssd:Elements></ssd:System></ssd:SystemStructureDescription>"),
        1U);
}

TEST_F(XmlNamespacesTest, DeclarationHoldsForItsElementAndWhatIsInside)
{
    const std::string other = "xmlns:ssd='http://example.org/other'";
    EXPECT_EQ(blockCount(elements("<ssd:Component name='A'/><ssd:Component name='no' " + other +
                                  "/><ssd:Component name='B'/>")),
              2U);
    EXPECT_EQ(blockCount(elements("<x:System name='S' xmlns:x='" + std::string(m_first) +
                                  "'><x:Elements><x:Component name='A'/></x:Elements></x:System>"
                                  "<x:Component name='no'/>")),
              2U);
}

TEST_F(XmlNamespacesTest, InnerDeclarationOverridesAndEnds)
{
    EXPECT_EQ(blockCount("<SystemStructureDescription xmlns='" + std::string(m_first) +
                         "'><System name='p'><Elements><x xmlns=''><Component name='no'/></x>"
                         "<Component xmlns='' name='no'/><Component name='A'/></Elements></System>"
                         "</SystemStructureDescription>"),
              1U);
}

TEST_F(XmlNamespacesTest, PrefixedAttributesAreNotOurs)
{
    EXPECT_EQ(refusal(elements("<ssd:Component ssd:name='A'/>"), 3), "A Component has no name.");
}

}  // namespace
