#pragma once

#include <vxr/platform/base/Object.h>

#include <memory>
#include <span>
#include <vector>

namespace vxr {

class VXRRenderable;
class VXRTexture;
class VXXTextureSession;

/// Renderables whose textures an animation presents together, bottom first. Owns neither the renderables
/// nor the session: a renderable leaves all sets when it goes away.
class VXR_EXPORT VXRTextureSet : public Object {
public:
    struct Entry {
        VXRRenderable* renderable = nullptr;
        int zOrder = 0;
        int chunkStage = 0; ///< step of the animation at which it appears
    };

    /// `finalTextureSource` shows how the set looks when the animation is over; none for as it is.
    static std::shared_ptr<VXRTextureSet> initWithSessionAllowActiveCollapseFinalTextureSource(
        VXXTextureSession* session, bool allowActiveCollapse, VXRRenderable* finalTextureSource);

    VXXTextureSession* session() const { return mSession; }
    bool allowsActiveCollapse() const { return mAllowsActiveCollapse; } ///< may become one picture meanwhile
    VXRRenderable* finalTextureSource() const { return mFinalTextureSource; }

    /// Keeps the entries in z order, equal ones in the order of their coming.
    void addRenderableZOrderChunkStage(VXRRenderable&, int zOrder, int chunkStage);
    void removeRenderable(VXRRenderable&);
    std::span<const Entry> entries() const { return mEntries; }

    /// The renderables' textures up to a stage, after they were brought up to date.
    std::vector<VXRTexture*> texturesForChunkStage(int chunkStage) const;

    ~VXRTextureSet() override;
    struct Key { }; ///< keeps the constructor for the class's own use
    VXRTextureSet(Key, VXXTextureSession*, bool allowActiveCollapse, VXRRenderable* finalTextureSource);

private:
    VXXTextureSession* mSession;
    bool mAllowsActiveCollapse;
    VXRRenderable* mFinalTextureSource;
    std::vector<Entry> mEntries;
};

} // namespace vxr
