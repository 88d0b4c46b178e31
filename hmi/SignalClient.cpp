#include "hmi/SignalClient.hpp"

#include "hmi/SignalClientFields.hpp"
#include "hmi_foundation/ModelPath.hpp"
#include "host/HostCall.hpp"

#include <algorithm>
#include <tuple>
#include <unordered_set>
#include <utility>

namespace zm_hmi {

SignalClient::SignalClient(const nvArray* value, std::size_t index, const std::u16string& modelName)
{
    if (nvIsStruct(value)) {
        setFromPersistentData(value, index);
    } else {
        setFromNVCOS(value, modelName);
    }
}

SignalClient::SignalClient(const SignalClient& other)
    : UUID(other.UUID),
      SourceModel_(other.SourceModel_),
      SignalUUID_(other.SignalUUID_),
      ObserverType_(other.ObserverType_),
      ModelPath_(other.ModelPath_),
      ModelPathZID_(other.ModelPathZID_),
      UpdateRate_(other.UpdateRate_),
      DimensionChannel_(other.DimensionChannel_),
      ObserveImaginaryPart_(other.ObserveImaginaryPart_),
      BusLeafPath_(other.BusLeafPath_)
{
    setObserverParams(other.getObserverParams());
}

SignalClient* SignalClient::clone() const
{
    return new SignalClient(*this);
}

void SignalClient::setObserverParams(const nvArray* value)
{
    ObserverParams_ = Fields::persistent(OwnedArray(nvCreateDeepCopy(value)));
}

namespace {

// What the host is lent for a call: a copy that shares the data, for host code that runs inside may give the
// record other parameters. Missing ones are lent as an empty value.
OwnedArray lend(const nvArray* params)
{
    return params != nullptr ? OwnedArray(nvCreateSharedDataCopy(params)) : makePlaceholder();
}

// Always asks the host, also for identical and for missing values: hosts may watch the call.
bool isEqualInHost(const nvArray* left, const nvArray* right)
{
    const auto [result] = callHost<1>("isequal", lend(left).get(), lend(right).get());
    return !nvIsEmpty(result.get()) && nvGetLogicals(result.get())[0];
}

}  // namespace

bool SignalClient::isEqual(const SignalClient* other) const
{
    const auto members = [](const SignalClient& c) {
        return std::tie(c.UpdateRate_, c.DimensionChannel_, c.ObserveImaginaryPart_, c.BusLeafPath_, c.UUID,
                        c.SignalUUID_, c.SourceModel_, c.ObserverType_, c.ModelPath_, c.ModelPathZID_);
    };
    return members(*this) == members(*other) &&
           isEqualInHost(getObserverParams(), other->getObserverParams());
}

bool SignalClient::isDeprecatedObserver() const
{
    static const std::unordered_set<std::string> deprecatedTypes = {"hmi_web_widget_observer"};
    return deprecatedTypes.contains(ObserverType_);
}

void SignalClient::stripModelName(const std::u16string& modelName)
{
    if (!ModelPath_.empty()) {
        ModelPath_.front() = zm_hmi_foundation::RemoveModelFromPath(ModelPath_.front(), modelName);
    }
    if (!ModelPathZID_.empty()) {
        ModelPathZID_.front() = zm_hmi_foundation::RemoveModelFromZID(ModelPathZID_.front(), modelName);
    }
}

void SignalClient::renameModel(const std::u16string& oldName, const std::u16string& newName)
{
    const std::u16string name = newName;  // either argument may be a member of this record
    if (SourceModel_.empty() || SourceModel_ == oldName) {
        SourceModel_ = name;
    }
    // The parameters follow every rename, whether or not the observer belongs to the model.
    constexpr const char* field = "ModelName";
    if (!nvIsEmpty(getObserverParams()) && nvGetField(getObserverParams(), 0, field) != nullptr) {
        replaceField(ObserverParams_.get(), 0, field, makeString(name));
    }
}

// ---- the observed signal ------------------------------------------------------------------------

SignalSpecification* SignalClient::getSignalSpecification(const std::u16string& modelName)
{
    if (m_signalSpecification) {
        return m_signalSpecification.get();
    }
    const OwnedArray object = getNVCOSObject(modelName);
    if (!object) {
        return nullptr;
    }
    const OwnedArray signal = readProperty(object.get(), "SignalInfo");
    if (nvIsEmpty(signal.get())) {
        return nullptr;  // the host knows no signal of that UUID
    }
    auto resolved = std::make_unique<SignalSpecification>(signal.get(), 0, modelName);
    if (!m_signalSpecification) {  // host code that ran meanwhile may have resolved it, and holds what it got
        m_signalSpecification = std::move(resolved);
    }
    return m_signalSpecification.get();
}

int SignalClient::getAlignedPortIndex(const std::u16string& modelName)
{
    const SignalSpecification* signal = getSignalSpecification(modelName);
    return signal != nullptr ? signal->getCachedPortIdx() : 0;
}

int SignalClient::getDecimation(const std::u16string& modelName)
{
    const SignalSpecification* signal = getSignalSpecification(modelName);
    return signal != nullptr ? signal->getDecimation() : 1;
}

int SignalClient::getMaxPoints(const std::u16string& modelName)
{
    const SignalSpecification* signal = getSignalSpecification(modelName);
    return signal != nullptr ? signal->getMaxPoints() : 0;
}

void SignalClient::getAlignedBlockPath(const std::u16string& modelName, std::vector<std::u16string>& path,
                                       std::u16string& subPath)
{
    const std::u16string model = modelName;  // may be the caller's `subPath`
    path.clear();
    subPath.clear();
    const SignalSpecification* signal = getSignalSpecification(model);
    const std::u16string blockPath =
        signal != nullptr ? signal->getAlignedBlockPath(model) : std::u16string();
    if (blockPath.empty()) {
        return;
    }
    path = ModelPath_;
    if (!path.empty()) {
        path.front() = zm_hmi_foundation::AddModelToPath(path.front(), model);
    }
    path.push_back(blockPath);
    subPath = signal->getSubPath();
}

}  // namespace zm_hmi
