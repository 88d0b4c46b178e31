#include "live/AccessRules.hpp"
#include "live/PageFiles.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using namespace live;

namespace {

AccessRules loopbackRules(std::vector<std::string> origins = {})
{
    AccessRules rules("127.0.0.1", false, std::move(origins), "");
    rules.setPort(8080);
    return rules;
}

unsigned statusOf(const AccessRules& rules, const std::string& host, const std::string& origin = {},
                  const std::string& target = "/", const std::string& authorization = {})
{
    const auto refusal = rules.refuse({"GET", target, host, origin, authorization}, true);
    return refusal ? refusal->status : 200;
}

}  // namespace

TEST(LiveAccess, TheHostMustBeOurs)
{
    const AccessRules rules = loopbackRules();
    for (const char* own : {"127.0.0.1:8080", "localhost:8080", "LOCALHOST:8080", "[::1]:8080"}) {
        EXPECT_EQ(statusOf(rules, own), 200U) << own;
    }
    for (const char* foreign :
         {"", "127.0.0.1", "127.0.0.1:81", "evil.example:8080", "localhost.evil.example:8080"}) {
        EXPECT_EQ(statusOf(rules, foreign), 421U) << foreign;
    }
}

TEST(LiveAccess, TheOriginMustBeThePagesOwnOrANamedOneOrMissing)
{
    const AccessRules rules = loopbackRules({"https://viewer.example"});
    EXPECT_EQ(statusOf(rules, "localhost:8080"), 200U);
    EXPECT_EQ(statusOf(rules, "localhost:8080", "http://localhost:8080"), 200U);
    EXPECT_EQ(statusOf(rules, "localhost:8080", "https://viewer.example"), 200U);
    for (const char* foreign : {"http://127.0.0.1:8080", "https://localhost:8080", "http://localhost:81",
                                "null", "https://evil.example", "https://viewer.example.evil"}) {
        EXPECT_EQ(statusOf(rules, "localhost:8080", foreign), 403U) << foreign;
    }
}

TEST(LiveAccess, AnotherAddressNeedsAToken)
{
    EXPECT_THROW(AccessRules("0.0.0.0", false, {}, ""), std::invalid_argument);
    EXPECT_THROW(AccessRules("192.0.2.1", true, {}, ""), std::invalid_argument);
    AccessRules rules("0.0.0.0", false, {}, "s3cret/+");
    EXPECT_EQ(statusOf(rules, "plant:80"), 401U);
    EXPECT_EQ(statusOf(rules, "plant:80", "", "/?token=s3cret"), 401U);
    EXPECT_EQ(statusOf(rules, "plant:80", "", "/?a=b&token=s3cret%2F%2B"), 200U);
    EXPECT_EQ(statusOf(rules, "plant:80", "", "/", "Bearer s3cret/+"), 200U);
    EXPECT_EQ(statusOf(rules, "plant:80", "", "/", "Bearer s3cret/-"), 401U);
    EXPECT_EQ(statusOf(rules, "plant:80", "http://evil.example", "/", "Bearer s3cret/+"), 403U);
    EXPECT_FALSE(rules.refuse({"GET", "/", "plant:80", "", ""}, false))
        << "the page itself contains no values";
}

TEST(LiveAccess, OnlyReadingMethodsAreServed)
{
    EXPECT_EQ(loopbackRules().refuse({"POST", "/", "localhost:8080", "", ""}, true)->status, 405U);
    EXPECT_FALSE(loopbackRules().refuse({"HEAD", "/", "localhost:8080", "", ""}, true));
}

TEST(LiveAccess, OnlyFilesOfTheFolderAreServed)
{
    const auto folder = std::filesystem::temp_directory_path() / "zm_live_page";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "index.html") << "<p>page";
    std::ofstream(folder / "notes.txt") << "none of the page's types";
    const PageFiles page(folder);
    EXPECT_EQ(page.answer("/", nullptr).body, "<p>page");
    EXPECT_EQ(page.answer("/index.html", nullptr).type, "text/html; charset=utf-8");
    for (const char* path : {"/notes.txt", "/../zm_live_page/index.html", "/..", "//index.html", "",
                             "/etc/passwd", "/picture.svg"}) {
        EXPECT_EQ(page.answer(path, nullptr).status, 404U) << path;
    }
    EXPECT_TRUE(PageFiles::isConfidential("/scene.json"));
    std::filesystem::remove_all(folder);
}
