#ifndef ZM_HMI_SIGNAL_CLIENT_HPP
#define ZM_HMI_SIGNAL_CLIENT_HPP

#include "hmi/SignalSpecification.hpp"
#include "hmi_foundation/Export.hpp"
#include "host/OwnedArray.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace zm_hmi {

/// One observer of one instrumented signal: a dashboard widget or another consumer of the signal's values.
///
/// A record is made from a host value, by `clone` or empty, and then held by shared pointer. Element 0 of its
/// model path lies in the observer's own model and is kept without the model name, which is added when a host
/// value is made and removed when an object is read. The observed signal is named by UUID and resolved
/// through the host on first demand.
///
/// A function that fails leaves the record as it was. Short memory is the host's out-of-memory exception,
/// except in the accessors at the end, which are compiled into their caller and throw `std::bad_alloc`. Main
/// thread only.
class ZM_HMI_API SignalClient {
public:
    /// Every text empty, every number 1, no parameters.
    SignalClient() = default;

    /// Reads a struct array's element `index` (0-based) with `setFromPersistentData`, or any other value,
    /// taken as an object of the host class "Zelmar.HMI.SignalClient", with `setFromNVCOS`.
    SignalClient(const nvArray* value, std::size_t index, const std::u16string& modelName);

    SignalClient& operator=(const SignalClient&) = delete;
    SignalClient(SignalClient&&) = delete;
    SignalClient& operator=(SignalClient&&) = delete;
    ~SignalClient() = default;

    /// A second record with a copy of every member, the resolved signal excepted. The caller owns it.
    SignalClient* clone() const;

    /// Whether all persisted members are equal; false for null. The parameters are compared last, by the
    /// host's "isequal", and only when all else is equal. A failure of "isequal" is thrown.
    bool isEqual(const SignalClient* other) const;

    // ---- host forms ----

    /// The 11 field names in struct order.
    static const char* const* getStructFields();
    static std::size_t getNumStructFields();

    /// Fills element `index` of a struct array, adding the model name to the first path element. After a
    /// failure some fields of the element are set. REQUIRES: no field of the element is set.
    void createStructData(nvArray* structArray, std::size_t index, const std::u16string& modelName) const;

    /// As `createStructData` without a model name: the form that is saved.
    void getPersistenceData(nvArray* structArray, std::size_t index) const;

    /// Reads element `index` of a persisted struct array. Paths are taken as they are.
    void setFromPersistentData(const nvArray* structArray, std::size_t index);

    /// Reads every property of an object of the host class and removes the model name from the paths.
    void setFromNVCOS(const nvArray* object, const std::u16string& modelName);

    /// A new object of the host class; null, after one warning, when the host refuses to make one.
    OwnedArray getNVCOSObject(const std::u16string& modelName) const;

    void stripModelName(const std::u16string& modelName);

    /// Sets the source model to the new name where it is empty or the old name. The field "ModelName" of the
    /// parameters, where there is one, always becomes the new name.
    void renameModel(const std::u16string& oldName, const std::u16string& newName);

    bool isDeprecatedObserver() const;

    // ---- the observed signal, resolved through the host ----

    /// [borrowed] The observed signal as the host knows it, or null. It is kept once it was found; until then
    /// each call asks the host again, with a warning each time the host refuses.
    SignalSpecification* getSignalSpecification(const std::u16string& modelName);

    /// The signal's cached port (1-based), or 0.
    int getAlignedPortIndex(const std::u16string& modelName);
    /// The signal's decimation, or 1.
    int getDecimation(const std::u16string& modelName);
    /// The signal's maximum number of points, or 0.
    int getMaxPoints(const std::u16string& modelName);

    /// Sets `path` to the observer's path followed by the block's current path, and `subPath` to the signal's
    /// path inside the block. Both are empty when the host gives no path; after a failure they are empty or
    /// as they were.
    void getAlignedBlockPath(const std::u16string& modelName, std::vector<std::u16string>& path,
                             std::u16string& subPath);

    // ---- members ----

    const std::string& getUUID() const noexcept { return UUID; }
    const std::u16string& getSourceModel() const noexcept { return SourceModel_; }
    const std::string& getSignalUUID() const noexcept { return SignalUUID_; }
    const std::string& getObserverType() const noexcept { return ObserverType_; }
    const std::vector<std::u16string>& getModelPath() const noexcept { return ModelPath_; }
    const std::vector<std::string>& getModelPathZID() const noexcept { return ModelPathZID_; }
    /// [borrowed] Null when there are none.
    const nvArray* getObserverParams() const noexcept { return ObserverParams_.get(); }
    std::uint64_t getUpdateRate() const noexcept { return UpdateRate_; }
    std::uint64_t getDimensionChannel() const noexcept { return DimensionChannel_; }
    bool getObserveImaginaryPart() const noexcept { return ObserveImaginaryPart_; }
    const std::string& getBusLeafPath() const noexcept { return BusLeafPath_; }

    void setUUID(const std::string& value) { UUID = value; }
    void setSourceModel(const std::u16string& value) { SourceModel_ = value; }
    void setSignalUUID(const std::string& value) { SignalUUID_ = value; }
    void setObserverType(const std::string& value) { ObserverType_ = value; }
    void setModelPath(const std::vector<std::u16string>& value) { ModelPath_ = value; }
    void setModelPathZID(const std::vector<std::string>& value) { ModelPathZID_ = value; }
    /// Keeps a deep copy; null for none.
    void setObserverParams(const nvArray* value);
    void setUpdateRate(std::uint64_t value) noexcept { UpdateRate_ = value; }
    void setDimensionChannel(std::uint64_t value) noexcept { DimensionChannel_ = value; }
    void setObserveImaginaryPart(bool value) noexcept { ObserveImaginaryPart_ = value; }
    void setBusLeafPath(const std::string& value) { BusLeafPath_ = value; }

private:
    // The field table: SignalClientFields.cpp.
    struct FieldRows;
    struct Fields;

    SignalClient(const SignalClient& other);
    bool hasEqualMembers(const SignalClient& other) const;  // all but the parameters
    void swapFields(SignalClient& other) noexcept;

    // Each member is named after its field. A new one also has a row in SignalClientFields.cpp.
    std::string UUID;
    std::u16string SourceModel_;
    std::string SignalUUID_;
    std::string ObserverType_;
    std::vector<std::u16string> ModelPath_;
    std::vector<std::string> ModelPathZID_;
    OwnedArray ObserverParams_;  // in the persistent scope
    std::uint64_t UpdateRate_ = 1;
    std::uint64_t DimensionChannel_ = 1;
    bool ObserveImaginaryPart_ = false;
    std::string BusLeafPath_;
    std::unique_ptr<SignalSpecification> m_signalSpecification;
};

}  // namespace zm_hmi

#endif
