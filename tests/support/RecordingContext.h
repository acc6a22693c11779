#pragma once

#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/recording/RecordedText.h>
#include <vxr/platform/graphics/recording/RecordingContext.h>

#include <functional>
#include <string>

namespace vxr::test {

using recorded::text;
using vxr::RecordingContext;

/// What `draw` draws into the current context, a line a call.
inline std::string recordingOf(const std::function<void()>& draw, bool drawsToScreen = true)
{
    RecordingContext context;
    const CurrentContextScope scope(context, drawsToScreen, false);
    draw();
    return context.recorded();
}

} // namespace vxr::test
