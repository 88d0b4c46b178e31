#include "hmi/HMIEngineUtils.hpp"

#include "reference_host/calls/Faults.hpp"
#include "reference_host/calls/Journal.hpp"
#include "reference_host/calls/Warnings.hpp"
#include "reference_host/values/ValueReading.hpp"
#include "tests/hmi/LibraryTest.hpp"
#include "tests/support/FaultWalk.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace zm_hmi {
namespace {

namespace rh = reference_host;

class HMIEngineUtilsTest : public LibraryTest {
protected:
    struct Argument {
        std::string className;
        std::u16string text;
        std::string dimensions;
    };

    /// In place of the host function: keeps what it was given.
    rh::HostFunction keep()
    {
        return [this](rh::HostFunctionCall& call) {
            outputCounts.push_back(call.outputCount());
            EXPECT_EQ(call.context(), nullptr);
            std::vector<Argument>& arguments = calls.emplace_back();
            for (const nvArray* input : call.inputs()) {
                const bool isText = rh::className(input) == "char";
                arguments.push_back(
                    {rh::className(input), isText ? rh::text(input) : u"", rh::dimensions(input).text()});
            }
        };
    }

    std::vector<std::vector<Argument>> calls;
    std::vector<std::size_t> outputCounts;
    rh::ScopedHostFunction function{"Zelmar.HMI.zmhmi", keep()};
};

TEST_F(HMIEngineUtilsTest, TheHostGetsTheEventAndThePathAndIsAskedForNothing)
{
    HMIEngineUtils::updateParamsForBlock(u"plant/Regler \u00fc");
    ASSERT_EQ(calls.size(), 1U);
    ASSERT_EQ(calls[0].size(), 2U);
    EXPECT_EQ(calls[0][0].text, u"block_param_change");
    EXPECT_EQ(calls[0][1].text, u"plant/Regler \u00fc");
    EXPECT_EQ(outputCounts, std::vector<std::size_t>{0});
}

TEST_F(HMIEngineUtilsTest, AnEmptyPathIsPassedOnAsAnEmptyText)
{
    HMIEngineUtils::updateParamsForBlock(u"");
    ASSERT_EQ(calls.size(), 1U);
    ASSERT_EQ(calls[0].size(), 2U);
    EXPECT_EQ(calls[0][1].className, "char");
    EXPECT_EQ(calls[0][1].text, u"");
}

TEST_F(HMIEngineUtilsTest, AHostFunctionThatThrowsDisturbsNobodyAndPrintsNothing)
{
    const rh::ScopedHostFunction failing("Zelmar.HMI.zmhmi", fail);
    EXPECT_NO_THROW(HMIEngineUtils::updateParamsForBlock(u"plant/A"));
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

TEST_F(HMIEngineUtilsTest, AnExceptionOfAnyKindDisturbsNobody)
{
    const rh::ScopedHostFunction failing("Zelmar.HMI.zmhmi",
                                         [](rh::HostFunctionCall&) { throw std::runtime_error("odd"); });
    EXPECT_NO_THROW(HMIEngineUtils::updateParamsForBlock(u"plant/A"));
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

TEST_F(HMIEngineUtilsTest, AMissingHostFunctionDisturbsNobody)
{
    rh::HostFunctions::remove("Zelmar.HMI.zmhmi");
    EXPECT_NO_THROW(HMIEngineUtils::updateParamsForBlock(u"plant/A"));
    EXPECT_TRUE(rh::Warnings::reported().empty());
}

TEST_F(HMIEngineUtilsTest, ADiagnosticOfTheCallIsDiscardedOnce)
{
    const rh::ScopedHostFunction failing("Zelmar.HMI.zmhmi", fail);
    rh::Journal::startRecording();
    HMIEngineUtils::updateParamsForBlock(u"plant/A");
    rh::Journal::stopRecording();
    EXPECT_EQ(rh::Journal::count("zmsvFEVAL_NoThrow"), 1U);
    EXPECT_EQ(rh::Journal::count("zmsvDiscardDiagnostic"), 1U);
    EXPECT_EQ(rh::Journal::count("zmsvReportAsWarning"), 0U);
    EXPECT_EQ(rh::Journal::count("nvDestroyArray"), 2U) << "both arguments, nothing else";
}

TEST_F(HMIEngineUtilsTest, AnEventThatCannotBeMadeIsPassedAsAnEmptyMatrix)
{
    rh::Faults::arm("nvCreateString", rh::FaultKind::OutOfMemory, 1);
    HMIEngineUtils::updateParamsForBlock(u"plant/A");
    ASSERT_TRUE(rh::Faults::disarm());
    ASSERT_EQ(calls.size(), 1U);
    ASSERT_EQ(calls[0].size(), 2U);
    EXPECT_EQ(calls[0][0].className, "double");
    EXPECT_EQ(calls[0][0].dimensions, "0x0");
    EXPECT_EQ(calls[0][1].text, u"plant/A");
}

TEST_F(HMIEngineUtilsTest, APathThatCannotBeMadeIsPassedAsAnEmptyMatrix)
{
    rh::Faults::arm("nvCreateUString", rh::FaultKind::HostException, 1);
    HMIEngineUtils::updateParamsForBlock(u"plant/A");
    ASSERT_TRUE(rh::Faults::disarm());
    ASSERT_EQ(calls.size(), 1U);
    ASSERT_EQ(calls[0].size(), 2U);
    EXPECT_EQ(calls[0][0].text, u"block_param_change");
    EXPECT_EQ(calls[0][1].className, "double");
    EXPECT_EQ(calls[0][1].dimensions, "0x0");
}

TEST_F(HMIEngineUtilsTest, NothingEscapesWhicheverOperationFails)
{
    for (const rh::FaultKind kind :
         {rh::FaultKind::OutOfMemory, rh::FaultKind::HostException, rh::FaultKind::Diagnostic}) {
        const auto struck = rh::walkFaults(rh::Faults::anyOperation, kind,
                                           [] { HMIEngineUtils::updateParamsForBlock(u"plant/A"); });
        EXPECT_GT(struck, 0U);
        EXPECT_TRUE(rh::Warnings::reported().empty());
    }
}

}  // namespace
}  // namespace zm_hmi
