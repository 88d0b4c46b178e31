#include "host/Exceptions.hpp"
#include "reference_host/diagram/SsdReader.hpp"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

using reference_host::readSsd;
using reference_host::SsdDocument;
using reference_host::SsdLimits;

/// Every document gives a model or is refused.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const SsdLimits limits{.bytes = std::size_t{1} << 20U, .depth = 64};
    std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
    try {
        const SsdDocument document = readSsd(in, "fuzz.ssd", limits);
        if (document.model == nullptr) {
            std::abort();
        }
    } catch (const zmsvException&) {
        return 0;  // refused
    }
    return 0;
}
