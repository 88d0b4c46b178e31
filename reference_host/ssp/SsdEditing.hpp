#ifndef ZM_REFERENCE_HOST_SSP_SSD_EDITING_HPP
#define ZM_REFERENCE_HOST_SSP_SSD_EDITING_HPP

#include "reference_host/ssp/SsdOutline.hpp"
#include "reference_host/ssp/XmlText.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace reference_host {

/// Writes a description anew. All of the document that need not change is copied as it stands, in as large
/// pieces as possible.
class SsdEditing {
public:
    /// The document is UTF-8. Both must outlive this. As `SsdOutline`.
    SsdEditing(const Model& model, std::string_view document);

    /// The edited document; to be called once.
    std::string run();

    /// Whether it differs from the document.
    bool isEdited() const noexcept { return m_isEdited; }

private:
    /// What new elements need to know of the place where they come to stand.
    struct Place {
        std::string lead;         // stands in front of each: a line break and white space, or nothing
        std::string prefix;       // of their names, with the ":"
        std::uint32_t scope = 0;  // of namespaces
    };

    /// A child of a block that holds what the diagram knows. An empty one is not valid, so they come and go
    /// with what they hold.
    struct Container {
        SsdElement element;
        const char* name;
    };
    /// In the standard's order.
    static constexpr std::array containers{
        Container{SsdElement::Connectors, "Connectors"},
        Container{SsdElement::Elements, "Elements"},
        Container{SsdElement::Connections, "Connections"},
    };

    /// How far we are in a block.
    struct Progress {
        std::array<const SsdNode*, containers.size()> last{};  // container of each kind; null for none
        std::size_t nextContainer = 0;                         // that may have to be added
        std::size_t nextChild = 0;                             // of the system, that is to be written
        bool isOpened = false;                                 // its tag was an empty one
    };

    // existing elements
    void editBlock(const SsdNode& node, const Block& block, std::uint32_t scope);
    void editContainer(const SsdNode& container, const Block& block, Progress& progress);
    void editItem(const SsdNode& item, const Block& block, Progress& progress, std::size_t place);
    void editChild(const SsdNode& item, const Block& system, Progress& progress, std::size_t place);
    void editTag(const SsdNode& node, const std::vector<SsdAttribute>& attributes, std::uint32_t scope);
    void replaceAttribute(const XmlAttributePlace& place, const std::optional<std::u16string>& value);
    void open(const SsdNode& node);
    void close(const SsdNode& node);
    void leaveOut(std::size_t begin, std::size_t end);

    void markStaying(const SsdNode& node, const Block& system);
    bool stays(const SsdNode& item) const;
    bool endsWithAdded(const Block& system) const;
    static bool hasNewItems(SsdElement container, const Block& block);
    Progress beginOf(const SsdNode& node) const;

    // new ones, or at new places
    void addContainers(const SsdNode& node, const Block& block, Progress& progress, std::size_t place,
                       std::uint32_t before);
    void addContainer(const Container& container, const Block& block, const Place& place);
    void addItems(SsdElement container, const Block& block, const Place& place);
    void addChildren(const Block& system, Progress& progress, const Block* before, const Place& place);
    void addBlock(const Block& block, const Place& place);
    void addNewBlock(const Block& block, const Place& place);
    void addConnector(const Port& port, PortKind kind, const Place& place);
    void addConnection(const Connection& connection, const Block& system, const Place& place);
    void addAttribute(std::string_view name, const std::u16string& value);
    void begin(const Place& place, const char* element);
    void end(const Place& place, const char* element);

    // places
    std::string leadOf(const SsdNode& node) const;
    std::string_view nameOf(const SsdNode& node) const;
    Place placeIn(const SsdNode& node) const;
    Place inside(const Place& place) const;

    void copyTo(std::size_t place);
    template <class Visitor>
    void forEachChild(const SsdNode& node, Visitor visit) const;

    std::string_view m_document;
    SsdOutline m_outline;
    std::vector<bool> m_stays;  // by origin: the block keeps its place in its system
    std::string m_unit;         // of indentation
    std::string m_out;
    std::size_t m_cursor = 0;  // up to where the document has been copied or left out
    bool m_isEdited = false;
};

}  // namespace reference_host

#endif
