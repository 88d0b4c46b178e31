#ifndef ZM_HMI_STREAMING_CLIENTS_HPP
#define ZM_HMI_STREAMING_CLIENTS_HPP

#include "hmi/SignalClient.hpp"
#include "hmi_foundation/Export.hpp"
#include "host/OwnedArray.hpp"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace zm_hmi {

using SignalClientPtr = boost::shared_ptr<SignalClient>;

/// A model's streaming clients, in the order in which they were added. The native object behind an instance
/// of the host class "Zelmar.HMI.StreamingClients", which creates and destroys it.
///
/// Indices are 0-based; one that is not below the count throws the host's "InvalidElementIndex" with the
/// count as its argument. Beside the model's name the collection keeps the name under which the host's
/// interface manager last knew it: the two differ from a rename until validation has run.
///
/// An operation that fails leaves the collection as it was, unless its comment says otherwise. Short memory
/// is the host's out-of-memory exception. Host code that runs during an operation may call the same
/// collection. Main thread only.
class ZM_HMI_API StreamingClients {
public:
    StreamingClients() = default;
    StreamingClients(const StreamingClients&) = delete;
    StreamingClients& operator=(const StreamingClients&) = delete;
    ~StreamingClients() = default;

    // ---- from host values ----

    /// True for null, for an empty value, and for one object of the host class.
    static bool isValidType(const nvArray* value);

    /// The collection behind object 0 of a class-object array; null for null and for an empty value. It
    /// belongs to the host object. REQUIRES: `isValidType(value)`.
    static StreamingClients* getFromNVArray(const nvArray* value);

    // ---- elements ----

    std::size_t getCount() const noexcept { return m_clients.size(); }

    /// Whether both have equal clients (`SignalClient::isEqual`) in the same order; false for null. The names
    /// are not compared.
    bool isEqual(const StreamingClients* other) const;

    /// [borrowed] The client at `index`.
    SignalClient* get(std::size_t index) const { return getShared(index).get(); }

    /// The client at `index`, held: it stays alive when host code removes it meanwhile.
    SignalClientPtr getShared(std::size_t index) const;

    void add(SignalClientPtr client);
    void set(std::size_t index, SignalClientPtr client);
    void remove(std::size_t index);

    // ---- model names ----

    const std::u16string& getModelName() const noexcept { return m_modelName; }
    const std::u16string& getSyncedModelName() const noexcept { return m_syncedModelName; }

    /// Renames the model in every client, then in the collection. The first naming also counts as known to
    /// the interface manager. After a failure the clients renamed before it stay renamed and the collection
    /// keeps its names; calling this again with the same name completes the renaming.
    void setModelName(const std::u16string& name);

    // ---- host forms ----

    /// A 1-by-n struct array with one element a client and the 11 fields.
    OwnedArray getPersistenceData() const;

    /// Appends a client for every element of a persisted struct array. When one cannot be read, those before
    /// it stay; appending the same array again then appends them a second time.
    void setFromPersistenceData(const nvArray* data);

    /// A new host object whose collection has both names and a clone of every client.
    OwnedArray copy() const;

    // ---- for the host: ObserverAlignment.cpp. Each takes the host object, of an array the first; a host
    //      function that fails gives one warning, never an exception ----

    /// The observers as the host aligns them with the model as it is now; none for null, without a call,
    /// and when the host fails. When one cannot be read, those before it stay in `observers`.
    static void getAlignedObservers(const nvArray* clientsObject, std::vector<SignalClientPtr>& observers);

    /// Tells the interface manager of a rename since the last validation; announces it again each time
    /// until `validateAndRemoveUnused` has run.
    static void handleModelRename(const nvArray* clientsObject);

    /// Has the host remove the clients that no longer belong to the model. The model's name counts as known
    /// to the interface manager before the host is called, and so also when the call fails.
    static void validateAndRemoveUnused(const nvArray* clientsObject);

private:
    std::u16string m_modelName;
    std::u16string m_syncedModelName;
    std::vector<SignalClientPtr> m_clients;
};

}  // namespace zm_hmi

#endif
