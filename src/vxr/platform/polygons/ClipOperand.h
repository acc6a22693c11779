#pragma once

#include <vxr/platform/polygons/gpc.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace vxr {

struct ClipBox {
    double x0 = HUGE_VAL, y0 = HUGE_VAL, x1 = -HUGE_VAL, y1 = -HUGE_VAL;

    void add(const ClipBox& b)
    {
        x0 = std::min(x0, b.x0);
        y0 = std::min(y0, b.y0);
        x1 = std::max(x1, b.x1);
        y1 = std::max(y1, b.y1);
    }
    bool meets(const ClipBox& b) const { return x0 <= b.x1 && b.x0 <= x1 && y0 <= b.y1 && b.y0 <= y1; }
};

/// An operand as the clip sees it: contours that can bound an area, with their boxes.
struct ClipOperand {
    struct Contour {
        const gpc_vertex_list* list;
        ClipBox box;
    };
    std::vector<Contour> contours;
    ClipBox bounds;
    std::size_t vertices = 0;

    bool isEmpty() const { return contours.empty(); }

    /// False when a coordinate is NaN or infinite.
    bool read(const gpc_polygon& polygon)
    {
        contours.reserve(std::size_t(polygon.num_contours));
        for (int i = 0; i < polygon.num_contours; ++i) {
            const gpc_vertex_list& contour = polygon.contour[i];
            ClipBox box;
            double check = 0; // NaN as soon as any coordinate is not finite
            for (int k = 0; k < contour.num_vertices; ++k) {
                const gpc_vertex v = contour.vertex[k];
                check += v.x * 0 + v.y * 0;
                box.add({ v.x, v.y, v.x, v.y });
            }
            if (check != 0)
                return false;
            if (contour.num_vertices >= 3)
                add({ &contour, box });
        }
        return true;
    }

    void add(const Contour& contour)
    {
        contours.push_back(contour);
        bounds.add(contour.box);
        vertices += std::size_t(contour.list->num_vertices);
    }

    /// Drops the contours that don't reach `area`: they can't change what is inside within it.
    void keepMeeting(const ClipBox& area)
    {
        if (std::erase_if(contours, [&](const Contour& c) { return !c.box.meets(area); }) == 0)
            return;
        bounds = {};
        vertices = 0;
        for (const Contour& contour : contours) {
            bounds.add(contour.box);
            vertices += std::size_t(contour.list->num_vertices);
        }
    }
};

} // namespace vxr
