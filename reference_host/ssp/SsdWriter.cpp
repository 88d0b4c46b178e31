#include "reference_host/ssp/SsdWriter.hpp"

#include "reference_host/ssp/SsdEditing.hpp"
#include "reference_host/ssp/SsdReader.hpp"
#include "reference_host/ssp/XmlEncoding.hpp"
#include "reference_host/ssp/XmlText.hpp"

#include <string_view>

namespace reference_host {

namespace {

std::string leastDescription(const Model& model)
{
    std::string description =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ssd:SystemStructureDescription name=\"";
    appendAttributeValue(description, model.name());
    description.append(
        "\" version=\"1.0\"\n    xmlns:ssc=\"http://ssp-standard.org/SSP1/SystemStructureCommon\"");
    description.append("\n    xmlns:ssd=\"").append(ssdNamespace).append("\">\n");
    description.append("  <ssd:System name=\"\"/>\n</ssd:SystemStructureDescription>\n");
    return description;
}

/// Takes every document that can be read.
class AnyDocument : public XmlHandler {
public:
    void begin(std::string_view, const XmlAttributes&, const XmlTag&) override {}
    void end(const XmlTag&) override {}
};

}  // namespace

std::string writeSsd(const Model& model, const std::string& document)
{
    std::string utf8;
    if (document.empty()) {
        utf8 = leastDescription(model);
    } else {
        std::string buffer;
        utf8 = asUtf8(document, buffer);
        declareUtf8(utf8);
    }
    SsdEditing editing(model, utf8);
    std::string edited = editing.run();
    if (!editing.isEdited()) {
        return document;
    }
    AnyDocument any;
    const SsdLimits limits;
    readXml(edited, "the edited description", {limits.bytes, limits.depth}, any);
    return edited;
}

}  // namespace reference_host
