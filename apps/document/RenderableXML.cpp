#include "RenderableXML.h"

#include "NodeHelpers.h"
#include "UnknownRenderable.h"

#include <apps/vxr/import/DrawnGroup.h>
#include <apps/vxr/import/DrawnShape.h>

#include <vxr/fills/VXRShadow.h>
#include <vxr/platform/base/Exceptions.h>
#include <vxr/protocols/VXRShapePainter.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/strokes/VXRStroke.h>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace app {

namespace {

using vxr::VelloraNamespace;
using vxr::VXAXMLArchiver;
using vxr::VXAXMLNode;
using vxr::VXAXMLUnarchiver;

// What all renderables have.

void encodePlacement(const vxr::VXRRenderable& renderable, VXAXMLNode* node)
{
    if (renderable.opacity() != 1)
        setNumber(node, "opacity", renderable.opacity());
    const vxr::AffineTransform t = renderable.transform();
    VXAXMLNode* child = vxr::vxaxmlCreateChild(node, VelloraNamespace, "transform");
    const std::pair<const char*, float> parts[] = { { "m11", t.m11 }, { "m12", t.m12 }, { "m21", t.m21 },
        { "m22", t.m22 }, { "tx", t.tX }, { "ty", t.tY } };
    for (const auto& [name, value] : parts)
        setNumber(child, name, value);
}

class Writer {
public:
    Writer(const RenderableNotesMap& notes, const SharedStyles& styles)
        : mNotes(notes)
    {
        for (const auto& [name, style] : styles)
            mNames.emplace(style.get(), name);
    }

    void write(const std::vector<std::shared_ptr<vxr::VXRRenderable>>& renderables, VXAXMLNode* parent)
    {
        for (const auto& renderable : renderables) {
            if (const auto* unknown = dynamic_cast<const UnknownRenderable*>(renderable.get()))
                unknown->element().appendTo(parent);
            else
                write(*renderable, parent);
        }
    }

private:
    void write(const vxr::VXRRenderable& renderable, VXAXMLNode* parent)
    {
        const auto* group = dynamic_cast<const vxr::VXRGroup*>(&renderable);
        const bool isShape
            = typeid(renderable) == typeid(DrawnShape) || typeid(renderable) == typeid(vxr::VXRShape);
        if (!group && !isShape) // a subclass would come back as a plain shape
            throw vxr::GenericException("documents can't hold " + renderable.description());
        VXAXMLNode* node = vxr::vxaxmlCreateChild(parent, VelloraNamespace, isShape ? "shape" : "group");
        const auto note = mNotes.find(&renderable);
        if (note != mNotes.end() && !note->second.label.empty())
            vxr::vxaxmlSetNSStringNsProp(node, VelloraNamespace, "label", note->second.label);
        encodePlacement(renderable, node);
        writeStyle(renderable.shadow().get(), "shadow", node, encodeChild);
        if (isShape)
            writeShape(static_cast<const vxr::VXRShape&>(renderable), node);
        else
            writeGroup(*group, node);
        if (note == mNotes.end())
            return;
        for (const KeptXML& unknown : note->second.unknown)
            unknown.appendTo(node);
    }

    void writeShape(const vxr::VXRShape& shape, VXAXMLNode* node)
    {
        vxr::vxaxmlSetBoolNsPropDefault(
            node, VelloraNamespace, "interior-stroke", shape.wantsInteriorStroke(), false);
        vxr::vxaxmlSetBoolNsPropDefault(node, VelloraNamespace, "outline-in-black-and-white",
            shape.alwaysStrokesWhenBlackAndWhite(), false);
        encodeChild(shape.path().get(), "path", node, mArchiver);
        writeStyle(dynamic_cast<const vxr::Object*>(shape.fill().get()), "fill", node, encodeAnyChild);
        writeStyle(shape.stroke().get(), "stroke", node, encodeAnyChild);
        encodeChild(shape.tailLineEnd().get(), "tail-line-end", node, mArchiver);
        encodeChild(shape.headLineEnd().get(), "head-line-end", node, mArchiver);
    }

    void writeGroup(const vxr::VXRGroup& group, VXAXMLNode* node)
    {
        for (const auto& path : group.clipPaths())
            encodeChild(path.get(), "clip", node, mArchiver);
        write(group.renderables(), vxr::vxaxmlCreateChild(node, VelloraNamespace, "renderables"));
    }

