#pragma once

#include "DocumentPage.h"

#include <apps/vxr/import/Import.h>

namespace app {

/// A drawing as a page of a document, labelled with the names of its elements. The renderables are shared.
DocumentPage pageFrom(const ImportedDrawing&);

/// A page as the roads draw it. The renderables are shared.
ImportedDrawing drawingFrom(const DocumentPage&);

} // namespace app
