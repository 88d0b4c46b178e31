#include "hmi/HMIEngineUtils.hpp"

#include "host/HostCall.hpp"

#include <array>
#include <string>

namespace zm_hmi {

namespace {

// The host function always gets two arguments: an empty value where the text could not be made.
template <class Text>
OwnedArray makeArgument(const Text& text)
{
    OwnedArray argument;
    try {
        argument = makeString(text);
    } catch (...) {
        zmsvDiscardDiagnostic(zmsvCreateDiagnosticFromCatchClause());
    }
    return asTemporary(argument ? std::move(argument) : makePlaceholder());
}

zmsvDiagnostic* announce(const std::u16string& blockPath)
{
    try {
        const OwnedArray event = makeArgument(std::string("block_param_change"));
        const OwnedArray path = makeArgument(blockPath);
        const std::array<const nvArray*, 2> inputs = {event.get(), path.get()};
        return zmsvFEVAL_NoThrow(0, nullptr, static_cast<int>(inputs.size()), inputs.data(),
                                 "Zelmar.HMI.zmhmi", nullptr, true);
    } catch (...) {
        return zmsvCreateDiagnosticFromCatchClause();
    }
}

}  // namespace

void HMIEngineUtils::updateParamsForBlock(const std::u16string& blockPath) noexcept
{
    try {
        if (zmsvDiagnostic* diagnostic = announce(blockPath)) {
            zmsvDiscardDiagnostic(diagnostic);
        }
    } catch (...) {  // NOLINT(bugprone-empty-catch): not even a diagnostic could be made
    }
}

}  // namespace zm_hmi
