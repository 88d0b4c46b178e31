#pragma once

#include "host/Exceptions.hpp"
#include "reference_host/Export.hpp"

#include <functional>
#include <string>
#include <vector>

namespace reference_host {

/// A diagnostic that was shown to the user.
struct Warning {
    zmsvMessageId id;
    std::string text;
};

/// The warnings that were reported and not yet taken.
class ZM_REFHOST_API Warnings {
public:
    static const std::vector<Warning>& reported();

    /// Returns the warnings and forgets them.
    static std::vector<Warning> take();
    static void clear();

    /// Host code's own warnings come in here too.
    static void report(Warning warning);

    /// Called with every warning as it is reported; empty for none. Exceptions of the listener are dropped,
    /// because warnings are reported by operations that cannot fail.
    static void setListener(std::function<void(const Warning&)> listener);
};

}  // namespace reference_host
