#include "reference_host/ssp/XmlTree.hpp"

#include "host/Exceptions.hpp"
#include "reference_host/ssp/SsdElements.hpp"

#include <libxml/parser.h>
#include <libxml/xmlsave.h>
#include <algorithm>

namespace reference_host {

namespace {

const xmlChar* bytes(const char* text) noexcept
{
    return reinterpret_cast<const xmlChar*>(text);
}

std::string_view viewOf(const xmlChar* text) noexcept
{
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

template <class Pointer>
Pointer made(Pointer pointer)
{
    if (pointer == nullptr) {
        zmsvThrowOutOfMemory();
    }
    return pointer;
}

bool isBlank(std::string_view text) noexcept
{
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

bool isBlankText(const xmlNode* node) noexcept
{
    return node != nullptr && node->type == XML_TEXT_NODE && isBlank(viewOf(node->content));
}

/// Links a node in behind a child, or as the first one. Unlike libxml2's functions, does not merge texts.
void link(xmlNode& parent, xmlNode* previous, xmlNode& node) noexcept
{
    xmlNode* next = previous == nullptr ? parent.children : previous->next;
    node.parent = &parent;
    node.prev = previous;
    node.next = next;
    (previous == nullptr ? parent.children : previous->next) = &node;
    (next == nullptr ? parent.last : next->prev) = &node;
}

/// Puts a node, with a lead in front, behind a child or at the beginning.
void linkWithLead(xmlNode& parent, xmlNode* previous, xmlNode& node, const std::string& lead)
{
    if (!lead.empty()) {
        xmlNode& white = *made(xmlNewDocText(parent.doc, bytes(lead.c_str())));
        link(parent, previous, white);
        previous = &white;
    }
    link(parent, previous, node);
}

int appendBytes(void* text, const char* buffer, int length) noexcept
{
    try {
        static_cast<std::string*>(text)->append(buffer, static_cast<std::size_t>(length));
        return length;
    } catch (...) {  // C code calls
        return -1;
    }
}

std::string_view uriOf(const xmlNs* ns) noexcept
{
    return ns == nullptr ? std::string_view() : viewOf(ns->href);
}

bool declares(const xmlNode& element, const xmlChar* prefix) noexcept
{
    const xmlNs* ns = element.nsDef;
    while (ns != nullptr && xmlStrEqual(ns->prefix, prefix) == 0) {
        ns = ns->next;
    }
    return ns != nullptr;
}

void declareAsBefore(xmlNode& element, const xmlChar* prefix, const char* uri)
{
    const xmlNs* here = xmlSearchNs(element.doc, element.parent, prefix);
    if (!declares(element, prefix) && uriOf(here) != uri) {
        made(xmlNewNs(&element, bytes(uri), prefix));
    }
}

/// Has names refer to the declarations that are in scope now.
void bindNamespaces(xmlNode& element)
{
    const auto bind = [&element](xmlNs*& ns) {
        xmlNs* here = ns == nullptr ? nullptr : xmlSearchNs(element.doc, &element, ns->prefix);
        ns = here == nullptr ? ns : here;
    };
    bind(element.ns);
    for (xmlAttr* attribute = element.properties; attribute != nullptr; attribute = attribute->next) {
        bind(attribute->ns);
    }
    for (xmlNode* child = xmlFirstElementChild(&element); child != nullptr;
         child = xmlNextElementSibling(child)) {
        bindNamespaces(*child);
    }
}

}  // namespace

XmlDocument parseXml(std::string_view text)
{
    // Huge: the text was read before, with limits. Not with XML_PARSE_NOENT, because libxml2 does not write
    // "&" in a namespace as "&amp;" if it has replaced that.
    constexpr int options = XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    return XmlDocument(
        made(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, options)));
}

std::string xmlText(xmlDoc& document)
{
    constexpr int withoutDeclaration = -1;
    std::string text;
    const int options = XML_SAVE_AS_XML | (document.standalone == withoutDeclaration ? XML_SAVE_NO_DECL : 0);
    xmlSaveCtxt* context = made(xmlSaveToIO(&appendBytes, nullptr, &text, "UTF-8", options));
    const bool isSaved = xmlSaveDoc(context, &document) != -1;
    if (xmlSaveClose(context) == -1 || !isSaved) {
        zmsvThrowOutOfMemory();
    }
    return text;
}

std::string_view nameOf(const xmlNode& element) noexcept
{
    return viewOf(element.name);
}

std::optional<std::string> attributeOf(const xmlNode& element, const char* name)
{
    const std::unique_ptr<xmlChar, decltype(xmlFree)> value(xmlGetNoNsProp(&element, bytes(name)), xmlFree);
    return value ? std::optional<std::string>(viewOf(value.get())) : std::nullopt;
}

void setAttribute(xmlNode& element, const char* name, const std::optional<std::string>& value)
{
    if (value) {
        made(xmlSetNsProp(&element, nullptr, bytes(name), bytes(value->c_str())));
    } else {
        xmlUnsetNsProp(&element, nullptr, bytes(name));
    }
}

xmlNode* makeElementLike(const xmlNode& pattern, const char* name)
{
    const std::string_view patternName = nameOf(pattern);  // with a prefix only if that is not declared
    const std::size_t prefix = patternName.find(':') + 1;
    const std::string full = std::string(patternName.substr(0, prefix)) + name;
    return made(xmlNewDocNode(pattern.doc, pattern.ns, bytes(full.c_str()), nullptr));
}

std::string leadOf(const xmlNode& node)
{
    if (node.prev == nullptr || node.prev->type != XML_TEXT_NODE) {
        return {};
    }
    const std::string_view text = viewOf(node.prev->content);
    const std::size_t lineBreak = text.rfind('\n');
    const bool isFirst = lineBreak != std::string_view::npos && isBlank(text.substr(lineBreak));
    return isFirst ? std::string(text.substr(lineBreak)) : std::string();
}

void insertBehind(xmlNode& child, xmlNode& node)
{
    linkWithLead(*child.parent, &child, node, leadOf(child));
}

void insertBefore(xmlNode& child, xmlNode& node)
{
    const std::string lead = leadOf(child);
    linkWithLead(*child.parent, lead.empty() ? child.prev : child.prev->prev, node, lead);
}

void append(xmlNode& parent, xmlNode& node, const std::string& unit)
{
    const std::string around = leadOf(parent);
    xmlNode* sibling = xmlLastElementChild(&parent);
    const std::string lead = sibling != nullptr ? leadOf(*sibling) : around.empty() ? "" : around + unit;
    xmlNode* trailing = isBlankText(parent.last) ? parent.last : nullptr;
    linkWithLead(parent, trailing != nullptr ? trailing->prev : parent.last, node, lead);
    if (trailing == nullptr && !lead.empty()) {
        link(parent, parent.last, *made(xmlNewDocText(parent.doc, bytes(around.c_str()))));
    }
}

void takeOut(xmlNode& node)
{
    if (isBlankText(node.prev)) {
        xmlNode* white = node.prev;
        xmlUnlinkNode(white);
        xmlFreeNode(white);
    }
    xmlUnlinkNode(&node);
}

void dissolve(xmlNode& element)
{
    while (xmlNode* child = element.children) {
        xmlUnlinkNode(child);
        if (isBlankText(child)) {
            xmlFreeNode(child);
        } else {
            link(*element.parent, element.prev, *child);
        }
    }
    takeOut(element);
    xmlFreeNode(&element);
}

XmlNamespaces namespacesIn(xmlNode& element)
{
    XmlNamespaces namespaces;
    if (xmlNs** list = xmlGetNsList(element.doc, &element)) {
        const std::unique_ptr<xmlNs*, decltype(xmlFree)> owner(list, xmlFree);
        for (; *list != nullptr; ++list) {
            namespaces.push_back(*list);
        }
    }
    return namespaces;
}

void restoreNamespaces(xmlNode& element, const XmlNamespaces& former)
{
    for (const xmlNs* ns : former) {
        declareAsBefore(element, ns->prefix, reinterpret_cast<const char*>(ns->href));
    }
    if (std::ranges::all_of(former, [](const xmlNs* ns) { return ns->prefix != nullptr; })) {
        declareAsBefore(element, nullptr, "");
    }
    // An undeclared "ssd" must not get another meaning.
    const auto isSsd = [](const xmlNs* ns) { return viewOf(ns->prefix) == "ssd"; };
    if (std::ranges::none_of(former, isSsd) && xmlSearchNs(element.doc, &element, bytes("ssd")) != nullptr) {
        declareAsBefore(element, bytes("ssd"), ssdNamespace);
    }
    bindNamespaces(element);
}

}  // namespace reference_host
