#include "hmi_foundation/HostErrors.hpp"

#include "host/Calls.hpp"

#include <gtest/gtest.h>

// A host whose throwing operation returns: this definition stands before that of the host that is linked.
void zmsvThrowIExceptionFromDiagnostic(zmsvDiagnostic* diagnostic, const char* /*context*/)
{
    zmsvDiscardDiagnostic(diagnostic);
}

namespace zm_hmi_foundation {
namespace {

TEST(ReturningHostDeathTest, AnErrorThatIsNotThrownEndsTheProcess)
{
    EXPECT_DEATH(throwInvalidElementIndex(3), "^unreachable\n$");
    EXPECT_DEATH(toZeroBasedIndex(0, 3), "^unreachable\n$");
}

}  // namespace
}  // namespace zm_hmi_foundation
