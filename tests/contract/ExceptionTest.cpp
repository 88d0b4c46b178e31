#include "host/Exceptions.hpp"

#include <gtest/gtest.h>

#include <exception>

namespace {

zmsvException makeException()
{
    zmsvMessageId id("catalog", "Key", {std::uint64_t{3}, std::int64_t{-4}, 2.5, std::string("text")});
    return {std::move(id), "what went wrong"};
}

TEST(Exception, CarriesItsIdAndText)
{
    const zmsvException exception = makeException();
    EXPECT_STREQ(exception.what(), "what went wrong");
    EXPECT_EQ(exception.id().catalog(), "catalog");
    EXPECT_EQ(exception.id().key(), "Key");
    ASSERT_EQ(exception.id().arguments().size(), 4u);
    EXPECT_EQ(std::get<std::uint64_t>(exception.id().arguments()[0]), 3u);
    EXPECT_EQ(std::get<std::int64_t>(exception.id().arguments()[1]), -4);
    EXPECT_EQ(std::get<double>(exception.id().arguments()[2]), 2.5);
    EXPECT_EQ(std::get<std::string>(exception.id().arguments()[3]), "text");
}

TEST(Exception, IsCaughtAsAStandardOne)
{
    EXPECT_THROW(throw makeException(), std::exception);
}

TEST(Exception, IsCopiedWhole)
{
    zmsvException copy(zmsvMessageId("other", "Other"), "other");
    copy = makeException();
    EXPECT_STREQ(copy.what(), "what went wrong");
    EXPECT_EQ(copy.id().key(), "Key");
}

TEST(Exception, ForShortMemoryIsATypeOfItsOwn)
{
    EXPECT_THROW(zmsvThrowOutOfMemory(), zmsvOutOfMemoryException);
    try {
        zmsvThrowOutOfMemory();
    } catch (const std::exception& exception) {
        EXPECT_EQ(dynamic_cast<const zmsvException*>(&exception), nullptr);
        EXPECT_STRNE(exception.what(), "");
    }
}

}  // namespace
