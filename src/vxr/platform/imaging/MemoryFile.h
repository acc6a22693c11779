#pragma once

#include <vxr/platform/base/Object.h>

#include <cstddef>
#include <span>

namespace vxr {

/// Immutable bytes in a sealed memory file: nobody can change, shorten or extend them, so they can be
/// handed to another process and read while it holds them. Results of an import are mapped, not copied.
class VXR_EXPORT MemoryFile final : public Object {
public:
    /// Copies the bytes. None when memory or descriptors are short.
    static std::shared_ptr<const MemoryFile> createWithCopy(std::span<const std::byte> bytes);
    static std::shared_ptr<const MemoryFile> createWithCopy(const void* bytes, std::size_t size);
    /// The whole file at `path`; none, and a reason in `error`, when it can't be read.
    static std::shared_ptr<const MemoryFile> createWithContentsOfFile(
        const std::string& path, std::string* error = nullptr);
    /// Takes over a descriptor that came from another process. None, and the descriptor closed, unless it
    /// is a memory file sealed against every change and no longer than `mostBytes`.
    static std::shared_ptr<const MemoryFile> createWithSealedDescriptor(
        int descriptor, std::size_t mostBytes);

    ~MemoryFile() override;

    std::span<const std::byte> bytes() const { return { mBytes, mSize }; }
    std::size_t size() const { return mSize; }
    int descriptor() const { return mDescriptor; } ///< for passing on; stays the object's own

    /// By content.
    bool isEqual(const Object& other) const override;

private:
    MemoryFile(int descriptor, const std::byte* bytes, std::size_t size);

    int mDescriptor;
    const std::byte* mBytes; ///< null when the file is empty
    std::size_t mSize;
};

} // namespace vxr
