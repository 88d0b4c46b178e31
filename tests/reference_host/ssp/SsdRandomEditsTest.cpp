#include "tests/reference_host/ssp/SsdWriterTest.hpp"

#include <numeric>
#include <pugixml.hpp>
#include <random>
#include <set>
#include <sstream>

// Diagrams are edited at random, written, and read again. What others than the diagram know of a document is
// compared by means of another parser than the one that the writer relies on.

namespace reference_host {

namespace {

struct Source {
    const char* name;
    std::string file;  // empty: the document above
    bool isValid;      // as far as it can be: two of the published ones use a prefix that they never declare
};

std::ostream& operator<<(std::ostream& out, const Source& source)
{
    return out << source.name;
}

/// What a document says beside the diagram, by the paths of what it says that of.
class Beside {
public:
    explicit Beside(const std::string& document)
    {
        pugi::xml_document parsed;
        EXPECT_TRUE(parsed.load_buffer(document.data(), document.size(), pugi::parse_full));
        for (const pugi::xml_node node : parsed.children()) {
            if (localName(node) == "SystemStructureDescription") {
                m_whole = attributes(node, {}) + contents(node, {"System"});
                takeBlock(child(node, "System"), child(node, "System").attribute("name").value());
            } else {
                m_whole += raw(node);
            }
        }
    }

    const std::string& whole() const { return m_whole; }
    std::string of(const std::string& path) const
    {
        const auto found = m_said.find(path);
        return found == m_said.end() ? "nothing at " + path : found->second;
    }

private:
    using Names = std::set<std::string>;

    static std::string localName(const pugi::xml_node& node)
    {
        const std::string name = node.name();
        return name.substr(name.find(':') + 1);
    }

    static pugi::xml_node child(const pugi::xml_node& node, const std::string& name)
    {
        return node.find_child([&](const pugi::xml_node& one) { return localName(one) == name; });
    }

    static std::string raw(const pugi::xml_node& node)
    {
        std::ostringstream text;
        node.print(text, "", pugi::format_raw);
        return text.str();
    }

    static std::string attributes(const pugi::xml_node& node, const Names& but)
    {
        std::set<std::string> sorted;  // because their order has no meaning
        for (const pugi::xml_attribute attribute : node.attributes()) {
            if (!but.contains(attribute.name())) {
                sorted.insert(std::string(attribute.name()) + '=' + attribute.value() + '\n');
            }
        }
        return std::accumulate(sorted.begin(), sorted.end(), std::string());
    }

    static std::string contents(const pugi::xml_node& node, const Names& but)
    {
        std::string text;
        for (const pugi::xml_node inside : node.children()) {
            text += but.contains(localName(inside)) ? "" : raw(inside) + '\n';
        }
        return text;
    }

    /// The comments of a block, which may come to stand outside of what was around them.
    static std::string comments(const pugi::xml_node& node)
    {
        std::multiset<std::string> sorted;
        const auto take = [&sorted](const pugi::xml_node& inside) {
            if (inside.type() == pugi::node_comment) {
                sorted.insert(inside.value());
            }
        };
        for (const pugi::xml_node inside : node.children()) {
            take(inside);
            if (isContainer(inside)) {
                std::for_each(inside.begin(), inside.end(), take);
            }
        }
        return std::accumulate(sorted.begin(), sorted.end(), std::string());
    }

    static std::string contentsOfBlock(const pugi::xml_node& node)
    {
        std::string text;
        for (const pugi::xml_node inside : node.children()) {
            const bool isBeside = !isContainer(inside) && inside.type() != pugi::node_comment;
            text += isBeside ? raw(inside) + '\n' : "";
        }
        return text;
    }

    static bool isContainer(const pugi::xml_node& node)
    {
        return Names{"Connectors", "Elements", "Connections"}.contains(localName(node));
    }

    void takeBlock(const pugi::xml_node& node, const std::string& path)
    {
        m_said[path] = attributes(node, {"name"}) + contentsOfBlock(node) + comments(node);
        for (const pugi::xml_node connector : child(node, "Connectors").children()) {
            m_said[path + "#" + connector.attribute("name").value()] =
                attributes(connector, {"name"}) + contents(connector, {});
        }
        int number = 0;
        for (const pugi::xml_node connection : child(node, "Connections").children()) {
            if (localName(connection) == "Connection") {
                m_said[path + "#" + std::to_string(++number)] =
                    attributes(connection, {"startElement", "startConnector", "endElement", "endConnector"}) +
                    contents(connection, {});
            }
        }
        for (const pugi::xml_node element : child(node, "Elements").children()) {
            if (localName(element) == "Component" || localName(element) == "System") {
                takeBlock(element, path + "/" + element.attribute("name").value());
            }
        }
    }

    std::string m_whole;
    std::map<std::string, std::string> m_said;
};

/// Where the contents of blocks, ports and connections are found in a description. Their keys stay the same
/// when blocks are renamed or moved.
using Key = std::vector<std::pair<const Block*, std::u16string>>;
std::map<Key, std::string> placesOf(const Model& model)
{
    std::map<Key, std::string> places;
    const auto take = [&places](const Block& block) {
        const std::string path = toUtf8(block.path());
        places[{{&block, u""}}] = path;
        for (const PortKind kind : {PortKind::Output, PortKind::Input, PortKind::Other}) {
            for (const Port& port : block.ports(kind)) {
                places[{{&block, port.name}}] = path + "#" + toUtf8(port.name);
            }
        }
        int number = 0;
        for (const auto& [start, end] : block.connections()) {
            places[{{&block, u""},
                    {start.element, start.elementName + u"." + start.connector},
                    {end.element, end.elementName + u"." + end.connector}}] =
                path + "#" + std::to_string(++number);
        }
    };
    take(model.root());
    for (const Block* block : model.blocks()) {
        take(*block);
    }
    return places;
}

class SsdRandomEditsTest : public SsdWriterTest, public testing::WithParamInterface<Source> {
protected:
    void SetUp() override
    {
        const std::string& file = GetParam().file;
        if (file.starts_with(ZM_PUBLISHED_DIAGRAMS) &&
            !std::filesystem::is_directory(ZM_PUBLISHED_DIAGRAMS)) {
            GTEST_SKIP() << "the published diagrams are not here: " << ZM_PUBLISHED_DIAGRAMS;
        }
        m_document = file.empty() ? everything : fileText(file);
        ASSERT_FALSE(m_document.empty());
    }

