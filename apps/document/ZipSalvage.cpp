#include "ZipSalvage.h"

#include <zlib.h>

#include <algorithm>
#include <optional>

namespace app {

namespace {

constexpr std::string_view entryMark = "PK\x03\x04";
constexpr std::size_t headerSize = 30;

std::uint32_t number(std::string_view bytes, std::size_t at, int size)
{
    std::uint32_t value = 0;
    for (int i = size; i-- > 0;)
        value = value << 8 | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
    return value;
}

/// `budget` is what may be unpacked in all, of damaged entries too.
std::optional<std::string> inflated(std::string_view packed, std::size_t size, std::size_t& budget)
{
    z_stream stream {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        return std::nullopt;
    const std::unique_ptr<z_stream, int (*)(z_stream*)> owner(&stream, inflateEnd);
    std::string result;
    std::string block(1 << 16, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    for (int status = Z_OK; status == Z_OK;) {
        stream.next_out = reinterpret_cast<Bytef*>(block.data());
        stream.avail_out = static_cast<uInt>(block.size());
        status = inflate(&stream, Z_NO_FLUSH);
        const std::size_t count = block.size() - stream.avail_out;
        result.append(block, 0, count);
        budget -= std::min(budget, count);
        if (result.size() > size || budget == 0)
            return std::nullopt;
    }
    return result.size() == size ? std::optional(std::move(result)) : std::nullopt;
}

/// The entry whose header stands at `at`; `end` is set behind it.
std::optional<SalvagedEntry> entryAt(std::string_view bytes, std::size_t at, std::size_t& end,
    const ContainerLimits& limits, std::size_t& budget)
{
    if (bytes.size() - at < headerSize)
        return std::nullopt;
    const std::uint32_t flags = number(bytes, at + 6, 2), method = number(bytes, at + 8, 2);
    const std::size_t packedSize = number(bytes, at + 18, 4), size = number(bytes, at + 22, 4);
    const std::size_t nameSize = number(bytes, at + 26, 2), extraSize = number(bytes, at + 28, 2);
    const std::size_t start = at + headerSize + nameSize + extraSize;
    constexpr std::uint32_t encrypted = 1, sizesFollow = 8;
    if ((flags & (encrypted | sizesFollow)) || start > bytes.size() || packedSize > bytes.size() - start
        || size > limits.entryBytes)
        return std::nullopt;
    SalvagedEntry entry;
    entry.name = bytes.substr(at + headerSize, nameSize);
    entry.checksum = number(bytes, at + 14, 4);
    const std::string_view packed = bytes.substr(start, packedSize);
    if (method == 0)
        entry.bytes = packed;
    else if (std::optional<std::string> unpacked
        = method == 8 ? inflated(packed, size, budget) : std::nullopt)
        entry.bytes = std::move(*unpacked);
    else
        return std::nullopt;
    const auto* data = reinterpret_cast<const Bytef*>(entry.bytes.data());
    if (crc32_z(crc32_z(0, nullptr, 0), data, entry.bytes.size()) != entry.checksum)
        return std::nullopt;
    end = start + packedSize;
    return entry;
}

} // namespace

std::vector<SalvagedEntry> salvageZip(std::string_view bytes, const ContainerLimits& limits)
{
    std::vector<SalvagedEntry> entries;
    std::size_t budget = limits.salvagedBytes;
    for (std::size_t at = bytes.find(entryMark);
         at != bytes.npos && entries.size() < limits.entries && budget > 0;) {
        std::size_t end = at + 1;
        if (std::optional<SalvagedEntry> entry = entryAt(bytes, at, end, limits, budget)) {
            if (!entry->name.ends_with('/'))
                entries.push_back(std::move(*entry));
        }
        at = bytes.find(entryMark, end);
    }
    return entries;
}

} // namespace app
