#include "reference_host/observers/SignalRecords.hpp"

#include "host/Text.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/observers/AlignedPaths.hpp"
#include "reference_host/observers/CollectionAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <charconv>
#include <utility>

namespace reference_host {

namespace {

bool isChartDomain(const std::u16string& domainType)
{
    return domainType == chartDomainType(ChartObjectKind::Chart) ||
           domainType == chartDomainType(ChartObjectKind::State) ||
           domainType == chartDomainType(ChartObjectKind::Data);
}

/// The chart object's number; for a text that is not a number, one that no chart has.
std::uint32_t chartObjectOf(const nvArray* domainParams)
{
    const std::string text = isEmpty(domainParams) ? std::string() : utf8Text(field(domainParams, 0, "KZID"));
    std::uint32_t kzid = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), kzid);
    return error == std::errc() && end == text.data() + text.size() ? kzid : ~std::uint32_t{0};
}

SignalRecord readSignal(const nvArray* fields)
{
    const auto get = [fields](const char* name) { return field(fields, 0, name); };
    SignalRecord signal;
    signal.uuid = utf8Text(get("UUID"));
    signal.path = text(get("BlockPath_"));
    signal.zid = utf8Text(get("ZID_"));
    signal.name = text(get("SignalName_"));
    signal.domainType = text(get("DomainType_"));
    signal.outputPort = static_cast<int>(scalarInteger(get("OutputPortIndex_")));
    signal.logicalPort = static_cast<int>(scalarInteger(get("LogicalPortIndex_")));
    signal.cachedHandle = scalar(get("CachedBlockHandle_"));
    signal.cachedPort = static_cast<int>(scalarInteger(get("CachedPortIdx_")));
    if (isChartDomain(signal.domainType)) {
        signal.chartObject = chartObjectOf(get("DomainParams_"));
    }
    return signal;
}

/// A collection in the model's observers parameter; null where there is none.
OwnedValue collectionIn(const Model& model, const char* property)
{
    const OwnedValue observers = model.observers();
    OwnedValue collection = observers ? ObjectAccess::getProperty(observers.get(), property) : nullptr;
    return isEmpty(collection.get()) ? nullptr : std::move(collection);
}

}  // namespace

std::vector<SignalRecord> readSignals(const nvArray* signals)
{
    std::vector<SignalRecord> records;
    const OwnedValue asStruct = makeLogical(true);
    const std::size_t count = elementsIn(signals);
    records.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const OwnedValue index = methodIndex(i);
        const auto fields = ObjectAccess::callMethod(signals, "get", {index.get(), asStruct.get()});
        records.push_back(readSignal(fields.front().get()));
    }
    return records;
}

SignalPlace placeOf(const SignalRecord& signal)
{
    Block* block = alignedBlock(signal.zid, signal.path);
    if (block == nullptr) {
        return {};
    }
    if (signal.chartObject) {
        return {block, block->chart() != nullptr && block->chart()->find(*signal.chartObject) != nullptr};
    }
    const auto ports = block->ports(PortKind::Output).size();
    return {block, signal.outputPort >= 1 && static_cast<std::size_t>(signal.outputPort) <= ports};
}

OwnedValue modelSignals(const Model& model)
{
    return collectionIn(model, "Signals");
}

OwnedValue modelClients(const Model& model)
{
    return collectionIn(model, "Clients");
}

}  // namespace reference_host
