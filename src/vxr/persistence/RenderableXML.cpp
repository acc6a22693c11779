#include <vxr/fills/VXRShadow.h>
#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/TransformXML.h>
#include <vxr/persistence/VXRRenderableArchiving.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/renderables/VXRLine.h>
#include <vxr/renderables/VXRReflectionRenderable.h>

#include <cmath>
#include <unordered_set>

namespace vxr {
namespace {

constexpr const char* thisFile = "RenderableXML.cpp";

bool isFinite(const AffineTransform& t)
{
    return std::isfinite(t.m11) && std::isfinite(t.m12) && std::isfinite(t.m21) && std::isfinite(t.m22)
        && std::isfinite(t.tX) && std::isfinite(t.tY);
}

template <class Visit> void visitAll(const VXRGroup::Members& renderables, const Visit& visit)
{
    for (const auto& renderable : renderables) {
        visit(*renderable);
        if (const auto* group = dynamic_cast<const VXRGroup*>(renderable.get()))
            visitAll(group->renderables(), visit);
    }
}

/// A group's transform is that of its members' frame.
void encodeGroupClass(const VXRGroup& group, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    VXREncodeGroup(group, archiver, node);
}

std::shared_ptr<VXRGroup> newGroup(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto group = std::make_shared<VXRGroup>();
    VXRReadGroup(*group, unarchiver, node);
    return group;
}

} // namespace

void VXREncodeRenderable(const VXRRenderable& renderable, VXAXMLArchiver& archiver, VXAXMLNode* node)
{
    if (renderable.opacity() != 1)
        setNumber(node, "opacity", renderable.opacity());
    vxaxmlSetBoolNsPropDefault(node, VelloraNamespace, "allows-tiling", renderable.allowsTiling(), true);
    if (!renderable.transform().isIdentity())
        encodeTransformChild(renderable.transform(), node, "transform");
    if (renderable.hasClipRect())
        encodeRectChild(renderable.clipRect(), node, "clip-rect");
    if (renderable.shadow())
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(
            *renderable.shadow(), node, "shadow", VelloraNamespace);
}

void VXRReadRenderable(VXRRenderable& renderable, VXAXMLUnarchiver& unarchiver, VXAXMLNode* node)
{
    const PropertyReader properties { thisFile, "a renderable", node };
    if (vxaxmlFirstChildNsNamed(node, VelloraNamespace, "transform")) {
        const AffineTransform transform = transformFromChild(node, "transform", "renderable");
        if (isFinite(transform))
            renderable.setTransform(transform);
        else
            properties.cannotGet("transform");
    }
    double opacity = 1;
    vxaxmlGetDoubleNsProp(node, VelloraNamespace, "opacity", opacity);
    if (opacity >= 0 && opacity <= 1)
        renderable.setOpacity(static_cast<float>(opacity));
    else
        properties.cannotGet("opacity");
    renderable.setAllowsTiling(vxaxmlBoolNsPropDefault(node, VelloraNamespace, "allows-tiling", true));
    Rect clipRect;
    if (properties.getRect("clip-rect", clipRect))
        renderable.setClipRect(clipRect);
    if (VXAXMLNode* const child = vxaxmlFirstChildNsNamed(node, VelloraNamespace, "shadow")) {
        auto shadow = VXRObjectFromNode<VXRShadow>(unarchiver, child);
        if (!shadow)
            properties.cannotGet("shadow");
        renderable.setShadow(std::move(shadow));
    }
}

// Lists.

void VXREncodeRenderables(const VXRGroup::Members& renderables, VXAXMLArchiver& archiver, VXAXMLNode* parent)
{
    for (const auto& renderable : renderables)
        archiver.encodeObjectAsChildOf(*renderable, parent);
}

VXRGroup::Members VXRReadRenderables(VXAXMLUnarchiver& unarchiver, const VXAXMLNode* parent)
{
    VXRGroup::Members renderables;
    for (VXAXMLNode* node = vxaxmlFirstChildElement(parent); node; node = vxaxmlNextSiblingElement(node)) {
        auto renderable = std::dynamic_pointer_cast<VXRRenderable>(unarchiver.createObjectFromNode(node));
        const VXAXMLClass* const fallback = unarchiver.classOfUnknownElements();
        if (!renderable && fallback)
            renderable = std::dynamic_pointer_cast<VXRRenderable>(
                unarchiver.createObjectOfClassFromNode(*fallback, node));
        else if (!renderable)
            warn(thisFile,
                fmt::format("WARNING, '{}' at {} can't be read as a renderable and is left out.",
                    vxaxmlNodeName(node), fmt::ptr(node)));
        if (renderable)
            renderables.push_back(std::move(renderable));
    }
    return renderables;
}

void VXRGiveIdsToReferredRenderables(const VXRGroup::Members& renderables, VXAXMLArchiver& archiver)
{
    std::unordered_set<const VXRRenderable*> targets;
    visitAll(renderables, [&](const VXRRenderable& renderable) {
        const auto* line = dynamic_cast<const VXRLine*>(&renderable);
        for (int handle = 0; line && handle < VXRLine::handleCount; ++handle) {
            if (const VXRRenderable* target = line->connection(handle).renderable)
                targets.insert(target);
        }
        if (const auto* reflection = dynamic_cast<const VXRReflectionRenderable*>(&renderable))
            targets.insert(reflection->reflectedRenderable().get());
    });
    if (targets.empty())
        return;
    int count = 0;
    visitAll(renderables, [&](const VXRRenderable& renderable) {
        if (targets.contains(&renderable))
            archiver.setIdOfObject(renderable, fmt::format("r{}", ++count));
    });
}

// Groups.

void VXREncodeGroup(const VXRGroup& group, VXAXMLArchiver& archiver, VXAXMLNode* node)
{
    VXREncodeRenderable(group, archiver, node);
    for (const auto& path : group.clipPaths())
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(*path, node, "clip", VelloraNamespace);
    VXREncodeRenderables(
        group.renderables(), archiver, vxaxmlCreateChild(node, VelloraNamespace, "renderables"));
}

void VXRReadGroup(VXRGroup& group, VXAXMLUnarchiver& unarchiver, VXAXMLNode* node)
{
    group.setRenderables(
        VXRReadRenderables(unarchiver, vxaxmlFirstChildNsNamed(node, VelloraNamespace, "renderables")));
    VXRGroup::ClipPaths clip;
    for (VXAXMLNode* child = vxaxmlFirstChildNsNamed(node, VelloraNamespace, "clip"); child;
         child = vxaxmlNextSiblingNsNamed(child, VelloraNamespace, "clip")) {
        // A clip that can't be read hides nothing, so that nothing is lost to sight.
        if (auto path = finitePathFromNode(unarchiver, child))
            clip.push_back(std::move(path));
    }
    group.setClipPaths(std::move(clip));
    VXRReadRenderable(group, unarchiver, node);
}

template <> const VXAXMLClass& VXRXMLClass<VXRGroup>()
{
    return recordOf<VXRGroup, encodeGroupClass, newGroup>("VXRGroup");
}

} // namespace vxr
