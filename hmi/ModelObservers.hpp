#ifndef ZM_HMI_MODEL_OBSERVERS_HPP
#define ZM_HMI_MODEL_OBSERVERS_HPP

#include "hmi_foundation/Export.hpp"
#include "host/OwnedArray.hpp"

namespace zm_hmi {

/// A model's observer setting: one host object of class "Zelmar.HMI.ModelObservers", the pair of the model's
/// instrumented signals and its streaming clients, or none. Host functions make the pair and split it. Short
/// memory is the host's out-of-memory exception. Main thread only.
class ZM_HMI_API ModelObservers {
public:
    /// Keeps a shared-data copy of the value; an empty value is none. Throws as `validateDataFormat`.
    explicit ModelObservers(const nvArray* value);
    ModelObservers(const ModelObservers&) = delete;
    ModelObservers& operator=(const ModelObservers&) = delete;
    ~ModelObservers();

    /// Accepts an empty value and one object of the host class. Throws "SignalObserversSetParamNonScalar"
    /// for another number of elements and "SignalObserversSetParamInvalidType" for another class.
    static void validateDataFormat(const nvArray* value);

    /// [owned: outputs] Splits the pair. Both are null when there is none and, after one warning, when the
    /// host fails.
    void getSignalsAndClients(nvArray*& signals, nvArray*& clients) const;

    /// [owned] The pair of two collections, either of which may be null. Null when both are and, after one
    /// warning, when the host fails.
    static nvArray* createFromSignalsAndClients(const nvArray* signals, const nvArray* clients);

private:
    OwnedArray m_value;  // in the persistent scope
};

}  // namespace zm_hmi

#endif
