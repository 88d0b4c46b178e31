#include "reference_host/drawing/DiagramDrawing.hpp"

#include "host/Exceptions.hpp"
#include "tests/editor/EditorTest.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
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

    /// A file that is gone after the test.
    std::filesystem::path file(const std::string& name)
    {
        m_folder = std::filesystem::path(testing::TempDir()) /
                   testing::UnitTest::GetInstance()->current_test_info()->name();
        std::filesystem::create_directories(m_folder);
        return m_folder / name;
    }
    ~DiagramDrawing() override
    {
        if (!m_folder.empty()) {
            std::filesystem::remove_all(m_folder);
        }
    }

private:
    std::filesystem::path m_folder;
};

TEST_F(DiagramDrawing, EveryBlockIsDrawnAndSystemsAreBoxes)
{
    const std::string dot = drawn();
    EXPECT_NE(dot.find("<b>plant</b>"), std::string::npos);
    EXPECT_NE(dot.find("<b>Gain</b>"), std::string::npos);
    EXPECT_NE(dot.find("<b>Tank</b>"), std::string::npos);
    EXPECT_EQ(occurrences(dot, "subgraph cluster_"), 1U);
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
    EXPECT_NE(dot.find("b1o:o0:e -> b3:i0:w;"), std::string::npos) << dot;
    EXPECT_NE(dot.find("b2:o2:e -> b1o:o0:w;"), std::string::npos) << dot;
    EXPECT_EQ(occurrences(dot, ":e -> "), 2U) << "an end that does not exist is not drawn";
}

TEST_F(DiagramDrawing, AConnectionThatLeadsBackMovesNoBlock)
{
    rh::Block& gain = at(u"Controller/Gain");
    rh::Block& sink = model->add(at(u"Controller"), u"Sink", rh::BlockKind::Component);
    sink.addPort(rh::PortKind::Input, u"u");
    sink.addPort(rh::PortKind::Output, u"v");
    gain.addPort(rh::PortKind::Input, u"u");
    at(u"Controller").addConnection({{&gain, {}, u"y"}, {&sink, {}, u"u"}});
    at(u"Controller").addConnection({{&sink, {}, u"v"}, {&gain, {}, u"u"}});
    const std::string dot = drawn();
    EXPECT_NE(dot.find("b2:o0:e -> b4:i0:w;"), std::string::npos) << dot;
    EXPECT_NE(dot.find("b4:o0:e -> b2:i0:w [constraint=false];"), std::string::npos) << dot;
}

TEST_F(DiagramDrawing, WhatASystemHoldsStandsBetweenItsInputsAndItsOutputs)
{
    const std::string dot = drawn();
    EXPECT_NE(dot.find("b1i -> b2 [style=invis];"), std::string::npos) << dot;
    EXPECT_NE(dot.find("b2 -> b1o [style=invis];"), std::string::npos) << dot;
    model->remove(at(u"Controller/Gain"));
    EXPECT_NE(drawn().find("b1i -> b1o [style=invis];"), std::string::npos);
}

TEST_F(DiagramDrawing, ALongDiagramIsBrokenIntoBandsWithoutABox)
{
    rh::Block* last = &at(u"Tank");
    last->addPort(rh::PortKind::Input, u"in");
    for (const char16_t name : std::u16string(u"abcdefghijklmnopqrstuvwxyz")) {
        rh::Block& next = model->add(root(), std::u16string(20, name), rh::BlockKind::Component);
        next.addPort(rh::PortKind::Input, u"in");
        next.addPort(rh::PortKind::Output, u"level");
        root().addConnection({{last, {}, u"level"}, {&next, {}, u"in"}});
        last = &next;
    }
    const std::string dot = drawn();
    EXPECT_GT(occurrences(dot, "style=invis; margin"), 1U);
    EXPECT_EQ(occurrences(dot, "[constraint=false]") + 1, occurrences(dot, "style=invis; margin"));
}

TEST_F(DiagramDrawing, NamesAreDrawnAsTheyAre)
{
    model->rename(at(u"Tank"), u"<a & \"b\">\n\u00fc");
    EXPECT_NE(drawn().find("<b>&lt;a &amp; &quot;b&quot;&gt; \u00fc</b>"), std::string::npos);
}

TEST_F(DiagramDrawing, AFileIsDrawnInTheFormatOfItsExtension)
{
    model->rename(at(u"Tank"), u"<a & \"b\">\n\u00fc");
    const std::filesystem::path svg = file("model.svg");
    rh::drawDiagram(*model, svg);
    std::ostringstream text;
    text << std::ifstream(svg).rdbuf();
    EXPECT_NE(text.str().find("<svg"), std::string::npos);
    EXPECT_NE(text.str().find("Gain"), std::string::npos);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(svg.parent_path()), {}), 1)
        << "nothing else is left behind";
}

TEST_F(DiagramDrawing, AFileBesideTheDrawingStaysAsItIs)
{
    const std::filesystem::path beside = file("model.svg.dot");
    std::ofstream(beside) << "mine";
    rh::drawDiagram(*model, file("model.svg"));
    std::ostringstream text;
    text << std::ifstream(beside).rdbuf();
    EXPECT_EQ(text.str(), "mine");
}

TEST_F(DiagramDrawing, AFileNameMayLookLikeAnOption)
{
    const std::filesystem::path drawing = file("-Kneato.svg");
    const std::filesystem::path former = std::filesystem::current_path();
    std::filesystem::current_path(drawing.parent_path());
    rh::drawDiagram(*model, "-Kneato.svg");
    std::filesystem::current_path(former);
    EXPECT_TRUE(std::filesystem::exists(drawing));
}

TEST_F(DiagramDrawing, WhatCannotBeDrawnIsAHostError)
{
    EXPECT_THROW(rh::drawDiagram(*model, file("model")), zmsvException);
    EXPECT_THROW(rh::drawDiagram(*model, file("model.nosuchformat")), zmsvException);
    EXPECT_THROW(rh::drawDiagram(*model, file("x.svg").parent_path() / "missing" / "x.svg"), zmsvException);
    EXPECT_TRUE(std::filesystem::is_empty(file("x.svg").parent_path()));
}

TEST_F(DiagramDrawing, TheErrorSaysWhatTheProgramSays)
{
    const auto errorOf = [this](const std::filesystem::path& drawing) -> std::string {
        testing::internal::CaptureStderr();
        std::string error;
        try {
            rh::drawDiagram(*model, drawing);
        } catch (const zmsvException& thrown) {
            error = thrown.what();
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        return error;
    };
    const std::string unknown = errorOf(file("x.foo"));
    EXPECT_NE(unknown.find("code 1: Format: \"foo\" not recognized"), std::string::npos) << unknown;
    const std::string missing = errorOf(file("x.svg").parent_path() / "missing" / "x.svg");
    EXPECT_TRUE(missing.ends_with(": No such file or directory")) << missing;
}

}  // namespace
}  // namespace editor
