#ifndef ZM_REFERENCE_HOST_CALLS_JOURNAL_HPP
#define ZM_REFERENCE_HOST_CALLS_JOURNAL_HPP

#include "reference_host/Export.hpp"

#include <cstddef>
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

/// The operations that crossed the boundary, in the order of their beginning. Off unless asked for.
class ZM_REFHOST_API Journal {
public:
    /// Keeps entries from now on, from none.
    static void startRecording();
    static void stopRecording();

    /// What was kept, also after the recording ended.
    static std::vector<JournalEntry> entries();

    /// How often the operation was called while recording.
    static std::size_t count(const std::string& operation);

    static void clear();

    /// Writes every operation as a line, indented by its depth, from now on; null ends it. What
    /// `--log-host-calls` does with standard error. The stream must outlive the streaming.
    static void streamTo(std::ostream* stream);
};

}  // namespace reference_host

#endif
