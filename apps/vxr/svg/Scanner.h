#pragma once

#include <optional>
#include <string_view>

namespace app::svg {

/// Reads numbers, words and separators off the front of a text. What doesn't match is left unread.
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
    bool consume(char); ///< that very character
    bool consumeWord(std::string_view word); ///< without regard to case

    /// A number as SVG writes them: `-.5`, `3.`, `1e3`. An `e` that no digit follows is left for a
    /// unit. None, too, for what single precision can't hold.
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
