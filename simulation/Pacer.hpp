#ifndef ZM_SIMULATION_PACER_HPP
#define ZM_SIMULATION_PACER_HPP

#include <chrono>
#include <functional>
#include <optional>

namespace simulation {

/// The clock of the real time and how to wait, replaceable in tests.
struct Waiting {
    using Clock = std::chrono::steady_clock;
    std::function<Clock::time_point()> now;
    std::function<void(Clock::duration)> sleep;  ///< is never asked for more than 20 ms
};

/// Keeps model time to real time times a factor. The two are tied together at the first wait, and again after
/// `restart`: time that passes while a run pauses does not count. A run that is too slow does not hurry
/// after.
class Pacer {
public:
    explicit Pacer(std::optional<double> factor, Waiting waiting = {});

    std::optional<double> factor() const noexcept { return m_factor; }
    void setFactor(std::optional<double> factor);

    void restart() noexcept { m_origin.reset(); }

    /// Returns when it is time for the step, or at once without a factor. `checkpoint` is called again and
    /// again while it waits; what it throws ends the wait.
    void waitFor(double modelTime, const std::function<void()>& checkpoint);

private:
    struct Origin {
        Waiting::Clock::time_point real;
        double model;
    };

    std::optional<double> m_factor;
    Waiting m_waiting;
    std::optional<Origin> m_origin;
};

}  // namespace simulation

#endif
