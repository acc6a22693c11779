#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace app {

/// Why a document, or a part of it, can't be used.
struct DocumentFileError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// What a container may cost.
struct ContainerLimits {
    std::size_t entries = 200'000;
    std::size_t entryBytes = std::size_t { 256 } << 20; ///< of one entry, unpacked
    std::size_t totalBytes = std::size_t { 4 } << 30; ///< of all that a document carries over
    std::size_t salvagedBytes = std::size_t { 1 } << 30; ///< of all, where the list of contents is missing
};

/// A zip file with its entries by name. Opening one reads its list of contents alone, and an entry when it is
/// asked for. Where the list is missing or damaged, the entries are searched for in the file.
///
/// Names that lead out of the container, names that appear twice and encrypted entries are left out, with a
/// line in `troubles`.
class ContainerReader {
public:
    /// Throws `DocumentFileError` when the file can't be read or holds nothing of a container.
    explicit ContainerReader(const std::string& path, const ContainerLimits& = {});
    /// The same from memory.
    static std::unique_ptr<ContainerReader> fromBytes(std::string bytes, const ContainerLimits& = {});
    ~ContainerReader();
    ContainerReader(const ContainerReader&) = delete;
    ContainerReader& operator=(const ContainerReader&) = delete;

    const std::vector<std::string>& names() const { return mNames; } ///< in their order
    bool has(const std::string& name) const { return mEntries.count(name) > 0; }
    /// Throws `DocumentFileError` with the reason when the entry isn't there, is damaged or too large.
    std::string read(const std::string& name) const;
    /// Size and checksum as the list of contents has them, without reading the entry.
    std::pair<std::uint64_t, std::uint32_t> sizeAndChecksum(const std::string& name) const;
    const std::vector<std::string>& troubles() const { return mTroubles; }
    const ContainerLimits& limits() const { return mLimits; }

private:
    struct Entry {
        std::int64_t index = -1; ///< in the list of contents; none of a salvaged one
        std::uint64_t size = 0;
        std::uint32_t checksum = 0;
        std::string bytes; ///< of a salvaged one
    };

    ContainerReader() = default;
    void open(void* archive);
    bool admit(const std::string& name);
    void salvage(std::string_view bytes);

    ContainerLimits mLimits;
    void* mArchive = nullptr; ///< the zip library's handle
    std::string mBytes; ///< of a container in memory
    std::vector<std::string> mNames;
    std::map<std::string, Entry> mEntries;
    std::vector<std::string> mTroubles;
};

/// Makes a container. The same entries give the same bytes.
class ContainerWriter {
public:
    enum class Packing { Stored, Deflated };
    void add(std::string name, std::string bytes, Packing = Packing::Deflated);
    std::string finish(); ///< throws `DocumentFileError`

private:
    struct Entry {
        std::string name, bytes;
        Packing packing;
    };
    std::vector<Entry> mEntries;
};

/// Whether an entry may have the name: a relative path in UTF-8 without `.`, `..`, empty parts, backslashes
/// or control characters.
bool isSafeEntryName(std::string_view);

} // namespace app
