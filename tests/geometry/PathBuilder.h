#pragma once

#include <vxr/platform/graphics/Path.h>

#include <cstdlib>
#include <sstream>
#include <string>

namespace vxr::test {

/// A path from "M x y", "L x y", "C x y x y x y" and "Z", all apart by blanks; "nan" is a number.
inline Path pathOf(const std::string& elements)
{
    std::istringstream in(elements);
    const auto number = [&in] {
        std::string word;
        in >> word;
        return std::strtof(word.c_str(), nullptr);
    };
    const auto point = [&number] {
        const float x = number();
        return Point { x, number() };
    };
    Path path;
    for (std::string kind; in >> kind;) {
        if (kind == "M")
            path.moveTo(point());
        else if (kind == "L")
            path.lineTo(point());
        else if (kind == "Z")
            path.close();
        else {
            const Point c1 = point(), c2 = point();
            path.curveTo(c1, c2, point());
        }
    }
    return path;
}

} // namespace vxr::test
