#pragma once

#include <apps/vxr/svg/Geometry.h>

#include <cmath>
#include <cstdio>
#include <string>

namespace app::svg {

/// `M0 0 L10 0 C1 2 3 4 5 6 Z`, coordinates rounded to a thousandth.
inline std::string textOf(const Outline& outline)
{
    std::string text;
    std::size_t next = 0;
    const auto point = [&] {
        const Vec p = outline.points()[next++];
        char buffer[64];
        // Adding 0 turns a negative zero into a positive one.
        std::snprintf(buffer, sizeof buffer, "%g %g", std::round(p.x * 1000) / 1000 + 0.0,
            std::round(p.y * 1000) / 1000 + 0.0);
        return std::string(buffer);
    };
    for (Verb verb : outline.verbs()) {
        if (!text.empty())
            text += ' ';
        if (verb == Verb::Close)
            text += 'Z';
        else if (verb == Verb::Cubic) {
            text += "C" + point();
            text += " " + point();
            text += " " + point();
        } else
            text += (verb == Verb::Move ? "M" : "L") + point();
    }
    return text;
}

} // namespace app::svg
