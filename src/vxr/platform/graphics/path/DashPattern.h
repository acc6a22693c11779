#pragma once

#include <vxr/platform/graphics/path/Path.h>

#include <cstddef>
#include <vector>

namespace vxr {

/// A dash pattern and where it stands.
///
/// An odd count of lengths is gone through twice, so that on and off change places. A pattern with a negative
/// length, with one that is no finite number, or with nothing but zeros is solid.
class DashPattern {
public:
    void assign(const LineStyle&);

    bool isSolid() const { return mLengths.empty(); }
    double total() const { return mTotal; }
    /// How many dashes a run of this length has at most.
    double dashesIn(double length) const
    {
        return (length / mTotal + 1) * static_cast<double>(mLengths.size()) / 2;
    }

    void restart(); ///< at the phase
    bool isOn() const { return mOn; }
    double remaining() const { return mRemaining; } ///< of the current length
    void advance(double by) { mRemaining -= by; }
    void next(); ///< goes on to the next length

private:
    std::vector<double> mLengths;
    double mPhase = 0; ///< within one turn of the pattern
    double mTotal = 0;
    std::size_t mIndex = 0;
    double mRemaining = 0;
    bool mOn = true;
};

} // namespace vxr
