#pragma once

#include <vxr/host/archiving/VXAXMLClass.h>

namespace app {

/// Makes the element names of all that a page may hold known to the archiver; once is enough.
void registerModelClasses();

/// Reads renderables of kinds that this program doesn't know as `UnknownRenderable`s.
const vxr::VXAXMLClass& unknownRenderableClass();

} // namespace app