    std::size_t below(std::size_t limit) { return m_random() % limit; }

    std::u16string newName()
    {
        static const std::vector<std::u16string> names{u"A",          u"B & C", u"<\"'>", u"Käfig",
                                                       u"\U0001F41F", u"a\nb",  u"水",    u"leer"};
        return names[below(names.size())] + (below(3) == 0 ? u"" : u"2");
    }

    Block& any(Model& model)
    {
        const auto blocks = model.blocks();
        return blocks.empty() || below(8) == 0 ? model.root() : *blocks[below(blocks.size())];
    }

    void edit(Model& model)
    {
        EditHistory& history = model.history();
        Block& block = any(model);
        const std::size_t ports = block.ports(PortKind::Output).size();
        std::vector<int> order(ports);
        std::iota(order.begin(), order.end(), 1);
        switch (below(11)) {
            case 0:
            case 1:
                history.addBlock(block.kind() == BlockKind::System ? block : model.root(), newName(),
                                 below(2) == 0 ? BlockKind::System : BlockKind::Component);
                break;
            case 2:
                history.deleteBlock(block);
                break;
            case 3:
                history.renameBlock(block, newName());
                break;
            case 4:
            case 5:
                history.moveBlock(block, any(model));
                break;
            case 6:
                history.addOutput(block, newName(), below(ports + 1) + 1);
                break;
            case 7:
                history.deleteOutput(block, below(ports + 1));
                break;
            case 8:
                std::shuffle(order.begin(), order.end(), m_random);
                history.reorderOutputs(block, order);
                break;
            case 9:
                history.undo();
                break;
            default:
                below(4) == 0 ? history.renameModel(newName()) : static_cast<void>(history.redo());
        }
    }

    void tryEdit(Model& model)
    {
        try {
            edit(model);
        } catch (const zmsvException&) {
            ++m_refused;  // by the diagram, which is as it was
        }
    }

    /// Nothing is lost: neither what the diagram knows nor what it does not.
    void expectAllWritten(const Model& model, const std::map<Key, std::string>& places) const
    {
        const std::string written = write(model, m_document);
        ASSERT_EQ(describe(*readModel(written)), describe(model)) << written;
        const Beside before(m_document);
        const Beside after(written);
        ASSERT_EQ(after.whole(), before.whole());
        for (const auto& [key, place] : placesOf(model)) {
            if (places.contains(key)) {
                ASSERT_EQ(after.of(place), before.of(places.at(key))) << place << '\n' << written;
            }
        }
    }

    std::string m_document;
    std::mt19937 m_random{20261121};
    int m_refused = 0;
};

TEST_P(SsdRandomEditsTest, UneditedDocumentIsGivenBackByteForByte)
{
    EXPECT_EQ(write(*readModel(m_document), m_document), m_document);
}

TEST_P(SsdRandomEditsTest, EverythingIsWritten)
{
    for (int round = 0; round < 25; ++round) {
        const auto model = readModel(m_document);
        const auto places = placesOf(*model);
        for (int i = 0; i < 8; ++i) {
            for (int j = 0; j < 5; ++j) {
                tryEdit(*model);
            }
            ASSERT_NO_FATAL_FAILURE(expectAllWritten(*model, places));
        }
        while (model->history().undo()) {
        }
        ASSERT_EQ(write(*model, m_document), m_document);
    }
    EXPECT_GT(m_refused, 0);
}

TEST_P(SsdRandomEditsTest, ValidDocumentStaysValid)
{
    ASSERT_EQ(isValid(m_document), GetParam().isValid);
    for (int round = 0; round < 10; ++round) {
        const auto model = readModel(m_document);
        for (int i = 0; i < 40; ++i) {
            tryEdit(*model);
        }
        const std::string written = write(*model, m_document);
        ASSERT_EQ(isValid(written), GetParam().isValid) << written;
    }
}

std::string published(const char* name)
{
    return std::string(ZM_PUBLISHED_DIAGRAMS "/") + name;
}

INSTANTIATE_TEST_SUITE_P(Documents, SsdRandomEditsTest,
                         testing::Values(Source{"everything", "", true},
                                         Source{"greenhouse", ZM_EXAMPLES "/greenhouse.ssd", true},
                                         Source{"crane", published("crane-demo.ssd"), true},
                                         Source{"delay", published("delay-system.ssd"), true},
                                         Source{"ship", published("dp-ship.ssd"), true},
                                         Source{"house", published("house.ssd"), true},
                                         Source{"linear", published("linear-transformation.ssd"), true},
                                         Source{"truck", published("quarter-truck.ssd"), true}),
                         [](const testing::TestParamInfo<Source>& instance) {
                             return std::string(instance.param.name);
                         });

}  // namespace

}  // namespace reference_host
