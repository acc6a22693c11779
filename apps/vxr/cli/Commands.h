#pragma once

#include "Options.h"

namespace app {

// Each returns the program's exit status.
int runRender(const RenderOptions&);
int runFilter(const FilterOptions&);
int runConvert(const ConvertOptions&);
int runInspect(const InspectOptions&);
int runGallery(const GalleryOptions&);
int runReport(const ReportOptions&);

} // namespace app
