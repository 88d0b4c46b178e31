#ifndef ZM_CONTRACT_REPORT_HPP
#define ZM_CONTRACT_REPORT_HPP

#include "contract/Runner.hpp"

#include <iosfwd>
#include <vector>

namespace contract {

struct Result {
    const Check* check;
    Outcome outcome;
};

bool isBad(const Result& result);

/// In the order in which host/ declares the operations; host functions called by name come last.
void sortByOperation(std::vector<Check>& checks);

void printList(std::ostream& out, const std::vector<Check>& checks);
void printListAsJson(std::ostream& out, const std::vector<Check>& checks);
void printResult(std::ostream& out, const Result& result);

/// Each operation of host/ once: untested, wrong or right; then the counts.
void printSummary(std::ostream& out, const std::vector<Result>& results);
void printAsJson(std::ostream& out, const std::vector<Result>& results);

}  // namespace contract

#endif
