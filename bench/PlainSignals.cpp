#include "bench/PlainSignals.hpp"

#include "host/Text.hpp"

#include <boost/container_hash/hash.hpp>
#include <boost/lexical_cast.hpp>
#include <boost/make_shared.hpp>

#include <algorithm>

namespace bench {

using zm_hmi::SignalSpecification;
using zm_hmi::SignalSpecificationPtr;

namespace {

int keyPort(int outputPortIndex, int logicalPortIndex)
{
    return logicalPortIndex >= 1 ? logicalPortIndex : outputPortIndex;
}

bool isChart(const SignalSpecification& signal)
{
    const std::u16string& domain = signal.getDomainType();
    return domain == u"kw_state" || domain == u"kw_chart" || domain == u"kw_data";
}

bool areCounterparts(const SignalSpecification& one, const SignalSpecification& other)
{
    if (one.getZID() != other.getZID()) {
        return false;
    }
    const std::u16string kzid = one.getValueForDomainParams(u"KZID");
    const std::u16string otherKzid = other.getValueForDomainParams(u"KZID");
    if (kzid == u"0" && otherKzid == u"0") {
        return one.getValueForDomainParams(u"Activity") == other.getValueForDomainParams(u"Activity");
    }
    return kzid == otherKzid;
}

}  // namespace

std::size_t PlainSignals::cachedKey(double blockHandle, int portNumber)
{
    return boost::hash<std::string>()(boost::lexical_cast<std::string>(blockHandle) + "$$" +
                                      boost::lexical_cast<std::string>(portNumber));
}

std::size_t PlainSignals::pathKey(const std::u16string& modelName, const std::u16string& blockPath,
                                  const std::u16string& subPath, int port)
{
    return boost::hash<std::string>()(toUtf8(modelName) + "/" + toUtf8(blockPath) + "$$" + toUtf8(subPath) +
                                      "$$" + boost::lexical_cast<std::string>(port));
}

void PlainSignals::enter(const SignalSpecificationPtr& signal)
{
    m_observedPorts.emplace(pathKey(m_modelName, signal->getBlockPath(), signal->getSubPath(),
                                    keyPort(signal->getOutputPortIndex(), signal->getLogicalPortIndex())),
                            signal);
    if (signal->getCachedPortIdx() != 0) {
        m_observedPorts.emplace(cachedKey(signal->getCachedBlockHandle(), signal->getCachedPortIdx()),
                                signal);
    }
}

void PlainSignals::add(const SignalSpecificationPtr& signal)
{
    m_signals.push_back(signal);
    if (!isChart(*signal)) {
        enter(signal);
    }
}

void PlainSignals::load(const nvArray* persisted)
{
    for (std::size_t i = 0; i < nvGetNumberOfElements(persisted); ++i) {
        add(boost::make_shared<SignalSpecification>(persisted, i, std::u16string()));
    }
}

void PlainSignals::updateObservedPortMap()
{
    m_observedPorts.clear();
    for (const SignalSpecificationPtr& signal : m_signals) {
        enter(signal);
    }
}

bool PlainSignals::isPortObserved(double blockHandle, int portNumber) const
{
    const auto [begin, end] = m_observedPorts.equal_range(cachedKey(blockHandle, portNumber));
    return std::any_of(begin, end, [&](const auto& entry) {
        return entry.second->getCachedPortIdx() == portNumber &&
               entry.second->getCachedBlockHandle() == blockHandle;
    });
}

bool PlainSignals::isPortObserved(double blockHandle, const std::u16string& blockPath,
                                  const std::u16string& subPath, int outputPortIndex, int portNumber,
                                  int logicalPortIndex) const
{
    if (isPortObserved(blockHandle, portNumber)) {
        return true;
    }
    const auto [begin, end] = m_observedPorts.equal_range(
        pathKey(m_modelName, blockPath, subPath, keyPort(outputPortIndex, logicalPortIndex)));
    return std::any_of(begin, end, [&](const auto& entry) {
        return entry.second->getOutputPortIndex() == outputPortIndex &&
               entry.second->getBlockPath() == blockPath;
    });
}

std::vector<SignalSpecificationPtr> PlainSignals::setDifference(const PlainSignals& other,
                                                                std::size_t stride) const
{
    std::vector<SignalSpecificationPtr> difference;
    for (std::size_t i = 0; i < m_signals.size(); i += stride) {
        const SignalSpecificationPtr& signal = m_signals[i];
        if (isChart(*signal) &&
            std::none_of(other.m_signals.begin(), other.m_signals.end(), [&](const auto& counterpart) {
                return isChart(*counterpart) && areCounterparts(*signal, *counterpart);
            })) {
            difference.push_back(signal);
        }
    }
    return difference;
}

}  // namespace bench
