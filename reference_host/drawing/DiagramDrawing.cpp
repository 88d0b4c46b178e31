#include "reference_host/drawing/DiagramDrawing.hpp"

#include "host/Text.hpp"
#include "reference_host/drawing/DrawingPlan.hpp"
#include "reference_host/observers/ObservedPorts.hpp"

#include <algorithm>
#include <set>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

namespace reference_host {

namespace {

constexpr const char* head =
    "  graph [rankdir=LR, nodesep=0.22, ranksep=0.5, fontname=\"Helvetica\", fontsize=12, labelloc=t,\n"
    "         labeljust=l, bgcolor=white];\n"
    "  node [shape=plain, fontname=\"Helvetica\", fontsize=10];\n"
    "  edge [color=\"#5b6770\", arrowsize=0.6];\n";

constexpr const char* plainColor = "#ffffff";
constexpr const char* observedColor = "#cdebc5";
constexpr const char* boundColor = "#bfdcf5";

std::string escaped(const std::u16string& text)
{
    std::string safe;
    for (const char c : toUtf8(text)) {
        switch (c) {
            case '&':
                safe += "&amp;";
                break;
            case '<':
                safe += "&lt;";
                break;
            case '>':
                safe += "&gt;";
                break;
            case '"':
                safe += "&quot;";
                break;
            default:
                // Control characters are not allowed in the drawing's language.
                safe += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
        }
    }
    return safe;
}

/// What is observed on one block.
struct Badges {
    std::set<std::size_t> observed;  // numbers of output ports
    std::set<std::size_t> bound;
    bool isChartObserved = false;
};

class Drawing {
public:
    explicit Drawing(const Model& model) : m_model(model), m_plan(model.root())
    {
        for (const ObservedPort& port : observedPorts(model)) {
            if (port.place.isThere) {
                note(port);
            }
        }
    }

    std::string draw()
    {
        m_out << "digraph {\n" << head;
        m_out << "  label=<<table border=\"0\" cellspacing=\"6\"><tr><td><b>" << escaped(m_model.name())
              << "</b></td><td bgcolor=\"" << observedColor << "\">observed &#9679;</td><td bgcolor=\""
              << boundColor << "\">bound to a client &#9673;</td></tr></table>>;\n";
        drawContents(m_model.root());
        for (const Block* system : m_systems) {
            drawConnections(*system);
        }
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

    static std::string nodeOf(const Block& block) { return "b" + std::to_string(block.number()); }

    /// The node at which connections to a block's inputs, or its outputs, end; for a system the strip of
    /// them.
    static std::string nodeOf(const Block& block, PortKind kind)
    {
        const char* strip = kind == PortKind::Input ? "i" : "o";
        return block.kind() == BlockKind::Component ? nodeOf(block) : nodeOf(block) + strip;
    }

    void drawContents(const Block& system)
    {
        m_systems.push_back(&system);
        drawStrip(system, PortKind::Input);
        drawStrip(system, PortKind::Output);
        const std::vector<DrawingPlan::Band>& bands = m_plan.bandsOf(system);
        for (std::size_t i = 0; i < bands.size(); ++i) {
            if (bands.size() > 1) {
                m_out << "  subgraph cluster_" << nodeOf(system) << '_' << i
                      << " {\n  label=\"\"; style=invis; margin=4;\n";
            }
            for (const DrawingPlan::Column& column : bands[i]) {
                std::for_each(column.begin(), column.end(),
                              [this](const Block* block) { drawBlock(*block); });
            }
            m_out << (bands.size() > 1 ? "  }\n" : "");
        }
        keepPlaces(system);
    }

    void drawBlock(const Block& block)
    {
        if (block.kind() == BlockKind::Component) {
            drawComponent(block);
            return;
        }
        m_out << "  subgraph cluster_" << nodeOf(block) << " {\n  label=<" << escaped(block.name())
              << chartMark(block)
              << ">; style=\"rounded,filled\"; color=\"#8796a5\"; fillcolor=\"#0000000a\"; margin=10;\n";
        drawContents(block);
        m_out << "  }\n";
    }

    std::string outputCell(const Block& block, std::size_t i) const
    {
        const Badges& badges = badgesOf(block);
        const bool isBound = badges.bound.contains(i + 1);
        const bool isObserved = badges.observed.contains(i + 1);
        std::string cell = "<td port=\"o" + std::to_string(i) + "\" align=\"right\" bgcolor=\"";
        cell += isBound ? boundColor : isObserved ? observedColor : plainColor;
        cell += "\">" + escaped(block.ports(PortKind::Output)[i].name);
        cell += isBound ? " &#9673;" : isObserved ? " &#9679;" : "";
        return cell + "</td>";
    }

    static std::string inputCell(const Block& block, std::size_t i)
    {
        return "<td port=\"i" + std::to_string(i) + "\" align=\"left\">" +
               escaped(block.ports(PortKind::Input)[i].name) + "</td>";
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
        m_out << "  " << nodeOf(block)
              << " [label=<<table border=\"1\" cellborder=\"0\" cellspacing=\"0\" color=\"#33414e\" "
                 "bgcolor=\"white\">";
        for (std::size_t i = 0; i < rows; ++i) {
            m_out << "<tr>" << (i < inputs ? inputCell(block, i) : "<td></td>");
            if (i == 0) {
                m_out << "<td rowspan=\"" << rows << "\" cellpadding=\"6\"><b>" << escaped(block.name())
                      << "</b>" << chartMark(block) << "</td>";
            }
            m_out << (i < outputs ? outputCell(block, i) : "<td></td>") << "</tr>";
        }
        m_out << "</table>>];\n";
    }

    /// A system's own inputs stand in a strip left of all that it holds, its outputs in one on the right. A
    /// strip without ports is there, but not seen; the model itself needs none.
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
            m_out << "<tr>" << (kind == PortKind::Input ? inputCell(system, i) : outputCell(system, i))
                  << "</tr>";
        }
        m_out << "</table>>];\n";
    }

