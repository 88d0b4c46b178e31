#ifndef ZM_HMI_SIGNAL_SPECIFICATION_HPP
#define ZM_HMI_SIGNAL_SPECIFICATION_HPP

#include "host/OwnedArray.hpp"

#include <cstddef>
#include <list>
#include <string>
#include <unordered_map>

namespace zm_hmi {

class BlockPortUUIDs;

/// One instrumented signal: an output port of a block, or an activity of a state chart reached through
/// the chart's block, whose values are streamed out of a running simulation.
///
/// A record is made from a host value, from a port (`createSigSpecFromPort`), by `clone` or empty, and
/// then held by shared pointer. It knows neither its collection nor its model: block path and ZID are
/// held without the model name, which is added when a host value is made and removed when one is read.
///
/// Port numbers are the host's, 1-based; 0 means none. Main thread only.
class SignalSpecification {
public:
    using DomainParams = std::unordered_map<std::u16string, std::u16string>;

    /// Every text empty, every number 0 but a decimation of 1, every flag false.
    SignalSpecification() = default;

    /// Reads a struct array's element `index` (0-based) with `setFromPersistentData`, or any other value,
    /// taken as an object of the host class "Zelmar.HMI.SignalSpecification", with `setFromNVCOS`.
    SignalSpecification(const nvArray* value, std::size_t index, const std::u16string& modelName);

    SignalSpecification& operator=(const SignalSpecification&) = delete;
    SignalSpecification(SignalSpecification&&) = delete;
    SignalSpecification& operator=(SignalSpecification&&) = delete;
    ~SignalSpecification() = default;

    /// A second record with every member of this one, its UUID included. The caller owns it.
    SignalSpecification* clone() const;

    /// A record for a block port, given with full path and ZID. It takes the UUID that the block-port map
    /// has for the port, else a new one, which is not entered in the map: entering it is
    /// `getUUIDFromBlockHandle`'s or the caller's business. The caller owns the record.
    static SignalSpecification* createSigSpecFromPort(const std::u16string& blockPath, const std::string& zid,
                                                      int outputPortIndex, int logicalPortIndex,
                                                      double blockHandle, const std::u16string& modelName,
                                                      bool excludeForSave);

    // ---- comparing ----

    /// True when all persisted members are equal. Domain parameters are compared side by side in the
    /// iteration order of the two maps: equal contents in another order are unequal, on purpose. False for
    /// null.
    bool isEqual(const SignalSpecification* other) const;

    /// True when both observe the same port. Equal cached handles (not 0.0) with equal cached ports decide
    /// that they do. In all other cases, two different handles included, the port numbers, block paths and
    /// sub-paths decide. Settings and UUIDs do not matter. False for null.
    bool isSameSignal(const SignalSpecification* other) const;

    // ---- host struct form ----

    /// The field names in struct order; the first 16 are the persisted form.
    static const char* const* getStructFields();

    /// 20 with the run-time fields, 16 without.
    static std::size_t getNumStructFields(bool withRuntimeFields);

    /// Fills element `index` with the 16 persisted fields. "BlockPath_" is the host's current path of
    /// the block, not the member: empty when the host gives none (one warning, no exception).
    void getPersistenceData(nvArray* structArray, std::size_t index, std::u16string modelName) const;

    /// Reads element `index` of a persisted struct array; the model name plays no part.
    void setFromPersistentData(const nvArray* structArray, std::size_t index);

    /// Writes the 16 persisted fields of element `index`, with the model name added to path and ZID.
    void createStructData(nvArray* structArray, std::size_t index, const std::u16string& modelName) const;

    // ---- host object form ----

    /// Reads every property of an object of the host class; all of them must exist.
    void setFromNVCOS(const nvArray* object, const std::u16string& modelName);

    /// A 1-by-1 struct with all 20 fields, or a new object of the host class; null, after one warning,
    /// when the host refuses to make one. The struct always carries the cached handle and port, the object
    /// only when a handle is cached.
    OwnedArray getNVCOSObject(const std::u16string& modelName, bool asStruct) const;

    /// The host's current path of the block, as the host gives it; empty, after one warning, when it
    /// gives none.
    std::u16string getAlignedBlockPath(const std::u16string& modelName) const;

    // ---- changing ----

    void setCachedInfo(double blockHandle, int portIdx) noexcept;

    /// Sets the output port and the cached port; the logical port stays.
    void renumberPortIndex(int newIndex) noexcept;

    /// Does nothing: a record holds no model name that could change.
    void renameModel(const std::u16string& oldName, const std::u16string& newName);

    void stripModelName(const std::u16string& modelName);

