#include "reference_host/ssp/ToolData.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/JsonDocument.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <utility>

namespace reference_host {

namespace {

constexpr const char* formName = "com.zelmar.hmi.model";
constexpr const char* stateKind = "state";
constexpr const char* dataKind = "data";

// ---- writing ----------------------------------------------------------------------------------------

Json outputsToJson(const std::vector<Port>& ports)
{
    Json names = Json::array();
    for (const Port& port : ports) {
        names.push_back(textToJson(port.name));
    }
    return names;
}

Json chartToJson(const Chart& chart)
{
    Json objects = Json::array();
    for (const ChartObject& object : chart.objects()) {
        if (object.kind != ChartObjectKind::Chart) {
            objects.push_back({{"kind", object.kind == ChartObjectKind::State ? stateKind : dataKind},
                               {"name", textToJson(object.name)},
                               {"parent", object.parent}});
        }
    }
    return {{"name", textToJson(chart.name())}, {"objects", std::move(objects)}};
}

Json blocksToJson(const Block& system);

Json blockToJson(const Block& block)
{
    Json json = {{"name", textToJson(block.name())}, {"number", block.number()}};
    if (const auto& outputs = block.ports(PortKind::Output); !outputs.empty()) {
        json["outputs"] = outputsToJson(outputs);
    }
    for (const auto& [name, value] : block.parameters()) {
        json["parameters"].push_back({{"name", textToJson(name)}, {"value", textToJson(value)}});
    }
    if (block.chart() != nullptr) {
        json["chart"] = chartToJson(*block.chart());
    }
    if (!block.children().empty()) {
        json["blocks"] = blocksToJson(block);
    }
    return json;
}

Json blocksToJson(const Block& system)
{
    Json blocks = Json::array();
    for (const auto& block : system.children()) {
        blocks.push_back(blockToJson(*block));
    }
    return blocks;
}

// ---- reading ----------------------------------------------------------------------------------------

std::uint32_t numberIn(const Json& item)
{
    const std::uint64_t number = unsignedIn(item);
    if (number > std::numeric_limits<std::uint32_t>::max()) {
        refuseJson(item, "a number of at most 32 bits");
    }
    return static_cast<std::uint32_t>(number);
}

/// Sentences about what has no place any more: a bounded number of them, each of a bounded length, for a file
/// can make both large.
class LeftOver {
public:
    template <class Path>
    void add(const std::string& what, const Path& path)
    {
        if (++m_count <= most) {
            m_sentences.push_back(what + endOfPath(path()) + "\" is no longer there");
        }
    }

    std::vector<std::string> take()
    {
        if (m_count > most) {
            m_sentences.push_back(std::to_string(m_count - most) + " more are no longer there");
        }
        return std::move(m_sentences);
    }

private:
    static constexpr std::size_t most = 1000;
    std::vector<std::string> m_sentences;
    std::size_t m_count = 0;
};

/// Ports in the order that was kept of their names. What the others are called is new; they take the numbers
/// of those that are gone, so that the rest keeps its own, and follow when these are used up.
class PortOrder {
public:
    explicit PortOrder(const std::vector<Port>& ports) : m_ports(ports), m_isPlaced(ports.size())
    {
        for (std::size_t i = ports.size(); i-- > 0;) {
            m_byName[ports[i].name].push_back(i);
        }
    }

    /// Places the next number; false when no port is left that bears the name.
    bool place(const std::u16string& name)
    {
        const auto found = m_byName.find(name);
        const bool isThere = found != m_byName.end() && !found->second.empty();
        m_places.push_back(isThere ? found->second.back() : none);
        if (isThere) {
            found->second.pop_back();
            m_isPlaced[m_places.back()] = true;
        }
        return isThere;
    }

    std::vector<Port> take()
    {
        std::size_t next = 0;
        const auto nextNew = [this, &next] {
            next = static_cast<std::size_t>(
                std::find(m_isPlaced.begin() + static_cast<std::ptrdiff_t>(next), m_isPlaced.end(), false) -
                m_isPlaced.begin());
            return next < m_ports.size() ? next++ : none;
        };
        std::vector<Port> ordered;
        ordered.reserve(m_ports.size());
        for (const std::size_t place : m_places) {
            const std::size_t port = place != none ? place : nextNew();
            if (port != none) {
                ordered.push_back(m_ports[port]);
            }
            m_newNumbers.push_back(port != none ? static_cast<int>(ordered.size()) : 0);
        }
        for (std::size_t port = nextNew(); port != none; port = nextNew()) {
            ordered.push_back(m_ports[port]);
        }
        return ordered;
    }

    /// For each number that was kept, the one that it has become; 0 where the port is gone. Known once they
    /// are taken.
    const std::vector<int>& newNumbers() const noexcept { return m_newNumbers; }

private:
    static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

    const std::vector<Port>& m_ports;
    std::unordered_map<std::u16string_view, std::vector<std::size_t>> m_byName;  // the first one last
    std::vector<bool> m_isPlaced;
    std::vector<std::size_t> m_places;
    std::vector<int> m_newNumbers;
};

/// Gives a model what was kept of it, system by system.
class ToolDataReader {
public:
    explicit ToolDataReader(Model& model) : m_model(model) {}

