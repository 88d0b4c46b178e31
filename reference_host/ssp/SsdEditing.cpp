#include "reference_host/ssp/SsdEditing.hpp"

#include "host/Text.hpp"

#include <algorithm>
#include <memory>
#include <utility>

namespace reference_host {

SsdEditing::SsdEditing(const Model& model, std::string_view document)
    : m_document(document), m_outline(model, document), m_stays(m_outline.originCount())
{
}

template <class Visitor>
void SsdEditing::forEachChild(const SsdNode& node, Visitor visit) const
{
    for (std::uint32_t child = node.firstChild; child != 0; child = m_outline.node(child).next) {
        visit(m_outline.node(child));
    }
}

std::string SsdEditing::run()
{
    const SsdNode& description = m_outline.node(0);
    forEachChild(description, [&](const SsdNode& child) {
        if (child.element == SsdElement::System) {
            const std::string lead = leadOf(child);
            m_unit = lead.substr(lead.find('\n') + 1);
            editBlock(child, m_outline.blockOf(child), description.scope);
        }
    });
    copyTo(m_document.size());
    return std::move(m_out);
}

void SsdEditing::copyTo(std::size_t place)
{
    if (place > m_cursor) {
        m_out.append(m_document, m_cursor, place - m_cursor);
        m_cursor = place;
    }
}

// ---- existing elements ------------------------------------------------------------------------------

void SsdEditing::editBlock(const SsdNode& node, const Block& block, std::uint32_t scope)
{
    editTag(node, blockAttributes(block), scope);
    markStaying(node, block);
    Progress progress = beginOf(node);
    std::size_t place = node.tagEnd;
    forEachChild(node, [&](const SsdNode& child) {
        addContainers(node, block, progress, place, child.position);
        editContainer(child, block, progress);
        place = child.end;
    });
    addContainers(node, block, progress, place, positionInSystem(""));
    if (progress.isOpened) {
        close(node);
    }
}

SsdEditing::Progress SsdEditing::beginOf(const SsdNode& node) const
{
    Progress progress;
    forEachChild(node, [&progress](const SsdNode& child) {
        for (std::size_t i = 0; i < containers.size(); ++i) {
            if (child.element == containers[i].element) {
                progress.last[i] = &child;
            }
        }
    });
    return progress;
}

/// New items come behind the others, in the last container of their kind if there are several.
void SsdEditing::editContainer(const SsdNode& container, const Block& block, Progress& progress)
{
    if (container.element == SsdElement::PassedOver) {
        return;
    }
    const bool isLast =
        std::find(progress.last.begin(), progress.last.end(), &container) != progress.last.end();
    const bool isForBlocks = container.element == SsdElement::Elements;
    const bool addsMore =
        isLast && (isForBlocks ? endsWithAdded(block) : hasNewItems(container.element, block));
    bool isKept = addsMore || container.firstChild == 0;
    forEachChild(container, [&](const SsdNode& item) { isKept = isKept || stays(item); });
    if (!isKept) {
        leaveOut(container.begin, container.tagEnd);
    }
    std::size_t place = container.tagEnd;
    forEachChild(container, [&](const SsdNode& item) {
        editItem(item, block, progress, place);
        place = item.end;
    });
    if (addsMore) {
        open(container);
        copyTo(place);
        if (isForBlocks) {
            addChildren(block, progress, nullptr, placeIn(container));
        } else {
            addItems(container.element, block, placeIn(container));
        }
        close(container);
    }
    if (!isKept) {
        leaveOut(container.contentEnd, container.end);
    }
}

/// `place` is where something could be put in front of the item.
void SsdEditing::editItem(const SsdNode& item, const Block& block, Progress& progress, std::size_t place)
{
    if (!stays(item)) {
        leaveOut(item.begin, item.end);
    } else if (item.element == SsdElement::System || item.element == SsdElement::Component) {
        editChild(item, block, progress, place);
    } else if (item.isChanged.any()) {
        const std::uint32_t scope = m_outline.node(item.parent).scope;
        editTag(item,
                item.element == SsdElement::Connector
                    ? connectorAttributes(m_outline.portOf(item))
                    : connectionAttributes(m_outline.connectionOf(item), block),
                scope);
    }
}

void SsdEditing::editChild(const SsdNode& item, const Block& system, Progress& progress, std::size_t place)
{
    const Block& child = m_outline.blockOf(item);
    const SsdNode& container = m_outline.node(item.parent);
    if (system.children()[progress.nextChild].get() != &child) {
        copyTo(place);
        addChildren(system, progress, &child, placeIn(container));
    }
    editBlock(item, child, container.scope);
    ++progress.nextChild;
}

void SsdEditing::editTag(const SsdNode& node, const std::vector<SsdAttribute>& attributes,
                         std::uint32_t scope)
{
    const auto declarations = m_outline.missingDeclarations(node, scope);
    if (node.isChanged.none() && declarations.empty()) {
        return;
    }
    m_isEdited = true;
    auto missing = node.isChanged;
    std::size_t end = 0;
    for (const XmlAttributePlace& place : attributePlaces(m_document, node.begin, end)) {
        const std::string_view name = m_document.substr(place.begin, place.nameEnd - place.begin);
        for (std::size_t i = 0; i < attributes.size(); ++i) {
            if (missing[i] && attributes[i].name == name) {
                replaceAttribute(place, attributes[i].value);
                missing.reset(i);
            }
        }
    }
    copyTo(end);
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const std::optional<std::u16string>& value = attributes[i].value;
        if (missing[i] && value) {
            addAttribute(attributes[i].name, *value);
        }
    }
    for (const auto& [prefix, uri] : declarations) {
        addAttribute(prefix.empty() ? "xmlns" : "xmlns:" + prefix, toUtf16(uri.c_str()));
    }
}

