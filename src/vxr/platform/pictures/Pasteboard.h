#pragma once

#include <vxr/platform/base/Object.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vxr {

class Data;

inline constexpr std::string_view kPasteboardTypePDF = "application/pdf";
inline constexpr std::string_view kPasteboardTypeTIFF = "image/tiff";
inline constexpr std::string_view kPasteboardTypePICT = "image/x-pict";
inline constexpr std::string_view kPasteboardTypeString = "text/plain";

/// What is exchanged with other programs: bytes under types. A host fills it from the clipboard.
class VXR_EXPORT Pasteboard final : public Object {
public:
    ~Pasteboard() override;

    void clearContents() { mContents.clear(); }
    void setDataForType(std::shared_ptr<const Data>, std::string_view type); ///< none takes the type away
    void setStringForType(std::string_view string, std::string_view type);

    std::shared_ptr<const Data> dataForType(std::string_view type) const; ///< or none
    std::optional<std::string> stringForType(std::string_view type) const;
    /// The first of `types` that is offered.
    std::optional<std::string_view> availableTypeFromArray(std::span<const std::string_view> types) const;

private:
    std::vector<std::pair<std::string, std::shared_ptr<const Data>>> mContents;
};

} // namespace vxr
