#include <vxr/host/archiving/VXAXMLClass.h>

#include <map>
#include <typeinfo>
#include <unordered_map>

namespace vxr {
namespace {

struct Registry {
    std::unordered_map<std::type_index, const VXAXMLClass*> byType;
    std::map<std::string, const VXAXMLClass*, std::less<>> byName;
    std::unordered_map<const VXAXMLClass*, std::string> names;
};

Registry& registry()
{
    static Registry shared;
    return shared;
}

} // namespace

void VXAXMLRegisterClass(const VXAXMLClass& record)
{
    if (record.encodeWithXMLArchiverNodeVersion)
        registry().byType[record.type] = &record;
}

void vxaxmlRegisterClassNamePair(const VXAXMLClass& record, const char* elementName)
{
    VXAXMLRegisterClass(record);
    registry().byName[elementName] = &record;
    registry().names[&record] = elementName;
}

const VXAXMLClass* vxaxmlClassForName(std::string_view elementName)
{
    const auto found = registry().byName.find(elementName);
    return found == registry().byName.end() ? nullptr : found->second;
}

std::string_view vxaxmlNameForClass(const VXAXMLClass& record)
{
    const auto found = registry().names.find(&record);
    return found == registry().names.end() ? std::string_view() : found->second;
}

const VXAXMLClass* VXAXMLClassOfObject(const Object& object)
{
    const auto found = registry().byType.find(typeid(object));
    return found == registry().byType.end() ? nullptr : found->second;
}

} // namespace vxr
