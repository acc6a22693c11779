#pragma once

#include <vxr/strokes/smart/VXRStrokeBundle.h>

#include <optional>

namespace vxr {

/// Reads a bundle's text line by line.
class StrokeBundleReader {
public:
    StrokeBundleReader(std::string_view text, std::string folder);

    /// None after a mistake, of which `error` then tells.
    std::shared_ptr<const VXRStrokeBundle> read();
    const std::string& error() const { return mError; }

private:
    bool readLine(std::string_view line);
    bool readPiece(std::string_view rest);
    bool readPath(std::string_view data);
    bool readImage(std::string_view rest);
    bool fail(const std::string& reason);
    VXRStrokeBundle::Piece* piece();

    std::string_view mText;
    std::string mFolder, mError;
    std::shared_ptr<VXRStrokeBundle> mBundle;
    std::vector<VXRStrokeBundle::Piece>* mPieces = nullptr; ///< to which the present one belongs
    VXRStrokeBundle::Part mInk; ///< for the drawings that follow
    std::size_t mElements = 0;
    int mLine = 0;
};

} // namespace vxr
