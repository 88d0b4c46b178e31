#ifndef ZM_REFERENCE_HOST_SSP_SSD_ELEMENTS_HPP
#define ZM_REFERENCE_HOST_SSP_SSD_ELEMENTS_HPP

#include "reference_host/model/Block.hpp"

#include <optional>
#include <string>
#include <string_view>

// The vocabulary of system structure descriptions, for the reader and the writer.

namespace reference_host {

inline constexpr const char* ssdNamespace = "http://ssp-standard.org/SSP1/SystemStructureDescription";

/// Whether an element of this namespace and prefix belongs to a description. An undeclared prefix "ssd" does:
/// there are published diagrams that forget the declaration.
bool isDescriptionNamespace(std::string_view uri, std::string_view prefix) noexcept;

/// The meaning of an element, which depends on its name and on the element around it: a Connector is one only
/// inside Connectors.
enum class SsdElement {
    PassedOver,  ///< not known at this place
    Description,
    System,
    Component,
    Dictionary,  ///< a reference to a signal dictionary
    Connectors,
    Elements,
    Connections,
    Connector,
    Connection
};

/// The meaning of an element with this local name in a description's namespace. The outermost element is
/// inside `PassedOver`.
SsdElement ssdElement(SsdElement inside, std::string_view name) noexcept;

/// The place of a child element in a System or Component in the order that the standard's schema requires.
int ssdPosition(std::string_view name) noexcept;

PortKind portKind(std::string_view kindAttribute) noexcept;

// A block's name in a description may contain "/" and ":", which separate the parts of paths and ZIDs in the
// host. The host writes them as "%2F" and "%3A". A name that contains these itself gets a "25" after each
// "%":
// "%2F" becomes "%252F", "%252F" becomes "%25252F", so that each name has exactly one counterpart.
std::u16string blockNameFromFile(std::string_view name);
std::u16string blockNameForFile(const std::u16string& name);

/// UTF-8 of a name. A character that XML cannot represent is a host error ("UnwritableName": name, place from
/// 1, code unit).
std::string attributeText(const std::u16string& name);

}  // namespace reference_host

#endif
