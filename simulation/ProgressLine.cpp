#include "simulation/ProgressLine.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace simulation {

namespace {

constexpr std::chrono::milliseconds interval(200);
constexpr const char* eraseLine = "\r\x1b[K";

}  // namespace

ProgressLine::ProgressLine(Write write, std::optional<double> lastTime, Now now)
    : m_write(std::move(write)), m_lastTime(lastTime), m_now(std::move(now))
{
    if (!m_now) {
        m_now = [] { return Waiting::Clock::now(); };
    }
}

void ProgressLine::step(const StepTime& time, std::span<const ChannelSamples> /*samples*/)
{
    m_firstTime = m_firstTime.value_or(time.seconds);
    const auto now = m_now();
    if (m_shown && now - *m_shown < interval) {
        return;
    }
    m_shown = now;
    std::array<char, 64> text{};
    const int length = std::snprintf(text.data(), text.size(), "%.6g s", time.seconds);
    std::string line(text.data(), static_cast<std::size_t>(std::max(length, 0)));
    if (m_lastTime && *m_lastTime > *m_firstTime) {
        const double part = (time.seconds - *m_firstTime) / (*m_lastTime - *m_firstTime);
        line += " (" + std::to_string(static_cast<int>(part * 100.0)) + " %)";
    }
    m_write(eraseLine + line);
}

void ProgressLine::runStateChanged(RunState state, const std::string& /*error*/)
{
    if (state == RunState::Ended && m_shown) {
        m_write(eraseLine);
        m_shown.reset();
    }
}

}  // namespace simulation
