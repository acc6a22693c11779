#include <vxr/host/data/VXEData.h>
#include <vxr/host/data/VXEPasteboardAssistant.h>
#include <vxr/platform/pictures/Pasteboard.h>

namespace vxr {

VXEPasteboardAssistant::VXEPasteboardAssistant(std::shared_ptr<Pasteboard> pasteboard)
    : mPasteboard(std::move(pasteboard))
{
}

VXEPasteboardAssistant::~VXEPasteboardAssistant() = default;

void VXEPasteboardAssistant::setVXEDataForType(const std::shared_ptr<VXEData>& data, std::string_view type)
{
    setDataForType(data->data(), type);
}

void VXEPasteboardAssistant::setDataForType(std::shared_ptr<const Data> data, std::string_view type)
{
    mPasteboard->setDataForType(std::move(data), type);
}

} // namespace vxr