    template <class Encode>
    void writeStyle(const vxr::Object* style, const char* name, VXAXMLNode* parent, Encode encode)
    {
        const auto shared = mNames.find(style);
        if (shared == mNames.end())
            return encode(style, name, parent, mArchiver);
        VXAXMLNode* node = vxr::vxaxmlCreateChild(parent, VelloraNamespace, name);
        vxr::vxaxmlSetNSStringNsProp(node, VelloraNamespace, "style", shared->second);
    }

    VXAXMLArchiver mArchiver;
    const RenderableNotesMap& mNotes;
    std::unordered_map<const vxr::Object*, std::string> mNames;
};

class Reader {
public:
    Reader(RenderableNotesMap& notes, const SharedStyles& styles, const XMLTrouble& trouble)
        : mNotes(notes)
        , mStyles(styles)
        , mTrouble(trouble)
    {
    }

    std::vector<std::shared_ptr<vxr::VXRRenderable>> readChildren(const VXAXMLNode* parent)
    {
        std::vector<std::shared_ptr<vxr::VXRRenderable>> result;
        for (VXAXMLNode* node = vxr::vxaxmlFirstChildElement(parent); node;
             node = vxr::vxaxmlNextSiblingElement(node))
            result.push_back(read(node));
        return result;
    }

private:
    std::shared_ptr<vxr::VXRRenderable> read(VXAXMLNode* node)
    {
        if (vxr::vxaxmlIsNsNamed(node, VelloraNamespace, "shape"))
            return readShape(node);
        if (vxr::vxaxmlIsNsNamed(node, VelloraNamespace, "group"))
            return readGroup(node);
        mTrouble(node,
            "'" + std::string(vxr::vxaxmlNodeName(node)) + "' is of no known kind; it is kept but not drawn");
        return std::make_shared<UnknownRenderable>(KeptXML(node));
    }

    template <class Class> std::shared_ptr<Class> object(const VXAXMLNode* node, const char* name)
    {
        VXAXMLNode* child = childNamed(node, name);
        auto result = vxr::VXRObjectFromNode<Class>(mUnarchiver, child);
        if (child && !result)
            mTrouble(child, std::string(name) + " can't be read and is left out");
        return result;
    }

    /// A part that may be of several classes, or one of the document's styles.
    template <class Class> std::shared_ptr<Class> style(const VXAXMLNode* node, const char* name)
    {
        VXAXMLNode* child = childNamed(node, name);
        std::string styleName;
        std::shared_ptr<vxr::Object> read;
        if (!child)
            return nullptr;
        if (vxr::vxaxmlGetNSStringNsProp(child, VelloraNamespace, "style", styleName)) {
            const auto found = mStyles.find(styleName);
            read = found == mStyles.end() ? nullptr : found->second;
        } else if (std::is_same_v<Class, vxr::VXRShadow>) {
            read = mUnarchiver.createObjectOfClassFromNode(vxr::VXRXMLClass<vxr::VXRShadow>(), child);
        } else {
            read = mUnarchiver.createObjectFromNode(child);
        }
        auto result = std::dynamic_pointer_cast<Class>(std::move(read));
        if (!result)
            mTrouble(child, std::string(name) + " can't be read and is left out");
        return result;
    }

    std::shared_ptr<vxr::Path> readPath(VXAXMLNode* node)
    {
        auto path = vxr::VXRObjectFromNode<vxr::Path>(mUnarchiver, node);
        const auto isFinite = [](vxr::Point p) { return std::isfinite(p.x) && std::isfinite(p.y); };
        if (!path || std::all_of(path->points().begin(), path->points().end(), isFinite))
            return path;
        mTrouble(node, "a path with infinite coordinates is left out");
        return nullptr;
    }

    vxr::AffineTransform readTransform(const VXAXMLNode* node)
    {
        const float numbers[]
            = { numberOr(node, "m11", 1), numberOr(node, "m12", 0), numberOr(node, "m21", 0),
                  numberOr(node, "m22", 1), numberOr(node, "tx", 0), numberOr(node, "ty", 0) };
        if (std::all_of(std::begin(numbers), std::end(numbers), [](float v) { return std::isfinite(v); }))
            return { numbers[0], numbers[1], numbers[2], numbers[3], numbers[4], numbers[5] };
        mTrouble(node, "a transform with infinite numbers is taken to be the identity");
        return {};
    }

