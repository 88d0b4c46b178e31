#include "tests/hmi/SignalValues.hpp"

#include "host/Text.hpp"
#include "reference_host/classes/ObjectAccess.hpp"
#include "reference_host/values/ValueContainers.hpp"
#include "reference_host/values/ValueMaking.hpp"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <ostream>

namespace zm_hmi {

namespace rh = reference_host;

namespace {

const std::vector<std::string> fieldNames = {"UUID",
                                             "BlockPath_",
                                             "ZID_",
                                             "SubPath_",
                                             "OutputPortIndex_",
                                             "LogicalPortIndex_",
                                             "SignalName_",
                                             "SubSysPath_",
                                             "Decimation_",
                                             "MaxPoints_",
                                             "TargetBufferedStreaming_",
                                             "IsFrameBased_",
                                             "HideInDVX_",
                                             "DomainType_",
                                             "DomainParams_",
                                             "VisualType_"};

rh::OwnedValue makeDomainParams(const SignalValues& values)
{
    std::vector<std::string> names;
    for (const auto& [name, value] : values.domainParams) {
        names.push_back(toUtf8(name));
    }
    rh::OwnedValue params = rh::makeStruct(rh::Dimensions(1, 1), names);
    for (std::size_t i = 0; i < names.size(); ++i) {
        rh::setField(params.get(), 0, names[i].c_str(), rh::makeText(values.domainParams[i].second));
    }
    return params;
}

void fillPersistedFields(nvArray* data, std::size_t index, const SignalValues& values)
{
    const auto set = [&](const char* name, rh::OwnedValue field) {
        rh::setField(data, index, name, std::move(field));
    };
    set("UUID", rh::makeText(values.uuid));
    set("BlockPath_", rh::makeText(values.blockPath));
    set("ZID_", rh::makeText(values.zid));
    set("SubPath_", rh::makeText(values.subPath));
    set("OutputPortIndex_", rh::makeDouble(values.outputPort));
    set("LogicalPortIndex_", rh::makeDouble(values.logicalPort));
    set("SignalName_", rh::makeText(values.signalName));
    set("SubSysPath_", rh::makeText(values.subSysPath));
    set("Decimation_", rh::makeDouble(values.decimation));
    set("MaxPoints_", rh::makeDouble(values.maxPoints));
    set("TargetBufferedStreaming_", rh::makeDouble(values.targetBufferedStreaming ? 1.0 : 0.0));
    set("IsFrameBased_", rh::makeDouble(values.isFrameBased ? 1.0 : 0.0));
    set("HideInDVX_", rh::makeDouble(values.hideInDVX ? 1.0 : 0.0));
    set("DomainType_", rh::makeText(values.domainType));
    set("DomainParams_", makeDomainParams(values));
    set("VisualType_", rh::makeText(values.visualType));
}

}  // namespace

SignalValues distinctValues()
{
    return {.uuid = "0fa1e07c-3a5e-4f0b-9d50-3f3d0d5b2d11",
            .blockPath = u"Controller/Begr\u00e4nzung",
            .zid = "17",
            .subPath = u"bus.speed",
            .signalName = u"limited",
            .subSysPath = u"Controller",
            .domainType = u"bus",
            .visualType = u"line",
            .domainParams = {{u"Element", u"speed"}},
            .outputPort = 2,
            .logicalPort = 3,
            .decimation = 4,
            .maxPoints = 5000,
            .targetBufferedStreaming = true,
            .isFrameBased = true,
            .hideInDVX = true,
            .cachedHandle = 12.5,
            .cachedPort = 6,
            .bindingRule = "same-name",
            .excludeForSave = true};
}

SignalValues portValues(std::u16string blockPath, int outputPort)
{
    return {.blockPath = std::move(blockPath), .outputPort = outputPort};
}

SignalValues stateValues(std::string zid, std::u16string kzid, std::u16string activity)
{
    return {.zid = std::move(zid),
            .domainType = u"kw_state",
            .domainParams = {{u"KZID", std::move(kzid)}, {u"Activity", std::move(activity)}}};
}

SignalValues valuesOf(const SignalSpecification& record)
{
    SignalValues values{.uuid = record.getUUID(),
                        .blockPath = record.getBlockPath(),
                        .zid = record.getZID(),
                        .subPath = record.getSubPath(),
                        .signalName = record.getSignalName(),
                        .subSysPath = record.getSubSysPath(),
                        .domainType = record.getDomainType(),
                        .visualType = record.getVisualType(),
                        .domainParams = {record.getDomainParams().begin(), record.getDomainParams().end()},
                        .outputPort = record.getOutputPortIndex(),
                        .logicalPort = record.getLogicalPortIndex(),
                        .decimation = record.getDecimation(),
                        .maxPoints = record.getMaxPoints(),
                        .targetBufferedStreaming = record.getTargetBufferedStreaming(),
                        .isFrameBased = record.getIsFrameBased(),
                        .hideInDVX = record.getHideInDVX(),
                        .cachedHandle = record.getCachedBlockHandle(),
                        .cachedPort = record.getCachedPortIdx(),
                        .bindingRule = record.getBindingRule(),
                        .excludeForSave = record.getExcludeForSave()};
    std::sort(values.domainParams.begin(), values.domainParams.end());
    return values;
}

rh::OwnedValue makePersisted(const std::vector<SignalValues>& signals)
{
    rh::OwnedValue data = rh::makeStruct(rh::Dimensions(signals.size(), 1), fieldNames);
    for (std::size_t i = 0; i < signals.size(); ++i) {
        fillPersistedFields(data.get(), i, signals[i]);
    }
    return data;
}

rh::OwnedValue makeSignalObject(const SignalValues& values)
{
    const rh::OwnedValue data = makePersisted({values});
    rh::OwnedValue object = rh::ObjectAccess::construct("Zelmar.HMI.SignalSpecification", {data.get()});
    const auto set = [&](const char* name, const rh::OwnedValue& property) {
        rh::ObjectAccess::setProperty(object.get(), name, property.get());
    };
    set("BindingRule_", rh::makeText(values.bindingRule));
    set("ExcludeForSave_", rh::makeLogical(values.excludeForSave));
    set("CachedPortIdx_", rh::makeDouble(values.cachedPort));
    if (values.cachedHandle != 0.0) {
        set("CachedBlockHandle_", rh::makeDouble(values.cachedHandle));
    }
    return object;
}

SignalSpecificationPtr makeSignal(const SignalValues& values)
{
    SignalSpecificationPtr signal;
    if (values.bindingRule.empty() && !values.excludeForSave) {
        signal = boost::make_shared<SignalSpecification>(makePersisted({values}).get(), 0, u"");
    } else {
        // Only an object carries these two. The unlikely model name leaves path and ZID as they are.
        signal = boost::make_shared<SignalSpecification>(makeSignalObject(values).get(), 0, u"\uffff");
    }
    signal->setCachedInfo(values.cachedHandle, values.cachedPort);
    return signal;
}

std::ostream& operator<<(std::ostream& out, const SignalValues& values)
{
    out << "{UUID " << values.uuid << ", path " << toUtf8(values.blockPath) << ", ZID " << values.zid
        << ", sub-path " << toUtf8(values.subPath) << ", name " << toUtf8(values.signalName) << ", subsystem "
        << toUtf8(values.subSysPath) << ", domain " << toUtf8(values.domainType) << ", visual "
        << toUtf8(values.visualType);
    for (const auto& [name, value] : values.domainParams) {
        out << ", " << toUtf8(name) << "=" << toUtf8(value);
    }
    return out << ", output " << values.outputPort << ", logical " << values.logicalPort << ", decimation "
               << values.decimation << ", points " << values.maxPoints << ", flags "
               << values.targetBufferedStreaming << values.isFrameBased << values.hideInDVX << ", cached "
               << values.cachedHandle << "/" << values.cachedPort << ", rule " << values.bindingRule
               << ", exclude " << values.excludeForSave << "}";
}

}  // namespace zm_hmi
