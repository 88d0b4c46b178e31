#ifndef ZM_HMI_NUMBERS_HPP
#define ZM_HMI_NUMBERS_HPP

#include <array>
#include <string_view>

/// Numbers as texts of keys, the same in every locale, and numbers from host values.
namespace zm_hmi {

/// A double truncated toward zero; 0 for NaN, the nearest end of the range beyond it.
int truncateToInt(double value) noexcept;

/// The decimal text of a number, held in place: nothing is allocated.
class NumberText {
public:
    /// 17 significant digits as printf's "%.17g" writes them in the C locale: "12.5",
    /// "0.10000000000000001", "nan", "-nan", "inf", "-inf". The text that `boost::lexical_cast` makes.
    static NumberText significant17(double value);

    /// Six digits after the point as "%f" writes them: "12.500000". Up to 317 characters.
    static NumberText fixed6(double value);

    /// An integer in decimal.
    static NumberText decimal(int value);

    std::string_view view() const noexcept { return {m_text.data(), m_length}; }

private:
    NumberText() = default;

    std::size_t m_length = 0;
    std::array<char, 320> m_text;
};

}  // namespace zm_hmi

#endif
