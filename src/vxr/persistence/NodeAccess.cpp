#include <vxr/persistence/NodeAccess.h>

#include <cmath>
#include <limits>

namespace vxr {

namespace {

bool isPlace(Point p) { return std::isfinite(p.x) && std::isfinite(p.y); }

} // namespace

int intFromDouble(double value)
{
    constexpr int least = std::numeric_limits<int>::min(), most = std::numeric_limits<int>::max();
    if (!(value > least))
        return value <= least ? least : 0;
    return value >= most ? most : static_cast<int>(value);
}

int indexOfWord(std::span<const char* const> words, std::string_view word)
{
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (word == words[i])
            return static_cast<int>(i);
    }
    return -1;
}

void encodeRectChild(const Rect& rect, VXAXMLNode* parent, const char* name)
{
    VXAXMLNode* const child = vxaxmlCreatePointChild(parent, VelloraNamespace, name, rect.origin);
    setNumber(child, "width", rect.size.width);
    setNumber(child, "height", rect.size.height);
}

void PropertyReader::cannotGet(const char* name) const
{
    warn(file, fmt::format("WARNING, initializing {} from {}, cannot get {}.", kind, fmt::ptr(node), name));
}

float PropertyReader::number(const char* name, float fallback) const
{
    double value;
    if (vxaxmlGetDoubleNsProp(node, VelloraNamespace, name, value)
        && std::isfinite(static_cast<float>(value)))
        return static_cast<float>(value);
    cannotGet(name);
    return fallback;
}

std::uint32_t PropertyReader::whole(const char* name, std::uint32_t fallback) const
{
    if (!vxaxmlGetUnsignedLongNsProp(node, VelloraNamespace, name, fallback))
        cannotGet(name);
    return fallback;
}

int PropertyReader::word(const char* name, std::span<const char* const> words, int fallback) const
{
    std::string text;
    const int index
        = vxaxmlGetNSStringNsProp(node, VelloraNamespace, name, text) ? indexOfWord(words, text) : -1;
    if (index >= 0)
        return index;
    cannotGet(name);
    return fallback;
}

Point PropertyReader::point(const char* name) const
{
    Point value;
    if (vxaxmlPopulatePointFromChild(node, VelloraNamespace, name, value) && isPlace(value))
        return value;
    cannotGet(name);
    return {};
}

bool PropertyReader::getRect(const char* name, Rect& out) const
{
    if (!vxaxmlFirstChildNsNamed(node, VelloraNamespace, name))
        return false;
    Rect rect;
    if (vxaxmlPopulatePointFromChild(node, VelloraNamespace, name, rect.origin)
        && vxaxmlPopulateSizeFromChild(node, VelloraNamespace, name, rect.size) && isPlace(rect.origin)
        && isPlace(Point { rect.size.width, rect.size.height })) {
        out = rect;
        return true;
    }
    cannotGet(name);
    return false;
}

} // namespace vxr
