#include "reference_host/ssp/SsdEditing.hpp"

#include "host/Text.hpp"
#include "reference_host/ssp/FileErrors.hpp"
#include "reference_host/support/TextConversion.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

namespace reference_host {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

constexpr const char* newDescription =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<ssd:SystemStructureDescription name="" version="1.0"
    xmlns:ssc="http://ssp-standard.org/SSP1/SystemStructureCommon"
    xmlns:ssd="http://ssp-standard.org/SSP1/SystemStructureDescription">
  <ssd:System name=""/>
</ssd:SystemStructureDescription>
)";

/// The meaning of a child element.
SsdElement meaningOf(const xmlNode& element, SsdElement inside) noexcept
{
    const std::string_view name = nameOf(element);
    const std::size_t local = name.find(':') + 1;  // 0 for elements with a namespace
    const bool isOurs = element.ns != nullptr
                            ? isDescriptionNamespace(reinterpret_cast<const char*>(element.ns->href), {})
                            : isDescriptionNamespace({}, name.substr(0, local == 0 ? 0 : local - 1));
    return isOurs ? ssdElement(inside, name.substr(local)) : SsdElement::PassedOver;
}

const char* nameOfContainer(SsdElement kind) noexcept
{
    return kind == SsdElement::Connectors ? "Connectors"
           : kind == SsdElement::Elements ? "Elements"
                                          : "Connections";
}

template <class Visitor>
void forEachElement(const xmlNode& parent, Visitor visit)
{
    for (xmlNode* child = xmlFirstElementChild(const_cast<xmlNode*>(&parent)); child != nullptr;) {
        xmlNode* next = xmlNextElementSibling(child);  // the visitor may remove the child
        visit(*child);
        child = next;
    }
}

/// Visits the elements with a meaning in the containers of one kind.
template <class Visitor>
void forEachItem(const xmlNode& element, SsdElement kind, Visitor visit)
{
    forEachElement(element, [&](xmlNode& container) {
        if (meaningOf(container, SsdElement::System) == kind) {
            forEachElement(container, [&](xmlNode& item) {
                const SsdElement meaning = meaningOf(item, kind);
                if (meaning != SsdElement::PassedOver) {
                    visit(item, meaning);
                }
            });
        }
    });
}

/// A description writes no element for the system's own connectors.
std::optional<std::string> elementAttribute(const ConnectionEnd& end, const Block& system)
{
    if (end.element == &system) {
        return std::nullopt;
    }
    return attributeText(blockNameForFile(end.element == nullptr ? end.elementName : end.element->name()));
}

/// Leaves an attribute as it is if its value is the same; an absent one is an empty one.
void updateAttribute(xmlNode& element, const char* name, const std::optional<std::string>& value)
{
    if (attributeOf(element, name).value_or("") != value.value_or("")) {
        setAttribute(element, name, value);
    }
}

void setEnds(xmlNode& element, const Connection& connection, const Block& system)
{
    updateAttribute(element, "startElement", elementAttribute(connection.start, system));
    updateAttribute(element, "startConnector", attributeText(connection.start.connector));
    updateAttribute(element, "endElement", elementAttribute(connection.end, system));
    updateAttribute(element, "endConnector", attributeText(connection.end.connector));
}

/// What a connection connects, for comparison.
using ConnectionKey =
    std::tuple<const Block*, std::u16string, std::u16string, const Block*, std::u16string, std::u16string>;

ConnectionKey keyOf(const Connection& connection)
{
    return {connection.start.element, connection.start.elementName, connection.start.connector,
            connection.end.element,   connection.end.elementName,   connection.end.connector};
}

/// The blocks and dictionaries of a system by the names that they have in the document.
class DocumentNames {
public:
    DocumentNames(const xmlNode& element, const Block& system) : m_system(system)
    {
        forEachItem(element, SsdElement::Elements, [this](const xmlNode& item, SsdElement meaning) {
            if (const auto name = attributeOf(item, "name")) {
                const bool isDictionary = meaning == SsdElement::Dictionary;
                const auto* block = isDictionary ? nullptr : static_cast<const Block*>(item._private);
                const auto [known, isNew] = m_blocks.emplace(*name, block);
                known->second = isDictionary ? nullptr : known->second;
            }
        });
    }

    Connection connectionOf(const xmlNode& item) const
    {
        return {endOf(item, "startElement", "startConnector"), endOf(item, "endElement", "endConnector")};
    }

private:
    ConnectionEnd endOf(const xmlNode& item, const char* elementName, const char* connectorName) const
    {
        const std::string name = attributeOf(item, elementName).value_or("");
        const auto found = m_blocks.find(name);
        const Block* block = found != m_blocks.end() ? found->second : name.empty() ? &m_system : nullptr;
        return {block, block != nullptr ? std::u16string() : blockNameFromFile(name),
                utf16FromUtf8(attributeOf(item, connectorName).value_or(""))};
    }

