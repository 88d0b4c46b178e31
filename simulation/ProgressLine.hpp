#ifndef ZM_SIMULATION_PROGRESS_LINE_HPP
#define ZM_SIMULATION_PROGRESS_LINE_HPP

#include "simulation/HubConsumer.hpp"
#include "simulation/Pacer.hpp"

#include <functional>
#include <optional>
#include <string>

namespace simulation {

/// Shows on a terminal how far a run is, in one line that is written over at most five times a second and
/// erased when the run ends.
class ProgressLine : public HubConsumer {
public:
    using Write = std::function<void(const std::string& text)>;
    using Now = std::function<Waiting::Clock::time_point()>;

    /// `lastTime`: of the run, where it is known.
    ProgressLine(Write write, std::optional<double> lastTime, Now now = {});

    void step(const StepTime& time, std::span<const ChannelSamples> samples) override;
    void runStateChanged(RunState state, const std::string& error) override;

private:
    Write m_write;
    std::optional<double> m_lastTime;
    Now m_now;
    std::optional<double> m_firstTime;
    std::optional<Waiting::Clock::time_point> m_shown;
};

}  // namespace simulation

#endif
