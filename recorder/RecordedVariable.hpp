#ifndef ZM_RECORDER_RECORDED_VARIABLE_HPP
#define ZM_RECORDER_RECORDED_VARIABLE_HPP

#include "reference_host/values/Value.hpp"
#include "streamout/WksRecordingContext.hpp"

#include <deque>
#include <string>

namespace recorder {

/// A point of a recorded signal.
struct Sample {
    double time;
    double value;
};

/// What goes into a variable: the samples, and what the signal is called.
struct RecordedSignal {
    std::deque<Sample> samples;
    std::u16string blockPath;
    std::u16string portName;
};

/// A recorded signal of N samples as a host value, in the shape that the context's format names:
///
///   "structwithtime"  a struct with the fields `time` (N-by-1), `signals` and `blockName`; `signals` is a
///                     struct with `values` (N-by-1), `dimensions` (1, those of a sample) and `label`
///   "struct"          the same, `time` empty
///   "struct2D"        the same, `time` empty; each sample a matrix of its own: `values` is 1-by-1-by-N and
///                     `dimensions` [1 1]
///   any other         the values, N-by-1
///
/// All numbers are double: the host's simulation has no fixed-point values.
reference_host::OwnedValue makeVariable(const RecordedSignal& signal,
                                        const streamout::WksRecordingContext& context);

}  // namespace recorder

#endif
