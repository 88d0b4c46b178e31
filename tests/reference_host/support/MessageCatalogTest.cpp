#include "reference_host/support/MessageCatalog.hpp"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using reference_host::argumentText;
using reference_host::MessageCatalog;

constexpr const char* libraryCatalog = "dvx_hmi_foundation:errors";

TEST(MessageCatalog, HasTheLibrarysMessages)
{
    EXPECT_EQ(MessageCatalog::text({libraryCatalog, "InvalidElementIndex", {std::uint64_t{3}}}),
              "The index is not that of an element; the number of elements is 3.");
    EXPECT_EQ(MessageCatalog::text({libraryCatalog, "NoCollection"}),
              "The object has no collection behind it.");
    EXPECT_EQ(MessageCatalog::text({libraryCatalog, "SignalObserversSetParamInvalidType"}),
              "The observers parameter must be an object of class Zelmar.HMI.ModelObservers.");
    EXPECT_EQ(MessageCatalog::text({libraryCatalog, "SignalObserversSetParamNonScalar"}),
              "The observers parameter must be a single value.");
}

TEST(MessageCatalog, NamesAMessageThatItLacks)
{
    EXPECT_EQ(MessageCatalog::text({"some", "Key"}), "some:Key");
    EXPECT_EQ(MessageCatalog::text({"some", "Key", {std::uint64_t{1}, std::string("x")}}), "some:Key (1, x)");
}

TEST(MessageCatalog, FillsPlaceholdersInAnyOrder)
{
    MessageCatalog::define("test", "Order", "{1} before {0}, {1} again");
    EXPECT_EQ(MessageCatalog::text({"test", "Order", {std::string("a"), std::string("b")}}),
              "b before a, b again");
}

TEST(MessageCatalog, LeavesOtherBracesAlone)
{
    MessageCatalog::define("test", "Braces", "{} {x} {0 {9} {0}");
    EXPECT_EQ(MessageCatalog::text({"test", "Braces", {std::string("a")}}), "{} {x} {0 {9} a");
}

TEST(MessageCatalog, DoesNotFillWhatAnArgumentBrought)
{
    MessageCatalog::define("test", "Nested", "{0} {1}");
    EXPECT_EQ(MessageCatalog::text({"test", "Nested", {std::string("{1}"), std::string("b")}}), "{1} b");
}

TEST(MessageCatalog, EscapesAndShortensItsArguments)
{
    MessageCatalog::define("test", "Foreign", "{0}: no block \"{1}\"");
    const std::string hostile = "\x1b[2J\"" + std::string(5000, 'x');
    const std::string text = MessageCatalog::text({"test", "Foreign", {hostile, hostile}});
    EXPECT_EQ(text, "\\x1b[2J\"" + std::string(989, 'x') + "...: no block \"\\x1b[2J\\\"" +
                        std::string(68, 'x') + "...\"");
}

TEST(MessageCatalog, ShowsEveryKindOfArgument)
{
    EXPECT_EQ(argumentText(std::uint64_t{18446744073709551615u}), "18446744073709551615");
    EXPECT_EQ(argumentText(std::int64_t{-5}), "-5");
    EXPECT_EQ(argumentText(1234567.5), "1234567.5");
    EXPECT_EQ(argumentText(std::string("text")), "text");
}

}  // namespace
