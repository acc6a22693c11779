#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

#include <pixman.h>

#include <algorithm>
#include <vector>

namespace vxr {

/// Half-open box of pixels, top row first.
struct PixelBox {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    bool isEmpty() const { return x0 >= x1 || y0 >= y1; }
    double area() const { return isEmpty() ? 0 : double(x1 - x0) * double(y1 - y0); }
    friend bool operator==(const PixelBox&, const PixelBox&) = default;
};

inline PixelBox intersection(const PixelBox& a, const PixelBox& b)
{
    return { std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1) };
}

/// A set of pixels as disjoint boxes.
class PixelRegion {
public:
    PixelRegion() { pixman_region32_init(&mRegion); }
    explicit PixelRegion(const PixelBox& box)
        : PixelRegion()
    {
        add(box);
    }
    PixelRegion(const PixelRegion& other)
        : PixelRegion()
    {
        add(other);
    }
    PixelRegion& operator=(const PixelRegion& other)
    {
        pixman_region32_copy(&mRegion, other.get());
        return *this;
    }
    ~PixelRegion() { pixman_region32_fini(&mRegion); }

    bool isEmpty() const { return !pixman_region32_not_empty(get()); }
    int boxCount() const { return pixman_region32_n_rects(get()); }
    bool contains(const PixelBox& box) const
    {
        pixman_box32_t all { box.x0, box.y0, box.x1, box.y1 };
        return box.isEmpty() || pixman_region32_contains_rectangle(get(), &all) == PIXMAN_REGION_IN;
    }
    void clear() { pixman_region32_clear(&mRegion); }

    void add(const PixelBox& box)
    {
        if (!box.isEmpty())
            pixman_region32_union_rect(
                &mRegion, &mRegion, box.x0, box.y0, unsigned(box.x1 - box.x0), unsigned(box.y1 - box.y0));
    }
    void add(const PixelRegion& other) { pixman_region32_union(&mRegion, &mRegion, other.get()); }
    void subtract(const PixelBox& box)
    {
        const PixelRegion other(box);
        pixman_region32_subtract(&mRegion, &mRegion, other.get());
    }
    void limitTo(const PixelBox& box)
    {
        if (box.isEmpty())
            clear();
        else
            pixman_region32_intersect_rect(
                &mRegion, &mRegion, box.x0, box.y0, unsigned(box.x1 - box.x0), unsigned(box.y1 - box.y0));
    }

    template <class Visit> void forEachBoxWithin(const PixelBox& limit, Visit visit) const
    {
        int count = 0;
        const pixman_box32_t* boxes = pixman_region32_rectangles(get(), &count);
        for (int i = 0; i < count; ++i) {
            const PixelBox part = intersection({ boxes[i].x1, boxes[i].y1, boxes[i].x2, boxes[i].y2 }, limit);
            if (!part.isEmpty())
                visit(part);
        }
    }
    PixelBox extents() const
    {
        const pixman_box32_t* box = pixman_region32_extents(get());
        return { box->x1, box->y1, box->x2, box->y2 };
    }
    std::vector<PixelBox> boxes() const
    {
        std::vector<PixelBox> result;
        if (!isEmpty())
            forEachBoxWithin(extents(), [&](const PixelBox& box) { result.push_back(box); });
        return result;
    }

private:
    pixman_region32_t* get() const { return const_cast<pixman_region32_t*>(&mRegion); } // reads take no const

    pixman_region32_t mRegion;
};

} // namespace vxr
