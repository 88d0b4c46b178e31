// zm-host-contract: says which promises of host/ the host that it is linked with keeps.

#include "contract/Report.hpp"
#include "contract/Runner.hpp"

#include <fnmatch.h>
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <iterator>

namespace contract {

namespace {

constexpr const char* usage = R"(zm-host-contract [list] [OPTION…]   checks the promises of host/

  list               print the checks, one a line, and run nothing
  --include PATTERN  only checks whose name, or one of whose operations, matches (* and ?); may be repeated
  --exclude PATTERN  not these; may be repeated
  --json             print one JSON document
  --time-limit MS    for each check; 10000 unless told

Leaves with 0 when no check failed or crashed, 1 when one did, 2 for wrong arguments.
)";

struct Options {
    bool list = false;
    bool json = false;
    std::chrono::milliseconds limit{10000};
    std::vector<std::string> included;
    std::vector<std::string> excluded;
};

bool matchesAny(const std::vector<std::string>& patterns, const Check& check)
{
    return std::ranges::any_of(patterns, [&](const std::string& pattern) {
        const auto matches = [&](const std::string& name) {
            return pattern == name || fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
        };
        return matches(check.name) || std::ranges::any_of(check.operations, matches);
    });
}

std::vector<Check> selected(const Options& options)
{
    std::vector<Check> chosen;
    std::ranges::copy_if(checks(), std::back_inserter(chosen), [&](const Check& check) {
        return (options.included.empty() || matchesAny(options.included, check)) &&
               !matchesAny(options.excluded, check);
    });
    sortByOperation(chosen);
    return chosen;
}

/// Reads one option with its value; false when it is none.
bool readValue(const std::string& name, const char* value, Options& options)
{
    if (name == "--include") {
        options.included.emplace_back(value);
    } else if (name == "--exclude") {
        options.excluded.emplace_back(value);
    } else if (name == "--time-limit") {
        options.limit = std::chrono::milliseconds(std::strtol(value, nullptr, 10));
        return options.limit.count() > 0;
    } else {
        return false;
    }
    return true;
}

bool readArguments(const std::vector<std::string>& arguments, Options& options)
{
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "list" || argument == "--list") {
            options.list = true;
        } else if (argument == "--json") {
            options.json = true;
        } else if (i + 1 == arguments.size() || !readValue(argument, arguments[i + 1].c_str(), options)) {
            return false;
        } else {
            ++i;
        }
    }
    return true;
}

int run(const Options& options)
{
    const std::vector<Check> chosen = selected(options);
    if (chosen.empty()) {
        std::cerr << "zm-host-contract: no check matches\n";
        return 2;
    }
    if (options.list) {
        options.json ? printListAsJson(std::cout, chosen) : printList(std::cout, chosen);
        return 0;
    }
    std::vector<Result> results;
    for (const Check& check : chosen) {
        results.push_back({&check, runIsolated(check, options.limit)});
        if (!options.json) {
            printResult(std::cout, results.back());
        }
    }
    options.json ? printAsJson(std::cout, results) : printSummary(std::cout, results);
    return std::ranges::any_of(results, isBad) ? 1 : 0;
}

}  // namespace

}  // namespace contract

int main(int count, char** arguments)
{
    const std::vector<std::string> given(arguments + 1, arguments + count);
    if (std::ranges::find(given, "--help") != given.end() || std::ranges::find(given, "-h") != given.end()) {
        std::cout << contract::usage;
        return 0;
    }
    contract::Options options;
    if (!contract::readArguments(given, options)) {
        std::cerr << contract::usage;
        return 2;
    }
    return contract::run(options);
}
