#pragma once

#include <optional>
#include <string_view>

namespace app::svg {

/// Reads numbers, words and separators from the front of a text. Input that doesn't match is not consumed.
class Scanner {
public:
    explicit Scanner(std::string_view text)
        : mText(text)
    {
    }

    bool atEnd() const { return mAt >= mText.size(); }
    char peek() const { return atEnd() ? '\0' : mText[mAt]; }
    std::size_t position() const { return mAt; }
    std::string_view rest() const { return mText.substr(mAt); }
    void advance(std::size_t count = 1) { mAt += count; }

    void skipSpace();
    void skipSpaceAndComma(); ///< white space with at most one comma in it
    bool consume(char); ///< exactly that character
    bool consumeWord(std::string_view word); ///< ignoring case

    /// A number as SVG writes them: `-.5`, `3.`, `1e3`. An `e` without a digit after it is
    /// left for a unit. Also none for values beyond the range of single precision.
    std::optional<double> number();
    std::optional<bool> flag(); ///< a single `0` or `1`
    std::string_view word(); ///< letters, digits, `-` and `_`; empty when there are none

private:
    std::string_view mText;
    std::size_t mAt = 0;
};

bool isSpace(char);
bool isDigit(char);
bool isLetter(char);
std::string_view trimmed(std::string_view);
bool equalsIgnoringCase(std::string_view, std::string_view);

} // namespace app::svg
