#include "reference_host/ssp/SsdWriter.hpp"

#include "reference_host/ssp/SsdEditing.hpp"
#include "reference_host/ssp/SsdReader.hpp"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <tuple>

namespace reference_host {

namespace {

/// Without the order of ports, which a description does not tell.
bool haveSamePorts(const Block& a, const Block& b, PortKind kind)
{
    if (std::ranges::equal(a.ports(kind), b.ports(kind), {}, &Port::name, &Port::name)) {
        return true;
    }
    const auto sortedNames = [kind](const Block& block) {
        std::vector<std::u16string_view> names;
        std::ranges::transform(block.ports(kind), std::back_inserter(names), &Port::name);
        std::ranges::sort(names);
        return names;
    };
    return a.ports(kind).size() == b.ports(kind).size() && sortedNames(a) == sortedNames(b);
}

/// Blocks are told apart by their names, which are known to be the same in both models.
bool haveSameEnd(const ConnectionEnd& a, const Block& aSystem, const ConnectionEnd& b, const Block& bSystem)
{
    const bool isSameElement =
        a.element == nullptr || b.element == nullptr
            ? a.element == b.element
            : (a.element == &aSystem) == (b.element == &bSystem) && a.element->name() == b.element->name();
    return isSameElement && std::tie(a.elementName, a.connector) == std::tie(b.elementName, b.connector);
}

bool isSame(const Block& a, const Block& b)
{
    return a.name() == b.name() && a.children().size() == b.children().size() &&
           haveSamePorts(a, b, PortKind::Output) && haveSamePorts(a, b, PortKind::Input) &&
           haveSamePorts(a, b, PortKind::Other) &&
           std::ranges::equal(a.connections(), b.connections(), [&](const auto& one, const auto& other) {
               return haveSameEnd(one.start, a, other.start, b) && haveSameEnd(one.end, a, other.end, b);
           });
}

/// Whether reading the source again gives the same diagram, made of the same blocks.
bool isUnedited(const Model& model, const SsdSource& source)
{
    const std::vector<Block*> blocks = model.blocks();
    if (source.text.empty() || blocks != source.blocks) {
        return false;
    }
    const SsdDocument original = readSsd(source.text, "the original description");
    const std::vector<Block*> originals = original.model->blocks();
    return isSame(model.root(), original.model->root()) &&
           std::ranges::equal(blocks, originals,
                              [](const Block* a, const Block* b) { return isSame(*a, *b); });
}

}  // namespace

std::string writeSsd(const Model& model, const SsdSource& source)
{
    if (isUnedited(model, source)) {
        return source.text;
    }
    std::string edited = SsdEditing(model, source).run();
    readSsd(edited, "the edited description");
    return edited;
}

}  // namespace reference_host
