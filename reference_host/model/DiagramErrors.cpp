#include "reference_host/model/DiagramErrors.hpp"

#include "host/Text.hpp"

#include <array>
#include <utility>

namespace reference_host {

namespace {

using Message = CatalogMessage;

constexpr std::array messages{
    // files and documents
    Message{"UnreadableFile", "{0}: {1}"},
    Message{"InvalidDiagram", "{0}:{1}: {2}"},  // file, line, reason; the reasons follow
    Message{"DocumentTypeRefused", "A document type is not accepted, because it may define entities."},
    Message{"TooDeep", "Elements are nested more than {0} deep."},
    Message{"TooLarge", "The document is larger than {0} bytes."},
    Message{"TooMany", "The document has more than {1} {0}."},
    Message{"NotWellFormed", "The document is not XML: {0}."},
    Message{"NotADescription", "The outermost element is \"{0}\", not SSP's SystemStructureDescription."},
    Message{"NoSystem", "The description has no System."},
    Message{"SecondSystem", "The description has a second System."},
    Message{"NameMissing", "A {0} has no name."},
    // warnings
    Message{"DanglingConnection", "{0}:{1}: {2}"},  // file, line, reason; the reasons follow
    Message{"NoSuchElement", "A connection ends at \"{0}\", which \"{1}\" does not hold."},
    Message{"NoSuchConnector", "A connection ends at connector \"{0}\", which \"{1}\" does not have."},
    Message{"FurtherConnections", "More connections end where nothing is; they are not listed."},
    // names and places
    Message{"InvalidName", "The name \"{0}\" {1}."},
    Message{"DuplicateName", "The name \"{0}\" is taken in \"{1}\"."},
    Message{"InvalidSystem", "\"{0}\" is not a system of the model \"{1}\"."},
    Message{"InvalidBlock", "\"{0}\" is not a block of the model \"{1}\"."},
    Message{"NoNumberLeft", "\"{0}\" has given every number that there is to a block."},
    Message{"InvalidNumber", "{0} cannot be the number of \"{1}\"; it is 0, taken or above the last one."},
    Message{"InvalidMove", "\"{0}\" cannot be moved into \"{1}\", which is inside it."},
    Message{"InvalidPort", "\"{0}\" has no output port {1}."},
    Message{"InvalidPortOrder", "That is no order of the {1} output ports of \"{0}\"."},
    Message{"InvalidChartBlock", "\"{0}\" cannot be given a chart: {1}."},
    Message{"InvalidChartParent", "Number {0} is no state of the chart, so \"{1}\" cannot be put inside it."},
    // open models
    Message{"ModelAlreadyOpen", "A model named \"{0}\" is open already."},
    Message{"ModelNotOpen", "No model named \"{0}\" is open."},
    Message{"UnknownBlock", "No open model has the block \"{0}\" (ZID \"{1}\")."},
    Message{"SignalUnbound", "A signal on \"{0}\", port {1}, observes what no longer exists."},
    Message{"ActivityUnbound", "A signal on \"{0}\", chart object {1}, observes what no longer exists."},
    Message{"DrawingFailed", "\"{0}\" could not be drawn: {1}"},
    Message{"InvalidSignals", "{0} takes one object of class \"{1}\"."},
    Message{"InvalidClients", "{0} takes one object of class \"{1}\"."},
    Message{"InvalidSignal", "{0} takes one signal, an object of class \"{1}\"."},
};

}  // namespace

zmsvException diagramError(const char* key, MessageArguments arguments)
{
    static const ErrorCatalog catalog(diagramCatalog, messages);
    return catalog.error(key, std::move(arguments));
}

std::string endOfPath(const std::u16string& path)
{
    constexpr std::size_t longest = 500;
    return path.size() <= longest ? toUtf8(path) : "..." + toUtf8(path.substr(path.size() - longest));
}

}  // namespace reference_host
