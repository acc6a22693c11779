#pragma once

#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/path/Path.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vxr {

class Color;

/// The drawings of a smart stroke: a head, a tail, and one or more bodies for what lies between. Immutable.
class VXR_EXPORT VXRStrokeBundle final : public Object {
public:
    /// A filled drawing in line widths: x along the path from 0 to the piece's length, y across it with 0 on
    /// the path itself and positive to its left (y up).
    struct Part {
        std::shared_ptr<const Path> path;
        std::shared_ptr<Color> color; ///< none for the stroke's own
        float opacity = 1;
    };
    struct Piece {
        float length = 0; ///< in line widths; positive
        std::vector<Part> parts; ///< from back to front
    };

    std::string name;
    std::vector<Piece> heads; ///< where the path begins: none or one
    std::vector<Piece> bodies; ///< at least one; which of several stands where, the seed decides
    std::vector<Piece> tails; ///< where the path ends: none or one
    bool stretchesBody = false; ///< over the whole path instead of repeating it
    bool turns = false; ///< bodies are turned by half a turn at random

    /// Largest |y|, and how far parts stand out of their pieces along the path; in line widths.
    float halfHeight() const;
    float overhang() const;

    /// Reads the text form described in `docs/strokes.md`. Pictures are looked for in `folder`. None, and a
    /// reason with its line in `error`, for anything that isn't understood or is too large.
    static std::shared_ptr<const VXRStrokeBundle> bundleFromText(
        std::string_view text, const std::string& folder, std::string* error = nullptr);
};

} // namespace vxr
