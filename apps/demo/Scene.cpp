#include "Scene.h"

#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/renderables/VXRRenderable.h>

#include <iterator>

namespace vxr::demo {

Scene sceneOfRenderables(std::string name, std::string title, Size size, Renderables (*build)())
{
    const auto draw = [build](Context& context) {
        for (const auto& renderable : build())
            renderable->renderLayeredIntoContext(context);
    };
    return { std::move(name), std::move(title), size, draw, build };
}

const std::vector<Scene>& scenes()
{
    static const std::vector<Scene> all = [] {
        std::vector<Scene> list;
        for (auto subject : { pathScenes, outlineScenes, gradientScenes, textWrapScenes, modelScenes,
                 imageScenes, fileScenes, filterScenes, curveScenes, strokeScenes }) {
            std::vector<Scene> more = subject();
            std::move(more.begin(), more.end(), std::back_inserter(list));
        }
        return list;
    }();
    return all;
}

void drawScene(const Scene& scene, const std::shared_ptr<Context>& context, bool toScreen)
{
    const CurrentContextScope current(std::make_shared<GraphicsContext>(context, toScreen, true));
    const StateSaver saved(*context);
    context->setFillColor(ColorValue::gray(1));
    context->fillRect({ 0, 0, scene.size.width, scene.size.height });
    context->translate(0, scene.size.height);
    context->scale(1, -1);
    scene.draw(*context);
}

} // namespace vxr::demo
