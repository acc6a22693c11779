#pragma once

#include <vxr/host/utility/VXUFlushable.h>
#include <vxr/platform/base/Object.h>
#include <vxr/platform/graphics/values/Geometry.h>

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace vxr {

class Data;
class MutableData;
class Pasteboard;
class PlatformImage;
class VXACoder;
class VXADecoder;
class VXEData;
class VXEDataManager;
class VXEPasteboardAssistant;
class VXRImageData;
class VXRImageRenderer;

inline constexpr std::string_view kVXRImageBinaryDMIdentifier = "VXRImageBinaryDMIdentifier";
/// Its object is the `VXRImageBinary`.
inline constexpr std::string_view VXRImageBinaryWasFlushedNotification
    = "VXRImageBinaryWasFlushedNotification";

/// An imported picture: the bytes of its file, and their decoded form, which is built when it is needed and
/// may be flushed at any time. Factories answer none for what can't be accepted. Bytes of an accepted type
/// that nothing can decode make a binary that is corrupted; both that and a missing one draw as placeholders.
class VXR_EXPORT VXRImageBinary final : public Object,
                                        public VXUFlushable,
                                        public std::enable_shared_from_this<VXRImageBinary> {
public:
    using EPSConversion = std::function<std::shared_ptr<const Data>(
        const std::shared_ptr<const Data>& eps, const std::string& path, std::string* error)>;

    // What is accepted. Types are extensions and HFS types in quotes.
    static const std::vector<std::string>& imageFileTypes();
    static const std::vector<std::string>& epsImageFileTypes(); ///< with EPS
    static std::vector<std::string_view> pasteboardTypes(); ///< best first
    static bool canInitFromFile(const std::string& path);
    static bool epsCanInitFromFile(const std::string& path);
    static bool canInitFromPasteboard(const Pasteboard&);

    // Factories. The manager may be none. With one, equal bytes that are shared give one binary.
    static std::shared_ptr<VXRImageBinary> imageBinaryFromFileUsingDataManager(
        const std::string& path, VXEDataManager*);
    /// An empty path stands for none.
    static std::shared_ptr<VXRImageBinary> imageBinaryFromFileDisplayNameUsingDataManagerResourceType(
        const std::string& path, const std::string& displayName, VXEDataManager*, std::uint32_t resourceType);
    static std::shared_ptr<VXRImageBinary> imageBinaryWithDataNameTypeUsingDataManager(
        std::shared_ptr<const Data>, const std::string& name, std::uint32_t hfsType, VXEDataManager*);
    static std::shared_ptr<VXRImageBinary> unsharedImageBinaryWithDataNameTypeUsingDataManager(
        std::shared_ptr<const Data>, const std::string& name, std::uint32_t hfsType, VXEDataManager*);
    static std::shared_ptr<VXRImageBinary> imageBinaryFromPasteboardUsingDataManager(
        const Pasteboard&, VXEDataManager*);

    // EPS. `error` is never set.
    static std::shared_ptr<MutableData> pdfDataFromEPSDataPathError(
        const std::shared_ptr<const Data>& eps, const std::string& path, std::string* error);
    static std::shared_ptr<VXRImageBinary> pdfImageBinaryFromEPSFileUsingDataManagerError(
        const std::string& path, VXEDataManager*, std::string* error);
    static std::shared_ptr<VXRImageBinary> epsImageBinaryFromFileUsingDataManagerError(
        const std::string& path, VXEDataManager*, std::string* error);
    /// applicationPDFDataFromEPSData:path:error: A host's own conversion; an empty one takes it back.
    static void setApplicationPDFDataFromEPSData(EPSConversion);

    static std::string p_saveNameFromPath(const std::string& path); ///< empty for none
    static std::string p_stripHFSTypeString(const std::string&); ///< without quotes that enclose it

    VXRImageBinary(); ///< without data: for factories and reading
    ~VXRImageBinary() override;
    VXRImageBinary(const VXRImageBinary&) = delete;
    VXRImageBinary& operator=(const VXRImageBinary&) = delete;

    const std::shared_ptr<VXEData>& data() const { return mData; }
    void setData(std::shared_ptr<VXEData> data) { mData = std::move(data); }
    /// Built now if it is not and can be; otherwise counts as a touch.
    const std::shared_ptr<VXRImageData>& imageData();
    void setImageData(std::shared_ptr<VXRImageData>);
    bool imageIsLoaded() { return imageData() != nullptr; } ///< may load it
    bool hasImageData() const { return mImageData != nullptr; } ///< loads nothing
    Size naturalImageSize(); ///< points; 100 by 100 when nothing better is known
    void setNaturalImageSize(Size size) { mNaturalImageSize = size; }

    std::string name() const; ///< the display name of the data
    std::shared_ptr<PlatformImage> nsImage(); ///< or none
    std::shared_ptr<VXRImageRenderer> imageRenderer(); ///< a placeholder's for a missing or corrupted picture
    bool isMissing() const;
    bool isCorrupted() const;
    bool sharable() const;

    // Memory. A flush drops the decoded form, or, when there is none, the bytes.
    std::size_t bytesUsed() const override;
    bool isFlushable() const override;
    void flushLocalData() override;

    bool isEqual(const Object& other) const override; ///< equivalent data
    void putNativeStandardPasteboardDataOnPasteboardAssistant(VXEPasteboardAssistant&);

    void encodeWithCoder(VXACoder&) const;
    static std::shared_ptr<VXRImageBinary> initWithCoder(VXADecoder&);
    /// Lets the sequential coder write and read binaries. Does nothing after the first call.
    static void registerCoding();

    void _constructImageData();

private:
    static std::shared_ptr<VXRImageBinary> _initFromFileUsingDataManagerSharable(
        const std::string& path, VXEDataManager*, bool sharable);
    static std::shared_ptr<VXRImageBinary> _initWithDataNameTypeUsingDataManagerSharable(
        std::shared_ptr<const Data>, std::string name, std::uint32_t hfsType, VXEDataManager*, bool sharable);
    static std::shared_ptr<VXRImageBinary> _initFromPasteboardUsingDataManagerSharable(
        const Pasteboard&, VXEDataManager*, bool sharable);
    static std::shared_ptr<VXRImageBinary> registeredBinary(VXEDataManager&, const std::shared_ptr<VXEData>&);
    static std::shared_ptr<VXRImageBinary> binaryWithData(
        std::shared_ptr<VXEData>, VXEDataManager* registeredWith);

    std::shared_ptr<VXEData> mData;
    std::shared_ptr<VXRImageData> mImageData;
    Size mNaturalImageSize;
};

// Callbacks of the platform's services. `info` is a `MutableData` here, whoever owns it ...
VXR_EXPORT std::size_t PutBytesIntoNSData(void* info, const void* bytes, std::size_t count);
// ... here a heap allocated shared pointer to one ...
VXR_EXPORT std::size_t VXDPutBytesForNSMutableDataCGConsumer(
    void* info, const void* bytes, std::size_t count);
VXR_EXPORT void VXDReleaseNSMutableDataConsumer(void* info);
// ... and here one to the `const Data` that is provided.
VXR_EXPORT void ReleasePDFDocumentData(void* info, const void* bytes, std::size_t size);
/// The bytes outlive the call, until the next one.
VXR_EXPORT void ReleasePICTData(void* info, const void* bytes, std::size_t size);

} // namespace vxr
