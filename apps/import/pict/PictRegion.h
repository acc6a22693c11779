#pragma once

#include <apps/import/pict/PictReader.h>

#include <memory>

#include <cairo.h>

namespace vxr::importing {

/// A set of pixels, as clips and region operations carry it.
class PictRegion {
public:
    PictRegion(); ///< nothing
    explicit PictRegion(const PictRect&);
    /// Reads the stored form: its size, its bounds and, unless it is a rectangle, the places where each row
    /// differs from the one above.
    static PictRegion read(PictReader&);

    bool isEmpty() const { return cairo_region_is_empty(mRegion.get()); }
    int rectangleCount() const { return cairo_region_num_rectangles(mRegion.get()); }
    PictRect bounds() const;
    /// Appends the region's rectangles to the current path.
    void appendTo(cairo_t*) const;
    /// What lies within `width` and `height` of the edge, inside.
    PictRegion border(int width, int height) const;

private:
    struct Deleter {
        void operator()(cairo_region_t* region) const { cairo_region_destroy(region); }
    };
    explicit PictRegion(cairo_region_t* region)
        : mRegion(region, Deleter {})
    {
    }

    std::shared_ptr<cairo_region_t> mRegion; ///< never changed once it is here
};

} // namespace vxr::importing
