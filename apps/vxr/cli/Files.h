#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace app {

// Files as the commands read and write them. All functions throw `std::runtime_error` with the reason.

/// Writes a file completely or not at all, with signals held back meanwhile.
void writeFile(const std::string& path, std::string_view bytes);

/// All bytes of a file, or of standard input for `-`. One larger than `limit` is refused.
std::string readWholeFile(const std::string& path, std::size_t limit);

/// Where a file is; empty for standard input.
std::string folderOf(const std::string& path);

/// Whether the file is a document rather than a drawing, by its first bytes or its name.
bool isDocumentFile(const std::string& path);

/// Creates the folder and its parents.
void makeFolder(const std::string& path);

/// The input itself or, for a folder, the files in it with one of the extensions, sorted by name. Throws for
/// a folder without any.
std::vector<std::string> filesOf(const std::string& input, const std::vector<std::string>& extensions);

/// Holds back signals that end the program until the end of the scope.
class SignalsHeld {
public:
    SignalsHeld();
    ~SignalsHeld();
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
};

} // namespace app
