#include "hmi/SignalClient.hpp"

#include "hmi_foundation/ModelPath.hpp"
#include "host/HostCall.hpp"
#include "host/Memory.hpp"

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

SignalClient* SignalClient::clone() const
{
    return withHostMemoryErrors([&] { return new SignalClient(*this); });
}

void SignalClient::setObserverParams(const nvArray* value)
{
    ObserverParams_ = asPersistent(OwnedArray(nvCreateDeepCopy(value)));
}

namespace {

// The argument for the host: a copy that shares the data, because host code that runs during the call may
// replace the record's parameters. An empty value where there are none.
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
    return withHostMemoryErrors([&] {
        return other != nullptr && hasEqualMembers(*other) &&
               isEqualInHost(getObserverParams(), other->getObserverParams());
    });
}

bool SignalClient::isDeprecatedObserver() const
{
    return withHostMemoryErrors([&] {
        static const std::unordered_set<std::string> deprecatedTypes = {"hmi_web_widget_observer"};
        return deprecatedTypes.contains(ObserverType_);
    });
}

void SignalClient::stripModelName(const std::u16string& modelName)
{
    withHostMemoryErrors([&] {
        std::u16string path;
        std::string zid;
        if (!ModelPath_.empty()) {
            path = zm_hmi_foundation::RemoveModelFromPath(ModelPath_.front(), modelName);
        }
        if (!ModelPathZID_.empty()) {
            zid = zm_hmi_foundation::RemoveModelFromZID(ModelPathZID_.front(), modelName);
            ModelPathZID_.front() = std::move(zid);
        }
        if (!ModelPath_.empty()) {
            ModelPath_.front() = std::move(path);
        }
    });
}

void SignalClient::renameModel(const std::u16string& oldName, const std::u16string& newName)
{
    withHostMemoryErrors([&] {
        std::u16string name = newName;  // either argument may be a member of this record
        const bool belongsToModel = SourceModel_.empty() || SourceModel_ == oldName;
        // The parameters follow every rename, whether or not the observer belongs to the model.
        constexpr const char* field = "ModelName";
        if (!nvIsEmpty(getObserverParams()) && nvGetField(getObserverParams(), 0, field) != nullptr) {
            replaceField(ObserverParams_.get(), 0, field, makeString(name));
        }
        if (belongsToModel) {
            SourceModel_ = std::move(name);
        }
    });
}

// ---- the observed signal ------------------------------------------------------------------------

SignalSpecification* SignalClient::getSignalSpecification(const std::u16string& modelName)
{
    return withHostMemoryErrors([&]() -> SignalSpecification* {
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
        if (!m_signalSpecification) {  // host code may have resolved it meanwhile and use that one
            m_signalSpecification = std::move(resolved);
        }
        return m_signalSpecification.get();
    });
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
    withHostMemoryErrors([&] {
        const std::u16string model = modelName;  // may be the caller's `subPath`
        path.clear();
        subPath.clear();
        const SignalSpecification* signal = getSignalSpecification(model);
        const std::u16string blockPath =
            signal != nullptr ? signal->getAlignedBlockPath(model) : std::u16string();
        if (blockPath.empty()) {
            return;
        }
        std::vector<std::u16string> found = ModelPath_;
        if (!found.empty()) {
            found.front() = zm_hmi_foundation::AddModelToPath(found.front(), model);
        }
        found.push_back(blockPath);
        subPath = signal->getSubPath();
        path = std::move(found);
    });
}

}  // namespace zm_hmi