    // ---- source keys: 64-bit hashes that name a port; see SourceKeys.cpp for the texts ----

    std::size_t getSourceKeyCached() const;
    std::size_t getSourceKeyNonCached(const std::u16string& modelName) const;
    static std::size_t getCachedInfoHash(double blockHandle, int portIndex);
    static std::size_t getNonCachedInfoHash(const std::u16string& blockPath, const std::u16string& subPath,
                                            int outputPortIndex, int logicalPortIndex,
                                            const std::u16string& modelName);
    static std::size_t getInfoHashFromStringList(std::list<std::string> parts);

    // ---- UUIDs of block ports, one map for the process, never cleared ----

    static bool isInBlockHandleUUIDmap(const int& portIndex, const double& blockHandle);
    static void addToBlockHandleUUIDmap(const int& portIndex, const double& blockHandle,
                                        const std::string& uuid);

    /// A new version-4 UUID; with `useMap` the port's own, made and entered on first use.
    static std::string getUUIDFromBlockHandle(const int& portIndex, const double& blockHandle,
                                              const bool& useMap);
    static std::unordered_map<std::string, std::string>& getBlockUUIDmap();

    // ---- domain parameters ----

    /// Replaces the contents of `target` with the fields of a 1-by-1 struct; empties it for an empty value.
    static void extractDomainParamsFromNVArray(const nvArray* params, DomainParams& target);

    /// A 1-by-1 struct with one text field a parameter, in the map's iteration order.
    OwnedArray getDomainParamsAsNVArray() const;

    /// The parameter's value, or an empty text when there is none.
    std::u16string getValueForDomainParams(const std::u16string& name) const;

    // ---- changes that a map of observed ports has to know of ----

    /// How often the cached handle or port of a record changed while the record was entered in any map.
    static std::size_t changesOfEntered() noexcept { return m_changesOfEntered; }
    void markEntered() noexcept { m_isEntered = true; }

    // ---- reading ----

    const std::string& getUUID() const noexcept { return UUID; }
    const std::u16string& getBlockPath() const noexcept { return BlockPath_; }
    const std::string& getZID() const noexcept { return ZID_; }
    const std::u16string& getSubPath() const noexcept { return SubPath_; }
    const std::u16string& getSignalName() const noexcept { return SignalName_; }
    const std::u16string& getSubSysPath() const noexcept { return SubSysPath_; }
    const std::u16string& getDomainType() const noexcept { return DomainType_; }
    const std::u16string& getVisualType() const noexcept { return VisualType_; }
    const DomainParams& getDomainParams() const noexcept { return DomainParams_; }
    int getOutputPortIndex() const noexcept { return OutputPortIndex_; }
    int getLogicalPortIndex() const noexcept { return LogicalPortIndex_; }
    int getDecimation() const noexcept { return Decimation_; }
    int getMaxPoints() const noexcept { return MaxPoints_; }
    bool getTargetBufferedStreaming() const noexcept { return TargetBufferedStreaming_; }
    bool getIsFrameBased() const noexcept { return IsFrameBased_; }
    bool getHideInDVX() const noexcept { return HideInDVX_; }
    double getCachedBlockHandle() const noexcept { return CachedBlockHandle_; }
    int getCachedPortIdx() const noexcept { return CachedPortIdx_; }
    const std::string& getBindingRule() const noexcept { return BindingRule_; }
    bool getExcludeForSave() const noexcept { return ExcludeForSave_; }

private:
    struct Fields;  // the field table, in SignalSpecificationFields.hpp

    SignalSpecification(const SignalSpecification&) = default;

    void cachedInfoChanged() noexcept { m_changesOfEntered += m_isEntered ? 1 : 0; }

    // Each member is named after its field.
    std::string UUID;
    std::u16string BlockPath_;
    std::string ZID_;
    std::u16string SubPath_;
    std::u16string SignalName_;
    std::u16string SubSysPath_;
    std::u16string DomainType_;
    std::u16string VisualType_;
    DomainParams DomainParams_;
    int OutputPortIndex_ = 0;
    int LogicalPortIndex_ = 0;
    int Decimation_ = 1;
    int MaxPoints_ = 0;
    bool TargetBufferedStreaming_ = false;
    bool IsFrameBased_ = false;
    bool HideInDVX_ = false;
    double CachedBlockHandle_ = 0.0;
    int CachedPortIdx_ = 0;
    std::string BindingRule_;
    bool ExcludeForSave_ = false;

    bool m_isEntered = false;  // once it is true it stays so: a change too many is harmless

    static BlockPortUUIDs m_blockUUIDmap;
    static std::size_t m_changesOfEntered;
};

}  // namespace zm_hmi

#endif
