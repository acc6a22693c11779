#include <tests/imaging/PictureMaker.h>

#include <vips/vips.h>

#include <cstdio>
#include <memory>

namespace vxr::test {

namespace {

struct Releaser {
    void operator()(VipsImage* image) const { g_object_unref(image); }
};
using Handle = std::unique_ptr<VipsImage, Releaser>;

template <class Sample> std::vector<Sample> samplesOf(const MadePicture& picture)
{
    std::vector<Sample> samples;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            for (int band = 0; band < picture.bands; ++band)
                samples.push_back(Sample(picture.sample(x, y, band) * Sample(~Sample(0)) + 0.5));
    return samples;
}

VipsInterpretation interpretationOf(const MadePicture& picture)
{
    const bool isWide = picture.bitsPerSample == 16;
    if (picture.isCMYK)
        return VIPS_INTERPRETATION_CMYK;
    if (picture.bands < 3)
        return isWide ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_B_W;
    return isWide ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
}

template <class Sample> Handle imageOf(const MadePicture& picture)
{
    const auto samples = samplesOf<Sample>(picture);
    return Handle(
        vips_image_new_from_memory_copy(samples.data(), samples.size() * sizeof(Sample), picture.width,
            picture.height, picture.bands, sizeof(Sample) == 1 ? VIPS_FORMAT_UCHAR : VIPS_FORMAT_USHORT));
}

} // namespace

std::string makePicture(const MadePicture& picture, const std::string& suffix)
{
    static const bool isReady = VIPS_INIT("tests") == 0;
    if (!isReady)
        return {};
    const Handle plain
        = picture.bitsPerSample == 16 ? imageOf<std::uint16_t>(picture) : imageOf<std::uint8_t>(picture);
    VipsImage* copied = nullptr;
    constexpr double perInch = 25.4;
    const double resolution = picture.pixelsPerInch > 0 ? picture.pixelsPerInch / perInch : 1;
    if (vips_copy(plain.get(), &copied, "interpretation", interpretationOf(picture), "xres", resolution,
            "yres", resolution, nullptr)
        != 0)
        return {};
    const Handle image(copied);
    if (picture.orientation != 1)
        vips_image_set_int(image.get(), VIPS_META_ORIENTATION, picture.orientation);
    if (!picture.profile.empty()) {
        char* bytes = nullptr;
        gsize size = 0;
        if (!g_file_get_contents(picture.profile.c_str(), &bytes, &size, nullptr))
            return {};
        vips_image_set_blob_copy(image.get(), VIPS_META_ICC_NAME, bytes, size);
        g_free(bytes);
    }
    void* file = nullptr;
    std::size_t size = 0;
    if (vips_image_write_to_buffer(image.get(), suffix.c_str(), &file, &size, nullptr) != 0) {
        vips_error_clear();
        return {};
    }
    const std::string result(static_cast<const char*>(file), size);
    g_free(file);
    return result;
}

std::string makePSD(const MadePicture& picture, std::uint8_t mode, bool isPacked)
{
    std::string psd = "8BPS";
    const auto number = [](unsigned value, int bytes) {
        std::string digits;
        while (bytes-- > 0)
            digits += char(value >> (8 * bytes));
        return digits;
    };
    psd += number(1, 2) + std::string(6, '\0') + number(unsigned(picture.bands), 2);
    psd += number(unsigned(picture.height), 4) + number(unsigned(picture.width), 4);
    psd += number(unsigned(picture.bitsPerSample), 2) + number(mode, 2) + number(0, 4);
    const std::string resolution = number(150 << 16, 4) + std::string(12, '\0');
    const std::string resources = "8BIM" + number(0x3ed, 2) + number(0, 2) + number(16, 4) + resolution;
    psd += number(unsigned(resources.size()), 4) + resources + number(0, 4) + number(isPacked, 2);
    std::string lengths, rows;
    for (int band = 0; band < picture.bands; ++band)
        for (int y = 0; y < picture.height; ++y) {
            std::string row;
            for (int x = 0; x < picture.width; ++x) {
                const double sample = picture.sample(x, y, band), stored = mode == 4 ? 1 - sample : sample;
                row += picture.bitsPerSample == 16 ? number(unsigned(stored * 65535 + 0.5), 2)
                                                   : number(unsigned(stored * 255 + 0.5), 1);
            }
            // Half of the row as it is, the rest as runs of one.
            if (isPacked) {
                const std::size_t half = row.size() / 2;
                std::string packed = number(unsigned(half - 1), 1) + row.substr(0, half);
                for (const char byte : row.substr(half))
                    packed += std::string("\0", 1) + byte;
                row = packed;
                lengths += number(unsigned(row.size()), 2);
            }
            rows += row;
        }
    return psd + lengths + rows;
}

std::string makePDF(const std::vector<std::string>& objects)
{
    std::string pdf = "%PDF-1.6\n";
    std::string table = "0000000000 65535 f \n";
    for (std::size_t i = 0; i < objects.size(); ++i) {
        char entry[32];
        std::snprintf(entry, sizeof entry, "%010zu 00000 n \n", pdf.size());
        table += entry;
        pdf += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const std::string count = std::to_string(objects.size() + 1), start = std::to_string(pdf.size());
    return pdf + "xref\n0 " + count + "\n" + table + "trailer\n<</Size " + count
        + "/Root 1 0 R>>\nstartxref\n" + start + "\n%%EOF\n";
}

std::string makePage(const std::string& entries, const std::string& content)
{
    return makePDF({ "<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>",
        "<</Type/Page/Parent 2 0 R" + entries
            + "/Resources<</Font<</F<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>>>>>/Contents 4 0 R>>",
        "<</Length " + std::to_string(content.size()) + ">>stream\n" + content + "\nendstream" });
}

} // namespace vxr::test
