#include <vxr/renderables/VXRTextureSet.h>

#include <vxr/renderables/VXRRenderable.h>

#include <algorithm>

namespace vxr {

std::shared_ptr<VXRTextureSet> VXRTextureSet::initWithSessionAllowActiveCollapseFinalTextureSource(
    VXXTextureSession* session, bool allowActiveCollapse, VXRRenderable* finalTextureSource)
{
    return std::make_shared<VXRTextureSet>(Key {}, session, allowActiveCollapse, finalTextureSource);
}

VXRTextureSet::VXRTextureSet(
    Key, VXXTextureSession* session, bool allowActiveCollapse, VXRRenderable* finalTextureSource)
    : mSession(session)
    , mAllowsActiveCollapse(allowActiveCollapse)
    , mFinalTextureSource(finalTextureSource)
{
    if (finalTextureSource)
        finalTextureSource->rare().textureSets.push_back(this);
}

VXRTextureSet::~VXRTextureSet()
{
    const auto leave = [this](VXRRenderable& renderable) { std::erase(renderable.rare().textureSets, this); };
    for (const Entry& entry : mEntries)
        leave(*entry.renderable);
    if (mFinalTextureSource)
        leave(*mFinalTextureSource);
}

void VXRTextureSet::addRenderableZOrderChunkStage(VXRRenderable& renderable, int zOrder, int chunkStage)
{
    const auto above = std::upper_bound(mEntries.begin(), mEntries.end(), zOrder,
        [](int order, const Entry& entry) { return order < entry.zOrder; });
    mEntries.insert(above, { &renderable, zOrder, chunkStage });
    renderable.rare().textureSets.push_back(this);
}

void VXRTextureSet::removeRenderable(VXRRenderable& renderable)
{
    std::erase(renderable.rare().textureSets, this);
    std::erase_if(mEntries, [&](const Entry& entry) { return entry.renderable == &renderable; });
    if (mFinalTextureSource == &renderable)
        mFinalTextureSource = nullptr;
}

std::vector<VXRTexture*> VXRTextureSet::texturesForChunkStage(int chunkStage) const
{
    std::vector<VXRTexture*> textures;
    for (const Entry& entry : mEntries) {
        if (entry.chunkStage > chunkStage)
            continue;
        entry.renderable->prepareToDraw();
        entry.renderable->addTexturesToArray(textures);
    }
    return textures;
}

} // namespace vxr
