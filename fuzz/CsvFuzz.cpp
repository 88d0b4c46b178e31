#include "host/Exceptions.hpp"
#include "recorder/CsvReader.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

/// Every text is read to its end or refused; lines only go forward, and no record is without a field.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    recorder::CsvReader reader({reinterpret_cast<const char*>(data), size}, "fuzz.csv");
    std::uint64_t line = 0;
    try {
        while (reader.next()) {
            if (reader.fields().empty() || reader.line() <= line) {
                std::abort();
            }
            line = reader.line();
        }
    } catch (const zmsvException&) {
        return 0;  // refused
    }
    return 0;
}
