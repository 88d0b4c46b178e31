#include "reference_host/ssp/SsdConnections.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

namespace reference_host {

namespace {

constexpr std::size_t mostWarnings = 1000;  // a longer list does not help its reader

/// The connectors of a system and of its blocks, sorted for look-up.
using Connectors = std::vector<std::pair<const Block*, std::u16string_view>>;

Connectors connectorsIn(const Block& system)
{
    Connectors connectors;
    const auto insert = [&connectors](const Block& block) {
        for (const PortKind kind : {PortKind::Output, PortKind::Input, PortKind::Other}) {
            for (const Port& port : block.ports(kind)) {
                connectors.emplace_back(&block, port.name);
            }
        }
    };
    insert(system);
    for (const auto& child : system.children()) {
        insert(*child);
    }
    std::ranges::sort(connectors);
    return connectors;
}

}  // namespace

void SsdConnections::add(std::uint64_t line, Connection connection)
{
    m_lines.push_back(line);
    m_connections.push_back(std::move(connection));
}

void SsdConnections::noteDictionary(std::u16string name)
{
    m_dictionaries.insert(std::move(name));
}

void SsdConnections::connect(Block& system, std::vector<SsdWarning>& warnings)
{
    if (m_connections.empty()) {
        return;
    }
    const Connectors connectors = connectorsIn(system);
    const auto warn = [&warnings](std::uint64_t line, const char* key, const std::u16string& name,
                                  const Block& block) {
        if (warnings.size() < mostWarnings) {
            warnings.push_back({line, diagramError(key, {endOfPath(name), endOfPath(block.path())}).what()});
        } else if (warnings.size() == mostWarnings) {
            warnings.push_back({line, diagramError("FurtherConnections", {}).what()});
        }
    };
    const auto connectEnd = [&](ConnectionEnd& end, std::uint64_t line) {
        if (m_dictionaries.contains(end.elementName)) {
            return;
        }
        end.element = end.elementName.empty() ? &system : system.child(end.elementName);
        if (end.element == nullptr) {
            warn(line, "NoSuchElement", end.elementName, system);
            return;
        }
        end.elementName.clear();
        if (!std::ranges::binary_search(connectors,
                                        std::pair(end.element, std::u16string_view(end.connector)))) {
            warn(line, "NoSuchConnector", end.connector, *end.element);
        }
    };
    for (std::size_t i = 0; i < m_connections.size(); ++i) {
        connectEnd(m_connections[i].start, m_lines[i]);
        connectEnd(m_connections[i].end, m_lines[i]);
    }
    system.setConnections(std::move(m_connections));
}

}  // namespace reference_host
