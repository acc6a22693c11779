#pragma once

#include <vxr/platform/graphics/Context.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vxr {
class VXRRenderable;
}

namespace vxr::demo {

using Renderables = std::vector<std::shared_ptr<VXRRenderable>>;

/// A picture that shows one thing the library does. The same list feeds the gallery, pictures in tests
/// and benchmarks. Coordinates are y down, origin at the top left of `size`, like a flipped view.
struct Scene {
    std::string name; ///< file name without extension: lower case and hyphens
    std::string title; ///< one sentence for the reader of the gallery
    Size size; ///< in points
    /// Draws into the current context, which has the scene's space set up already.
    std::function<void(Context&)> draw;
    /// For scenes of renderables: makes them afresh, back to front. Empty for scenes drawn by hand; where
    /// it is set, `draw` shows these renderables.
    std::function<Renderables()> build;
};

/// A scene of renderables, which `build` makes afresh, back to front.
Scene sceneOfRenderables(std::string name, std::string title, Size size, Renderables (*build)());

/// Every scene, in the order of the gallery.
const std::vector<Scene>& scenes();

/// Draws `scene` on white into `context`, whose default space has the scene's points.
void drawScene(const Scene& scene, const std::shared_ptr<Context>& context, bool toScreen);

// One function a subject; `scenes()` puts their results in a row.
std::vector<Scene> outlineScenes();
std::vector<Scene> pathScenes();
std::vector<Scene> gradientScenes();
std::vector<Scene> textWrapScenes();
std::vector<Scene> modelScenes();
std::vector<Scene> imageScenes();
std::vector<Scene> fileScenes();
std::vector<Scene> filterScenes();
std::vector<Scene> curveScenes();
std::vector<Scene> strokeScenes();

} // namespace vxr::demo
