#pragma once

#include <vxr/platform/imaging/ImportedBitmap.h>

#include <functional>

namespace vxr::importing {

class JobOutput;
struct Request;

/// A bitmap file whose header has been read.
class BitmapReader {
public:
    virtual ~BitmapReader() = default;

    /// What the file says, with sides as stored: the orientation is still to be applied.
    virtual const BitmapInfo& info() const = 0;

    using TakeRow = std::function<void(std::uint32_t row, const std::byte* samples)>;
    /// Calls `take` with each row, top to bottom. Rows can be read once.
    virtual void readRows(const TakeRow& take) = 0;
    /// The same with drawable pixels, when values need no conversion. False, and nothing read, when the file
    /// gives samples only.
    virtual bool readDrawableRows(const TakeRow&) { return false; }
};

/// Leaves what the header says.
void measureBitmap(const BitmapReader&, JobOutput&);

/// Leaves the pixels as the request wants them, upright.
void decodeBitmap(BitmapReader&, const Request&, JobOutput&);

} // namespace vxr::importing
