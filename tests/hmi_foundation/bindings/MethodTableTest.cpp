#include "hmi_foundation/bindings/MethodTable.hpp"

#include "reference_host/classes/ClassReflection.hpp"
#include "tests/hmi/LibraryTest.hpp"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace zm_hmi_foundation {
namespace {

namespace rh = reference_host;

class MethodTableTest : public zm_hmi::LibraryTest {};

std::vector<std::string> names(const auto& rows)
{
    std::vector<std::string> found;
    for (const auto& row : rows) {
        found.emplace_back(row.name);
    }
    return found;
}

template <class Methods, class Properties>
void expectRegistered(const char* className, const Methods& methods, const Properties& properties)
{
    const rh::ClassDescription description = rh::describeClass(className);
    ASSERT_TRUE(description.constructor.has_value());
    const std::vector<std::string> listed = names(methods);
    std::set<std::string> registered{description.constructor->name};
    for (const rh::MethodDescription& method : description.methods) {
        registered.insert(method.name);
    }
    EXPECT_EQ(registered, std::set<std::string>(listed.begin(), listed.end()));
    EXPECT_EQ(names(description.properties), names(properties));
}

TEST_F(MethodTableTest, ListsWhatIsRegistered)
{
    expectRegistered(type_name::signals, signalsMethods, signalsProperties);
    expectRegistered(type_name::clients, clientsMethods, clientsProperties);
}

template <class Table>
void expectHelp(const Table& methods, const auto& properties)
{
    for (const MethodRow& row : methods) {
        EXPECT_TRUE(std::string(row.help).ends_with('.')) << row.name;
        std::set<std::string> inputs;
        for (std::size_t i = 0; i < row.inputCount(); ++i) {
            EXPECT_TRUE(inputs.insert(row.inputs[i].name).second) << row.name;
            EXPECT_NE(row.inputs[i].type, nullptr) << row.name;
        }
    }
    for (const PropertyRow& row : properties) {
        EXPECT_TRUE(std::string(row.help).ends_with('.')) << row.name;
    }
}

TEST_F(MethodTableTest, HasASentenceForEachRowAndANameForEachInput)
{
    expectHelp(signalsMethods, signalsProperties);
    expectHelp(clientsMethods, clientsProperties);
}

}  // namespace
}  // namespace zm_hmi_foundation
