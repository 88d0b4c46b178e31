#include "hmi_foundation/bindings/MethodTable.hpp"

#include <nlohmann/json.hpp>

#include <iostream>

// Writes the tables of the library's classes to standard output, as JSON, for help() and for stubs:
//
//   {class: {"methods": {name: {"inputs": [{"name", "type"}…], "optional_inputs", "output", "help"}},
//            "properties": {name: help}}}
//
// Input 0 of an instance method is the object. "output" is null for a method without a result.

namespace {

using namespace zm_hmi_foundation;
using Json = nlohmann::ordered_json;

Json describe(const MethodRow& row)
{
    Json inputs = Json::array();
    for (std::size_t i = 0; i < row.inputCount(); ++i) {
        inputs.push_back({{"name", row.inputs[i].name}, {"type", row.inputs[i].type}});
    }
    const Json output = row.outputType != nullptr ? Json(row.outputType) : Json();
    return {
        {"inputs", inputs}, {"optional_inputs", row.optionalInputs}, {"output", output}, {"help", row.help}};
}

template <class Methods, class Properties>
Json describe(const Methods& methods, const Properties& properties)
{
    Json description = {{"methods", Json::object()}, {"properties", Json::object()}};
    for (const MethodRow& row : methods) {
        description["methods"][row.name] = describe(row);
    }
    for (const PropertyRow& row : properties) {
        description["properties"][row.name] = row.help;
    }
    return description;
}

}  // namespace

int main()
{
    const Json classes = {{type_name::signals, describe(signalsMethods, signalsProperties)},
                          {type_name::clients, describe(clientsMethods, clientsProperties)}};
    std::cout << classes.dump(2) << '\n';
    return std::cout.good() ? 0 : 1;
}
