#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRRenderableArchiving.h>
#include <vxr/renderables/VXRReflectionRenderable.h>

#include <algorithm>
#include <unordered_set>

namespace vxr {
namespace {

constexpr const char* thisFile = "ReflectionRenderableXML.cpp";

void encode(
    const VXRReflectionRenderable& reflection, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    setNumber(node, "start-opacity", reflection.startOpacity());
    if (const auto& reflected = reflection.reflectedRenderable()) {
        if (const std::string_view id = archiver.idOfObject(*reflected); !id.empty())
            vxaxmlSetNSStringNsProp(node, VelloraNamespace, "of", id);
    }
    VXREncodeRenderable(reflection, archiver, node);
}

/// Whether `target` is `from`, a member of it, or what one of these reflects. Renderables hold what they
/// reflect, so that nobody would ever let go of such a circle.
class Search {
public:
    Search(const VXRRenderable& target, VXAXMLUnarchiver& unarchiver)
        : mTarget(target)
        , mUnarchiver(unarchiver)
    {
    }
    bool mayReach(const VXRRenderable& from)
    {
        if (&from == &mTarget || !mUnarchiver.mayMake(1)) // beyond that nobody can tell
            return true;
        if (const auto* reflection = dynamic_cast<const VXRReflectionRenderable*>(&from)) {
            mMeetsReflections = true;
            const auto& reflected = reflection->reflectedRenderable();
            return reflected && mVisited.insert(reflected.get()).second && mayReach(*reflected);
        }
        const auto* group = dynamic_cast<const VXRGroup*>(&from);
        return group && std::ranges::any_of(group->renderables(), [this](const auto& member) {
            return mayReach(*member);
        });
    }

    bool meetsReflections() const { return mMeetsReflections; }

private:
    const VXRRenderable& mTarget;
    VXAXMLUnarchiver& mUnarchiver;
    std::unordered_set<const VXRRenderable*> mVisited;
    bool mMeetsReflections = false;
};

/// The reflected renderable may stand behind the reflection; its place is taken from the element, not from
/// what it reflects.
void reflect(VXRReflectionRenderable& reflection, const std::shared_ptr<Object>& object,
    const std::string& id, VXAXMLUnarchiver& unarchiver)
{
    // Reflections of reflections count much, so that no chain of them is longer than the stack bears.
    constexpr std::size_t shareOfBudget = 200'000;
    const auto reflected = std::dynamic_pointer_cast<VXRRenderable>(object);
    Search search(reflection, unarchiver);
    if (!reflected || search.mayReach(*reflected)
        || (search.meetsReflections() && !unarchiver.mayMake(shareOfBudget)))
        return warn(thisFile,
            fmt::format("WARNING, a reflection can't reflect '{}', which holds it, or isn't there.", id));
    const AffineTransform transform = reflection.transform();
    reflection.setRenderableToReflect(reflected);
    reflection.setTransform(transform);
}

std::shared_ptr<VXRReflectionRenderable> read(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto reflection = std::make_shared<VXRReflectionRenderable>();
    const PropertyReader properties { thisFile, "a reflection", node };
    reflection->setStartOpacity(properties.number("start-opacity", reflection->startOpacity()));
    VXRReadRenderable(*reflection, unarchiver, node);
    if (std::string id; vxaxmlGetNSStringNsProp(node, VelloraNamespace, "of", id))
        unarchiver.whenReadObjectWithId(
            id, [weak = std::weak_ptr(reflection), id, &unarchiver](const std::shared_ptr<Object>& object) {
                if (const auto kept = weak.lock())
                    reflect(*kept, object, id, unarchiver);
            });
    return reflection;
}

} // namespace

template <> const VXAXMLClass& VXRXMLClass<VXRReflectionRenderable>()
{
    return recordOf<VXRReflectionRenderable, encode, read>("VXRReflectionRenderable");
}

} // namespace vxr