    void read(const Json& document)
    {
        checkForm(document);
        requireOnly(document, {"format", "version", "lastNumber", "blocks"});
        m_lastNumber = numberIn(member(document, "lastNumber"));
        readBlocks(member(document, "blocks"), m_model.root());
        numberBlocks();
    }

    ToolDataChanges takeChanges() { return {m_leftOver.take(), std::move(m_newNumbers)}; }

private:
    static void checkForm(const Json& document)
    {
        const Json& form = member(document, "format");
        if (stringIn(form) != formName) {
            refuseJson(form, formName);
        }
        const Json& versionMember = member(document, "version");
        const std::uint64_t version = unsignedIn(versionMember);
        if (version > toolDataVersion) {
            throw fileError("NewerVersion", {version, std::uint64_t{toolDataVersion}});
        }
        if (version == 0) {
            refuseJson(versionMember, "a version from 1");
        }
    }

    void readBlocks(const Json& blocks, Block& system)
    {
        for (const Json& kept : arrayIn(blocks)) {
            const std::u16string name = textIn(member(kept, "name"));
            if (Block* block = system.child(name)) {
                readBlock(kept, *block);
            } else {
                m_leftOver.add("\"", [&] { return system.path() + u"/" + name; });
            }
        }
    }

    void readBlock(const Json& kept, Block& block)
    {
        requireOnly(kept, {"name", "number", "outputs", "parameters", "chart", "blocks"});
        if (!m_numbers.emplace(&block, numberIn(member(kept, "number"))).second) {
            refuseJson(member(kept, "name"), "a name that no block before has");
        }
        if (const Json* const outputs = findMember(kept, "outputs")) {
            orderOutputs(*outputs, block);
        }
        if (const Json* const parameters = findMember(kept, "parameters")) {
            for (const Json& parameter : arrayIn(*parameters)) {
                requireOnly(parameter, {"name", "value"});
                block.setParameter(textIn(member(parameter, "name")), textIn(member(parameter, "value")));
            }
        }
        if (const Json* const chart = findMember(kept, "chart")) {
            readChart(*chart, block);
        }
        if (const Json* const blocks = findMember(kept, "blocks")) {
            readBlocks(*blocks, block);
        }
    }

    void orderOutputs(const Json& outputs, Block& block)
    {
        const std::vector<Port>& ports = block.ports(PortKind::Output);
        std::vector<std::u16string> kept;
        for (const Json& name : arrayIn(outputs)) {
            kept.push_back(textIn(name));
        }
        if (std::ranges::equal(kept, ports, {}, {}, &Port::name)) {
            return;
        }
        PortOrder order(ports);
        for (const std::u16string& name : kept) {
            if (!order.place(name)) {
                m_leftOver.add("output port \"" + endOfPath(name) + "\" of \"",
                               [&block] { return block.path(); });
            }
        }
        std::vector<Port> ordered = order.take();
        if (std::ranges::find(order.newNumbers(), 0) != order.newNumbers().end()) {
            m_newNumbers.emplace(&block, order.newNumbers());
        }
        block.setPorts(PortKind::Output, std::move(ordered));
    }

    static void readChart(const Json& kept, Block& block)
    {
        requireOnly(kept, {"name", "objects"});
        Chart& chart = block.addChart(textIn(member(kept, "name")));
        for (const Json& object : arrayIn(member(kept, "objects"))) {
            requireOnly(object, {"kind", "name", "parent"});
            const Json& kind = member(object, "kind");
            const std::uint32_t parent = numberIn(member(object, "parent"));
            if (stringIn(kind) == stateKind) {
                chart.addState(textIn(member(object, "name")), parent);
            } else if (stringIn(kind) == dataKind) {
                chart.addData(textIn(member(object, "name")), parent);
            } else {
                refuseJson(kind, "\"state\" or \"data\"");
            }
        }
    }

    void numberBlocks()
    {
        std::vector<std::uint32_t> numbers;
        numbers.reserve(m_model.blockCount());
        for (const Block* block : m_model.blocks()) {
            const auto kept = m_numbers.find(block);
            numbers.push_back(kept != m_numbers.end() ? kept->second : nextNumber());
        }
        m_model.setNumbers(numbers, m_lastNumber);
    }

    std::uint32_t nextNumber()
    {
        if (m_lastNumber == std::numeric_limits<std::uint32_t>::max()) {
            throw diagramError("NoNumberLeft", {toUtf8(m_model.name())});
        }
        return ++m_lastNumber;
    }

    Model& m_model;
    std::uint32_t m_lastNumber = 0;
    std::unordered_map<const Block*, std::uint32_t> m_numbers;
    LeftOver m_leftOver;
    NewPortNumbers m_newNumbers;
};

}  // namespace

std::string toolDataOf(const Model& model)
{
    const Json document = {{"format", formName},
                           {"version", toolDataVersion},
                           {"lastNumber", model.lastNumber()},
                           {"blocks", blocksToJson(model.root())}};
    return writeJson(document);
}

ToolDataChanges applyToolData(Model& model, std::string_view json)
{
    const Json document = parseJson(json, jsonLimitsFor(json.size()));
    ToolDataReader reader(model);
    readingJson(document, "/", [&] { reader.read(document); });
    return reader.takeChanges();
}

}  // namespace reference_host
