#pragma once

#include "KeptXML.h"

#include <vxr/renderables/VXRRenderable.h>

namespace app {

/// Stands where a document has an element of a kind that this program doesn't know. Draws nothing.
class UnknownRenderable final : public vxr::VXRRenderable {
public:
    explicit UnknownRenderable(KeptXML element)
        : mElement(std::move(element))
    {
    }

    const KeptXML& element() const { return mElement; }

private:
    KeptXML mElement;
};

} // namespace app
