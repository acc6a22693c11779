#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vxr::test {

/// What a picture file of the tests holds. `sample(x, y, band)` is in 0 to 1.
struct MadePicture {
    int width = 8, height = 6, bands = 3;
    int bitsPerSample = 8;
    bool isCMYK = false;
    std::function<double(int x, int y, int band)> sample = [](int, int, int) { return 0.5; };
    std::string profile {}; ///< path of a profile to embed
    double pixelsPerInch = 0;
    int orientation = 1;
};

/// The file's bytes; `suffix` says the kind and options, as libvips takes them: ".jpg[Q=95]". Empty when it
/// can't be written here.
std::string makePicture(const MadePicture&, const std::string& suffix);

/// A layered file's header and composite, 150 pixels an inch, by the numbers of its format.
std::string makePSD(const MadePicture&, std::uint8_t mode, bool isPacked);

/// A PDF of the objects, the first of them the catalog.
std::string makePDF(const std::vector<std::string>& objects);

/// A document of one page with these entries and this content; /F is a font of every viewer.
std::string makePage(const std::string& entries, const std::string& content);

} // namespace vxr::test
