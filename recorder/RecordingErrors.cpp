#include "recorder/RecordingErrors.hpp"

#include "reference_host/support/ErrorCatalog.hpp"

#include <array>
#include <utility>

namespace recorder {

namespace {

using Message = reference_host::CatalogMessage;

constexpr std::array messages{
    // files
    Message{"UnreadableFile", "{0}: {1}"},
    Message{"UnwritableFile", "{0}: {1}"},
    // the text of a table: file, line, column
    Message{"StrayQuote", "{0}:{1}: column {2}: a quote stands inside a field that does not begin with one."},
    Message{"TextAfterQuote", "{0}:{1}: column {2}: text follows the closing quote."},
    Message{"OpenQuote", "{0}:{1}: column {2}: the quote that begins the field is never closed."},
    Message{"StrayReturn", "{0}:{1}: column {2}: a carriage return stands without a line feed."},
    Message{"TooManyFields", "{0}:{1}: column {2}: the record has more fields than are accepted."},
    Message{"NotUtf8", "{0}:{1}: column {2}: the text is not UTF-8."},
    Message{"NotANumber", "{0}:{1}: column {2} (\"{3}\"): \"{4}\" is not a number."},
    Message{"NumberTooLarge", "{0}:{1}: column {2} (\"{3}\"): {4} is out of a number's range."},
    Message{"WrongFieldCount", "{0}:{1}: the line has {2} columns, the header row has {3}."},
    // what a table holds
    Message{"NoHeader", "{0}: there is no header row."},
    Message{"NoTimeColumn", "{0}: the first column is \"{1}\", not \"time\"."},
    Message{"ColumnLength", "{0}: column {1} (\"{2}\") has {3} values for {4} times."},
    Message{"InvalidTime", "{0}: row {1}: the time {2} is no time."},
    Message{"TimeRunsBack", "{0}: row {1}: the time {2} lies before {3}."},
    Message{"NoSuchPort", "{0}: column {1} (\"{2}\") names no output port of the model \"{3}\": {4}."},
    Message{"SecondColumn", "{0}: columns {1} and {2} both name the port \"{3}\"."},
    // recording blocks
    Message{"NoOutputPort", "\"{0}\" has no output port {1}."},
    Message{"OtherModel", "{0} records from the model \"{1}\", the replay is of \"{2}\"."},
    Message{"NoValues", "{0}: {1} has no column for the port \"{2}\"."},
    Message{"NotOneNumber", "{0}: the values of the port \"{1}\" are not single real numbers."},
    Message{"NoTarget", "The recording of \"{0}\" has no {1}."},
    Message{"InvalidDecimation", "{0}: the decimation \"{1}\" is not a whole number from 1."},
    Message{"InvalidMaxPoints",
            "{0}: the maximum points \"{1}\" are neither a whole number from 1 nor \"inf\"."},
    Message{"UnknownProperty", "{0}: there is no file property \"{1}\"; \"digits\" and \"header\" exist."},
    Message{"InvalidDigits", "{0}: the file property \"digits\" is {1}, not a whole number from 1 to 17."},
    Message{"InvalidHeader", "{0}: the file property \"header\" is not a text."},
    Message{"RecordedTwice", "{0} is recording already."},
    Message{"TargetInUse", "{0}: another recording writes there already."},
};

}  // namespace

zmsvException recordingError(const char* key, std::vector<zmsvMessageArgument> arguments)
{
    static const reference_host::ErrorCatalog catalog(recordingCatalog, messages);
    return catalog.error(key, std::move(arguments));
}

}  // namespace recorder
