#ifndef ZM_REFERENCE_HOST_SSP_SSD_OUTLINE_HPP
#define ZM_REFERENCE_HOST_SSP_SSD_OUTLINE_HPP

#include "reference_host/model/Model.hpp"
#include "reference_host/ssp/SsdWalker.hpp"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace reference_host {

/// One element of a description: where it stands in the document, and what the model has made of it. Numbers
/// of nodes are indices; the description itself is 0, which as child or sibling means that there is none.
struct SsdNode {
    SsdElement element = SsdElement::PassedOver;
    std::uint32_t origin = 0;
    std::uint32_t parent = 0;
    std::uint32_t firstChild = 0;
    std::uint32_t next = 0;      ///< sibling
    std::uint32_t scope = 0;     ///< of its namespaces, its own declarations included
    std::uint32_t position = 0;  ///< as `positionInSystem`
    std::bitset<4> isChanged;    ///< which of its attributes the model has otherwise, in the order below
    bool isGone = false;         ///< the model does not have it any more
    std::size_t begin = 0;       ///< of its start tag
    std::size_t tagEnd = 0;      ///< behind its start tag
    std::size_t contentEnd = 0;  ///< of its end tag; behind the start tag where it has none
    std::size_t end = 0;

    bool isEmptyTag() const noexcept { return tagEnd == end; }
};

/// An attribute that the diagram knows, with the value that it has in the model; none when it is absent.
struct SsdAttribute {
    const char* name;
    std::optional<std::u16string> value;
};
std::vector<SsdAttribute> blockAttributes(const Block& block);
std::vector<SsdAttribute> connectorAttributes(const Port& port);
std::vector<SsdAttribute> connectionAttributes(const Connection& connection, const Block& system);

/// Where the standard wants a child of a system, or of a component, among the others.
std::uint32_t positionInSystem(std::string_view localName) noexcept;

/// The elements of a description as a tree, laid beside the model that was read from it.
class SsdOutline : private SsdWalker {
public:
    /// A document that the model was not read from is a host error ("ForeignDescription"). Both must outlive
    /// this.
    SsdOutline(const Model& model, std::string_view document);

    const SsdNode& node(std::uint32_t number) const noexcept { return m_nodes[number]; }

    /// The element of a block inside the outermost system; null for a block that was not read.
    const SsdNode* nodeOf(const Block& block) const noexcept;

    std::size_t originCount() const noexcept { return m_origins.size(); }

    /// What an element that is not gone stands for.
    const Block& blockOf(const SsdNode& node) const noexcept { return *m_origins[node.origin].block; }
    const Port& portOf(const SsdNode& node) const noexcept { return *m_origins[node.origin].port; }
    const Connection& connectionOf(const SsdNode& node) const noexcept
    {
        return *m_origins[node.origin].connection;
    }

    /// Whether the description is of SSP 1, where a component must have a source.
    bool isFirstVersion() const noexcept { return m_isFirstVersion; }

    /// The declarations, prefix and URI, that an element needs when it comes to stand in another scope.
    std::vector<std::pair<std::string, std::string>> missingDeclarations(const SsdNode& node,
                                                                         std::uint32_t scope) const;

private:
    /// What bears an origin.
    struct Origin {
        const Block* block = nullptr;  // or to which the port or connection belongs
        const Port* port = nullptr;
        const Connection* connection = nullptr;
        std::uint32_t node = 0;
    };
    struct Scope {
        std::uint32_t around;
        std::vector<std::pair<std::string, std::string>> declared;
    };

    void enter(SsdElement element, std::string_view name, const XmlAttributes& attributes,
               const XmlTag& tag) override;
    void leave(SsdElement element, const XmlTag& tag) override;

    void note(const Block& block, std::uint32_t origin);
    void note(std::uint32_t origin, const Origin& bearer);
    void meet(SsdNode& node, const XmlAttributes& attributes);
    std::uint32_t scopeInside(std::uint32_t around, const XmlAttributes& attributes);
    const std::string* uriOf(const std::string& prefix, std::uint32_t scope) const;

    std::vector<Origin> m_origins;  // by origin
    std::size_t m_borne = 0;        // origins that the model has
    std::size_t m_met = 0;          // of these, those whose elements have been met
    std::vector<SsdNode> m_nodes;
    std::vector<Scope> m_scopes;
    std::vector<std::uint32_t> m_open;       // nodes that we are in, the innermost last
    std::vector<std::uint32_t> m_lastChild;  // of each of these
    bool m_isFirstVersion = true;
};

}  // namespace reference_host

#endif