void SsdEditing::replaceAttribute(const XmlAttributePlace& place, const std::optional<std::u16string>& value)
{
    if (value) {
        copyTo(place.valueBegin);
        appendAttributeValue(m_out, *value);
        m_cursor = place.valueEnd;
    } else {
        copyTo(beginOfSpaceBefore(m_document, place.begin));
        m_cursor = place.valueEnd + 1;
    }
}

/// Turns an element that is one tag into one with two, and copies up to its content; nothing for others.
void SsdEditing::open(const SsdNode& node)
{
    if (node.isEmptyTag()) {
        constexpr std::size_t ending = 2;
        copyTo(beginOfSpaceBefore(m_document, node.tagEnd - ending));
        m_out += '>';
        m_cursor = node.tagEnd;
    }
}

void SsdEditing::close(const SsdNode& node)
{
    if (node.isEmptyTag()) {
        m_out.append(leadOf(node)).append("</").append(nameOf(node)).append(">");
    }
}

/// Leaves out a piece of the document, and the white space before it.
void SsdEditing::leaveOut(std::size_t begin, std::size_t end)
{
    copyTo(beginOfSpaceBefore(m_document, begin));
    m_cursor = end;
    m_isEdited = true;
}

/// The blocks that need not be moved: those that still follow each other.
void SsdEditing::markStaying(const SsdNode& node, const Block& system)
{
    std::uint32_t last = 0;
    for (const std::unique_ptr<Block>& child : system.children()) {
        const SsdNode* element = m_outline.nodeOf(*child);
        if (element != nullptr && &m_outline.node(m_outline.node(element->parent).parent) == &node &&
            child->origin() > last) {
            last = child->origin();
            m_stays[last] = true;
        }
    }
}

bool SsdEditing::stays(const SsdNode& item) const
{
    const bool isBlock = item.element == SsdElement::System || item.element == SsdElement::Component;
    return !item.isGone && (!isBlock || m_stays[item.origin]);
}

bool SsdEditing::endsWithAdded(const Block& system) const
{
    return !system.children().empty() && !m_stays[system.children().back()->origin()];
}

}  // namespace reference_host
