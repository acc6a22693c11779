#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRArchiving.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/renderables/VXRLineEnd.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "LineEndXML.cpp";

void encode(const VXRLineEnd& end, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    vxaxmlSetBoolNsProp(node, VelloraNamespace, "filled", end.isFilled());
    archiver.encodeObjectAsChildOfWithNameXmlNamespace(
        end.path() ? *end.path() : *Path::path(), node, "path", VelloraNamespace);
    vxaxmlCreatePointChild(node, VelloraNamespace, "end-point", end.endPoint());
}

std::shared_ptr<VXRLineEnd> read(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const bool filled = vxaxmlBoolNsPropDefault(node, VelloraNamespace, "filled", false);
    Point endPoint;
    if (!vxaxmlPopulatePointFromChild(node, VelloraNamespace, "end-point", endPoint)) {
        warn(thisFile, "initializing line end, couldn't get end point.  Returning nil.");
        return nullptr;
    }
    auto path = VXRObjectFromNode<Path>(unarchiver, vxaxmlFirstChildNsNamed(node, VelloraNamespace, "path"));
    if (!path) {
        warn(thisFile, "initializing line end, couldn't get path.  Returning nil.");
        return nullptr;
    }
    return VXRLineEnd::lineEndWithPathEndPointIsFilled(std::move(path), endPoint, filled);
}

} // namespace

template <> const VXAXMLClass& VXRXMLClass<VXRLineEnd>()
{
    return recordOf<VXRLineEnd, encode, read>("VXRLineEnd");
}

} // namespace vxr
