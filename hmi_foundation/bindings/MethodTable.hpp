#ifndef ZM_HMI_FOUNDATION_BINDINGS_METHOD_TABLE_HPP
#define ZM_HMI_FOUNDATION_BINDINGS_METHOD_TABLE_HPP

#include <array>
#include <cstddef>
#include <string_view>

/// The methods and properties of the two host classes, one row each, in the order of registration. The
/// bindings register names and types from it; names of arguments and help are for people, and the build
/// writes them to a file for whoever documents the classes (hmi_foundation/help/WriteHelp.cpp).
namespace zm_hmi_foundation {

/// The names by which signatures and properties refer to the host's types.
namespace type_name {
inline constexpr const char* unicodeString = "unicodeString";
inline constexpr const char* asciiString = "asciiString";
inline constexpr const char* uint32Scalar = "uint32 scalar";
inline constexpr const char* int32Scalar = "int32 scalar";
inline constexpr const char* doubleScalar = "double scalar";
inline constexpr const char* logicalScalar = "logical scalar";
inline constexpr const char* any = "any";
inline constexpr const char* signals = "Zelmar.HMI.InstrumentedSignals";
inline constexpr const char* clients = "Zelmar.HMI.StreamingClients";
inline constexpr const char* signal = "Zelmar.HMI.SignalSpecification";
inline constexpr const char* client = "Zelmar.HMI.SignalClient";
}  // namespace type_name

struct InputRow {
    const char* name = nullptr;
    const char* type = nullptr;
};

struct MethodRow {
    const char* name;
    std::array<InputRow, 4> inputs;  ///< unused ones at the end have no name
    const char* outputType;          ///< null for a method without a result
    int optionalInputs;              ///< how many of the last inputs a caller may leave out
    const char* help;

    constexpr std::size_t inputCount() const
    {
        std::size_t count = 0;
        while (count < inputs.size() && inputs[count].name != nullptr) {
            ++count;
        }
        return count;
    }
};

struct PropertyRow {
    const char* name;
    const char* help;
};

/// The row of that name. A name that the table lacks does not compile.
template <class Row, std::size_t Count>
consteval const Row& rowOf(const std::array<Row, Count>& table, std::string_view name)
{
    for (const Row& row : table) {
        if (row.name == name) {
            return row;
        }
    }
    throw "no such row";
}

namespace type = type_name;

inline constexpr auto signalsMethods = std::to_array<MethodRow>({
    {"InstrumentedSignals",
     {{{"model_name", type::unicodeString}}},
     type::signals,
     1,
     "Makes an empty collection of the signals of the model of that name."},
    {"add",
     {{{"signals", type::signals}, {"signal", type::signal}}},
     nullptr,
     0,
     "Appends a copy of the signal."},
    {"set",
     {{{"signals", type::signals}, {"index", type::uint32Scalar}, {"signal", type::signal}}},
     nullptr,
     0,
     "Replaces the signal at an index, from 1, by a copy of the given one."},
    {"remove",
     {{{"signals", type::signals}, {"index", type::uint32Scalar}}},
     nullptr,
     0,
     "Removes the signal at an index, from 1; later signals move down by one."},
    {"get",
     {{{"signals", type::signals}, {"index", type::uint32Scalar}, {"as_struct", type::logicalScalar}}},
     type::any,
     1,
     "Returns a copy of the signal at an index, from 1: an object, or a struct where as_struct is true."},
    {"isPortObserved",
     {{{"signals", type::signals}, {"signal", type::signal}}},
     type::logicalScalar,
     0,
     "Returns whether the port that a signal names is observed in this collection."},
    {"isGivenKWActivityObserved",
     {{{"signals", type::signals},
       {"block_path", type::unicodeString},
       {"kzid", type::doubleScalar},
       {"activity", type::unicodeString}}},
     type::logicalScalar,
     0,
     "Returns whether one activity of a chart object is observed; the object is number kzid of the chart at "
     "block_path."},
    {"isAnyKWActivityObserved",
     {{{"signals", type::signals}, {"block_path", type::unicodeString}, {"kzid", type::doubleScalar}}},
     type::logicalScalar,
     0,
     "Returns whether any activity of a chart object is observed; the object is number kzid of the chart at "
     "block_path."},
    // A signed port here, an unsigned one for the UUID methods: scripts rely on both as they are.
    {"isGivenPortObserved",
     {{{"signals", type::signals}, {"block_handle", type::doubleScalar}, {"port", type::int32Scalar}}},
     type::logicalScalar,
     0,
     "Returns whether an output port, given by block handle and number, is observed."},
    {"setUUIDForBlock",
     {{{"block_handle", type::doubleScalar}, {"port", type::uint32Scalar}, {"uuid", type::asciiString}}},
     nullptr,
     0,
     "Sets the UUID of a block's port for the whole process."},
    {"getUUIDForBlock",
     {{{"block_handle", type::doubleScalar}, {"port", type::uint32Scalar}, {"use_map", type::logicalScalar}}},
     type::any,
     0,
     "Returns the UUID of a block's port: the one set before where use_map is true and there is one, else a "
     "new one."},
    {"getUUID",
     {{{"signals", type::signals}, {"index", type::uint32Scalar}}},
     type::any,
     0,
     "Returns the UUID of the signal at an index, from 1."},
});

inline constexpr auto clientsMethods = std::to_array<MethodRow>({
    {"StreamingClients",
     {{{"model_name", type::unicodeString}}},
     type::clients,
     1,
     "Makes an empty collection of the streaming clients of the model of that name."},
    {"add",
     {{{"clients", type::clients}, {"client", type::client}}},
     nullptr,
     0,
     "Appends a copy of the client."},
    {"set",
     {{{"clients", type::clients}, {"index", type::uint32Scalar}, {"client", type::client}}},
     nullptr,
     0,
     "Replaces the client at an index, from 1, by a copy of the given one."},
    {"remove",
     {{{"clients", type::clients}, {"index", type::uint32Scalar}}},
     nullptr,
     0,
     "Removes the client at an index, from 1; later clients move down by one."},
    // Its result is declared as the client class, where the signals' "get" declares "any", and it has no
    // struct form.
    {"get",
     {{{"clients", type::clients}, {"index", type::uint32Scalar}}},
     type::client,
     0,
     "Returns a copy of the client at an index, from 1."},
});

inline constexpr PropertyRow countProperty = {"Count", "The number of elements."};
inline constexpr PropertyRow persistenceProperty = {
    "Persistence",
    "The struct array that is saved with the model. Assigning one appends its elements; when one of them "
    "cannot be read, those before it stay, each fully entered."};

inline constexpr auto signalsProperties = std::to_array<PropertyRow>({
    {"Model", "The name of the model that the signals belong to."},
    countProperty,
    persistenceProperty,
});

inline constexpr auto clientsProperties = std::to_array<PropertyRow>({
    {"Model",
     "The name of the model that the clients belong to. Assigning it renames the model in every client; "
     "after a failure, assigning it again completes the renaming."},
    countProperty,
    persistenceProperty,
});

}  // namespace zm_hmi_foundation

#endif
