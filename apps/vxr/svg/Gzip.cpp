#include "Gzip.h"

#include "Xml.h"

#include <zlib.h>

#include <algorithm>
#include <memory>

namespace app::svg {

bool isGzip(std::string_view bytes) { return bytes.starts_with("\x1f\x8b"); }

std::string unpackGzip(std::string_view bytes, std::size_t limit)
{
    z_stream stream {};
    constexpr int gzipWindow = 16 + MAX_WBITS;
    if (inflateInit2(&stream, gzipWindow) != Z_OK)
        throw std::bad_alloc();
    const std::unique_ptr<z_stream, int (*)(z_stream*)> owner(&stream, inflateEnd);
    std::string result;
    std::string block(1 << 16, '\0');
    for (int status = Z_OK; status != Z_STREAM_END;) {
        if (stream.avail_in == 0) {
            constexpr std::size_t most = 1u << 30;
            stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
            stream.avail_in = static_cast<uInt>(std::min(bytes.size(), most));
            bytes.remove_prefix(stream.avail_in);
        }
        stream.next_out = reinterpret_cast<Bytef*>(block.data());
        stream.avail_out = static_cast<uInt>(block.size());
        status = inflate(&stream, Z_NO_FLUSH);
        const std::size_t count = block.size() - stream.avail_out;
        if ((status != Z_OK && status != Z_STREAM_END) || (count == 0 && status != Z_STREAM_END))
            throw DocumentError(0, "the compressed drawing is damaged or cut off");
        result.append(block, 0, count);
        if (result.size() > limit)
            throw DocumentError(
                0, "the compressed drawing unpacks to more than " + std::to_string(limit) + " bytes");
    }
    return result;
}

} // namespace app::svg
