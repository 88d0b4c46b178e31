#include "reference_host/calls/Warnings.hpp"

#include <exception>
#include <utility>

namespace reference_host {

namespace {

struct Sink {
    std::vector<Warning> reported;
    std::function<void(const Warning&)> listener;
};

/// Never destroyed: libraries warn while the process goes down.
Sink& sink()
{
    static Sink& instance = *new Sink;
    return instance;
}

}  // namespace

const std::vector<Warning>& Warnings::reported()
{
    return sink().reported;
}

std::vector<Warning> Warnings::take()
{
    return std::exchange(sink().reported, {});
}

void Warnings::clear()
{
    sink().reported.clear();
}

void Warnings::report(Warning warning)
{
    if (sink().listener) {
        try {
            sink().listener(warning);
        } catch (...) {  // reporting cannot fail; the warning is kept below
        }
    }
    sink().reported.push_back(std::move(warning));
}

void Warnings::setListener(std::function<void(const Warning&)> listener)
{
    sink().listener = std::move(listener);
}

}  // namespace reference_host
