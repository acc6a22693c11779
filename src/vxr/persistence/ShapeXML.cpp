#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRRenderableArchiving.h>
#include <vxr/protocols/VXRShapePainter.h>
#include <vxr/renderables/VXRLine.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/renderables/VXRRegularPolygon.h>
#include <vxr/renderables/VXRStar.h>
#include <vxr/strokes/VXRStroke.h>

#include <algorithm>

namespace vxr {
namespace {

constexpr const char* thisFile = "ShapeXML.cpp";

// What all shapes have.

void encodeLineEnd(
    const std::shared_ptr<VXRLineEnd>& lineEnd, VXAXMLArchiver& archiver, VXAXMLNode* node, const char* name)
{
    if (lineEnd)
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(*lineEnd, node, name, VelloraNamespace);
}

void encodeStyles(const VXRShape& shape, VXAXMLArchiver& archiver, VXAXMLNode* node)
{
    vxaxmlSetBoolNsPropDefault(node, VelloraNamespace, "interior-stroke", shape.wantsInteriorStroke(), false);
    vxaxmlSetBoolNsPropDefault(
        node, VelloraNamespace, "outline-in-black-and-white", shape.alwaysStrokesWhenBlackAndWhite(), false);
    if (const auto* fill = dynamic_cast<const Object*>(shape.fill().get()))
        archiver.encodeObjectAndClassAsChildOfWithNameXmlNamespace(*fill, node, "fill", VelloraNamespace);
    if (shape.stroke())
        archiver.encodeObjectAndClassAsChildOfWithNameXmlNamespace(
            *shape.stroke(), node, "stroke", VelloraNamespace);
    encodeLineEnd(shape.tailLineEnd(), archiver, node, "tail-line-end");
    encodeLineEnd(shape.headLineEnd(), archiver, node, "head-line-end");
}

std::shared_ptr<VXRLineEnd> lineEndFromChild(
    VXAXMLUnarchiver& unarchiver, const char* name, const PropertyReader& properties)
{
    VXAXMLNode* const child = vxaxmlFirstChildNsNamed(properties.node, VelloraNamespace, name);
    auto lineEnd = VXRObjectFromNode<VXRLineEnd>(unarchiver, child);
    if (child && !lineEnd)
        properties.cannotGet(name);
    return lineEnd;
}

void readStyles(VXRShape& shape, VXAXMLUnarchiver& unarchiver, VXAXMLNode* node)
{
    const PropertyReader properties { thisFile, "a shape", node };
    VXAXMLNode* child = vxaxmlFirstChildNsNamed(node, VelloraNamespace, "fill");
    auto fill = std::dynamic_pointer_cast<VXRShapePainter>(unarchiver.createObjectFromNode(child));
    if (child && !fill)
        properties.cannotGet("fill");
    shape.setFill(std::move(fill));
    child = vxaxmlFirstChildNsNamed(node, VelloraNamespace, "stroke");
    auto stroke = std::dynamic_pointer_cast<VXRStroke>(VXRStyleFromNode(unarchiver, child));
    if (child && !stroke)
        properties.cannotGet("stroke");
    shape.setStroke(std::move(stroke));
    shape.setTailLineEnd(lineEndFromChild(unarchiver, "tail-line-end", properties));
    shape.setHeadLineEnd(lineEndFromChild(unarchiver, "head-line-end", properties));
    shape.setWantsInteriorStroke(vxaxmlBoolNsPropDefault(node, VelloraNamespace, "interior-stroke", false));
    shape.setAlwaysStrokesWhenBlackAndWhite(
        vxaxmlBoolNsPropDefault(node, VelloraNamespace, "outline-in-black-and-white", false));
}

/// The outline is written only where it isn't the one that a reader makes of the parameters.
void encodeUnlessEqual(
    const VXRShape& shape, const VXRShape& made, VXAXMLArchiver& archiver, VXAXMLNode* node)
{
    const auto path = shape.path(), other = made.path();
    if (path
        && !(std::ranges::equal(path->kinds(), other->kinds())
            && std::ranges::equal(path->points(), other->points()) && path->lineStyle() == other->lineStyle()
            && path->windingRule() == other->windingRule() && path->flatness() == other->flatness()))
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(*path, node, "path", VelloraNamespace);
}

void readPathIfGiven(VXRShape& shape, VXAXMLUnarchiver& unarchiver, VXAXMLNode* node)
{
    if (auto path = finitePathFromNode(unarchiver, vxaxmlFirstChildNsNamed(node, VelloraNamespace, "path")))
        shape.setPathPreserveOffset(std::move(path), false);
}

// Shapes.

void encodePlain(const VXRShape& shape, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    VXREncodeShape(shape, archiver, node);
}

std::shared_ptr<VXRShape> newPlain(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    auto shape = std::make_shared<VXRShape>();
    VXRReadShape(*shape, unarchiver, node);
    return shape;
}

// Stars and polygons.

/// As many corners as the element says, if a document may have them.
int cornersFrom(const PropertyReader& properties, VXAXMLUnarchiver& unarchiver, const char* name)
{
    double number = 0;
    vxaxmlGetDoubleNsProp(properties.node, VelloraNamespace, name, number);
    const int count = intFromDouble(number);
    if (count > 0 && unarchiver.mayMake(2 * static_cast<std::size_t>(count)))
        return count;
    properties.cannotGet(name);
    return 3;
}

void encodeStar(const VXRStar& star, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    setNumber(node, "inner-radius", star.innerRadius());
    setNumber(node, "outer-radius", star.outerRadius());
    setNumber(node, "number-of-points", star.numberOfPoints());
    VXREncodeRenderable(star, archiver, node);
    encodeUnlessEqual(
        star, VXRStar(star.innerRadius(), star.outerRadius(), star.numberOfPoints()), archiver, node);
    encodeStyles(star, archiver, node);
}

std::shared_ptr<VXRStar> newStar(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const PropertyReader properties { thisFile, "a star", node };
    const float innerRadius = properties.number("inner-radius", 0);
    const float outerRadius = properties.number("outer-radius", 0);
    const int points = cornersFrom(properties, unarchiver, "number-of-points");
    auto star = std::make_shared<VXRStar>(innerRadius, outerRadius, points);
    readPathIfGiven(*star, unarchiver, node);
    readStyles(*star, unarchiver, node);
    VXRReadRenderable(*star, unarchiver, node);
    return star;
}

void encodePolygon(
    const VXRRegularPolygon& polygon, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    setNumber(node, "radius", polygon.radius());
    setNumber(node, "number-of-sides", polygon.numberOfSides());
    VXREncodeRenderable(polygon, archiver, node);
    encodeUnlessEqual(polygon, VXRRegularPolygon(polygon.radius(), polygon.numberOfSides()), archiver, node);
    encodeStyles(polygon, archiver, node);
}

std::shared_ptr<VXRRegularPolygon> newPolygon(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const PropertyReader properties { thisFile, "a regular polygon", node };
    const float radius = properties.number("radius", 0);
    const int sides = cornersFrom(properties, unarchiver, "number-of-sides");
    auto polygon = std::make_shared<VXRRegularPolygon>(radius, sides);
    readPathIfGiven(*polygon, unarchiver, node);
    readStyles(*polygon, unarchiver, node);
    VXRReadRenderable(*polygon, unarchiver, node);
    return polygon;
}

// Lines.

constexpr const char* connectionNames[VXRLine::handleCount] = { "start-connection", "end-connection" };
constexpr const char* modeWords[] = { "none", "place", "center" };

/// In the line's local frame.
std::shared_ptr<Path> pathOfLine(Point start, Point end)
{
    auto path = Path::path();
    path->moveTo(start);
    path->lineTo(end);
    return path;
}

void encodeLine(const VXRLine& line, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t)
{
    VXREncodeRenderable(line, archiver, node);
    const auto points = line.path()->points();
    const Point start = points.empty() ? Point() : points.front(),
                end = points.empty() ? Point() : points.back();
    vxaxmlCreatePointChild(node, VelloraNamespace, "start", start);
    vxaxmlCreatePointChild(node, VelloraNamespace, "end", end);
    VXRShape plain;
    plain.setPathPreserveOffset(pathOfLine(start, end), false);
    encodeUnlessEqual(line, plain, archiver, node);
    encodeStyles(line, archiver, node);
    for (int handle = 0; handle < VXRLine::handleCount; ++handle) {
        const VXRLineConnection& connection = line.connection(handle);
        const std::string_view id
            = connection.renderable ? archiver.idOfObject(*connection.renderable) : std::string_view();
        if (id.empty())
            continue;
        VXAXMLNode* const child
            = vxaxmlCreatePointChild(node, VelloraNamespace, connectionNames[handle], connection.place);
        setWord(child, "mode", modeWords[connection.mode]);
        vxaxmlSetNSStringNsProp(child, VelloraNamespace, "to", id);
    }
}

void readConnection(
    const std::shared_ptr<VXRLine>& line, int handle, VXAXMLUnarchiver& unarchiver, const VXAXMLNode* node)
{
    const VXAXMLNode* const child = vxaxmlFirstChildNsNamed(node, VelloraNamespace, connectionNames[handle]);
    if (!child)
        return;
    const PropertyReader properties { thisFile, "a line's connection", child };
    const int mode = properties.word("mode", modeWords, VXRLineNotConnected);
    const Point place
        = PropertyReader { thisFile, "a line's connection", node }.point(connectionNames[handle]);
    std::string id;
    vxaxmlGetNSStringNsProp(child, VelloraNamespace, "to", id);
    unarchiver.whenReadObjectWithId(
        id, [weakLine = std::weak_ptr(line), handle, mode, place, id](const std::shared_ptr<Object>& target) {
            const auto connected = weakLine.lock();
            auto* const renderable = dynamic_cast<VXRRenderable*>(target.get());
            if (connected && renderable)
                connected->_setConnection(
                    handle, { static_cast<VXRLineConnectionMode>(mode), renderable, place });
            else
                warn(thisFile, fmt::format("WARNING, a line is connected to '{}', which isn't there.", id));
        });
}

std::shared_ptr<VXRLine> newLine(VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t)
{
    const PropertyReader properties { thisFile, "a line", node };
    auto line = std::make_shared<VXRLine>();
    const Point start = properties.point("start"), end = properties.point("end");
    line->setPathPreserveOffset(pathOfLine(start, end), false);
    readPathIfGiven(*line, unarchiver, node);
    readStyles(*line, unarchiver, node);
    VXRReadRenderable(*line, unarchiver, node);
    for (int handle = 0; handle < VXRLine::handleCount; ++handle)
        readConnection(line, handle, unarchiver, node);
    return line;
}

} // namespace

void VXREncodeShape(const VXRShape& shape, VXAXMLArchiver& archiver, VXAXMLNode* node)
{
    VXREncodeRenderable(shape, archiver, node);
    archiver.encodeObjectAsChildOfWithNameXmlNamespace(
        shape.path() ? *shape.path() : *Path::path(), node, "path", VelloraNamespace);
    encodeStyles(shape, archiver, node);
}

void VXRReadShape(VXRShape& shape, VXAXMLUnarchiver& unarchiver, VXAXMLNode* node)
{
    auto path = finitePathFromNode(unarchiver, vxaxmlFirstChildNsNamed(node, VelloraNamespace, "path"));
    if (!path) {
        PropertyReader { thisFile, "a shape", node }.cannotGet("path");
        path = Path::path();
    }
    shape.setPathPreserveOffset(std::move(path), false);
    readStyles(shape, unarchiver, node);
    VXRReadRenderable(shape, unarchiver, node);
}

template <> const VXAXMLClass& VXRXMLClass<VXRShape>()
{
    return recordOf<VXRShape, encodePlain, newPlain>("VXRShape");
}

template <> const VXAXMLClass& VXRXMLClass<VXRStar>()
{
    return recordOf<VXRStar, encodeStar, newStar>("VXRStar");
}

template <> const VXAXMLClass& VXRXMLClass<VXRRegularPolygon>()
{
    return recordOf<VXRRegularPolygon, encodePolygon, newPolygon>("VXRRegularPolygon");
}

template <> const VXAXMLClass& VXRXMLClass<VXRLine>()
{
    return recordOf<VXRLine, encodeLine, newLine>("VXRLine");
}

} // namespace vxr
