#pragma once

#include <cairo.h>

#include <memory>

namespace vxr {

struct CairoRelease {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};
using CairoPtr = std::unique_ptr<cairo_t, CairoRelease>;
using CairoSurfacePtr = std::unique_ptr<cairo_surface_t, CairoRelease>;
using CairoPatternPtr = std::unique_ptr<cairo_pattern_t, CairoRelease>;

/// cairo_save and cairo_restore around a scope. Sources set inside are let go at its end: a recording
/// that is still a context's source when it is destroyed loses its content on a document.
class CairoSaver {
public:
    explicit CairoSaver(cairo_t* context)
        : mContext(context)
    {
        cairo_save(mContext);
    }
    ~CairoSaver() { cairo_restore(mContext); }
    CairoSaver(const CairoSaver&) = delete;
    CairoSaver& operator=(const CairoSaver&) = delete;

private:
    cairo_t* mContext;
};

} // namespace vxr
