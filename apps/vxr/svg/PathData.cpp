#include "Values.h"

namespace app::svg {

namespace {

/// Reads path data command by command into an outline.
class PathReader {
public:
    explicit PathReader(std::string_view text)
        : mIn(text)
    {
    }

    PathData read()
    {
        mIn.skipSpace();
        bool ok = true;
        while (ok && !mIn.atEnd()) {
            mError = mIn.position();
            ok = readCommand(mIn.peek());
            mIn.skipSpace();
        }
        return { std::move(mOutline), ok, ok ? 0 : mError };
    }

private:
    /// A command letter and all of its coordinates.
    bool readCommand(char letter)
    {
        static constexpr std::string_view known = "MmLlHhVvCcSsQqTtAaZz";
        if (known.find(letter) == std::string_view::npos || (!mStarted && letter != 'M' && letter != 'm'))
            return false;
        mIn.advance();
        mRelative = letter >= 'a';
        char command = mRelative ? static_cast<char>(letter - 'a' + 'A') : letter;
        if (command == 'Z') {
            mOutline.close();
            mPrevious = 'Z';
            return true;
        }
        mIn.skipSpace();
        do {
            mError = mIn.position();
            if (!readSegment(command))
                return false;
            mPrevious = command;
            if (command == 'M')
                command = 'L'; // further pairs after a move are lines
        } while (startsNumber(mIn.peek()));
        return true;
    }

    static bool startsNumber(char c) { return isDigit(c) || c == '-' || c == '+' || c == '.'; }

    bool readSegment(char command)
    {
        switch (command) {
        case 'M':
            return readMove();
        case 'L':
            return readLine();
        case 'H':
        case 'V':
            return readStraight(command == 'H');
        case 'C':
            return readCubic();
        case 'S':
            return readSmoothCubic();
        case 'Q':
            return readQuadratic(false);
        case 'T':
            return readQuadratic(true);
        default:
            return readArc();
        }
    }

    std::optional<double> number()
    {
        const std::optional<double> value = mIn.number();
        mIn.skipSpaceAndComma();
        return value;
    }

    std::optional<Vec> point()
    {
        const std::optional<double> x = number();
        const std::optional<double> y = x ? number() : std::nullopt;
        if (!y)
            return std::nullopt;
        const Vec p { *x, *y };
        return mRelative ? mOutline.currentPoint() + p : p;
    }

    /// After a close, drawing continues from the closed sub-path's start in a new sub-path.
    void continueAfterClose()
    {
        if (mPrevious == 'Z')
            mOutline.moveTo(mOutline.currentPoint());
    }

    bool readMove()
    {
        const std::optional<Vec> p = point();
        if (!p)
            return false;
        mOutline.moveTo(*p);
        mStarted = true;
        return true;
    }

    bool readLine()
    {
        const std::optional<Vec> p = point();
        if (!p)
            return false;
        continueAfterClose();
        mOutline.lineTo(*p);
        return true;
    }

    bool readStraight(bool horizontal)
    {
        const std::optional<double> v = number();
        if (!v)
            return false;
        Vec p = mOutline.currentPoint();
        double& coordinate = horizontal ? p.x : p.y;
        coordinate = mRelative ? coordinate + *v : *v;
        continueAfterClose();
        mOutline.lineTo(p);
        return true;
    }

    bool addCubic(const std::optional<Vec>& c1, const std::optional<Vec>& c2, const std::optional<Vec>& end)
    {
        if (!c1 || !c2 || !end)
            return false;
        continueAfterClose();
        mControl = *c2;
        mOutline.cubicTo(*c1, *c2, *end);
        return true;
    }

    bool readCubic()
    {
        const std::optional<Vec> c1 = point();
        const std::optional<Vec> c2 = c1 ? point() : std::nullopt;
        const std::optional<Vec> end = c2 ? point() : std::nullopt;
        return addCubic(c1, c2, end);
    }

    /// The last control point mirrored about the current point; the current point itself when the
    /// segment before was of another kind.
    Vec mirroredControl(char first, char second) const
    {
        const Vec here = mOutline.currentPoint();
        return mPrevious == first || mPrevious == second ? here * 2 - mControl : here;
    }

    bool readSmoothCubic()
    {
        const Vec c1 = mirroredControl('C', 'S');
        const std::optional<Vec> c2 = point();
        const std::optional<Vec> end = c2 ? point() : std::nullopt;
        return addCubic(c1, c2, end);
    }

    bool readQuadratic(bool smooth)
    {
        const std::optional<Vec> c = smooth ? mirroredControl('Q', 'T') : point();
        const std::optional<Vec> end = c ? point() : std::nullopt;
        if (!end)
            return false;
        const Vec start = mOutline.currentPoint();
        continueAfterClose();
        mOutline.cubicTo(start + (*c - start) * (2.0 / 3), *end + (*c - *end) * (2.0 / 3), *end);
        mControl = *c;
        return true;
    }

    bool readArc()
    {
        const std::optional<double> rx = number();
        const std::optional<double> ry = rx ? number() : std::nullopt;
        const std::optional<double> turn = ry ? number() : std::nullopt;
        const std::optional<bool> large = turn ? flag() : std::nullopt;
        const std::optional<bool> sweep = large ? flag() : std::nullopt;
        const std::optional<Vec> end = sweep ? point() : std::nullopt;
        if (!end)
            return false;
        continueAfterClose();
        mOutline.arcTo({ *rx, *ry }, *turn, *large, *sweep, *end);
        return true;
    }

    std::optional<bool> flag()
    {
        const std::optional<bool> value = mIn.flag();
        mIn.skipSpaceAndComma();
        return value;
    }

    Scanner mIn;
    Outline mOutline;
    Vec mControl; ///< second control point of the last cubic, control point of the last quadratic
    std::size_t mError = 0;
    char mPrevious = '\0';
    bool mRelative = false;
    bool mStarted = false;
};

} // namespace

PathData parsePathData(std::string_view text) { return PathReader(text).read(); }

PathData parsePoints(std::string_view text, bool closed)
{
    PathData result;
    Scanner in(text);
    in.skipSpace();
    while (!in.atEnd()) {
        result.errorOffset = in.position();
        const std::optional<double> x = in.number();
        in.skipSpaceAndComma();
        const std::optional<double> y = x ? in.number() : std::nullopt;
        if (!y) {
            result.isComplete = false;
            break;
        }
        in.skipSpaceAndComma();
        result.outline.isEmpty() ? result.outline.moveTo({ *x, *y }) : result.outline.lineTo({ *x, *y });
    }
    if (result.isComplete)
        result.errorOffset = 0;
    if (closed && !result.outline.isEmpty())
        result.outline.close();
    return result;
}

} // namespace app::svg
