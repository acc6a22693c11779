#pragma once

#include <string>

namespace app {

/// A file that appears under its name only when it is complete. Until `commit` it stands beside its place
/// under a name of its own, which goes away with this object or with a signal that ends the program.
class OutputFile {
public:
    /// Throws `std::runtime_error` with the reason when nothing can be written there.
    explicit OutputFile(std::string path);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::string& temporaryPath() const { return mTemporary; } ///< where to write
    void commit(); ///< throws like the constructor

private:
    void forget();

    std::string mPath;
    std::string mTemporary;
};

/// All bytes of a file. Throws `std::runtime_error` with the reason; one larger than `limit` is refused
/// before it is read.
std::string readWholeFile(const std::string& path, std::size_t limit);

/// Makes the folder and those above it. Throws `std::runtime_error` with the reason.
void makeFolder(const std::string& path);

} // namespace app
