#include "reference_host/drawing/DiagramDrawing.hpp"

#include "tests/editor/EditorTest.hpp"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace editor {
namespace {

namespace rh = reference_host;

class DiagramDrawing : public EditorTest {
protected:
    std::string drawn() const { return rh::diagramAsDot(*model); }

    static std::size_t occurrences(const std::string& text, std::string_view part)
    {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
            ++count;
        }
        return count;
    }
};

TEST_F(DiagramDrawing, EveryBlockIsDrawnAndSystemsAreBoxes)
{
    const std::string dot = drawn();
    EXPECT_NE(dot.find("<b>plant</b>"), std::string::npos);
    EXPECT_NE(dot.find("<b>Gain</b>"), std::string::npos);
    EXPECT_NE(dot.find("<b>Tank</b>"), std::string::npos);
    EXPECT_EQ(occurrences(dot, "subgraph \"cluster "), 1U);
}

TEST_F(DiagramDrawing, ObservedPortsAndThoseOfClientsAreMarked)
{
    EXPECT_EQ(occurrences(drawn(), "#cdebc5") + occurrences(drawn(), "#bfdcf5"), 2U) << "the legend";
    addSignal(at(u"Controller/Gain"), 2);
    addSignal(at(u"Tank"), 1);
    addClient(1);
    const std::string dot = drawn();
    EXPECT_NE(dot.find("\"#cdebc5\">z &#9679;"), std::string::npos) << dot;
    EXPECT_NE(dot.find("\"#bfdcf5\">level &#9673;"), std::string::npos) << dot;
    EXPECT_EQ(occurrences(dot, "#cdebc5") + occurrences(dot, "#bfdcf5"), 4U);
}

TEST_F(DiagramDrawing, AnObservedChartIsMarked)
{
    EXPECT_EQ(occurrences(drawn(), "<i>Filling</i> &#9679;"), 0U);
    addActivity(at(u"Tank"), u"1");
    EXPECT_EQ(occurrences(drawn(), "<i>Filling</i> &#9679;"), 1U);
}

TEST_F(DiagramDrawing, ConnectionsEndAtTheirPorts)
{
    rh::Block& gain = at(u"Controller/Gain");
    at(u"Tank").addPort(rh::PortKind::Input, u"in");
    root().addConnection({{&at(u"Controller"), {}, u"status"}, {&at(u"Tank"), {}, u"in"}});
    root().addConnection({{&at(u"Controller"), {}, u"gone"}, {&at(u"Tank"), {}, u"in"}});
    at(u"Controller").addConnection({{&gain, {}, u"w"}, {&at(u"Controller"), {}, u"status"}});
    const std::string dot = drawn();
    EXPECT_NE(dot.find("\"Controller/ outputs\":\"status\" -> \"Tank\":\"in\";"), std::string::npos) << dot;
    EXPECT_NE(dot.find("\"Controller/Gain\":\"w\" -> \"Controller/ outputs\":\"status\";"), std::string::npos)
        << dot;
    EXPECT_EQ(occurrences(dot, "\" -> \"") - occurrences(dot, "[style=invis];"), 2U)
        << "an end that does not exist is not drawn";
}

TEST_F(DiagramDrawing, BlocksAreBetweenTheInputsAndTheOutputsOfTheirSystem)
{
    const std::string dot = drawn();
    EXPECT_NE(dot.find("\"Controller/ inputs\" -> \"Controller/Gain\" [style=invis];"), std::string::npos)
        << dot;
    EXPECT_NE(dot.find("\"Controller/Gain\" -> \"Controller/ outputs\" [style=invis];"), std::string::npos)
        << dot;
    model->remove(at(u"Controller/Gain"));
    EXPECT_NE(drawn().find("\"Controller/ inputs\" -> \"Controller/ outputs\" [style=invis];"),
              std::string::npos);
}

TEST_F(DiagramDrawing, NamesAreDrawnAsTheyAre)
{
    model->rename(at(u"Tank"), u"<a & \"b\">\n\u00fc");
    EXPECT_NE(drawn().find("<b>&lt;a &amp; &quot;b&quot;&gt; \u00fc</b>"), std::string::npos);
}

TEST_F(DiagramDrawing, NodesHaveReadableNamesWithoutTheCharactersOfTheLanguage)
{
    model->rename(at(u"Tank"), u"a \"b\" \\");
    at(u"a \"b\" \\").addPort(rh::PortKind::Output, u"c:d");
    EXPECT_NE(drawn().find("\"a \u201Db\u201D \u2216\" [label="), std::string::npos) << drawn();
    EXPECT_NE(drawn().find("<td port=\"c\u2236d\""), std::string::npos) << drawn();
}

}  // namespace
}  // namespace editor
