#include "hmi_foundation/HostErrors.hpp"

#include "host/Calls.hpp"

#include <gtest/gtest.h>

// A host whose throwing operation returns: this definition takes precedence over the linked host's.
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
