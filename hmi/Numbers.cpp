#include "hmi/Numbers.hpp"

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <typeinfo>

namespace zm_hmi {

int truncateToInt(double value) noexcept
{
    if (std::isnan(value)) {
        return 0;
    }
    if (value <= static_cast<double>(std::numeric_limits<int>::min())) {
        return std::numeric_limits<int>::min();
    }
    if (value >= static_cast<double>(std::numeric_limits<int>::max())) {
        return std::numeric_limits<int>::max();
    }
    return static_cast<int>(value);
}

namespace {

template <class... Arguments>
std::size_t write(std::array<char, 320>& text, Arguments... arguments)
{
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), arguments...);
    if (error != std::errc()) {
        throw boost::bad_lexical_cast(typeid(double), typeid(std::string));
    }
    return static_cast<std::size_t>(end - text.data());
}

}  // namespace

NumberText NumberText::significant17(double value)
{
    NumberText text;
    text.m_length = write(text.m_text, value, std::chars_format::general, 17);
    return text;
}

NumberText NumberText::fixed6(double value)
{
    NumberText text;
    text.m_length = write(text.m_text, value, std::chars_format::fixed, 6);
    return text;
}

NumberText NumberText::decimal(int value)
{
    NumberText text;
    text.m_length = write(text.m_text, value);
    return text;
}

}  // namespace zm_hmi
