#pragma once

#include "reference_host/Export.hpp"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace reference_host {

/// One operation that crossed the boundary.
struct ZM_REFHOST_API JournalEntry {
    std::size_t depth = 0;  ///< 0 unless the call was made while another one was under way
    std::string operation;
    std::vector<std::string> arguments;  ///< values as `#12 double 2`, text quoted
    std::string result;                  ///< empty when there is none, "threw: ..." on failure

    /// `nvGetField(#12 1x1 struct {UUID}, 0, "UUID") -> #13 "abc"`.
    std::string text() const;
};

/// The operations that crossed the boundary, in the order in which they began. Off by default.
class ZM_REFHOST_API Journal {
public:
    /// Forgets earlier entries and keeps new ones.
    static void startRecording();
    static void stopRecording();

    /// The kept entries, also after the recording stopped.
    static std::vector<JournalEntry> entries();

    /// How often the operation was called while recording.
    static std::size_t count(const std::string& operation);

    static void clear();

    /// Writes every further operation as a line, indented by its depth; null stops. Behind the option
    /// `--log-host-calls`. REQUIRES: the stream outlives the streaming.
    static void streamTo(std::ostream* stream);
};

// For `BoundaryCall`.

/// A call in progress that the journal follows. Each thread has a stack of them.
struct OpenCall {
    JournalEntry entry;
    OpenCall* outer = nullptr;
    std::uint64_t place = 0;     ///< of its entry, counted over the whole process; 0 if it was not recorded
    bool isLineWritten = false;  ///< an inner call made the stream write the line without its result
};

/// Null when the journal is off.
OpenCall* beginJournalEntry(const char* operation, std::vector<std::string> arguments);
void endJournalEntry(OpenCall* call) noexcept;

}  // namespace reference_host
