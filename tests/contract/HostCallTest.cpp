#include "host/HostCall.hpp"

#include "tests/reference_host/classes/TestClasses.hpp"

#include <gtest/gtest.h>

#include <utility>

// What the helpers for calls own. Values cannot be counted through host/, but instances of a class can: a
// value that has not ended keeps its instance.

namespace {

using test_classes::ClassScript;

/// Whether the constructor of the class fails.
bool isRefusing = false;

void construct(test_classes::Call& call)
{
    if (isRefusing) {
        throw zmsvException(zmsvMessageId("tests", "Refused"), "refused");
    }
    call.outputCount = 1;
}

/// The class "Contract.Counted", whose constructor takes any value or none. It stays for good.
ClassScript& countedClass()
{
    static test_classes::NamespaceScript home;
    static ClassScript counted;
    if (!home.define) {
        counted.initialize = [](nvcos::COSClass& cosClass) {
            test_classes::addMethod(cosClass, {"Counted", {"any"}, {"Contract.Counted"}, 1, construct});
        };
        home.define = [](nvcos::COSNamespace& space) { test_classes::addClass(space, "Counted", counted); };
        test_classes::addNamespace("Contract", home);
    }
    return counted;
}

class HostCall : public ::testing::Test {
protected:
    ~HostCall() override
    {
        isRefusing = false;
        EXPECT_EQ(alive(), 0) << "at the end of the test";
    }

    int alive() const { return m_class.allocated - m_class.deallocated; }

    static OwnedArray makeCounted() { return std::move(callHost<1>("Contract.Counted")[0]); }

private:
    ClassScript& m_class = countedClass();
};

TEST_F(HostCall, KeepsAnInstanceForAsLongAsItsValue)
{
    OwnedArray counted = makeCounted();
    EXPECT_EQ(alive(), 1);
    counted.reset();
    EXPECT_EQ(alive(), 0);
}

TEST_F(HostCall, WithoutThrowingFreesItsTemporaryAndItsOutputWhenItSucceeds)
{
    {
        const OwnedArray temporary = asTemporary(makeCounted());
        const HostCallResult<1> result = callHostNoThrow<1>("Contract.Counted", temporary.get());
        EXPECT_TRUE(result.succeeded);
        EXPECT_NE(result.outputs[0], nullptr);
        EXPECT_EQ(alive(), 2);
    }
    EXPECT_EQ(alive(), 0);
}

TEST_F(HostCall, WithoutThrowingFreesItsTemporaryWhenItFails)
{
    {
        const OwnedArray temporary = asTemporary(makeCounted());
        isRefusing = true;
        const HostCallResult<1> result = callHostNoThrow<1>("Contract.Counted", temporary.get());
        EXPECT_FALSE(result.succeeded);
        EXPECT_EQ(result.outputs[0], nullptr);
        EXPECT_EQ(alive(), 1) << "the temporary; not what the call had begun to make";
    }
    EXPECT_EQ(alive(), 0);
}

TEST_F(HostCall, ThrowingFreesItsTemporaryWhenItFails)
{
    const auto call = [] {
        const OwnedArray temporary = asTemporary(makeCounted());
        isRefusing = true;
        callHost<1>("Contract.Counted", temporary.get());
    };
    EXPECT_THROW(call(), zmsvException);
    EXPECT_EQ(alive(), 0);
}

TEST_F(HostCall, FreesOutputsThatNobodyTakes)
{
    callHostNoThrow<1>("Contract.Counted");
    callHost<1>("Contract.Counted");
    EXPECT_EQ(alive(), 0);
}

}  // namespace
