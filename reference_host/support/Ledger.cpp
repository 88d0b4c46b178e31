#include "reference_host/support/Ledger.hpp"

#include <exception>
#include <iostream>

namespace reference_host {

namespace {

using Lines = std::vector<std::string>;

struct LedgerState {
    std::map<std::string, LedgerAccount> accounts;
    std::map<std::string, LedgerCounter> counters;
    Lines misuses;
    std::size_t misusesWithoutText = 0;
};

/// Never destroyed: libraries release what they own while the process ends.
LedgerState& state()
{
    static LedgerState& instance = *new LedgerState;
    return instance;
}

template <class Number>
Number valueOr0(const std::map<std::string, Number>& numbers, const std::string& name)
{
    const auto found = numbers.find(name);
    return found != numbers.end() ? found->second : 0;
}

void append(Lines& lines, const Lines& more)
{
    lines.insert(lines.end(), more.begin(), more.end());
}

void listCounters(const std::map<std::string, std::int64_t>& before, Lines& lines)
{
    for (const auto& [name, counter] : state().counters) {
        const std::int64_t more = counter.undeclared() - valueOr0(before, name);
        if (more > 0) {
            lines.push_back(std::to_string(more) + " " + name + " open");
        }
    }
}

void listMisuses(std::size_t after, Lines& lines)
{
    for (std::size_t i = after; i < state().misuses.size(); ++i) {
        lines.push_back("misuse: " + state().misuses[i]);
    }
    if (state().misusesWithoutText > 0) {
        lines.push_back(std::to_string(state().misusesWithoutText) +
                        " misuses that were not recorded because memory was short");
    }
}

}  // namespace

bool Ledger::addAccount(const char* name, LedgerAccount account)
{
    state().accounts.insert_or_assign(name, account);
    return true;
}

Ledger::Snapshot Ledger::snapshot()
{
    Snapshot result;
    for (const auto& [name, account] : state().accounts) {
        result.lastSerials[name] = account.lastSerial();
    }
    for (const auto& [name, counter] : state().counters) {
        result.counters[name] = counter.undeclared();
    }
    result.misuses = state().misuses.size();
    return result;
}

std::vector<std::string> Ledger::openSince(const Snapshot& snapshot)
{
    Lines lines;
    for (const auto& [name, account] : state().accounts) {
        append(lines, account.listOpen(valueOr0(snapshot.lastSerials, name)));
    }
    listCounters(snapshot.counters, lines);
    listMisuses(snapshot.misuses, lines);
    return lines;
}

std::string Ledger::report()
{
    Lines lines;
    for (const auto& [name, account] : state().accounts) {
        if (account.summary == nullptr) {
            append(lines, account.listOpen(0));
        } else if (const std::string summary = account.summary(); !summary.empty()) {
            lines.insert(lines.begin(), summary);
        }
    }
    listCounters({}, lines);
    listMisuses(0, lines);
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text.empty() ? "nothing is open\n" : text;
}

LedgerCounter& Ledger::counter(const std::string& name)
{
    return state().counters[name];
}

void Ledger::recordMisuse(std::string_view text) noexcept
{
    try {
        state().misuses.emplace_back(text);
    } catch (const std::exception&) {
        ++state().misusesWithoutText;
    }
}

const std::vector<std::string>& Ledger::misuses()
{
    return state().misuses;
}

int Ledger::close(int exitCode)
{
    if (openSince({}).empty()) {
        return exitCode;
    }
    std::cerr << "The host's ledger is not closed:\n" << report() << std::flush;
    return exitCode != 0 ? exitCode : 3;
}

}  // namespace reference_host