    std::shared_ptr<vxr::VXRRenderable> readShape(VXAXMLNode* node)
    {
        auto shape = std::make_shared<DrawnShape>();
        const auto path = readPath(childNamed(node, "path"));
        if (!path)
            mTrouble(node, "a shape without a path is empty");
        shape->setPathPreserveOffset(path ? path : vxr::Path::path(), false);
        shape->setFill(style<vxr::VXRShapePainter>(node, "fill"));
        shape->setStroke(style<vxr::VXRStroke>(node, "stroke"));
        shape->setTailLineEnd(object<vxr::VXRLineEnd>(node, "tail-line-end"));
        shape->setHeadLineEnd(object<vxr::VXRLineEnd>(node, "head-line-end"));
        shape->setWantsInteriorStroke(
            vxr::vxaxmlBoolNsPropDefault(node, VelloraNamespace, "interior-stroke", false));
        shape->setAlwaysStrokesWhenBlackAndWhite(
            vxr::vxaxmlBoolNsPropDefault(node, VelloraNamespace, "outline-in-black-and-white", false));
        static constexpr std::string_view parts[]
            = { "path", "fill", "stroke", "tail-line-end", "head-line-end", "transform", "shadow" };
        finish(*shape, node, parts);
        return shape;
    }

    std::shared_ptr<vxr::VXRRenderable> readGroup(VXAXMLNode* node)
    {
        auto group = std::make_shared<DrawnGroup>();
        group->setRenderables(readChildren(childNamed(node, "renderables")));
        vxr::VXRGroup::ClipPaths clip;
        for (VXAXMLNode* child = childNamed(node, "clip"); child;
             child = vxr::vxaxmlNextSiblingNsNamed(child, VelloraNamespace, "clip")) {
            if (auto path = readPath(child))
                clip.push_back(std::move(path));
        }
        group->setClipPaths(std::move(clip));
        static constexpr std::string_view parts[] = { "renderables", "clip", "transform", "shadow" };
        finish(*group, node, parts);
        return group;
    }

    void finish(
        vxr::VXRRenderable& renderable, const VXAXMLNode* node, std::span<const std::string_view> parts)
    {
        if (const VXAXMLNode* child = childNamed(node, "transform"))
            renderable.setTransform(readTransform(child));
        const float opacity = numberOr(node, "opacity", 1);
        renderable.setOpacity(opacity >= 0 && opacity <= 1 ? opacity : 1);
        renderable.setShadow(style<vxr::VXRShadow>(node, "shadow"));
        RenderableNotes notes;
        vxr::vxaxmlGetNSStringNsProp(node, VelloraNamespace, "label", notes.label);
        for (const VXAXMLNode* child = vxr::vxaxmlFirstChildElement(node); child;
             child = vxr::vxaxmlNextSiblingElement(child)) {
            const bool isKnown = vxr::vxaxmlIsNsNamed(child, VelloraNamespace, nodeName(child).c_str())
                && std::find(parts.begin(), parts.end(), nodeName(child)) != parts.end();
            if (!isKnown)
                notes.unknown.emplace_back(child);
        }
        if (!notes.label.empty() || !notes.unknown.empty())
            mNotes[&renderable] = std::move(notes);
    }

    static std::string nodeName(const VXAXMLNode* node) { return std::string(vxr::vxaxmlNodeName(node)); }

    VXAXMLUnarchiver mUnarchiver;
    RenderableNotesMap& mNotes;
    const SharedStyles& mStyles;
    const XMLTrouble& mTrouble;
};

} // namespace

void writeRenderables(const std::vector<std::shared_ptr<vxr::VXRRenderable>>& renderables,
    const RenderableNotesMap& notes, const SharedStyles& styles, VXAXMLNode* parent)
{
    Writer(notes, styles).write(renderables, parent);
}

std::vector<std::shared_ptr<vxr::VXRRenderable>> readRenderables(const VXAXMLNode* parent,
    RenderableNotesMap& notes, const SharedStyles& styles, const XMLTrouble& trouble)
{
    return parent ? Reader(notes, styles, trouble).readChildren(parent)
                  : std::vector<std::shared_ptr<vxr::VXRRenderable>>();
}

} // namespace app
