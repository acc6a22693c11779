#include <vxr/host/archiving/VXAXMLUnarchiver.h>

#include <vxr/host/archiving/XMLTree.h>
#include <vxr/host/utility/VXULog.h>

#include <fmt/format.h>

#include <utility>

namespace vxr {
namespace {

constexpr int maximumDepth = 100;
constexpr const char* thisFile = "VXAXMLUnarchiver.cpp";

/// The value of one entry; none when it can't be read.
bool readEntry(VXAXMLNode* entry, VXAXMLUnarchiver& unarchiver, VXAPropertyValue& value)
{
    const VXAXMLNamespace& ns = VelloraNamespace;
    std::string type, text;
    vxaxmlGetNSStringNsProp(entry, ns, "type", type);
    if (type == "number") {
        double number;
        if (!vxaxmlGetDoubleNsProp(entry, ns, "value", number))
            return false;
        value = number;
        return true;
    }
    if (type == "object") {
        value = unarchiver.createObjectFromNode(vxaxmlFirstChildElement(entry));
        return std::get<std::shared_ptr<Object>>(value) || !vxaxmlFirstChildElement(entry);
    }
    if (!vxaxmlGetNSStringNsProp(entry, ns, "value", text))
        return false;
    if (type == "boolean")
        value = vxaxmlBoolNsPropDefault(entry, ns, "value", false);
    else if (type == "string")
        value = text;
    else
        return false;
    return true;
}

/// Reads nothing: elements that refer to a shared object need no class.
const VXAXMLClass sharedObjectClass { "Object", typeid(void), nullptr,
    [](VXAXMLUnarchiver&, VXAXMLNode*, std::uint32_t) { return std::shared_ptr<Object>(); } };

/// Notes which element is being read, and how deep it is.
struct ReadingScope {
    ReadingScope(int& counter, const VXAXMLNode*& current, const VXAXMLNode* node)
        : depth(counter)
        , place(current)
        , outer(current)
    {
        ++depth;
        place = node;
    }
    ~ReadingScope()
    {
        --depth;
        place = outer;
    }
    ReadingScope(const ReadingScope&) = delete;
    ReadingScope& operator=(const ReadingScope&) = delete;

