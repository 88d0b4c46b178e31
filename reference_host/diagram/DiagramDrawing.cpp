#include "reference_host/diagram/DiagramDrawing.hpp"

#include "host/Text.hpp"
#include "reference_host/diagram/ObservedPorts.hpp"

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

namespace reference_host {

namespace {

constexpr const char* head =
    "  graph [rankdir=LR, nodesep=0.25, ranksep=0.7, fontname=\"Helvetica\", fontsize=12, labelloc=t,\n"
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
        m_out << "digraph {\n" << head;
        m_out << "  label=<<b>" << escaped(m_model.name()) << "</b> &#160; &#9679; observed &#160; "
              << "&#9673; bound to a client>;\n";
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

    /// The node at which a connection to a connector of this kind ends.
    static std::string nodeOf(const Block& block, PortKind kind)
    {
        const char* strip = kind == PortKind::Input ? "i" : "o";
        return block.kind() == BlockKind::Component ? nodeOf(block) : nodeOf(block) + strip;
    }

    void drawContents(const Block& system)
    {
        m_systems.push_back(&system);
        m_out << "  " << nodeOf(system) << " [shape=point, style=invis, width=0.01];\n";
        drawStrip(system, PortKind::Input);
        drawStrip(system, PortKind::Output);
        for (const auto& child : system.children()) {
            if (child->kind() == BlockKind::Component) {
                drawComponent(*child);
            } else {
                m_out << "  subgraph cluster_" << nodeOf(*child) << " {\n  label=<" << escaped(child->name())
                      << chartMark(*child)
                      << ">; style=\"rounded,filled\"; color=\"#8796a5\"; fillcolor=\"#0000000a\";\n";
                drawContents(*child);
                m_out << "  }\n";
            }
        }
        spread(system);
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

    /// A system's own inputs or outputs, inside its box.
    void drawStrip(const Block& system, PortKind kind)
    {
        const std::size_t count = system.ports(kind).size();
        if (count == 0) {
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

    /// Children without connections would all stand in one column; they are spread over a square.
    void spread(const Block& system)
    {
        std::unordered_set<const Block*> connected;
        for (const Connection& connection : system.connections()) {
            connected.insert({connection.start.element, connection.end.element});
        }
        std::vector<const Block*> loose;
        for (const auto& child : system.children()) {
            if (!connected.contains(child.get())) {
                loose.push_back(child.get());
            }
        }
        const auto rows = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(loose.size()))));
        for (std::size_t i = rows; i < loose.size(); ++i) {
            m_out << "  " << nodeOf(*loose[i - rows]) << " -> " << nodeOf(*loose[i]) << " [style=invis];\n";
        }
    }

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
                m_out << "  " << start << ":e -> " << end << ":w;\n";
            }
        }
    }

    const Model& m_model;
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
