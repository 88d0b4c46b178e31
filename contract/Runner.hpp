#ifndef ZM_CONTRACT_RUNNER_HPP
#define ZM_CONTRACT_RUNNER_HPP

#include "contract/Check.hpp"

#include <chrono>
#include <string>

namespace contract {

enum class Verdict { Passed, Failed, Crashed, Skipped };

struct Outcome {
    Verdict verdict = Verdict::Passed;
    std::string detail;  ///< why, and what the check printed; empty when it passed
};

const char* nameOf(Verdict verdict);

/// Runs a check in a child process, which is killed at the time limit. The host is not called in this
/// process, so that each child finds it as it is after loading.
Outcome runIsolated(const Check& check, std::chrono::milliseconds limit);

}  // namespace contract

#endif