    int& depth;
    const VXAXMLNode*& place;
    const VXAXMLNode* outer;
};

} // namespace

std::shared_ptr<Object> VXAXMLUnarchiver::createObjectOfClassFromNode(
    const VXAXMLClass& record, VXAXMLNode* node)
{
    if (!node || !record.initWithXMLUnarchiverNodeVersion)
        return nullptr;
    const ReadingScope scope(mDepth, mCurrent, node);
    setState(node, NodeState::Object);
    if (mDepth > maximumDepth) {
        VXULog_Fn(VXULogLevelWarning, thisFile,
            fmt::format("WARNING, objects nested more than {} deep are left out.", maximumDepth));
        return nullptr;
    }
    std::string name;
    if (vxaxmlGetNSStringNsProp(node, VelloraNamespace, VXASharedObjectAttribute, name)) {
        const auto shared = mShared.find(name);
        if (shared != mShared.end())
            return shared->second;
        setState(node, NodeState::Unreadable);
        VXULog_Fn(VXULogLevelWarning, thisFile,
            fmt::format("WARNING, initializing from {}, there is no style '{}'.", fmt::ptr(node), name));
        return nullptr;
    }
    const std::size_t firstChild = mWithParts.size();
    auto object = record.initWithXMLUnarchiverNodeVersion(*this, node, mVersion);
    if (!object)
        return nullptr;
    if (std::string id; vxaxmlGetNSStringNsProp(node, VXANamespace, VXAVXIdAttribute, id)
        && !mObjectsById.try_emplace(std::move(id), object).second)
        VXULog_Fn(VXULogLevelWarning, thisFile,
            fmt::format(
                "WARNING, initializing from {}, there is another object of that id.", fmt::ptr(node)));
    if (mElementHandler)
        mElementHandler(object, node);
    if (&record == mClassOfUnknown) {
        // It keeps all of its element, of which another class may have been made before.
        while (!mWithParts.empty() && mWithParts.back().node == node)
            mWithParts.pop_back();
    } else if (mKeptParts) {
        keepParts(object, node, firstChild);
    }
    return object;
}

/// What was kept for objects that nobody holds, since their values were taken over, goes to the one around.
void VXAXMLUnarchiver::keepParts(
    const std::shared_ptr<Object>& object, VXAXMLNode* node, std::size_t firstChild)
{
    VXAXMLKeptParts parts = VXAXMLKeptParts::partsOf(node);
    VXAXMLKeptParts::Counter counter;
    for (std::size_t i = firstChild; i < mWithParts.size(); ++i) {
        Read& child = mWithParts[i];
        if (const auto held = child.object.lock())
            mKeptParts->setParts(held, std::move(child.parts));
        else
            parts.addPartsOfNodeBelow(child.parts, child.node, node, counter);
    }
    mWithParts.resize(firstChild);
    if (parts.isEmpty())
        return;
    if (mDepth > 1)
        mWithParts.push_back({ object, node, std::move(parts) });
    else
        mKeptParts->setParts(object, std::move(parts));
}

std::shared_ptr<Object> VXAXMLUnarchiver::createObjectFromNode(VXAXMLNode* node)
{
    if (!node)
        return nullptr;
    std::string name;
    const VXAXMLClass* record = nullptr;
    if (vxaxmlGetNSStringNsProp(node, VXANamespace, VXAVXClassAttribute, name))
        record = vxaxmlClassForName(name);
    if (!record)
        record = vxaxmlClassForName(vxaxmlNodeName(node));
    if (!record && vxaxmlGetNSStringNsProp(node, VelloraNamespace, VXASharedObjectAttribute, name))
        record = &sharedObjectClass;
    if (record)
        return createObjectOfClassFromNode(*record, node);
    setState(node, NodeState::Unreadable);
    return nullptr;
}

void VXAXMLUnarchiver::whenReadObjectWithId(
    std::string id, std::function<void(const std::shared_ptr<Object>&)> use)
{
    mReferences.emplace_back(std::move(id), std::move(use));
}

void VXAXMLUnarchiver::finishReading()
{
    for (const auto& [id, use] : std::exchange(mReferences, {})) {
        const auto found = mObjectsById.find(id);
        use(found == mObjectsById.end() ? nullptr : found->second);
    }
    mObjectsById.clear();
}

bool VXAXMLUnarchiver::mayMake(std::size_t count)
{
    constexpr std::size_t most = 20'000'000;
    if (count > most - mMade)
        return false;
    mMade += count;
    return true;
}

std::shared_ptr<Object> VXAXMLUnarchiver::metadataForKey(std::string_view key) const
{
    const auto found = mMetadata.find(key);
    return found == mMetadata.end() ? nullptr : found->second;
}

void VXAXMLUnarchiver::setMetadataForKey(std::shared_ptr<Object> data, std::string key)
{
    mMetadata[std::move(key)] = std::move(data);
}

VXAStringKeyDictionary vxaxmlDecodeStringKeyDictionary(const VXAXMLNode* node, VXAXMLUnarchiver& unarchiver)
{
    VXAStringKeyDictionary result;
    for (VXAXMLNode* entry = vxaxmlFirstChildNsNamed(node, VelloraNamespace, "entry"); entry;
         entry = vxaxmlNextSiblingNsNamed(entry, VelloraNamespace, "entry")) {
        std::string key;
        VXAPropertyValue value;
        if (vxaxmlGetNSStringNsProp(entry, VelloraNamespace, "key", key)
            && readEntry(entry, unarchiver, value))
            result[std::move(key)] = std::move(value);
        else
            VXULog_Fn(VXULogLevelWarning, thisFile,
                fmt::format("WARNING, reading a dictionary from {}, an entry has no key or no value.",
                    fmt::ptr(node)));
    }
    return result;
}

} // namespace vxr
