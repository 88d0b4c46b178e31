#include "reference_host/drawing/DiagramDrawing.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/observers/ObservedPorts.hpp"

#include <sys/wait.h>

#include <boost/algorithm/string/replace.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <set>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

namespace reference_host {

namespace {

// The fonts cover Latin, Greek, Cyrillic and CJK names; a viewer of an .svg takes the first that it has.
// Blocks that are not connected are packed into an array.
constexpr const char* head =
    "  graph [rankdir=LR, nodesep=0.22, ranksep=0.5, fontsize=12, labelloc=t, labeljust=l, bgcolor=white,\n"
    "         pack=18, packmode=array, fontname=\"DejaVu Sans,Droid Sans Fallback,Noto Sans,sans-serif\"];\n"
    "  node [shape=plain, fontsize=10, fontname=\"DejaVu Sans,Droid Sans Fallback,Noto Sans,sans-serif\"];\n"
    "  edge [color=\"#5b6770\", arrowsize=0.6];\n";

constexpr const char* plainColor = "#ffffff";
constexpr const char* observedColor = "#cdebc5";
constexpr const char* boundColor = "#bfdcf5";

/// For Graphviz's HTML-like labels, which cannot contain control characters.
std::string escaped(const std::u16string& name)
{
    std::string text = toUtf8(name);
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    boost::replace_all(text, "&", "&amp;");
    boost::replace_all(text, "<", "&lt;");
    boost::replace_all(text, ">", "&gt;");
    boost::replace_all(text, "\"", "&quot;");
    return text;
}

/// A name without the characters that Graphviz interprets: look-alikes replace them.
std::string plainName(const std::u16string& name)
{
    std::string text = toUtf8(name);
    std::replace_if(
        text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    boost::replace_all(text, "\"", "\u201D");
    boost::replace_all(text, "\\", "\u2216");
    boost::replace_all(text, ":", "\u2236");
    return text;
}

std::string quoted(const std::u16string& name)
{
    return '"' + plainName(name) + '"';
}

/// The name of the node for connections to a block's inputs, or from its outputs: of a system, its strip of
/// them. The path without the model name, because that is the title of the whole drawing.
std::u16string nodeName(const Block& block, PortKind kind)
{
    const std::u16string path = block.path();
    const std::size_t slash = path.find(u'/');
    const bool isSystem = block.kind() == BlockKind::System;
    return (slash == std::u16string::npos ? path : path.substr(slash + 1)) + (!isSystem ? u""
                                                                              : kind == PortKind::Input
                                                                                  ? u"/ inputs"
                                                                                  : u"/ outputs");
}

std::string nodeOf(const Block& block, PortKind kind)
{
    return quoted(nodeName(block, kind));
}

/// The signals on one block.
struct Badges {
    std::set<std::size_t> observed;  // numbers of output ports
    std::set<std::size_t> bound;
    bool isChartObserved = false;
};

class Drawing {
public:
    explicit Drawing(const Model& model) : m_model(model)
    {
        for (const ObservedPort& port : observedPorts(model)) {
            if (port.place.isThere) {
                note(port);
            }
        }
    }

    std::string draw()
    {
        m_out << "digraph " << quoted(m_model.name()) << " {\n" << head;
        m_out << "  label=<<table border=\"0\" cellspacing=\"6\"><tr><td><b>" << escaped(m_model.name())
              << "</b></td><td bgcolor=\"" << observedColor << "\">observed &#9679;</td><td bgcolor=\""
              << boundColor << "\">bound to a client &#9673;</td></tr></table>>;\n";
        drawContents(m_model.root());
        m_out << "}\n";
        return m_out.str();
    }

private:
    void note(const ObservedPort& port)
    {
        Badges& badges = m_badges[port.place.block];
        if (port.signal.chartObject) {
            badges.isChartObserved = true;
            return;
        }
        const auto number = static_cast<std::size_t>(port.signal.outputPort);
        (port.hasClient ? badges.bound : badges.observed).insert(number);
    }

    const Badges& badgesOf(const Block& block) const
    {
        static const Badges none;
        const auto found = m_badges.find(&block);
        return found == m_badges.end() ? none : found->second;
    }

    void drawContents(const Block& system)
    {
        drawStrip(system, PortKind::Input);
        drawStrip(system, PortKind::Output);
        for (const auto& child : system.children()) {
            drawBlock(*child);
        }
        drawConnections(system);
        keepBetweenStrips(system);
    }

    void drawBlock(const Block& block)
    {
        if (block.kind() == BlockKind::Component) {
            drawComponent(block);
            return;
        }
        m_out << "  subgraph " << quoted(u"cluster " + block.path()) << " {\n  label=<"
              << escaped(block.name()) << chartMark(block)
              << ">; style=\"rounded,filled\"; color=\"#8796a5\"; fillcolor=\"#0000000a\"; margin=10;\n";
        drawContents(block);
        m_out << "  }\n";
    }

    /// One row of a table of ports; an empty cell where there is no port.
    std::string cell(const Block& block, PortKind kind, std::size_t i) const
    {
        const std::vector<Port>& ports = block.ports(kind);
        if (i >= ports.size()) {
            return "<td></td>";
        }
        const std::string name = escaped(ports[i].name);
        const std::string port = "<td port=" + portOf(ports[i].name) + " align=";
        if (kind == PortKind::Input) {
            return port + "\"left\">" + name + "</td>";
        }
        const bool isBound = badgesOf(block).bound.contains(i + 1);
        const bool isObserved = badgesOf(block).observed.contains(i + 1);
        const char* color = isBound ? boundColor : isObserved ? observedColor : plainColor;
        const char* mark = isBound ? " &#9673;" : isObserved ? " &#9679;" : "";
        return port + "\"right\" bgcolor=\"" + color + "\">" + name + mark + "</td>";
    }

    std::string chartMark(const Block& block) const
    {
        if (block.chart() == nullptr) {
            return {};
        }
        const bool isObserved = badgesOf(block).isChartObserved;
        return "<br/><i>" + escaped(block.chart()->name()) + "</i>" + (isObserved ? " &#9679;" : "");
    }

    void drawComponent(const Block& block)
    {
        const std::size_t inputs = block.ports(PortKind::Input).size();
        const std::size_t outputs = block.ports(PortKind::Output).size();
        const std::size_t rows = std::max({inputs, outputs, std::size_t{1}});
        m_out << "  " << nodeOf(block, PortKind::Output)
              << " [label=<<table border=\"1\" cellborder=\"0\" cellspacing=\"0\" color=\"#33414e\" "
                 "bgcolor=\"white\">";
        for (std::size_t i = 0; i < rows; ++i) {
            m_out << "<tr>" << cell(block, PortKind::Input, i);
            if (i == 0) {
                m_out << "<td rowspan=\"" << rows << "\" cellpadding=\"6\"><b>" << escaped(block.name())
                      << "</b>" << chartMark(block) << "</td>";
            }
            m_out << cell(block, PortKind::Output, i) << "</tr>";
        }
        m_out << "</table>>];\n";
    }

    /// A strip without ports is an invisible point, so that it still keeps its side. The model needs none.
    static bool hasStrip(const Block& system, PortKind kind)
    {
        return system.parent() != nullptr || !system.ports(kind).empty();
    }

    void drawStrip(const Block& system, PortKind kind)
    {
        const std::size_t count = system.ports(kind).size();
        if (count == 0) {
            if (hasStrip(system, kind)) {
                m_out << "  " << nodeOf(system, kind) << " [shape=point, style=invis, width=0.01];\n";
            }
            return;
        }
        m_out << "  " << nodeOf(system, kind)
              << " [label=<<table border=\"1\" cellborder=\"0\" cellspacing=\"0\" style=\"rounded\" "
                 "color=\"#8796a5\" bgcolor=\"white\">";
        for (std::size_t i = 0; i < count; ++i) {
            m_out << "<tr>" << cell(system, kind, i) << "</tr>";
        }
        m_out << "</table>>];\n";
    }

    // ---- connections ----

    static std::string portOf(const std::u16string& connector) { return quoted(connector); }

    /// Where a connection ends; empty if the connector is not drawn.
    std::string endOf(const ConnectionEnd& end) const
    {
        if (end.element == nullptr) {
            return {};
        }
        for (const PortKind kind : {PortKind::Output, PortKind::Input}) {
            const std::vector<Port>& ports = end.element->ports(kind);
            if (std::ranges::find(ports, end.connector, &Port::name) != ports.end()) {
                return nodeOf(*end.element, kind) + ":" + portOf(end.connector);
            }
        }
        return {};
    }

    void drawConnections(const Block& system)
    {
        for (const Connection& connection : system.connections()) {
            const std::string start = endOf(connection.start);
            const std::string end = endOf(connection.end);
            if (!start.empty() && !end.empty()) {
                m_out << "  " << start << " -> " << end << ";\n";
            }
        }
    }

    void putLeft(const std::string& left, const std::string& right)
    {
        m_out << "  " << left << " -> " << right << " [style=invis];\n";
    }

    /// Keeps blocks between the strips of their system where connections alone would not.
    void keepBetweenStrips(const Block& system)
    {
        std::unordered_set<const Block*> hasLeft;
        std::unordered_set<const Block*> hasRight;
        for (const Connection& connection : system.connections()) {
            hasRight.insert(connection.start.element);
            hasLeft.insert(connection.end.element);
        }
        const bool hasInputs = hasStrip(system, PortKind::Input);
        const bool hasOutputs = hasStrip(system, PortKind::Output);
        for (const auto& child : system.children()) {
            if (hasInputs && !hasLeft.contains(child.get())) {
                putLeft(nodeOf(system, PortKind::Input), nodeOf(*child, PortKind::Input));
            }
            if (hasOutputs && !hasRight.contains(child.get())) {
                putLeft(nodeOf(*child, PortKind::Output), nodeOf(system, PortKind::Output));
            }
        }
        if (system.children().empty() && hasInputs && hasOutputs) {
            putLeft(nodeOf(system, PortKind::Input), nodeOf(system, PortKind::Output));
        }
    }

    const Model& m_model;
    std::unordered_map<const Block*, Badges> m_badges;
    std::ostringstream m_out;
};

}  // namespace

std::string diagramAsDot(const Model& model)
{
    return Drawing(model).draw();
}

std::string drawingNode(const Block& block)
{
    return plainName(nodeName(block, PortKind::Output));
}

namespace {

using TemporaryFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

TemporaryFile makeTemporaryFile(const std::filesystem::path& drawing, const std::string& content)
{
    TemporaryFile file(std::tmpfile(), std::fclose);
    if (file == nullptr || std::fwrite(content.data(), 1, content.size(), file.get()) != content.size() ||
        std::fflush(file.get()) != 0) {
        throw diagramError("DrawingFailed", {drawing.string(), "no temporary file can be written"});
    }
    return file;
}

std::string contentOf(std::FILE* file)
{
    std::string text;
    std::rewind(file);
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
        text += static_cast<char>(c);
    }
    return boost::trim_copy(text);
}

/// Of one word of a shell command.
std::string shellQuoted(std::string word)
{
    boost::replace_all(word, "'", "'\\''");
    return "'" + word + "'";
}

std::string pathOf(std::FILE* file)
{
    return "/dev/fd/" + std::to_string(fileno(file));
}

}  // namespace

void drawDiagram(const Model& model, const std::filesystem::path& file)
{
    const std::string extension = file.extension().string();
    if (extension.size() < 2) {
        throw diagramError("DrawingFailed",
                           {file.string(), "the extension of the file must name a format, such as \".svg\""});
    }
    const TemporaryFile source = makeTemporaryFile(file, diagramAsDot(model));
    const TemporaryFile errors = makeTemporaryFile(file, {});
    // An absolute path never looks like an option.
    const std::string command = "exec dot -T" + shellQuoted(extension.substr(1)) + " -o " +
                                shellQuoted(std::filesystem::absolute(file).string()) + " <" +
                                pathOf(source.get()) + " 2>" + pathOf(errors.get());
    // The command consists of quoted words.
    const int status = std::system(command.c_str());
    if (status != 0) {
        const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        throw diagramError("DrawingFailed",
                           {file.string(), "Graphviz's program \"dot\" failed with code " +
                                               std::to_string(code) + ": " + contentOf(errors.get())});
    }
}

}  // namespace reference_host
