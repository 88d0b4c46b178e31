// What a description did not have before, and what comes to stand elsewhere.

#include "reference_host/ssp/SsdEditing.hpp"

#include <algorithm>

namespace reference_host {

namespace {

bool hasNewPorts(const std::vector<Port>& ports)
{
    return std::any_of(ports.begin(), ports.end(), [](const Port& port) { return port.origin == 0; });
}

}  // namespace

/// Whether a block has something that no document has yet, for a container that is not there.
bool SsdEditing::hasNewItems(SsdElement container, const Block& block)
{
    if (container == SsdElement::Elements) {
        return !block.children().empty();
    }
    if (container == SsdElement::Connections) {
        return std::any_of(block.connections().begin(), block.connections().end(),
                           [](const Connection& connection) { return connection.origin == 0; });
    }
    return hasNewPorts(block.ports(PortKind::Output)) || hasNewPorts(block.ports(PortKind::Input)) ||
           hasNewPorts(block.ports(PortKind::Other));
}

/// Adds the containers that are missing and belong before a position in the standard's order.
void SsdEditing::addContainers(const SsdNode& node, const Block& block, Progress& progress, std::size_t place,
                               std::uint32_t before)
{
    for (; progress.nextContainer < containers.size(); ++progress.nextContainer) {
        const Container& container = containers[progress.nextContainer];
        if (positionInSystem(container.name) >= before) {
            return;
        }
        const bool isThere = progress.last[progress.nextContainer] != nullptr;
        if (!isThere && hasNewItems(container.element, block)) {
            if (!progress.isOpened) {
                open(node);
                progress.isOpened = true;
            }
            copyTo(place);
            addContainer(container, block, placeIn(node));
        }
    }
}

void SsdEditing::addContainer(const Container& container, const Block& block, const Place& place)
{
    begin(place, container.name);
    m_out += '>';
    addItems(container.element, block, inside(place));
    end(place, container.name);
}

void SsdEditing::addItems(SsdElement container, const Block& block, const Place& place)
{
    m_isEdited = true;
    if (container == SsdElement::Elements) {
        Progress progress;
        addChildren(block, progress, nullptr, place);
    } else if (container == SsdElement::Connections) {
        for (const Connection& connection : block.connections()) {
            if (connection.origin == 0) {
                addConnection(connection, block, place);
            }
        }
    } else {
        for (const PortKind kind : {PortKind::Output, PortKind::Input, PortKind::Other}) {
            for (const Port& port : block.ports(kind)) {
                if (port.origin == 0) {
                    addConnector(port, kind, place);
                }
            }
        }
    }
}

void SsdEditing::addChildren(const Block& system, Progress& progress, const Block* before, const Place& place)
{
    const auto& children = system.children();
    for (std::size_t& next = progress.nextChild; next < children.size() && children[next].get() != before;
         ++next) {
        addBlock(*children[next], place);
    }
}

void SsdEditing::addBlock(const Block& block, const Place& place)
{
    m_isEdited = true;
    const SsdNode* node = m_outline.nodeOf(block);
    if (node == nullptr) {
        addNewBlock(block, place);
        return;
    }
    m_out += place.lead;
    const std::size_t cursor = m_cursor;
    m_cursor = node->begin;
    editBlock(*node, block, place.scope);
    copyTo(node->end);
    m_cursor = cursor;
}

void SsdEditing::addNewBlock(const Block& block, const Place& place)
{
    const char* element = block.kind() == BlockKind::System ? "System" : "Component";
    begin(place, element);
    addAttribute("name", block.name());
    if (block.kind() == BlockKind::Component && m_outline.isFirstVersion()) {
        addAttribute("source", u"");
    }
    bool isEmpty = true;
    for (const Container& container : containers) {
        if (hasNewItems(container.element, block)) {
            m_out += isEmpty ? ">" : "";
            isEmpty = false;
            addContainer(container, block, inside(place));
        }
    }
    if (isEmpty) {
        m_out += "/>";
    } else {
        end(place, element);
    }
}

void SsdEditing::addConnector(const Port& port, PortKind kind, const Place& place)
{
    begin(place, "Connector");
    addAttribute("name", port.name);
    addAttribute("kind", kind == PortKind::Output  ? u"output"
                         : kind == PortKind::Input ? u"input"
                                                   : u"parameter");
    m_out += "/>";
}

void SsdEditing::addConnection(const Connection& connection, const Block& system, const Place& place)
{
    begin(place, "Connection");
    for (const SsdAttribute& attribute : connectionAttributes(connection, system)) {
        if (attribute.value) {
            addAttribute(attribute.name, *attribute.value);
        }
    }
    m_out += "/>";
}

void SsdEditing::addAttribute(std::string_view name, const std::u16string& value)
{
    m_out.append(" ").append(name).append("=\"");
    appendAttributeValue(m_out, value);
    m_out += '"';
}

void SsdEditing::begin(const Place& place, const char* element)
{
    m_out.append(place.lead).append("<").append(place.prefix).append(element);
}

void SsdEditing::end(const Place& place, const char* element)
{
    m_out.append(place.lead).append("</").append(place.prefix).append(element).append(">");
}

// ---- places -----------------------------------------------------------------------------------------

/// The line break and the white space in front of an element; empty when something else is there.
std::string SsdEditing::leadOf(const SsdNode& node) const
{
    const std::size_t begin = beginOfSpaceBefore(m_document, node.begin);
    const std::string_view white = m_document.substr(begin, node.begin - begin);
    std::size_t lineBreak = white.rfind('\n');
    if (lineBreak == std::string_view::npos) {
        return {};
    }
    if (lineBreak > 0 && white[lineBreak - 1] == '\r') {
        --lineBreak;
    }
    return std::string(white.substr(lineBreak));
}

std::string_view SsdEditing::nameOf(const SsdNode& node) const
{
    const std::size_t begin = node.begin + 1;
    return m_document.substr(begin, m_document.find_first_of(" \t\r\n/>", begin) - begin);
}

SsdEditing::Place SsdEditing::placeIn(const SsdNode& node) const
{
    const std::string_view name = nameOf(node);
    const Place here{leadOf(node), std::string(name.substr(0, name.find(':') + 1)), node.scope};
    Place place = inside(here);
    if (node.firstChild != 0) {
        place.lead = leadOf(m_outline.node(node.firstChild));
    }
    return place;
}

SsdEditing::Place SsdEditing::inside(const Place& place) const
{
    return {place.lead.empty() ? std::string() : place.lead + m_unit, place.prefix, place.scope};
}

}  // namespace reference_host
