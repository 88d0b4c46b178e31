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

/// The warnings reported so far, until somebody takes them.
class ZM_REFHOST_API Warnings {
public:
    static const std::vector<Warning>& reported();

    /// Hands out what was reported and forgets it.
    static std::vector<Warning> take();
    static void clear();

    /// Host code's own warnings come in here too.
    static void report(Warning warning);

    /// Called with every warning as it is reported; empty for none. What the listener throws is
    /// dropped: a warning is reported where nothing may be thrown.
    static void setListener(std::function<void(const Warning&)> listener);
};

}  // namespace reference_host
