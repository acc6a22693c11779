#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRArchiving.h>
#include <vxr/platform/graphics/path/Path.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace vxr {
namespace {

constexpr const char* thisFile = "PathXML.cpp";
constexpr const char* ruleWords[] = { "nonzero", "evenodd" };
constexpr const char* capWords[] = { "butt", "round", "square" };
constexpr const char* joinWords[] = { "miter", "round", "bevel" };
constexpr int pointCounts[] = { 1, 1, 3, 0 }; ///< by `PathElementKind`
constexpr char letters[] = { 'M', 'L', 'C', 'Z' };

void append(std::string& text, float value)
{
    char buffer[24];
    text.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

/// Numbers separated by spaces, with the fewest digits that read back to the same float.
std::string listOf(std::span<const float> values)
{
    std::string text;
    for (const float value : values) {
        if (!text.empty())
            text += ' ';
        append(text, value);
    }
    return text;
}

std::string dataOf(const Path& path)
{
    std::string text;
    const Point* point = path.points().data();
    for (const PathElementKind kind : path.kinds()) {
        if (!text.empty())
            text += ' ';
        text += letters[int(kind)];
        for (int i = 0; i < pointCounts[int(kind)]; ++i, ++point) {
            text += ' ';
            append(text, point->x);
            text += ' ';
            append(text, point->y);
        }
    }
    return text;
}

class Scanner {
public:
    explicit Scanner(std::string_view text)
        : mText(text)
    {
    }

    bool isAtEnd()
    {
        while (mAt < mText.size() && (mText[mAt] == ' ' || mText[mAt] == '\n' || mText[mAt] == '\t'))
            ++mAt;
        return mAt == mText.size();
    }

    char letter() { return isAtEnd() ? 0 : mText[mAt++]; }

    bool number(float& value)
    {
        if (isAtEnd())
            return false;
        const auto [end, error] = std::from_chars(mText.data() + mAt, mText.data() + mText.size(), value);
        mAt = std::size_t(end - mText.data());
        return error == std::errc();
    }

private:
    std::string_view mText;
    std::size_t mAt = 0;
};

/// Appends what can be read; false when something can't.
bool readData(std::string_view text, Path& path)
{
    Scanner scanner(text);
    while (!scanner.isAtEnd()) {
        const char letter = scanner.letter();
        const auto* const found = std::find(std::begin(letters), std::end(letters), letter);
        if (found == std::end(letters))
            return false;
        const auto kind = static_cast<PathElementKind>(found - std::begin(letters));
        Point points[3] {};
        for (int i = 0; i < pointCounts[int(kind)]; ++i) {
            if (!scanner.number(points[i].x) || !scanner.number(points[i].y))
                return false;
        }
        switch (kind) {
        case PathElementKind::MoveTo:
            path.moveTo(points[0]);
            break;
        case PathElementKind::LineTo:
            path.lineTo(points[0]);
            break;
        case PathElementKind::CurveTo:
            path.curveTo(points[0], points[1], points[2]);
            break;
        case PathElementKind::Close:
            path.close();
            break;
        }
    }
    return true;
}

void encode(const Path& path, VXAXMLArchiver&, VXAXMLNode* node, std::uint32_t)
{
    const Path plain;
    const LineStyle& style = path.lineStyle();
    const LineStyle& plainStyle = plain.lineStyle();
    setWord(node, "data", dataOf(path).c_str());
    if (path.windingRule() != plain.windingRule())
        setWord(node, "rule", ruleWords[int(path.windingRule())]);
    if (style.width != plainStyle.width)
        setNumber(node, "line-width", style.width);
    if (style.cap != plainStyle.cap)
        setWord(node, "line-cap", capWords[int(style.cap)]);
    if (style.join != plainStyle.join)
        setWord(node, "line-join", joinWords[int(style.join)]);
    if (style.miterLimit != plainStyle.miterLimit)
        setNumber(node, "miter-limit", style.miterLimit);
    if (!style.dash.empty())
        setWord(node, "dash", listOf(style.dash).c_str());
    if (style.dashPhase != plainStyle.dashPhase)
        setNumber(node, "dash-phase", style.dashPhase);
    if (path.flatness() != plain.flatness())
        setNumber(node, "flatness", path.flatness());
}

template <class Enum>
void readWord(const VXAXMLNode* node, const char* name, std::span<const char* const> words, Enum& value)
{
    std::string word;
    if (!vxaxmlGetNSStringNsProp(node, VelloraNamespace, name, word))
        return;
    if (const int code = indexOfWord(words, word); code >= 0)
        value = static_cast<Enum>(code);
    else
        warn(thisFile,
            fmt::format("WARNING, a path at {} has the unknown {} '{}'.", fmt::ptr(node), name, word));
}

void readNumber(const VXAXMLNode* node, const char* name, float& value)
{
    if (double number; vxaxmlGetDoubleNsProp(node, VelloraNamespace, name, number))
        value = static_cast<float>(number);
}

std::shared_ptr<Path> read(VXAXMLUnarchiver&, VXAXMLNode* node, std::uint32_t)
{
    auto path = Path::path();
    std::string text;
    if (!vxaxmlGetNSStringNsProp(node, VelloraNamespace, "data", text))
        warn(thisFile, fmt::format("WARNING, initializing a path from {}, cannot get data.", fmt::ptr(node)));
    else if (!readData(text, *path))
        warn(thisFile,
            fmt::format("WARNING, initializing a path from {}, the data after element {} cannot be read.",
                fmt::ptr(node), path->elementCount()));
    LineStyle style = path->lineStyle();
    readNumber(node, "line-width", style.width);
    readWord(node, "line-cap", capWords, style.cap);
    readWord(node, "line-join", joinWords, style.join);
    readNumber(node, "miter-limit", style.miterLimit);
    readNumber(node, "dash-phase", style.dashPhase);
    if (vxaxmlGetNSStringNsProp(node, VelloraNamespace, "dash", text)) {
        Scanner scanner(text);
        for (float length; scanner.number(length);)
            style.dash.push_back(length);
    }
    path->setLineStyle(style);
    float flatness = path->flatness();
    readNumber(node, "flatness", flatness);
    path->setFlatness(flatness);
    WindingRule rule = path->windingRule();
    readWord(node, "rule", ruleWords, rule);
    path->setWindingRule(rule);
    return path;
}

} // namespace

std::shared_ptr<Path> finitePathFromNode(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node)
{
    auto path = VXRObjectFromNode<Path>(unarchiver, node);
    const auto isFinite = [](Point p) { return std::isfinite(p.x) && std::isfinite(p.y); };
    if (!path || std::ranges::all_of(path->points(), isFinite))
        return path;
    warn(thisFile,
        fmt::format("WARNING, initializing a path from {}, its coordinates are not finite.", fmt::ptr(node)));
    return nullptr;
}

template <> const VXAXMLClass& VXRXMLClass<Path>() { return recordOf<Path, encode, read>("Path"); }

} // namespace vxr
