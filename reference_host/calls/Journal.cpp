#include "reference_host/calls/Journal.hpp"

#include "reference_host/calls/BoundaryWatch.hpp"

#include <algorithm>
#include <memory>
#include <mutex>
#include <ostream>
#include <utility>

namespace reference_host {

namespace {

struct JournalState {
    std::mutex mutex;
    bool isRecording = false;
    std::ostream* stream = nullptr;
    std::vector<JournalEntry> entries;
    std::uint64_t forgotten = 0;  // entries that were kept once; places count on over them
};

/// Never destroyed: libraries call the host while the process goes down.
JournalState& state()
{
    static JournalState& instance = *new JournalState;
    return instance;
}

thread_local OpenCall* innermostCall = nullptr;

void watch(const JournalState& journal)
{
    BoundaryWatch::watchForJournal(journal.isRecording || journal.stream != nullptr);
}

void forget(JournalState& journal)
{
    journal.forgotten += journal.entries.size();
    journal.entries.clear();
}

void writeLine(std::ostream& stream, const JournalEntry& entry, const std::string& line)
{
    stream << std::string(2 * entry.depth, ' ') << line << '\n' << std::flush;
}

std::string callText(const JournalEntry& entry)
{
    std::string text = entry.operation + "(";
    for (const std::string& argument : entry.arguments) {
        text += (&argument == entry.arguments.data() ? "" : ", ") + argument;
    }
    return text + ")";
}

void record(JournalState& journal, OpenCall& call)
{
    if (journal.isRecording) {
        journal.entries.push_back(call.entry);
        call.place = journal.forgotten + journal.entries.size();
    }
}

void recordResult(JournalState& journal, const OpenCall& call)
{
    if (call.place > journal.forgotten) {
        journal.entries[call.place - journal.forgotten - 1].result = call.entry.result;
    }
}

}  // namespace

std::string JournalEntry::text() const
{
    return callText(*this) + (result.empty() ? "" : " -> " + result);
}

void Journal::startRecording()
{
    const std::lock_guard lock(state().mutex);
    forget(state());
    state().isRecording = true;
    watch(state());
}

void Journal::stopRecording()
{
    const std::lock_guard lock(state().mutex);
    state().isRecording = false;
    watch(state());
}

std::vector<JournalEntry> Journal::entries()
{
    const std::lock_guard lock(state().mutex);
    return state().entries;
}

std::size_t Journal::count(const std::string& operation)
{
    const std::lock_guard lock(state().mutex);
    return static_cast<std::size_t>(
        std::count_if(state().entries.begin(), state().entries.end(),
                      [&](const JournalEntry& entry) { return entry.operation == operation; }));
}

void Journal::clear()
{
    const std::lock_guard lock(state().mutex);
    forget(state());
}

void Journal::streamTo(std::ostream* stream)
{
    const std::lock_guard lock(state().mutex);
    state().stream = stream;
    watch(state());
}

OpenCall* beginJournalEntry(const char* operation, std::vector<std::string> arguments)
{
    JournalState& journal = state();
    const std::lock_guard lock(journal.mutex);
    if (!journal.isRecording && journal.stream == nullptr) {
        return nullptr;
    }
    OpenCall* outer = innermostCall;
    auto call = std::make_unique<OpenCall>();
    call->entry = {outer != nullptr ? outer->entry.depth + 1 : 0, operation, std::move(arguments), {}};
    call->outer = outer;
    record(journal, *call);
    if (journal.stream != nullptr && outer != nullptr && !outer->isLineWritten) {
        writeLine(*journal.stream, outer->entry, callText(outer->entry) + " ...");
        outer->isLineWritten = true;
    }
    innermostCall = call.get();
    return call.release();
}

void endJournalEntry(OpenCall* call) noexcept
{
    const std::unique_ptr<OpenCall> ending(call);
    innermostCall = call->outer;
    try {
        JournalState& journal = state();
        const std::lock_guard lock(journal.mutex);
        recordResult(journal, *call);
        if (journal.stream != nullptr) {
            const JournalEntry& entry = call->entry;
            const std::string result = entry.result.empty() ? "done" : entry.result;
            writeLine(*journal.stream, entry,
                      call->isLineWritten ? "... " + entry.operation + " -> " + result : entry.text());
        }
    } catch (const std::exception&) {
        return;  // the line is lost; the call itself has ended well
    }
}

}  // namespace reference_host
