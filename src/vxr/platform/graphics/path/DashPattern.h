#pragma once

#include <vxr/platform/graphics/path/Path.h>

#include <cstddef>
#include <vector>

namespace vxr {

/// A dash pattern and the current position in it.
///
/// An odd number of lengths is used twice, with on and off exchanged. A pattern with a negative or
/// non-finite length, or with zeros only, is solid.
class DashPattern {
public:
    void assign(const LineStyle&);

    bool isSolid() const { return mLengths.empty(); }
    double total() const { return mTotal; }
    /// Upper bound for the number of dashes in a run of this length.
    double dashesIn(double length) const
    {
        return (length / mTotal + 1) * static_cast<double>(mLengths.size()) / 2;
    }

    void restart(); ///< returns to the phase
    bool isOn() const { return mOn; }
    double remaining() const { return mRemaining; } ///< of the current dash or gap
    void advance(double by) { mRemaining -= by; }
    void next(); ///< advances to the next length

private:
    std::vector<double> mLengths;
    double mPhase = 0; ///< within one period of the pattern
    double mTotal = 0;
    std::size_t mIndex = 0;
    double mRemaining = 0;
    bool mOn = true;
};

} // namespace vxr
