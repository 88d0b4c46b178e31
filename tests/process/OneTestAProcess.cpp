#include <gtest/gtest.h>

namespace {

/// Tests of once-per-process behaviour need a process each; CTest starts one for each test.
class OneTestAProcess : public testing::Environment {
public:
    void SetUp() override
    {
        if (testing::UnitTest::GetInstance()->test_to_run_count() > 1) {
            GTEST_FAIL() << "each of these tests needs a process of its own: run them with ctest";
        }
    }
};

[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new OneTestAProcess);

}  // namespace