    const Block& m_system;
    std::unordered_map<std::string, const Block*> m_blocks;  // null for a dictionary
};

}  // namespace

SsdEditing::SsdEditing(const Model& model, const SsdSource& source)
    : m_model(model),
      m_document(parseXml(source.text.empty() ? newDescription : source.text)),
      m_mark(source.text.starts_with(byteOrderMark) ? byteOrderMark : "")
{
    xmlNode& description = *xmlDocGetRootElement(m_document.get());
    m_isFirstVersion = attributeOf(description, "version").value_or("1.").starts_with("1.");
    if (source.text.empty()) {
        setAttribute(description, "name", attributeText(model.name()));
    }
    m_entries.push_back({&model.root()});
    for (const Block* block : source.blocks) {
        m_entries.push_back({block});
    }
    std::size_t next = 0;
    forEachElement(description, [&](xmlNode& child) {
        if (meaningOf(child, SsdElement::Description) == SsdElement::System) {
            m_unit = leadOf(child);
            m_unit.erase(0, 1);  // the line feed
            collect(child, nullptr, next);
        }
    });
    if (next != m_entries.size()) {
        throw fileError("ForeignDescription", {toUtf8(model.name())});
    }
}

SsdEditing::~SsdEditing()
{
    std::vector<xmlNode*> outside;
    for (const Entry& entry : m_entries) {
        if (entry.element != nullptr && entry.element->parent == nullptr) {
            outside.push_back(entry.element);
        }
    }
    std::ranges::for_each(outside, xmlFreeNode);
}

std::string SsdEditing::run()
{
    for (const Entry& entry : m_entries) {
        if (entry.block == &m_model.root() || m_model.holds(*entry.block)) {
            editConnections(*entry.element, *entry.block);
        }
    }
    takeOutMoved();
    editBlock(*m_entries.front().element, m_model.root());
    for (xmlNode* container : m_touched) {
        if (xmlFirstElementChild(container) == nullptr && container->properties == nullptr) {
            dissolve(*container);
        }
    }
    return m_mark + xmlText(*m_document);
}

void SsdEditing::collect(xmlNode& element, const Block* system, std::size_t& next)
{
    if (next == m_entries.size() || &m_entries[next].block->model() != &m_model) {
        throw fileError("ForeignDescription", {toUtf8(m_model.name())});
    }
    Entry& entry = m_entries[next];
    m_places.emplace(entry.block, next++);
    entry.element = &element;
    entry.system = system;
    element._private = const_cast<Block*>(entry.block);
    if (entry.block->kind() == BlockKind::System) {
        forEachItem(element, SsdElement::Elements, [&](xmlNode& item, SsdElement meaning) {
            if (meaning != SsdElement::Dictionary) {
                collect(item, entry.block, next);
            }
        });
    }
}

SsdEditing::Entry* SsdEditing::entryOf(const Block& block)
{
    const auto found = m_places.find(&block);
    return found == m_places.end() ? nullptr : &m_entries[found->second];
}

// ---- in the document's structure --------------------------------------------------------------------

void SsdEditing::editConnections(xmlNode& system, const Block& block)
{
    std::map<ConnectionKey, std::size_t> missing;
    for (const Connection& connection : block.connections()) {
        ++missing[keyOf(connection)];
    }
    const DocumentNames names(system, block);
    forEachItem(system, SsdElement::Connections, [&](xmlNode& item, SsdElement) {
        const Connection connection = names.connectionOf(item);
        const auto found = missing.find(keyOf(connection));
        if (found != missing.end() && found->second > 0) {
            --found->second;
            setEnds(item, connection, block);
        } else {
            remove(item);
        }
    });
    for (const Connection& connection : block.connections()) {
        std::size_t& count = missing[keyOf(connection)];
        if (count > 0) {
            --count;
            addConnection(system, connection, block);
        }
    }
}

void SsdEditing::addConnection(xmlNode& system, const Connection& connection, const Block& block)
{
    xmlNode& container = containerIn(system, SsdElement::Connections);
    xmlNode& item = *makeElementLike(container, "Connection");
    append(container, item, m_unit);
    setEnds(item, connection, block);
}

void SsdEditing::markStaying(const Block& system)
{
    std::size_t last = 0;
    for (const std::unique_ptr<Block>& child : system.children()) {
        const auto found = m_places.find(child.get());
        if (found != m_places.end() && found->second > last && m_entries[found->second].system == &system) {
            last = found->second;
            m_entries[last].stays = true;
        }
    }
}

