#pragma once

#include <vxr/platform/base/Object.h>

#include <string_view>

namespace vxr {

class Data;
class Pasteboard;
class VXEData;

/// Puts what a copy offers on a pasteboard.
class VXR_EXPORT VXEPasteboardAssistant : public Object {
public:
    explicit VXEPasteboardAssistant(std::shared_ptr<Pasteboard>);
    ~VXEPasteboardAssistant() override;

    virtual void setVXEDataForType(const std::shared_ptr<VXEData>&, std::string_view type);
    virtual void setDataForType(std::shared_ptr<const Data>, std::string_view type);

private:
    std::shared_ptr<Pasteboard> mPasteboard;
};

} // namespace vxr
