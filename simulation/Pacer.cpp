#include "simulation/Pacer.hpp"

#include "simulation/SimulationErrors.hpp"

#include <algorithm>
#include <cmath>
#include <thread>
#include <utility>

namespace simulation {

namespace {

constexpr std::chrono::milliseconds longestSleep(20);
constexpr std::chrono::milliseconds largestLag(100);  // a run that is later than this starts afresh

std::optional<double> checked(std::optional<double> factor)
{
    if (factor && !(std::isfinite(*factor) && *factor > 0.0)) {
        throw simulationError("InvalidPace", {*factor});
    }
    return factor;
}

}  // namespace

Pacer::Pacer(std::optional<double> factor, Waiting waiting)
    : m_factor(checked(factor)), m_waiting(std::move(waiting))
{
    if (!m_waiting.now) {
        m_waiting.now = [] { return Waiting::Clock::now(); };
    }
    if (!m_waiting.sleep) {
        m_waiting.sleep = [](Waiting::Clock::duration time) { std::this_thread::sleep_for(time); };
    }
}

void Pacer::setFactor(std::optional<double> factor)
{
    m_factor = checked(factor);
    restart();
}

void Pacer::waitFor(double modelTime, const std::function<void()>& checkpoint)
{
    if (!m_factor) {
        return;
    }
    if (!m_origin) {
        m_origin = Origin{m_waiting.now(), modelTime};
    }
    using Seconds = std::chrono::duration<double>;
    constexpr double longest = 1e9;  // seconds, which every clock can count
    const Seconds wait(std::min((modelTime - m_origin->model) / *m_factor, longest));
    const auto due = m_origin->real + std::chrono::duration_cast<Waiting::Clock::duration>(wait);
    auto now = m_waiting.now();
    if (now - due > largestLag) {
        m_origin = Origin{now, modelTime};
        return;
    }
    for (; now < due; now = m_waiting.now()) {
        if (checkpoint) {
            checkpoint();
        }
        m_waiting.sleep(std::min<Waiting::Clock::duration>(due - now, longestSleep));
    }
}

}  // namespace simulation
