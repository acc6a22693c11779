#pragma once

#include <vxr/platform/graphics/values/IntRect.h>

#include <pixman.h>

#include <vector>

namespace vxr {

/// A set of pixels as disjoint boxes.
class PixelRegion {
public:
    PixelRegion() { pixman_region32_init(&mRegion); }
    explicit PixelRegion(const IntRect& box)
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
    bool contains(const IntRect& box) const
    {
        pixman_box32_t all { box.x0, box.y0, box.x1, box.y1 };
        return box.isEmpty() || pixman_region32_contains_rectangle(get(), &all) == PIXMAN_REGION_IN;
    }
    void clear() { pixman_region32_clear(&mRegion); }

    void add(const IntRect& box)
    {
        if (!box.isEmpty())
            pixman_region32_union_rect(
                &mRegion, &mRegion, box.x0, box.y0, unsigned(box.x1 - box.x0), unsigned(box.y1 - box.y0));
    }
    void add(const PixelRegion& other) { pixman_region32_union(&mRegion, &mRegion, other.get()); }
    void subtract(const IntRect& box)
    {
        const PixelRegion other(box);
        pixman_region32_subtract(&mRegion, &mRegion, other.get());
    }
    void limitTo(const IntRect& box)
    {
        if (box.isEmpty())
            clear();
        else
            pixman_region32_intersect_rect(
                &mRegion, &mRegion, box.x0, box.y0, unsigned(box.x1 - box.x0), unsigned(box.y1 - box.y0));
    }

    template <class Visit> void forEachBoxWithin(const IntRect& limit, Visit visit) const
    {
        int count = 0;
        const pixman_box32_t* boxes = pixman_region32_rectangles(get(), &count);
        for (int i = 0; i < count; ++i) {
            const IntRect part = intersection({ boxes[i].x1, boxes[i].y1, boxes[i].x2, boxes[i].y2 }, limit);
            if (!part.isEmpty())
                visit(part);
        }
    }
    IntRect extents() const
    {
        const pixman_box32_t* box = pixman_region32_extents(get());
        return { box->x1, box->y1, box->x2, box->y2 };
    }
    std::vector<IntRect> boxes() const
    {
        std::vector<IntRect> result;
        if (!isEmpty())
            forEachBoxWithin(extents(), [&](const IntRect& box) { result.push_back(box); });
        return result;
    }

private:
    pixman_region32_t* get() const { return const_cast<pixman_region32_t*>(&mRegion); } // reads take no const

    pixman_region32_t mRegion;
};

} // namespace vxr
