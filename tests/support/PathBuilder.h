#pragma once

#include <vxr/platform/graphics/path/Path.h>

#include <cstdlib>
#include <memory>

namespace vxr::test {

/// A path from "M x y", "L x y", "C x y x y x y" and "Z", numbers apart by blanks; "nan" is a number.
inline Path pathOf(const char* elements)
{
    const auto point = [&elements] {
        float coordinates[2];
        for (float& c : coordinates) {
            char* end = nullptr;
            c = std::strtof(elements, &end);
            elements = end;
        }
        return Point { coordinates[0], coordinates[1] };
    };
    Path path;
    while (*elements) {
        const char kind = *elements++;
        if (kind == 'M')
            path.moveTo(point());
        else if (kind == 'L')
            path.lineTo(point());
        else if (kind == 'Z')
            path.close();
        else if (kind == 'C') {
            const Point c1 = point(), c2 = point();
            path.curveTo(c1, c2, point());
        }
    }
    return path;
}

inline std::shared_ptr<Path> newPathOf(const char* elements)
{
    return std::make_shared<Path>(pathOf(elements));
}

} // namespace vxr::test
