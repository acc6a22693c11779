#include <apps/import/JpegFile.h>

#include <apps/import/ExifTags.h>
#include <apps/import/Job.h>
#include <apps/import/JobRunner.h>
#include <apps/import/Profiles.h>

#include <cstdio> // jpeglib.h takes it for granted

#include <jpeglib.h>

#include <bit>
#include <map>
#include <string_view>

namespace vxr::importing {

namespace {

using namespace std::string_view_literals;

[[noreturn]] void fail(j_common_ptr decoder)
{
    char text[JMSG_LENGTH_MAX];
    decoder->err->format_message(decoder, text);
    throw Refusal(std::string("The file can't be read: ") + text + ".");
}

void passOver(j_common_ptr, int) { }

/// A file that ends too early is damaged, however much of it has been read.
boolean refuseMore(j_decompress_ptr) { throw Refusal("The file ends too early."); }

std::string_view contentOf(const jpeg_marker_struct& marker)
{
    return { reinterpret_cast<const char*>(marker.data), marker.data_length };
}

/// The profile in its numbered parts; empty when there is none or a part is missing.
std::vector<std::byte> profileIn(const jpeg_marker_struct* markers)
{
    constexpr std::string_view name = "ICC_PROFILE\0"sv;
    std::map<unsigned, std::string_view> parts;
    unsigned count = 0;
    for (const auto* marker = markers; marker; marker = marker->next) {
        const std::string_view content = contentOf(*marker);
        if (marker->marker != JPEG_APP0 + 2 || content.size() < name.size() + 2 || !content.starts_with(name))
            continue;
        count = std::uint8_t(content[name.size() + 1]);
        parts.emplace(std::uint8_t(content[name.size()]), content.substr(name.size() + 2));
    }
    std::vector<std::byte> profile;
    if (parts.size() != count || (count > 0 && parts.begin()->first != 1)
        || (count > 0 && parts.rbegin()->first != count))
        return profile;
    for (const auto& [number, part] : parts)
        for (const char byte : part)
            profile.push_back(std::byte(byte));
    return profile;
}

} // namespace

struct JpegFile::Decoder {
    Decoder()
    {
        state.err = jpeg_std_error(&errors);
        errors.error_exit = fail;
        errors.emit_message = passOver;
        jpeg_create_decompress(&state);
    }
    ~Decoder() { jpeg_destroy_decompress(&state); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    jpeg_decompress_struct state {};
    jpeg_error_mgr errors {};
};

JpegFile::JpegFile(std::span<const std::byte> bytes)
    : mDecoder(std::make_unique<Decoder>())
{
    auto& state = mDecoder->state;
    jpeg_mem_src(&state, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    state.src->fill_input_buffer = refuseMore;
    constexpr unsigned longest = 0xffff;
    jpeg_save_markers(&state, JPEG_APP0 + 1, longest);
    jpeg_save_markers(&state, JPEG_APP0 + 2, longest);
    jpeg_read_header(&state, TRUE);
    const bool isGray = state.jpeg_color_space == JCS_GRAYSCALE && state.num_components == 1;
    const bool isColor = (state.jpeg_color_space == JCS_YCbCr || state.jpeg_color_space == JCS_RGB)
        && state.num_components == 3;
    if ((!isGray && !isColor) || state.data_precision != 8)
        throw JobForOthers();

    mInfo.kind = "jpg";
    BitmapFormat& format = mInfo.format;
    format.width = state.image_width;
    format.height = state.image_height;
    format.model = isGray ? BitmapModel::Gray : BitmapModel::RGB;
    format.samplesPerPixel = isGray ? 1 : 3;
    format.bitsPerSample = 8;
    format.bytesPerRow = std::uint64_t { format.width } * format.samplesPerPixel;
    readMarkers();
    mInfo.isPlainJPEG = mInfo.orientation == 1;
}

JpegFile::~JpegFile() = default;

void JpegFile::readMarkers()
{
    const auto& state = mDecoder->state;
    constexpr UINT8 perInch = 1, perCentimetre = 2;
    const bool isStated = state.density_unit == perInch || state.density_unit == perCentimetre;
    if (state.saw_JFIF_marker && isStated && state.X_density > 1 && state.Y_density > 1) {
        const double scale = state.density_unit == perInch ? 1 : 2.54;
        mInfo.horizontalResolution = float(state.X_density * scale);
        mInfo.verticalResolution = float(state.Y_density * scale);
    }
    constexpr std::string_view exif = "Exif\0\0"sv;
    for (const auto* marker = state.marker_list; marker; marker = marker->next) {
        const std::string_view content = contentOf(*marker);
        if (marker->marker != JPEG_APP0 + 1 || !content.starts_with(exif))
            continue;
        const ExifTags tags = readExifTags(std::as_bytes(std::span(content.substr(exif.size()))));
        mInfo.orientation = tags.orientation.value_or(1);
        if (tags.horizontalResolution) {
            mInfo.horizontalResolution = *tags.horizontalResolution;
            mInfo.verticalResolution = *tags.verticalResolution;
        }
        break;
    }
    mInfo.profile = profileIn(state.marker_list);
    if (!mInfo.profile.empty() && !isProfileOf(mInfo.format.model, mInfo.profile))
        mInfo.profile.clear();
}

void JpegFile::readRows(const TakeRow& take)
{
    mDecoder->state.out_color_space = mInfo.format.model == BitmapModel::Gray ? JCS_GRAYSCALE : JCS_RGB;
    read(mInfo.format.samplesPerPixel, take);
}

bool JpegFile::readDrawableRows(const TakeRow& take)
{
    mDecoder->state.out_color_space
        = std::endian::native == std::endian::little ? JCS_EXT_BGRA : JCS_EXT_ARGB;
    read(4, take);
    return true;
}

void JpegFile::read(std::size_t pixelBytes, const TakeRow& take)
{
    auto& state = mDecoder->state;
    jpeg_start_decompress(&state);
    std::vector<unsigned char> row(pixelBytes * state.output_width);
    JSAMPROW rows[] { row.data() };
    while (state.output_scanline < state.output_height) {
        const std::uint32_t y = state.output_scanline;
        if (jpeg_read_scanlines(&state, rows, 1) == 1)
            take(y, reinterpret_cast<const std::byte*>(row.data()));
    }
    jpeg_finish_decompress(&state);
}

} // namespace vxr::importing
