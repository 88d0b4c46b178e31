#ifndef ZM_REFERENCE_HOST_SSP_SSD_WALKER_HPP
#define ZM_REFERENCE_HOST_SSP_SSD_WALKER_HPP

#include "reference_host/ssp/XmlNamespaces.hpp"
#include "reference_host/ssp/XmlReader.hpp"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace reference_host {

/// What an element of a system structure description is to us. That depends on its name and on where it
/// stands: a Connector is one only inside Connectors.
enum class SsdElement {
    PassedOver,  ///< whatever we do not know there
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

/// Walks through a description and tells what its elements are. Whoever reads one and whoever writes one
/// anew derives from this, so that both see the same elements under the same numbers.
class SsdWalker : public XmlHandler {
public:
    /// A document whose outermost element is something else is a host error ("NotADescription").
    void begin(std::string_view element, const XmlAttributes& attributes, const XmlTag& tag) final;
    void end(const XmlTag& tag) final;

protected:
    /// `name` with its prefix. Of what is inside an element that is passed over, nothing is told.
    virtual void enter(SsdElement element, std::string_view name, const XmlAttributes& attributes,
                       const XmlTag& tag) = 0;
    virtual void leave(SsdElement element, const XmlTag& tag) = 0;

    /// The number of the System, Component, Connector or Connection that was entered last. They are counted
    /// together, from 1, in document order.
    std::uint32_t origin() const noexcept { return m_origin; }

private:
    XmlNamespaces m_namespaces;
    std::vector<SsdElement> m_open;  // the elements that we are in, the innermost last
    std::size_t m_skipped = 0;       // how deep we are in an element that is passed over
    std::uint32_t m_origin = 0;
};

}  // namespace reference_host

#endif
