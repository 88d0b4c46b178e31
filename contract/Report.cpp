#include "contract/Report.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iomanip>
#include <iterator>
#include <map>
#include <ostream>

namespace contract {

namespace {

/// As host/ declares them; written by contract/generate.py.
constexpr const char* const declared[] = {
#include "contract/Operations.inc"
};

std::vector<std::string> operations(const std::vector<Result>& results)
{
    std::vector<std::string> names(std::begin(declared), std::end(declared));
    for (const Result& result : results) {
        for (const std::string& name : result.check->operations) {
            if (std::ranges::find(names, name) == names.end()) {
                names.push_back(name);
            }
        }
    }
    return names;
}

std::size_t rank(const Check& check)
{
    const auto* found = std::ranges::find(declared, check.operations.front());
    return static_cast<std::size_t>(found - std::begin(declared));
}

const char* stateOf(const std::string& operation, const std::vector<Result>& results)
{
    bool isTested = false;
    for (const Result& result : results) {
        if (std::ranges::find(result.check->operations, operation) == result.check->operations.end()) {
            continue;
        }
        if (isBad(result)) {
            return "wrong";
        }
        isTested = isTested || result.outcome.verdict == Verdict::Passed;
    }
    return isTested ? "right" : "untested";
}

std::map<std::string, std::size_t> counts(const std::vector<Result>& results)
{
    std::map<std::string, std::size_t> all{{"passed", 0}, {"failed", 0}, {"crashed", 0}, {"skipped", 0}};
    for (const Result& result : results) {
        ++all[nameOf(result.outcome.verdict)];
    }
    return all;
}

std::string quoted(const std::string& text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            std::array<char, 8> code{};
            std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned>(c));
            result += code.data();
        } else {
            result += c;
        }
    }
    return result + '"';
}

void printCheckAsJson(std::ostream& out, const Check& check)
{
    out << R"("name": )" << quoted(check.name) << R"(, "sentence": )" << quoted(check.sentence)
        << R"(, "operations": [)";
    for (std::size_t i = 0; i < check.operations.size(); ++i) {
        out << (i > 0 ? ", " : "") << quoted(check.operations[i]);
    }
    out << ']';
}

}  // namespace

bool isBad(const Result& result)
{
    return result.outcome.verdict == Verdict::Failed || result.outcome.verdict == Verdict::Crashed;
}

void sortByOperation(std::vector<Check>& checks)
{
    std::ranges::stable_sort(checks, [](const Check& left, const Check& right) {
        return std::pair(rank(left), left.name) < std::pair(rank(right), right.name);
    });
}

void printList(std::ostream& out, const std::vector<Check>& checks)
{
    std::string group;
    for (const Check& check : checks) {
        if (check.operations.front() != group) {
            group = check.operations.front();
            out << group << '\n';
        }
        out << "  " << check.name << ": " << check.sentence << '\n';
    }
}

void printListAsJson(std::ostream& out, const std::vector<Check>& checks)
{
    out << "[\n";
    for (std::size_t i = 0; i < checks.size(); ++i) {
        out << "  {";
        printCheckAsJson(out, checks[i]);
        out << (i + 1 < checks.size() ? "},\n" : "}\n");
    }
    out << "]\n";
}

void printResult(std::ostream& out, const Result& result)
{
    out << std::left << std::setw(8) << nameOf(result.outcome.verdict) << result.check->name << '\n';
    if (result.outcome.verdict == Verdict::Passed) {
        return;
    }
    out << "        " << result.check->sentence << "\n        ";
    for (const char c : result.outcome.detail) {
        out << c << (c == '\n' ? "        " : "");
    }
    out << '\n';
}

void printSummary(std::ostream& out, const std::vector<Result>& results)
{
    out << "\nOperations of host/ and functions called by name\n";
    for (const char* state : {"wrong", "untested", "right"}) {
        std::string names;
        for (const std::string& operation : operations(results)) {
            if (stateOf(operation, results) == std::string(state)) {
                names += "  " + operation + '\n';
            }
        }
        if (!names.empty()) {
            out << state << ":\n" << names;
        }
    }
    out << '\n' << results.size() << " checks";
    for (const auto& [verdict, count] : counts(results)) {
        out << ", " << count << ' ' << verdict;
    }
    out << '\n';
}

void printAsJson(std::ostream& out, const std::vector<Result>& results)
{
    out << "{\n\"checks\": [\n";
    for (std::size_t i = 0; i < results.size(); ++i) {
        out << "  {";
        printCheckAsJson(out, *results[i].check);
        out << R"(, "verdict": ")" << nameOf(results[i].outcome.verdict) << R"(", "detail": )"
            << quoted(results[i].outcome.detail) << (i + 1 < results.size() ? "},\n" : "}\n");
    }
    out << "],\n\"operations\": {\n";
    const std::vector<std::string> names = operations(results);
    for (std::size_t i = 0; i < names.size(); ++i) {
        out << "  " << quoted(names[i]) << ": \"" << stateOf(names[i], results) << '"'
            << (i + 1 < names.size() ? ",\n" : "\n");
    }
    out << "},\n\"counts\": {";
    const char* separator = "";
    for (const auto& [verdict, count] : counts(results)) {
        out << separator << '"' << verdict << "\": " << count;
        separator = ", ";
    }
    out << "}\n}\n";
}

}  // namespace contract
