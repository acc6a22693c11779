#pragma once

#include <string>
#include <string_view>

namespace app::svg {

/// Whether the data starts with the gzip signature, as a compressed drawing (`.svgz`) does.
bool isGzip(std::string_view);

/// Decompresses the data. Throws `DocumentError` for damaged data and for more than `limit` bytes.
std::string unpackGzip(std::string_view, std::size_t limit);

} // namespace app::svg
