#pragma once

#include <string>

namespace app {

/// Prints what a picture's file says of itself. Throws `std::runtime_error` when it can't be read.
void inspectPicture(const std::string& path);

} // namespace app
