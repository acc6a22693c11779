#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace app {

// Files as the commands read and write them. All functions throw `std::runtime_error` with the reason.

/// Puts a file in place as a whole or not at all, and lets no signal come between.
void writeFile(const std::string& path, std::string_view bytes);

/// All bytes of a file, or of standard input for `-`. One larger than `limit` is refused.
std::string readWholeFile(const std::string& path, std::size_t limit);

/// Makes the folder and those above it.
void makeFolder(const std::string& path);

/// The input itself, or, of a folder, the files in it that have one of the extensions, by name. Refuses a
/// folder without any.
std::vector<std::string> filesOf(const std::string& input, const std::vector<std::string>& extensions);

/// Keeps signals that end the program waiting for its scope to end.
class SignalsHeld {
public:
    SignalsHeld();
    ~SignalsHeld();
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
};

} // namespace app