    // ---- what stands where ----

    void putLeft(const std::string& left, const std::string& right)
    {
        m_out << "  " << left << " -> " << right << " [style=invis];\n";
    }

    /// Has blocks stand in their columns, between the strips, where connections alone would not.
    void keepPlaces(const Block& system)
    {
        std::unordered_set<const Block*> hasLeft;
        std::unordered_set<const Block*> hasRight;
        for (const Connection& connection : system.connections()) {
            if (isBetweenBlocks(system, connection) && isForward(system, connection)) {
                hasRight.insert(connection.start.element);
                hasLeft.insert(connection.end.element);
            }
        }
        const std::string inputs = nodeOf(system, PortKind::Input);
        const std::string outputs = nodeOf(system, PortKind::Output);
        const bool hasInputs = hasStrip(system, PortKind::Input);
        const bool hasOutputs = hasStrip(system, PortKind::Output);
        for (const DrawingPlan::Band& band : m_plan.bandsOf(system)) {
            keepColumns(band, hasLeft);
            for (const Block* first : band.front()) {
                if (hasInputs) {
                    putLeft(inputs, nodeOf(*first, PortKind::Input));
                }
            }
            for (const DrawingPlan::Column& column : band) {
                for (const Block* block : column) {
                    if (hasOutputs && !hasRight.contains(block)) {
                        putLeft(nodeOf(*block, PortKind::Output), outputs);
                    }
                }
            }
        }
        if (system.children().empty() && hasInputs && hasOutputs) {
            putLeft(inputs, outputs);
        }
    }

    void keepColumns(const DrawingPlan::Band& band, const std::unordered_set<const Block*>& hasLeft)
    {
        for (std::size_t i = 1; i < band.size(); ++i) {
            for (std::size_t row = 0; row < band[i].size(); ++row) {
                const Block& block = *band[i][row];
                const Block& left = *band[i - 1][row % band[i - 1].size()];
                if (!hasLeft.contains(&block)) {
                    putLeft(nodeOf(left, PortKind::Output), nodeOf(block, PortKind::Input));
                }
            }
        }
    }

    static bool isBetweenBlocks(const Block& system, const Connection& connection)
    {
        const auto isBlock = [&system](const ConnectionEnd& end) {
            return end.element != nullptr && end.element != &system;
        };
        return isBlock(connection.start) && isBlock(connection.end);
    }

    /// Whether a connection leads to the right; if not, it has no say in where blocks stand.
    bool isForward(const Block& system, const Connection& connection) const
    {
        return !isBetweenBlocks(system, connection) ||
               m_plan.isForward(*connection.start.element, *connection.end.element);
    }

    // ---- connections ----

    /// Where a connection ends; empty where the connector is not drawn.
    static std::string endOf(const ConnectionEnd& end)
    {
        if (end.element == nullptr) {
            return {};
        }
        for (const PortKind kind : {PortKind::Output, PortKind::Input}) {
            const std::vector<Port>& ports = end.element->ports(kind);
            const auto found = std::find_if(ports.begin(), ports.end(),
                                            [&end](const Port& port) { return port.name == end.connector; });
            if (found != ports.end()) {
                return nodeOf(*end.element, kind) + (kind == PortKind::Input ? ":i" : ":o") +
                       std::to_string(found - ports.begin());
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
                m_out << "  " << start << ":e -> " << end << ":w"
                      << (isForward(system, connection) ? "" : " [constraint=false]") << ";\n";
            }
        }
    }

    const Model& m_model;
    DrawingPlan m_plan;
    std::unordered_map<const Block*, Badges> m_badges;
    std::vector<const Block*> m_systems;
    std::ostringstream m_out;
};

}  // namespace

std::string diagramAsDot(const Model& model)
{
    return Drawing(model).draw();
}

}  // namespace reference_host
