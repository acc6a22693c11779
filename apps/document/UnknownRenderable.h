#pragma once

#include <vxr/host/archiving/VXAXMLKeptParts.h>
#include <vxr/renderables/VXRRenderable.h>

namespace app {

/// Stands where a document has an element of a kind that this program doesn't know. Draws nothing.
class UnknownRenderable final : public vxr::VXRRenderable {
public:
    explicit UnknownRenderable(vxr::VXAXMLKeptElement element)
        : mElement(std::move(element))
    {
    }

    const vxr::VXAXMLKeptElement& element() const { return mElement; }

private:
    vxr::VXAXMLKeptElement mElement;
};

} // namespace app
