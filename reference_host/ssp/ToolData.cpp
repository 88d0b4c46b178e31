#include "reference_host/ssp/ToolData.hpp"

#include "host/Text.hpp"
#include "reference_host/model/DiagramErrors.hpp"
#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/ssp/JsonDocument.hpp"
#include "reference_host/ssp/JsonWriter.hpp"

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

void writeText(JsonWriter& json, const char* member, const std::u16string& text)
{
    json.member(member);
    json.text(text);
}

void writeNumber(JsonWriter& json, const char* member, std::uint64_t number)
{
    json.member(member);
    json.unsignedInteger(number);
}

void writeOutputs(JsonWriter& json, const std::vector<Port>& ports)
{
    if (ports.empty()) {
        return;
    }
    json.member("outputs");
    json.beginArray();
    for (const Port& port : ports) {
        json.text(port.name);
    }
    json.endArray();
}

void writeParameters(JsonWriter& json, const Block& block)
{
    if (block.parameters().empty()) {
        return;
    }
    json.member("parameters");
    json.beginArray();
    for (const auto& [name, value] : block.parameters()) {
        json.beginObject();
        writeText(json, "name", name);
        writeText(json, "value", value);
        json.endObject();
    }
    json.endArray();
}

void writeChart(JsonWriter& json, const Chart* chart)
{
    if (chart == nullptr) {
        return;
    }
    json.member("chart");
    json.beginObject();
    writeText(json, "name", chart->name());
    json.member("objects");
    json.beginArray();
    for (const ChartObject& object : chart->objects()) {
        if (object.kind != ChartObjectKind::Chart) {
            json.beginObject();
            json.member("kind");
            json.string(object.kind == ChartObjectKind::State ? stateKind : dataKind);
            writeText(json, "name", object.name);
            writeNumber(json, "parent", object.parent);
            json.endObject();
        }
    }
    json.endArray();
    json.endObject();
}

void writeBlocks(JsonWriter& json, const Block& system)
{
    json.member("blocks");
    json.beginArray();
    for (const auto& block : system.children()) {
        json.beginObject();
        writeText(json, "name", block->name());
        writeNumber(json, "number", block->number());
        writeOutputs(json, block->ports(PortKind::Output));
        writeParameters(json, *block);
        writeChart(json, block->chart());
        if (!block->children().empty()) {
            writeBlocks(json, *block);
        }
        json.endObject();
    }
    json.endArray();
}

// ---- reading ----------------------------------------------------------------------------------------

std::uint32_t numberIn(const JsonView& value)
{
    const std::uint64_t number = value.unsignedInteger();
    // One is left, so that a further block can be given a number.
    if (number >= std::numeric_limits<std::uint32_t>::max()) {
        value.refuse("a smaller number");
    }
    return static_cast<std::uint32_t>(number);
}

template <class Visit>
void forEach(const JsonView& array, const Visit& visit)
{
    const std::size_t count = array.count();
    for (std::size_t i = 0; i < count; ++i) {
        visit(array.element(i));
    }
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

    void read(const JsonView& document)
    {
        checkForm(document);
        document.requireOnly({"format", "version", "lastNumber", "blocks"});
        m_lastNumber = numberIn(document.member("lastNumber"));
        readBlocks(document.member("blocks"), m_model.root());
        numberBlocks();
    }

    ToolDataChanges takeChanges() { return {m_leftOver.take(), std::move(m_newNumbers)}; }

private:
    static void checkForm(const JsonView& document)
    {
        const JsonView form = document.member("format");
        if (form.string() != formName) {
            form.refuse(formName);
        }
        const std::uint64_t version = document.member("version").unsignedInteger();
        if (version > toolDataVersion) {
            throw fileError("NewerVersion", {version, std::uint64_t{toolDataVersion}});
        }
        if (version == 0) {
            document.member("version").refuse("a version from 1");
        }
    }

    void readBlocks(const JsonView& blocks, Block& system)
    {
        forEach(blocks, [this, &system](const JsonView& kept) {
            const std::u16string name = kept.member("name").text();
            if (Block* block = system.child(name)) {
                readBlock(kept, *block);
            } else {
                m_leftOver.add("\"", [&] { return system.path() + u"/" + name; });
            }
        });
    }

    void readBlock(const JsonView& kept, Block& block)
    {
        kept.requireOnly({"name", "number", "outputs", "parameters", "chart", "blocks"});
        if (!m_numbers.emplace(&block, numberIn(kept.member("number"))).second) {
            kept.member("name").refuse("a name that no block before has");
        }
        if (const auto outputs = kept.find("outputs")) {
            orderOutputs(*outputs, block);
        }
        if (const auto parameters = kept.find("parameters")) {
            forEach(*parameters, [&block](const JsonView& parameter) {
                parameter.requireOnly({"name", "value"});
                block.setParameter(parameter.member("name").text(), parameter.member("value").text());
            });
        }
        if (const auto chart = kept.find("chart")) {
            readChart(*chart, block);
        }
        if (const auto blocks = kept.find("blocks")) {
            readBlocks(*blocks, block);
        }
    }

    void orderOutputs(const JsonView& outputs, Block& block)
    {
        const std::vector<Port>& ports = block.ports(PortKind::Output);
        std::vector<std::u16string> kept;
        forEach(outputs, [&kept](const JsonView& name) { kept.push_back(name.text()); });
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

    static void readChart(const JsonView& kept, Block& block)
    {
        kept.requireOnly({"name", "objects"});
        Chart& chart = block.addChart(kept.member("name").text());
        forEach(kept.member("objects"), [&chart](const JsonView& object) {
            object.requireOnly({"kind", "name", "parent"});
            const JsonView kind = object.member("kind");
            const std::uint32_t parent = numberIn(object.member("parent"));
            if (kind.string() == stateKind) {
                chart.addState(object.member("name").text(), parent);
            } else if (kind.string() == dataKind) {
                chart.addData(object.member("name").text(), parent);
            } else {
                kind.refuse("\"state\" or \"data\"");
            }
        });
    }

    void numberBlocks()
    {
        std::vector<std::uint32_t> numbers;
        numbers.reserve(m_model.blockCount());
        for (const Block* block : m_model.blocks()) {
            const auto kept = m_numbers.find(block);
            numbers.push_back(kept != m_numbers.end() ? kept->second : ++m_lastNumber);
        }
        m_model.setNumbers(numbers, m_lastNumber);
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
    JsonWriter json;
    json.beginObject();
    json.member("format");
    json.string(formName);
    writeNumber(json, "version", toolDataVersion);
    writeNumber(json, "lastNumber", model.lastNumber());
    writeBlocks(json, model.root());
    json.endObject();
    return json.take();
}

ToolDataChanges applyToolData(Model& model, std::string_view json)
{
    const Json document = parseJson(json);
    ToolDataReader reader(model);
    reader.read(JsonView(document));
    return reader.takeChanges();
}

}  // namespace reference_host
