#include <vxr/persistence/NodeAccess.h>
#include <vxr/persistence/VXRArchiving.h>
#include <vxr/strokes/manipulations/VXROffsetOddWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathStroker.h>
#include <vxr/strokes/manipulations/VXROverstrokePathManipulation.h>
#include <vxr/strokes/manipulations/VXRPatternedPathStroker.h>
#include <vxr/strokes/manipulations/VXRRoundedPathManipulation.h>
#include <vxr/strokes/manipulations/VXRVaryWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXRWobblyPathManipulation.h>

namespace vxr {
namespace {

constexpr const char* thisFile = "ManipulationXML.cpp";

/// A parameter of a class, and the attribute in which it stands.
template <class Class, class Value> struct Parameter {
    const char* name;
    Value (Class::*get)() const;
    void (Class::*set)(Value);
};

template <class Class> const std::vector<Parameter<Class, float>> numbersOf = {};
template <>
const std::vector<Parameter<VXROutsetPathManipulation, float>> numbersOf<VXROutsetPathManipulation> = {
    { "distance", &VXROutsetPathManipulation::distance, &VXROutsetPathManipulation::setDistance }
};
template <>
const std::vector<Parameter<VXROverstrokePathManipulation, float>>
    numbersOf<VXROverstrokePathManipulation> = { { "overshoot", &VXROverstrokePathManipulation::overshoot,
        &VXROverstrokePathManipulation::setOvershoot } };
template <>
const std::vector<Parameter<VXRRoundedPathManipulation, float>> numbersOf<VXRRoundedPathManipulation> = {
    { "radius", &VXRRoundedPathManipulation::radius, &VXRRoundedPathManipulation::setRadius }
};
template <>
const std::vector<Parameter<VXRVaryWidthPathManipulation, float>> numbersOf<VXRVaryWidthPathManipulation> = {
    { "amount", &VXRVaryWidthPathManipulation::amount, &VXRVaryWidthPathManipulation::setAmount },
    { "wavelength", &VXRVaryWidthPathManipulation::wavelength, &VXRVaryWidthPathManipulation::setWavelength }
};
template <>
const std::vector<Parameter<VXRWobblyPathManipulation, float>> numbersOf<VXRWobblyPathManipulation> = {
    { "amplitude", &VXRWobblyPathManipulation::amplitude, &VXRWobblyPathManipulation::setAmplitude },
    { "wavelength", &VXRWobblyPathManipulation::wavelength, &VXRWobblyPathManipulation::setWavelength }
};
template <>
const std::vector<Parameter<VXROutsetPathStroker, float>> numbersOf<VXROutsetPathStroker> = {
    { "spacing", &VXROutsetPathStroker::spacing, &VXROutsetPathStroker::setSpacing },
    { "width-factor", &VXROutsetPathStroker::widthFactor, &VXROutsetPathStroker::setWidthFactor }
};
template <>
const std::vector<Parameter<VXRPatternedPathStroker, float>> numbersOf<VXRPatternedPathStroker> = {
    { "advance", &VXRPatternedPathStroker::advance, &VXRPatternedPathStroker::setAdvance }
};

template <class Class> constexpr bool hasSeed = requires(Class value) { value.setSeed(0u); };

template <class Class> void encode(const Class& value, VXAXMLArchiver&, VXAXMLNode* node, std::uint32_t)
{
    for (const auto& number : numbersOf<Class>)
        setNumber(node, number.name, (value.*number.get)());
    if constexpr (hasSeed<Class>)
        vxaxmlSetUnsignedLongNsProp(node, VelloraNamespace, "random-seed", value.seed());
}

/// A missing parameter is that of a new object.
template <class Class> std::shared_ptr<Class> read(VXAXMLUnarchiver&, VXAXMLNode* node, std::uint32_t)
{
    auto value = std::make_shared<Class>();
    for (const auto& number : numbersOf<Class>) {
        ((*value).*number.set)(floatAttribute(node, number.name, ((*value).*number.get)(), thisFile, [&] {
            return fmt::format("WARNING, initializing a path manipulation from {}, cannot get {}.",
                fmt::ptr(node), number.name);
        }));
    }
    if constexpr (hasSeed<Class>)
        value->setSeed(
            PropertyReader { thisFile, "a path manipulation", node }.whole("random-seed", value->seed()));
    return value;
}

void encodeOutsets(
    const VXROutsetPathStroker& stroker, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t version)
{
    setNumber(node, "count", stroker.count());
    encode(stroker, archiver, node, version);
}

std::shared_ptr<VXROutsetPathStroker> readOutsets(
    VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t version)
{
    auto stroker = read<VXROutsetPathStroker>(unarchiver, node, version);
    const PropertyReader properties { thisFile, "a path stroker", node };
    stroker->setCount(intFromDouble(properties.number("count", static_cast<float>(stroker->count()))));
    return stroker;
}

void encodePatterned(
    const VXRPatternedPathStroker& stroker, VXAXMLArchiver& archiver, VXAXMLNode* node, std::uint32_t version)
{
    encode(stroker, archiver, node, version);
    vxaxmlSetBoolNsProp(node, VelloraNamespace, "bends", stroker.bends());
    if (stroker.motif())
        archiver.encodeObjectAsChildOfWithNameXmlNamespace(*stroker.motif(), node, "motif", VelloraNamespace);
}

/// Without a motif it has none, which paints nothing.
std::shared_ptr<VXRPatternedPathStroker> readPatterned(
    VXAXMLUnarchiver& unarchiver, VXAXMLNode* node, std::uint32_t version)
{
    auto stroker = read<VXRPatternedPathStroker>(unarchiver, node, version);
    stroker->setBends(vxaxmlBoolNsPropDefault(node, VelloraNamespace, "bends", stroker->bends()));
    stroker->setMotif(
        VXRObjectFromNode<Path>(unarchiver, vxaxmlFirstChildNsNamed(node, VelloraNamespace, "motif")));
    return stroker;
}

} // namespace

template <> const VXAXMLClass& VXRXMLClass<VXROffsetOddWidthPathManipulation>()
{
    using Class = VXROffsetOddWidthPathManipulation;
    return recordOf<Class, encode<Class>, read<Class>>("VXROffsetOddWidthPathManipulation");
}

template <> const VXAXMLClass& VXRXMLClass<VXROutsetPathManipulation>()
{
    using Class = VXROutsetPathManipulation;
    return recordOf<Class, encode<Class>, read<Class>>("VXROutsetPathManipulation");
}

template <> const VXAXMLClass& VXRXMLClass<VXROverstrokePathManipulation>()
{
    using Class = VXROverstrokePathManipulation;
    return recordOf<Class, encode<Class>, read<Class>>("VXROverstrokePathManipulation");
}

template <> const VXAXMLClass& VXRXMLClass<VXRRoundedPathManipulation>()
{
    using Class = VXRRoundedPathManipulation;
    return recordOf<Class, encode<Class>, read<Class>>("VXRRoundedPathManipulation");
}

template <> const VXAXMLClass& VXRXMLClass<VXRVaryWidthPathManipulation>()
{
    using Class = VXRVaryWidthPathManipulation;
    return recordOf<Class, encode<Class>, read<Class>>("VXRVaryWidthPathManipulation");
}

template <> const VXAXMLClass& VXRXMLClass<VXRWobblyPathManipulation>()
{
    using Class = VXRWobblyPathManipulation;
    return recordOf<Class, encode<Class>, read<Class>>("VXRWobblyPathManipulation");
}

template <> const VXAXMLClass& VXRXMLClass<VXROutsetPathStroker>()
{
    return recordOf<VXROutsetPathStroker, encodeOutsets, readOutsets>("VXROutsetPathStroker");
}

template <> const VXAXMLClass& VXRXMLClass<VXRPatternedPathStroker>()
{
    return recordOf<VXRPatternedPathStroker, encodePatterned, readPatterned>("VXRPatternedPathStroker");
}

} // namespace vxr
