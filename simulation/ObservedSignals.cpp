#include "simulation/ObservedSignals.hpp"

#include "hmi/InstrumentedSignals.hpp"
#include "reference_host/observers/SignalRecords.hpp"
#include "reference_host/support/TextConversion.hpp"
#include "reference_host/values/ValueReading.hpp"

#include <algorithm>
#include <charconv>

namespace simulation {

namespace rh = reference_host;
using rh::utf8FromUtf16;
using zm_hmi::SignalSpecification;

namespace {

bool isChartDomain(const std::u16string& domainType)
{
    return domainType == rh::chartDomainType(rh::ChartObjectKind::Chart) ||
           domainType == rh::chartDomainType(rh::ChartObjectKind::State) ||
           domainType == rh::chartDomainType(rh::ChartObjectKind::Data);
}

std::string domainParam(const SignalSpecification& signal, const std::u16string& name)
{
    const auto& params = signal.getDomainParams();
    const auto found = params.find(name);
    return found == params.end() ? std::string() : utf8FromUtf16(found->second);
}

ChartItem chartItemOf(const SignalSpecification& signal)
{
    const std::string text = domainParam(signal, u"KZID");
    ChartItem item{~std::uint32_t{0}, domainParam(signal, u"Activity")};  // a number that no chart has
    std::uint32_t object = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), object);
    if (error == std::errc() && end == text.data() + text.size()) {
        item.object = object;
    }
    return item;
}

const rh::Block* blockOf(const rh::Model& model, const SignalSpecification& signal)
{
    const rh::Block* block = model.findByZid(signal.getZID());
    return block != nullptr ? block : model.findByPath(signal.getBlockPath());
}

/// Port or chart object; the names are those that the diagram has now.
void locate(ObservedSignal& observed, const rh::Block& block)
{
    Channel& channel = observed.channel;
    channel.blockPath = utf8FromUtf16(block.path());
    if (channel.chartItem) {
        const rh::ChartObject* object =
            block.chart() != nullptr ? block.chart()->find(channel.chartItem->object) : nullptr;
        if (object != nullptr) {
            channel.portName = utf8FromUtf16(object->name);
            observed.place = Place{&block, 0, channel.chartItem};
        }
        return;
    }
    const auto& ports = block.ports(rh::PortKind::Output);
    if (channel.portNumber >= 1 && channel.portNumber <= ports.size()) {
        channel.portName = utf8FromUtf16(ports[channel.portNumber - 1].name);
        observed.place = Place{&block, channel.portNumber - 1, {}};
    }
}

ObservedSignal observe(const rh::Model& model, const std::string& modelName,
                       const SignalSpecification& signal)
{
    ObservedSignal observed;
    Channel& channel = observed.channel;
    channel.uuid = signal.getUUID();
    channel.modelName = modelName;
    channel.blockPath = modelName + '/' + utf8FromUtf16(signal.getBlockPath());
    channel.subPath = utf8FromUtf16(signal.getSubPath());
    channel.signalName = utf8FromUtf16(signal.getSignalName());
    channel.domainType = utf8FromUtf16(signal.getDomainType());
    if (isChartDomain(signal.getDomainType())) {
        channel.chartItem = chartItemOf(signal);
    } else {
        channel.portNumber = static_cast<unsigned>(std::max(signal.getOutputPortIndex(), 0));
    }
    channel.decimation = static_cast<std::uint32_t>(std::max(signal.getDecimation(), 1));
    channel.maxPoints = static_cast<std::size_t>(std::max(signal.getMaxPoints(), 0));
    channel.isBuffered = signal.getTargetBufferedStreaming();
    channel.isFrameBased = signal.getIsFrameBased();
    channel.isHidden = signal.getHideInDVX();
    if (const rh::Block* block = blockOf(model, signal)) {
        locate(observed, *block);
    }
    channel.isBound = observed.place.has_value();
    return observed;
}

}  // namespace

std::vector<ObservedSignal> readObservedSignals(const rh::Model& model)
{
    std::vector<ObservedSignal> observed;
    const rh::OwnedValue object = rh::modelSignals(model);
    if (!object) {
        return observed;
    }
    const nvcos::COSInterfacePtr instance = omGetArrayElement(object.get(), 0);
    const auto* signals = static_cast<const zm_hmi::InstrumentedSignals*>(omGetInstanceData(instance.get()));
    const std::string modelName = utf8FromUtf16(model.name());
    observed.reserve(signals->getCount());
    for (std::size_t i = 0; i < signals->getCount(); ++i) {
        observed.push_back(observe(model, modelName, *signals->get(i)));
    }
    return observed;
}

}  // namespace simulation
