#pragma once

#include <vxr/filters/FilterKernels.h>

#include <array>

namespace vxr {

/// The planes of so many pixels that they stay in the first cache. Colours are straight.
struct FilterBlock {
    static constexpr int size = 512;

    alignas(64) float red[size], green[size], blue[size], alpha[size];
    int count = 0;
    bool isLinear = false; ///< colours in proportion to light

    std::array<float*, 3> colors() { return { red, green, blue }; }
    std::array<const float*, 3> colors() const { return { red, green, blue }; }
    void makeLinear(const FilterKernels& kernels, bool linear)
    {
        if (linear == isLinear)
            return;
        isLinear = linear;
        for (float* plane : colors())
            (linear ? kernels.decode : kernels.encode)(plane, count);
    }
};

} // namespace vxr
