#pragma once

#include <string>
#include <string_view>

namespace app::svg {

/// Whether the bytes start as gzip data do, as those of a compressed drawing (`.svgz`).
bool isGzip(std::string_view);

/// What was compressed. Throws `DocumentError` for damaged data and for more than `limit` bytes.
std::string unpackGzip(std::string_view, std::size_t limit);

} // namespace app::svg
