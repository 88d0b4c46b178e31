#include "reference_host/ssp/SsdConnections.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"

#include <functional>
#include <string_view>
#include <utility>

namespace reference_host {

namespace {

/// A document with more of them has another fault than its connections, and a list without an end helps
/// nobody.
constexpr std::size_t mostWarnings = 1000;

/// The connectors of a system and of its blocks, for look-up by name.
class Connectors {
public:
    explicit Connectors(const Block& system)
    {
        insert(system);
        for (const auto& child : system.children()) {
            insert(*child);
        }
    }

    bool has(const Block& block, std::u16string_view connector) const
    {
        return m_connectors.contains({&block, connector});
    }

private:
    struct Connector {
        const Block* block;
        std::u16string_view name;
        bool operator==(const Connector&) const = default;
    };
    struct Hash {
        std::size_t operator()(const Connector& connector) const noexcept
        {
            constexpr std::size_t spread =
                0x9E3779B97F4A7C15U;  // parts blocks whose connectors bear the same names
            return std::hash<std::u16string_view>()(connector.name) ^
                   (std::hash<const Block*>()(connector.block) * spread);
        }
    };

    void insert(const Block& block)
    {
        for (const PortKind kind : {PortKind::Output, PortKind::Input, PortKind::Other}) {
            for (const Port& port : block.ports(kind)) {
                m_connectors.insert({&block, port.name});
            }
        }
    }

    std::unordered_set<Connector, Hash> m_connectors;
};

}  // namespace

void SsdConnections::add(std::uint64_t line, Connection connection)
{
    m_entries.push_back({line, std::move(connection)});
}

void SsdConnections::noteDictionary(std::u16string name)
{
    m_dictionaries.insert(std::move(name));
}

void SsdConnections::connect(Block& system, std::vector<SsdWarning>& warnings)
{
    if (m_entries.empty()) {
        return;
    }
    const Connectors connectors(system);
    const auto warn = [&warnings](std::uint64_t line, const char* key, const std::u16string& name,
                                  const Block& place) {
        if (warnings.size() < mostWarnings) {
            warnings.push_back({line, diagramError(key, {endOfPath(name), endOfPath(place.path())}).what()});
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
        if (!connectors.has(*end.element, end.connector)) {
            warn(line, "NoSuchConnector", end.connector, *end.element);
        }
    };
    for (Entry& entry : m_entries) {
        connectEnd(entry.connection.start, entry.line);
        connectEnd(entry.connection.end, entry.line);
        system.addConnection(std::move(entry.connection));
    }
}

}  // namespace reference_host