void SsdEditing::takeOutMoved()
{
    m_entries.front().stays = true;
    for (const Entry& entry : m_entries) {
        markStaying(*entry.block);
    }
    std::vector<Entry*> moved;
    for (Entry& entry : m_entries) {
        if (!entry.stays) {
            entry.former = namespacesIn(*entry.element->parent);  // needs all elements around it
            moved.push_back(&entry);
        }
    }
    for (const Entry* entry : moved) {
        m_touched.insert(entry->element->parent);
        takeOut(*entry->element);
    }
}

void SsdEditing::remove(xmlNode& item)
{
    m_touched.insert(item.parent);
    takeOut(item);
    xmlFreeNode(&item);
}

// ---- in the model's structure -----------------------------------------------------------------------

void SsdEditing::editBlock(xmlNode& element, const Block& block)
{
    updateAttribute(element, "name", attributeText(blockNameForFile(block.name())));
    editConnectors(element, block);
    if (block.kind() == BlockKind::System) {
        editChildren(element, block);
    }
}

void SsdEditing::editConnectors(xmlNode& element, const Block& block)
{
    constexpr std::array kinds{PortKind::Output, PortKind::Input, PortKind::Other};
    constexpr std::array names{"output", "input", "parameter"};
    std::map<std::pair<PortKind, std::u16string>, std::size_t> missing;
    for (const PortKind kind : kinds) {
        for (const Port& port : block.ports(kind)) {
            ++missing[{kind, port.name}];
        }
    }
    forEachItem(element, SsdElement::Connectors, [&](xmlNode& item, SsdElement) {
        const auto found = missing.find({portKind(attributeOf(item, "kind").value_or("")),
                                         utf16FromUtf8(attributeOf(item, "name").value_or(""))});
        if (found != missing.end() && found->second > 0) {
            --found->second;
        } else {
            remove(item);
        }
    });
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        for (const Port& port : block.ports(kinds[i])) {
            std::size_t& count = missing[{kinds[i], port.name}];
            if (count > 0) {
                --count;
                xmlNode& container = containerIn(element, SsdElement::Connectors);
                xmlNode& item = *makeElementLike(container, "Connector");
                append(container, item, m_unit);
                setAttribute(item, "name", attributeText(port.name));
                setAttribute(item, "kind", names[i]);
            }
        }
    }
}

void SsdEditing::editChildren(xmlNode& system, const Block& block)
{
    const auto stays = [this](const auto& child) {
        const Entry* entry = entryOf(*child);
        return entry != nullptr && entry->stays;
    };
    const auto first = std::ranges::find_if(block.children(), stays);
    xmlNode* next = first == block.children().end() ? nullptr : entryOf(**first)->element;
    xmlNode* previous = nullptr;
    for (const std::unique_ptr<Block>& child : block.children()) {
        previous = stays(child) ? entryOf(*child)->element : &place(*child, system, previous, next);
        editBlock(*previous, *child);
    }
}

/// Puts in a block that is new or was taken out: behind its former sibling, else before the next one.
xmlNode& SsdEditing::place(const Block& child, xmlNode& system, xmlNode* previous, xmlNode* next)
{
    xmlNode& container = previous != nullptr ? *previous->parent
                         : next != nullptr   ? *next->parent
                                             : containerIn(system, SsdElement::Elements);
    const Entry* entry = entryOf(child);
    xmlNode& element = entry != nullptr ? *entry->element : makeBlock(child, container);
    if (previous != nullptr) {
        insertBehind(*previous, element);
    } else if (next != nullptr) {
        insertBefore(*next, element);
    } else {
        append(container, element, m_unit);
    }
    if (entry != nullptr) {
        restoreNamespaces(element, entry->former);
    } else {
        for (const Connection& connection : child.connections()) {
            addConnection(element, connection, child);
        }
    }
    return element;
}

xmlNode& SsdEditing::makeBlock(const Block& block, const xmlNode& container) const
{
    const bool isSystem = block.kind() == BlockKind::System;
    xmlNode& element = *makeElementLike(container, isSystem ? "System" : "Component");
    setAttribute(element, "name", "");
    if (!isSystem && m_isFirstVersion) {
        setAttribute(element, "source", "");
    }
    return element;
}

/// The last container of a kind; a new one at the place that the schema requires if there is none.
xmlNode& SsdEditing::containerIn(xmlNode& element, SsdElement kind)
{
    const char* name = nameOfContainer(kind);
    xmlNode* last = nullptr;
    xmlNode* next = nullptr;
    forEachElement(element, [&](xmlNode& child) {
        const std::string_view childName = nameOf(child);
        const int position = ssdPosition(childName.substr(childName.find(':') + 1));
        last = meaningOf(child, SsdElement::System) == kind ? &child : last;
        next = next == nullptr && position > ssdPosition(name) ? &child : next;
    });
    if (last != nullptr) {
        return *last;
    }
    xmlNode& container = *makeElementLike(element, name);
    if (next != nullptr) {
        insertBefore(*next, container);
    } else {
        append(element, container, m_unit);
    }
    return container;
}

}  // namespace reference_host
