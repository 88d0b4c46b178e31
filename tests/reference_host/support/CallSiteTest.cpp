#include "reference_host/support/CallSite.hpp"

#include "host/OwnedArray.hpp"
#include "reference_host/values/Value.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

using reference_host::CallSite;
using reference_host::describeCallSite;

TEST(CallSite, OutsideEveryOperationIsHostCode)
{
    EXPECT_EQ(describeCallSite(CallSite::current()), "host code");
}

TEST(CallSite, NamesTheOperationAndTheFileThatCalledIt)
{
    const OwnedArray value = makeDouble(1);
    const std::string text = describeCallSite(value->madeBy);
    EXPECT_EQ(text.find("nvCreateDoubleScalar, called from "), 0u) << text;
    EXPECT_NE(text.find("zm_reference_host_tests+0x"), std::string::npos) << text;
}

TEST(CallSite, OfExportedCodeNamesTheFunction)
{
    // Any exported function will do; this one is the host's own.
    const CallSite site{"op", reinterpret_cast<const void*>(&zmsvSetPersistentScope)};
    const std::string text = describeCallSite(site);
    EXPECT_NE(text.find("zmsvSetPersistentScope(nvArray*)"), std::string::npos) << text;
}

TEST(CallSite, IsBroughtBackByLeaving)
{
    const CallSite outer = CallSite::enter({"outer", nullptr});
    const CallSite inner = CallSite::enter({"inner", nullptr});
    EXPECT_STREQ(CallSite::current().operationName(), "inner");
    CallSite::leave(inner);
    EXPECT_STREQ(CallSite::current().operationName(), "outer");
    CallSite::leave(outer);
    EXPECT_STREQ(CallSite::current().operationName(), "host code");
}

}  // namespace
