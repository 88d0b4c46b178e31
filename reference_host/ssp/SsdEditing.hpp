#ifndef ZM_REFERENCE_HOST_SSP_SSD_EDITING_HPP
#define ZM_REFERENCE_HOST_SSP_SSD_EDITING_HPP

#include "reference_host/ssp/SsdElements.hpp"
#include "reference_host/ssp/SsdWriter.hpp"
#include "reference_host/ssp/XmlTree.hpp"

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace reference_host {

/// Edits the XML tree of a description until it describes a model. Connectors, blocks and connections are in
/// container elements (Connectors, Elements, Connections), which must not be empty: they are made with their
/// first element and removed with the last one.
///
/// Connections are edited first, because their attributes are the names that blocks have in the document.
/// Then blocks that have left their places are taken out of the tree, and at last the tree is followed from
/// the outermost system, and they are put in where they are in the model.
class SsdEditing {
public:
    /// As `writeSsd`. Both must outlive this.
    SsdEditing(const Model& model, const SsdSource& source);
    SsdEditing(const SsdEditing&) = delete;
    SsdEditing& operator=(const SsdEditing&) = delete;
    ~SsdEditing();

    /// The edited description; to be called once.
    std::string run();

private:
    /// A block that the document has.
    struct Entry {
        const Block* block;
        xmlNode* element = nullptr;
        const Block* system = nullptr;  // around it in the document
        bool stays = false;             // in its system, and in the order of its siblings that stay
        XmlNamespaces former{};         // in scope where it was taken out
    };

    void collect(xmlNode& element, const Block* system, std::size_t& next);
    Entry* entryOf(const Block& block);

    void editConnections(xmlNode& system, const Block& block);
    void addConnection(xmlNode& system, const Connection& connection, const Block& block);
    void markStaying(const Block& system);
    void takeOutMoved();

    void editBlock(xmlNode& element, const Block& block);
    void editConnectors(xmlNode& element, const Block& block);
    void editChildren(xmlNode& system, const Block& block);
    xmlNode& place(const Block& child, xmlNode& system, xmlNode* previous, xmlNode* next);
    xmlNode& makeBlock(const Block& block, const xmlNode& container) const;
    xmlNode& containerIn(xmlNode& element, SsdElement kind);
    void remove(xmlNode& item);

    const Model& m_model;
    XmlDocument m_document;
    bool m_isFirstVersion;                                   // of SSP, where a component must have a source
    std::string m_mark;                                      // byte order mark of the source
    std::string m_unit;                                      // of indentation
    std::vector<Entry> m_entries;                            // in document order, the outermost system first
    std::unordered_map<const Block*, std::size_t> m_places;  // in `m_entries`
    std::unordered_set<xmlNode*> m_touched;                  // containers that have lost elements
};

}  // namespace reference_host

#endif
