#include "Scanner.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace app::svg {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

namespace {

/// Integers with this many digits are exact in a double.
constexpr int exactDigits = 15;
constexpr double powersOfTen[exactDigits + 1]
    = { 1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15 };

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

} // namespace

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
}

void Scanner::skipSpace()
{
    while (!atEnd() && isSpace(mText[mAt]))
        ++mAt;
}

void Scanner::skipSpaceAndComma()
{
    skipSpace();
    if (consume(','))
        skipSpace();
}

bool Scanner::consume(char c)
{
    if (peek() != c || atEnd())
        return false;
    ++mAt;
    return true;
}

bool Scanner::consumeWord(std::string_view word)
{
    if (!equalsIgnoringCase(mText.substr(mAt, word.size()), word))
        return false;
    mAt += word.size();
    return true;
}

std::optional<double> Scanner::number()
{
    std::size_t at = mAt;
    std::uint64_t digits = 0; // the number without its point, while it has few enough of them
    int count = 0;
    const auto skipDigits = [&] {
        const std::size_t begin = at;
        for (; at < mText.size() && isDigit(mText[at]); ++at)
            digits = digits * 10 + static_cast<std::uint64_t>(mText[at] - '0');
        count += static_cast<int>(std::min<std::size_t>(at - begin, 1000));
        return static_cast<int>(std::min<std::size_t>(at - begin, 1000));
    };
    const auto isAt = [&](std::size_t place, char c) { return place < mText.size() && mText[place] == c; };

    const bool plus = isAt(at, '+');
    const bool minus = isAt(at, '-');
    if (plus || minus)
        ++at;
    skipDigits();
    int fraction = 0;
    if (isAt(at, '.')) {
        ++at;
        fraction = skipDigits();
    }
    if (count == 0)
        return std::nullopt;
    bool hasExponent = false;
    if (isAt(at, 'e') || isAt(at, 'E')) {
        const std::size_t beforeExponent = at++;
        if (isAt(at, '+') || isAt(at, '-'))
            ++at;
        hasExponent = at < mText.size() && isDigit(mText[at]);
        if (!hasExponent)
            at = beforeExponent;
        while (hasExponent && at < mText.size() && isDigit(mText[at]))
            ++at;
    }
    if (!hasExponent && count <= exactDigits) {
        // Both operands are exact, so the quotient is the nearest double, as below.
        const double value = static_cast<double>(digits) / powersOfTen[fraction];
        mAt = at;
        return minus ? -value : value;
    }

    double value = 0;
    const char* begin = mText.data() + mAt + (plus ? 1 : 0);
    const auto result = std::from_chars(begin, mText.data() + at, value);
    // Values too small for a double count as zero; values too large are errors.
    if (result.ec == std::errc::result_out_of_range && mText.substr(mAt, at - mAt).find('-', 1) != mText.npos)
        value = 0;
    else if (result.ec != std::errc() || !(std::fabs(value) <= std::numeric_limits<float>::max()))
        return std::nullopt;
    mAt = at;
    return value;
}

std::optional<bool> Scanner::flag()
{
    if (peek() != '0' && peek() != '1')
        return std::nullopt;
    return mText[mAt++] == '1';
}

std::string_view Scanner::word()
{
    const std::size_t begin = mAt;
    while (
        !atEnd() && (isLetter(mText[mAt]) || isDigit(mText[mAt]) || mText[mAt] == '-' || mText[mAt] == '_'))
        ++mAt;
    return mText.substr(begin, mAt - begin);
}

} // namespace app::svg
