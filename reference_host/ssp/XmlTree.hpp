#ifndef ZM_REFERENCE_HOST_SSP_XML_TREE_HPP
#define ZM_REFERENCE_HOST_SSP_XML_TREE_HPP

#include <libxml/tree.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// libxml2's tree: what editing a description needs. Elements that are put in or taken out bring or take the
// white space in front of them, so that they are on lines of their own where the others are.

namespace reference_host {

struct XmlDocumentDeleter {
    void operator()(xmlDoc* document) const noexcept { xmlFreeDoc(document); }
};
using XmlDocument = std::unique_ptr<xmlDoc, XmlDocumentDeleter>;

/// REQUIRES: a text that `readXml` takes.
XmlDocument parseXml(std::string_view text);

/// UTF-8, with an XML declaration if the document had one.
std::string xmlText(xmlDoc& document);

std::string_view nameOf(const xmlNode& element) noexcept;

/// Attributes without prefix, in UTF-8. Setting none removes the attribute.
std::optional<std::string> attributeOf(const xmlNode& element, const char* name);
void setAttribute(xmlNode& element, const char* name, const std::optional<std::string>& value);

/// A new element in the namespace, and with the prefix, of another one.
xmlNode* makeElementLike(const xmlNode& pattern, const char* name);

/// The line break and the white space in front of a node; empty if it is not the first on its line.
std::string leadOf(const xmlNode& node);

/// Inserts a node that has no parent behind a child, or before one, or at the end of an element. `unit` is
/// one step of indentation.
void insertBehind(xmlNode& child, xmlNode& node);
void insertBefore(xmlNode& child, xmlNode& node);
void append(xmlNode& parent, xmlNode& node, const std::string& unit);

/// Takes a node out without freeing it.
void takeOut(xmlNode& node);

/// Frees an element whose contents are no elements any more; comments, processing instructions and texts
/// take its place.
void dissolve(xmlNode& element);

/// The namespaces that are in scope inside an element. The innermost declaration of each prefix.
using XmlNamespaces = std::vector<xmlNs*>;
XmlNamespaces namespacesIn(xmlNode& element);

/// Declares at an element that came from another place the namespaces which it had there and does not have
/// here. REQUIRES: the elements with the former declarations are not freed yet.
void restoreNamespaces(xmlNode& element, const XmlNamespaces& former);

}  // namespace reference_host

#endif
