#pragma once

#include <vxr/host/archiving/VXAXMLNode.h>
#include <vxr/platform/base/Object.h>

#include <memory>
#include <typeindex>

namespace vxr {

class VXAXMLArchiver;
class VXAXMLUnarchiver;

/// A class as the archive sees it: how its objects write themselves onto a node and are read from one. One
/// static record per class; its address is its identity. A class that is known by name only has neither.
struct VXAXMLClass {
    const char* name; ///< of the class itself, for messages
    std::type_index type;
    /// Writes attributes and children onto the element that was made for the object.
    void (*encodeWithXMLArchiverNodeVersion)(
        const Object&, VXAXMLArchiver&, VXAXMLNode*, std::uint32_t version);
    /// May answer a shared object, or none where the object can't be made.
    std::shared_ptr<Object> (*initWithXMLUnarchiverNodeVersion)(
        VXAXMLUnarchiver&, VXAXMLNode*, std::uint32_t version);
};

/// Makes a class's record known to the archiver, which finds it by an object's type. A second record of the
/// same type replaces the first.
VXR_EXPORT void VXAXMLRegisterClass(const VXAXMLClass&);

/// Maps a class and an element name to each other for the whole process, and registers the class. The last
/// pair of a class or a name holds.
VXR_EXPORT void vxaxmlRegisterClassNamePair(const VXAXMLClass&, const char* elementName);
VXR_EXPORT const VXAXMLClass* vxaxmlClassForName(std::string_view elementName); ///< null when unknown
/// The element name of a class, empty when it has none.
VXR_EXPORT std::string_view vxaxmlNameForClass(const VXAXMLClass&);

const VXAXMLClass* VXAXMLClassOfObject(const Object&); ///< null when its very class is not registered

} // namespace vxr
