#include <vxr/filters/VXRFilterRegistry.h>
#include <vxr/filters/VXRFilteredImage.h>
#include <vxr/host/archiving/VXACoder.h>
#include <vxr/host/archiving/VXADecoder.h>
#include <vxr/host/archiving/VXAXMLDocument.h>
#include <vxr/host/data/VXEData.h>
#include <vxr/host/data/VXEDataManager.h>
#include <vxr/images/VXRDummyImageRenderer.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRPictureRenderer.h>
#include <vxr/persistence/VXRRenderableArchiving.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/protocols/VXRStrokeBundleSource.h>
#include <vxr/renderables/VXRImageRenderable.h>
#include <vxr/renderables/VXRLine.h>
#include <vxr/renderables/VXRReflectionRenderable.h>
#include <vxr/strokes/VXRManipulatedStroke.h>
#include <vxr/strokes/VXRSmartStroke.h>
#include <vxr/strokes/manipulations/VXROffsetOddWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathManipulation.h>
#include <vxr/strokes/manipulations/VXROutsetPathStroker.h>
#include <vxr/strokes/manipulations/VXROverstrokePathManipulation.h>
#include <vxr/strokes/manipulations/VXRPatternedPathStroker.h>
#include <vxr/strokes/manipulations/VXRRoundedPathManipulation.h>
#include <vxr/strokes/manipulations/VXRVaryWidthPathManipulation.h>
#include <vxr/strokes/manipulations/VXRWobblyPathManipulation.h>
#include <vxr/strokes/smart/VXRStrokeBundle.h>

#include "tests/compositing/PageScene.h"
#include "tests/support/LogCapture.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace vxr {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::LogCapture;

/// Pictures and one stroke bundle of a document.
class Host final : public VXEDataManager, public VXRStrokeBundleSource {
public:
    std::shared_ptr<const VXRStrokeBundle> strokeBundleForName(const std::string& name) override
    {
        static const auto bundle = VXRStrokeBundle::bundleFromText(
            "name leaves\nbody 6\npath M 0 0 C 1 3 4 3 6 0 C 4 -1 1 -1 0 0 Z\n", "");
        return name == "leaves" ? bundle : nullptr;
    }
};

struct ModelArchive : ::testing::Test {
    static void SetUpTestSuite()
    {
        VXRInitArchivingClassToElementNameMappings(true);
        VXRInitArchivingRenderables();
    }

    std::string written(const VXRGroup::Members& renderables)
    {
        VXAXMLDocument document(VelloraNamespace, "d");
        VXAXMLArchiver archiver;
        archiver.setMetadataForKey(host, std::string(VXEDataHostUnarchiverKey));
        archiver.setKeptParts(&kept);
        VXRGiveIdsToReferredRenderables(renderables, archiver);
        VXREncodeRenderables(renderables, archiver, document.root());
        return document.serialize();
    }
    VXRGroup::Members read(const std::string& text)
    {
        const auto document = VXAXMLDocument::parse(std::as_bytes(std::span(text)));
        VXAXMLUnarchiver unarchiver;
        unarchiver.setMetadataForKey(host, std::string(VXEDataHostUnarchiverKey));
        unarchiver.setKeptParts(&kept);
        auto renderables = VXRReadRenderables(unarchiver, document->root());
        unarchiver.finishReading();
        return renderables;
    }
    static std::string inDocument(const std::string& elements)
    {
        return "<v:d xmlns:v=\"urn:vxr:model\" xmlns:a=\"urn:vxr:archive\">" + elements + "</v:d>";
    }
    /// The lines between the root's tags.
    static std::string inner(const std::string& text)
    {
        const auto begin = text.find(">\n", text.find("<v:d ")) + 2;
        return text.substr(begin, text.rfind("</v:d>") - begin);
    }

    std::shared_ptr<Host> host = std::make_shared<Host>();
    VXAXMLKeptPartsOfObjects kept;
};

std::vector<std::uint32_t> drawn(const VXRGroup::Members& renderables)
{
    const auto context = BitmapContext::createBitmap(420, 320);
    const CurrentContextScope current(*context, true, false);
    for (const auto& renderable : renderables)
        renderable->renderLayeredIntoContext(*context);
    return { context->pixels(), context->pixels() + 420 * 320 };
}

/// Objects of all classes that documents describe.
class RandomModel {
public:
    RandomModel(unsigned seed, std::shared_ptr<Host> host)
        : mRandom(seed, { 420, 320 })
        , mHost(std::move(host))
    {
        mRandom.makesPictures = false;
    }

    VXRGroup::Members page()
    {
        VXRGroup::Members renderables = several(2);
        for (int i = 2; i > 0; --i) {
            auto line = VXRLine::lineFromPointToPoint(point(), point());
            line->setStroke(stroke());
            line->setHeadLineEnd(VXRLineEnd::openArrow());
            if (mRandom.oneIn(3))
                line->rotateByRadiansPivot(mRandom.between(0, 6), line->center());
            if (mRandom.oneIn(2))
                line->connectHandle(VXRLine::endHandle, *renderables[0],
                    mRandom.oneIn(2) ? VXRLineConnectedAtPlace : VXRLineConnectedTowardsCenter, point());
            renderables.push_back(line);
        }
        auto reflection = std::make_shared<VXRReflectionRenderable>();
        reflection->setRenderableToReflect(renderables[std::size_t(mRandom.below(3))]);
        reflection->setStartOpacity(mRandom.between(0.2f, 1));
        renderables.insert(renderables.begin(), reflection);
        return renderables;
    }

private:
    Point point() { return { mRandom.between(0, 400), mRandom.between(0, 300) }; }
    VXRGroup::Members several(int depth)
    {
        VXRGroup::Members renderables { shape(), shape(), image() };
        if (depth > 0) {
            auto group = VXRGroup::groupWithRenderables(several(depth - 1));
            if (mRandom.oneIn(2))
                group->setClipPaths({ Path::pathWithOvalInRect({ 20, 20, mRandom.between(40, 300), 200 }) });
            group->rotateByRadiansPivot(mRandom.between(-1, 1), group->center());
            group->setOpacity(mRandom.between(0.3f, 1));
            group->setShadow(mRandom.shadow());
            renderables.push_back(group);
        }
        return renderables;
    }
    std::shared_ptr<VXRShape> shape()
    {
        for (;;) {
            auto made = mRandom.shape();
            if (dynamic_cast<test::ClippedShape*>(made.get()))
                continue;
            made->setStroke(stroke());
            if (mRandom.oneIn(4))
                made->setFill(imageFill());
            made->setWantsInteriorStroke(mRandom.oneIn(4));
            made->setAllowsTiling(mRandom.oneIn(2));
            return made;
        }
    }
    std::shared_ptr<VXRShapePainter> imageFill()
    {
        if (mRandom.oneIn(3))
            return filteredFill();
        auto fill = mRandom.oneIn(2)
            ? VXRImageFill::imageFillWithBrokenImageOfSize({ mRandom.between(9, 60), 40 })
            : VXRImageFill::imageFillWithImageRenderer(
                VXRPictureRenderer::rendererWithBinaryCrop(binary(), Rect { { 1, 2 }, { 3.3f, 4 } }));
        fill->setTechnique(mRandom.below(5));
        return fill;
    }
    std::shared_ptr<VXRShapePainter> filteredFill()
    {
        const auto image = VXRFilteredImage::filteredImageWithImageBinary(binary());
        auto filter = VXRFilterRegistry::createFilter("TesselSaturation");
        filter->setValueForKey(mRandom.between(-1, 1), "inputSaturation");
        image->effectStack()->appendFilter(std::move(filter));
        image->effectStack()->setEnabledAtIndex(mRandom.oneIn(2), 1);
        image->setAutomaticLevels(static_cast<VXRAutomaticLevels>(mRandom.below(3)));
        image->setClipFraction(mRandom.between(0, 0.25f));
        auto fill = VXRImageFill::imageFillWithImageRenderer(image->imageRenderer(
            mRandom.oneIn(2) ? std::nullopt : std::optional(Rect { { 1, 2 }, { 3, 4 } })));
        fill->setTechnique(mRandom.below(5));
        return fill;
    }
    /// Of bytes that nothing decodes: it draws as a placeholder.
    std::shared_ptr<VXRImageBinary> binary()
    {
        const int number = mRandom.below(3);
        const std::string bytes = "picture " + std::to_string(number);
        auto binary = std::make_shared<VXRImageBinary>();
        binary->setData(mHost->canonicalDataFromNSDataPreferredNameType(
            Data::dataWithBytes(bytes.data(), bytes.size()), "a & b.jpg", 0x4a504547));
        binary->setNaturalImageSize({ 30.3f * float(number + 1), 41 });
        return binary;
    }
    std::shared_ptr<VXRRenderable> image()
    {
        auto image = VXRImageRenderable::imageRenderableWithImageBinary(binary());
        image->setFrame(mRandom.frame());
        image->setTechnique(mRandom.below(5));
        if (mRandom.oneIn(2))
            image->setCrop({ mRandom.between(0, 3), 0.1f, mRandom.between(1, 60), 0.3f });
        if (mRandom.oneIn(3))
            image->setMaskPath(Path::pathWithOvalInRect({ 1, 2, 30, mRandom.between(3, 40) }).get());
        else if (mRandom.oneIn(2))
            image->setMasksByAlpha(true);
        image->rotateByRadiansPivot(mRandom.between(0, 1), image->center());
        return image;
    }
    std::shared_ptr<VXRStroke> stroke()
    {
        if (mRandom.oneIn(3))
            return mRandom.stroke();
        if (mRandom.oneIn(2)) {
            auto smart = VXRSmartStroke::smartStrokeWithNameSourceColorWidth(
                mRandom.oneIn(2) ? "leaves" : "gone", mHost.get(), mRandom.color(), mRandom.between(1, 9));
            smart->setRandomSeed(4'000'000'000u + unsigned(mRandom.below(9)));
            return smart;
        }
        VXRManipulatedStroke::Manipulations manipulations;
        const std::uint32_t seed = 3'000'000'000u + unsigned(mRandom.below(9));
        const float amount = mRandom.between(0, 3);
        for (int i = mRandom.below(3); i > 0; --i) {
            switch (mRandom.below(6)) {
            case 0:
                manipulations.push_back(std::make_shared<VXROffsetOddWidthPathManipulation>());
                break;
            case 1:
                manipulations.push_back(std::make_shared<VXROutsetPathManipulation>(amount));
                break;
            case 2:
                manipulations.push_back(std::make_shared<VXROverstrokePathManipulation>(amount, seed));
                break;
            case 3:
                manipulations.push_back(std::make_shared<VXRRoundedPathManipulation>(amount));
                break;
            case 4:
                manipulations.push_back(std::make_shared<VXRVaryWidthPathManipulation>(amount / 4, 7, seed));
                break;
            default:
                manipulations.push_back(std::make_shared<VXRWobblyPathManipulation>(amount / 3, 8, seed));
            }
        }
        std::shared_ptr<VXRPathStroker> stroker;
        if (mRandom.oneIn(3))
            stroker = std::make_shared<VXROutsetPathStroker>(1 + mRandom.below(4), amount, 0.4f);
        else if (mRandom.oneIn(2))
            stroker = std::make_shared<VXRPatternedPathStroker>(
                Path::pathWithOvalInRect({ 0, -1, 1.5f, 2 }), 2.2f, mRandom.oneIn(2));
        return VXRManipulatedStroke::strokeWithColorWidthManipulationsStroker(
            mRandom.color(), mRandom.between(1, 5), std::move(manipulations), stroker);
    }

    test::RandomPage mRandom;
    std::shared_ptr<Host> mHost;
};

TEST_F(ModelArchive, ReadsBackWhatItWroteAndDrawsItTheSame)
{
    for (unsigned seed = 1; seed <= 40; ++seed) {
        const auto model = RandomModel(seed, host).page();
        const std::string text = written(model);
        LogCapture log;
        const auto again = read(text);
        EXPECT_THAT(log.lines(), IsEmpty());
        ASSERT_EQ(written(again), text) << seed;
        ASSERT_EQ(drawn(again), drawn(model)) << seed;
    }
    EXPECT_TRUE(kept.isEmpty());
}

TEST_F(ModelArchive, ConnectsLinesAgain)
{
    const auto target = VXRShape::shapeWithRect({ 100, 100, 50, 40 });
    const auto stranger = VXRShape::shapeWithRect({ 0, 0, 5, 5 });
    const auto group = VXRGroup::groupWithRenderables({ target });
    const auto line = VXRLine::lineFromPointToPoint({ 0, 0 }, { 10, 10 });
    line->connectHandle(VXRLine::endHandle, *target, VXRLineConnectedAtPlace, { 100, 120 });
    line->connectHandle(VXRLine::startHandle, *stranger, VXRLineConnectedTowardsCenter);
    const auto again = read(written({ line, group }));
    const auto& readLine = static_cast<VXRLine&>(*again[0]);
    auto& readTarget = *static_cast<VXRGroup&>(*again[1]).renderables()[0];
    EXPECT_EQ(readLine.connection(VXRLine::endHandle).renderable, &readTarget);
    EXPECT_EQ(readLine.connection(VXRLine::endHandle).place, line->connection(VXRLine::endHandle).place);
    EXPECT_EQ(readLine.connection(VXRLine::startHandle).mode, VXRLineNotConnected);
    readTarget.offsetBy(7, 9);
    target->offsetBy(7, 9);
    EXPECT_EQ(readLine.endPoint(), line->endPoint());
}

TEST_F(ModelArchive, SharesPicturesAndRemembersThoseThatAreMissing)
{
    const std::string bytes = "bytes";
    const auto data = host->canonicalDataFromNSDataPreferredNameType(
        Data::dataWithBytes(bytes.data(), bytes.size()), "p.png", 0);
    const std::string image = R"(<v:image v:technique="stretch"><v:size v:width="9" v:height="9"/>
        <v:picture v:data="{}" v:display-name="Name"><v:natural-size v:width="40" v:height="30"/></v:picture></v:image>)";
    const auto binaryOf
        = [](const auto& renderable) { return static_cast<VXRImageRenderable&>(*renderable).imageBinary(); };
    const auto images = read(inDocument(fmt::format(fmt::runtime(image + image), "p.png", "p.png")));
    EXPECT_EQ(binaryOf(images[0]), binaryOf(images[1]));
    EXPECT_EQ(binaryOf(images[0])->data(), data);
    LogCapture log;
    const auto missing = read(inDocument(fmt::format(fmt::runtime(image), "../gone.png")));
    EXPECT_THAT(log.lines(),
        ElementsAre("10 WARNING, initializing an image binary from %p, there is no data '../gone.png'."));
    EXPECT_TRUE(binaryOf(missing[0])->isMissing());
    EXPECT_EQ(binaryOf(missing[0])->naturalImageSize(), (Size { 40, 30 }));
    EXPECT_THAT(written(missing), HasSubstr(R"(<v:picture v:data="../gone.png" v:display-name="Name">)"));
}

/// A filter with a state beyond its values.
class PosterFilter final : public VXRFilter {
public:
    explicit PosterFilter(std::string title)
        : VXRFilter("Poster", { { "levels", 4, 2, 64 } })
        , mTitle(std::move(title))
    {
    }
    std::vector<FilterOperation> operations() const override { return {}; }
    std::shared_ptr<VXRFilter> copyWithZone() const override { return std::make_shared<PosterFilter>(*this); }
    const std::string& title() const { return mTitle; }

private:
    std::string mTitle;
};

TEST_F(ModelArchive, KeepsEffectsAndThoseOfOtherPrograms)
{
    VXARegisterClass<PosterFilter>({ "PosterFilter",
        [](const Object& object, VXACoder& coder) {
            const auto& filter = static_cast<const PosterFilter&>(object);
            coder.encodeString(filter.title());
            coder.encodeFloat(filter.valueForKey("levels"));
        },
        [](VXADecoder& decoder) -> std::shared_ptr<Object> {
            auto filter = std::make_shared<PosterFilter>(decoder.decodeString());
            filter->setValueForKey(decoder.decodeFloat(), "levels");
            return filter;
        } });
    const auto stack = std::make_shared<VXREffectStack>();
    stack->appendFilter(VXRFilterRegistry::createFilter("TesselLighting"));
    stack->filterAtIndex(1)->setValueForKey(1.25f, "inputPower");
    stack->appendFilter(std::make_shared<PosterFilter>("a title"));
    stack->filterAtIndex(2)->setValueForKey(7, "levels");
    stack->setEnabledAtIndex(false, 2);

    VXAXMLDocument document(VelloraNamespace, "d");
    VXAXMLArchiver archiver;
    archiver.encodeObjectAsChildOf(*stack, document.root());
    const std::string text = document.serialize();
    EXPECT_THAT(text, HasSubstr(R"(<v:core-image-filter v:name="TesselLighting">)"));
    EXPECT_THAT(text, HasSubstr(R"(<v:core-image-filter v:name="Poster" v:enabled="false">)"));
    VXAXMLUnarchiver unarchiver;
    const auto again = std::dynamic_pointer_cast<VXREffectStack>(
        unarchiver.createObjectFromNode(vxaxmlFirstChildElement(document.root())));
    EXPECT_TRUE(again->isEqual(*stack));
    EXPECT_EQ(dynamic_cast<PosterFilter&>(*again->filterAtIndex(2)).title(), "a title");

    const std::string foreign = inDocument(R"(<v:effects><v:core-image-filter v:name="Foreign">
        <v:filter-properties><v:entry v:key="k" v:type="number" v:value="0.5"/></v:filter-properties>
        </v:core-image-filter><v:core-image-filter/><v:core-image-filter v:name="TesselLighting"/></v:effects>)");
    const auto parsed = VXAXMLDocument::parse(std::as_bytes(std::span(foreign)));
    LogCapture log;
    const auto other = std::dynamic_pointer_cast<VXREffectStack>(
        unarchiver.createObjectFromNode(vxaxmlFirstChildElement(parsed->root())));
    EXPECT_THAT(log.lines(),
        ElementsAre("10 WARNING, initializing a filter from %p, there is no filter 'Foreign'; it is kept "
                    "without effect.",
            "10 WARNING, initializing a filter from %p, cannot get name.",
            "10 WARNING, initializing a filter from %p, cannot get inputPower."));
    ASSERT_EQ(other->layerCount(), 3u);
    EXPECT_EQ(other->filterAtIndex(1)->valueForKey("k"), 0.5f);
}

TEST_F(ModelArchive, ReadsDamagedModelsAsFarAsTheyGo)
{
    const std::string identity = R"(<v:path v:data=""/>)";
    const std::string smart
        = R"(<v:stroke a:class="stroke" v:miter-limit="4" v:width="1" v:cap="butt" v:join="miter" v:name="gone" v:random-seed="7">
<v:color v:space="named" v:alpha="1"/><v:pattern v:phase="0" v:type="solid"><v:pattern/></v:pattern></v:stroke>)";
    const auto logged = [](const char* kind, const char* what) {
        return fmt::format("10 WARNING, initializing {} from %p, cannot get {}.", kind, what);
    };
    const struct {
        const char* name;
        std::string element;
        std::string rewritten; ///< a part of it
        std::vector<std::string> log;
    } cases[] = {
        { "EmptyShape", "<v:shape/>", R"(<v:path v:data=""/>)", { logged("a shape", "path") } },
        { "WildOpacity", "<v:shape v:opacity='-1'>" + identity + "</v:shape>", "<v:shape>",
            { logged("a renderable", "opacity") } },
        { "OverflowingTransform",
            "<v:shape>" + identity
                + "<v:transform v:m11='1e300' v:m12='0' v:m21='0' v:m22='1' v:tx='0' v:ty='0'/></v:shape>",
            "<v:shape>", { logged("a renderable", "transform") } },
        { "UnknownFill", "<v:shape>" + identity + "<v:fill a:class='mesh' v:rows='3'/></v:shape>",
            R"(<v:fill a:class="mesh" v:rows="3"/>)", { logged("a shape", "fill") } },
        { "StrokeAsFill", "<v:shape>" + identity + "<v:fill a:class='line-end'/></v:shape>", "<v:shape>",
            { "10 initializing line end, couldn't get end point.  Returning nil.",
                logged("a shape", "fill") } },
        { "SmartStrokeWithoutBundle", "<v:shape>" + identity + smart + "</v:shape>",
            R"(v:name="gone" v:random-seed="7">)", {} },
        { "UnknownManipulation",
            "<v:shape>" + identity
                + R"(<v:stroke a:class="manipulated-stroke" v:miter-limit="4" v:width="1" v:cap="butt" v:join="miter">
<v:color v:space="named" v:alpha="1"/><v:pattern v:phase="0" v:type="solid"><v:pattern/></v:pattern>
<v:manipulations><v:sparkle v:size="2"/><v:wobbly-path v:amplitude="1"/></v:manipulations></v:stroke></v:shape>)",
            R"(<v:sparkle v:size="2"/>)",
            { logged("a manipulated stroke", "sparkle"), logged("a path manipulation", "wavelength"),
                logged("a path manipulation", "random-seed") } },
        { "EmptyStar", "<v:star/>",
            R"(<v:star v:inner-radius="0" v:outer-radius="0" v:number-of-points="3"/>)",
            { logged("a star", "inner-radius"), logged("a star", "outer-radius"),
                logged("a star", "number-of-points") } },
        { "HugeStar", "<v:star v:inner-radius='1' v:outer-radius='2' v:number-of-points='2e9'/>",
            R"(v:number-of-points="3")", { logged("a star", "number-of-points") } },
        { "HugePolygon", "<v:regular-polygon v:radius='inf' v:number-of-sides='4'/>",
            R"(<v:regular-polygon v:radius="0" v:number-of-sides="4"/>)",
            { logged("a regular polygon", "radius") } },
        { "LineToNowhere",
            "<v:line><v:start v:x='1' v:y='2'/><v:end v:x='nan' v:y='0'/><v:end-connection v:mode='place' "
            "v:to='x' v:x='0' v:y='0'/></v:line>",
            "<v:line>",
            { logged("a line", "end"), "10 WARNING, a line is connected to 'x', which isn't there." } },
        { "ReflectionOfItself", "<v:reflection-renderable a:id='r' v:of='r' v:start-opacity='x'/>",
            R"(<v:reflection-renderable v:start-opacity="0.5"/>)",
            { logged("a reflection", "start-opacity"),
                "10 WARNING, a reflection can't reflect 'r', which holds it, or isn't there." } },
        { "ReflectionOfItsGroup",
            "<v:group a:id='g'><v:renderables><v:reflection-renderable v:of='g' v:start-opacity='1'/>"
            "</v:renderables></v:group>",
            R"(<v:reflection-renderable v:start-opacity="1"/>)",
            { "10 WARNING, a reflection can't reflect 'g', which holds it, or isn't there." } },
        { "FilteredWithoutPicture",
            "<v:shape>" + identity
                + "<v:fill a:class='image-fill' v:technique='tile'><v:filtered-image/></v:fill></v:shape>",
            R"(<v:fill v:technique="tile" a:class="image-fill"/>)",
            { logged("a filtered image", "unfiltered") } },
        { "EmptyImage", "<v:image v:technique='wild' v:mask='path'/>", R"(<v:image v:technique="stretch">)",
            { logged("an image", "technique"), logged("an image", "size"),
                logged("an image", "mask-path") } },
        { "ClipWithoutPlace", "<v:group><v:clip v:data='M inf 0'/><v:renderables/></v:group>",
            "<v:group>\n    <v:renderables/>",
            { "10 WARNING, initializing a path from %p, its coordinates are not finite." } },
        { "UnknownRenderable", "<v:group><v:renderables><v:hologram v:x='1'/></v:renderables></v:group>",
            R"(<v:hologram v:x="1"/>)",
            { "10 WARNING, 'hologram' at %p can't be read as a renderable and is left out." } },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        LogCapture log;
        const std::string once = written(read(inDocument(c.element)));
        EXPECT_EQ(log.lines(), c.log);
        EXPECT_THAT(once, HasSubstr(c.rewritten));
        EXPECT_EQ(written(read(once)), once);
    }
}

TEST_F(ModelArchive, KeepsWhatNoReaderAsksFor)
{
    const std::string text = inDocument(R"(
  <v:shape x:id="7" v:glow="2" xmlns:x="urn:other">
    <v:transform v:m11="1" v:m12="0" v:m21="0" v:m22="1" v:tx="5" v:ty="6" v:locked="yes"/>
    <v:shadow v:is-null="true" v:old="1"/>
    <v:path v:data="M 0 0 L 9 0 L 9 9 Z" v:smooth="true"/>
    <v:fill a:class="gradient" v:opacity="1" v:type="linear">
      <v:stops v:order="given">
        <v:gradient-stop v:fraction="0"><v:color v:space="named" v:alpha="1"/></v:gradient-stop>
        <v:gradient-stop v:fraction="1" v:midpoint="0.3"><v:color v:space="named" v:alpha="1" v:ink="gold"/></v:gradient-stop>
      </v:stops>
    </v:fill>
    <x:note>some <x:b>text</x:b> &amp; more</x:note>
  </v:shape>)");
    auto shapes = read(text);
    const std::string once = written(shapes);
    for (const char* part : { "x:id=\"7\"", "v:glow=\"2\"", "v:ty=\"6\" v:locked=\"yes\"/>",
             "v:smooth=\"true\"/>", "<v:stops v:order=\"given\">", "v:fraction=\"1\" v:midpoint=\"0.3\">",
             "v:alpha=\"1\" v:ink=\"gold\"/>", "<x:note>some <x:b>text</x:b> &amp; more</x:note>" })
        EXPECT_THAT(once, HasSubstr(part));
    EXPECT_EQ(written(read(once)), once);
    // It goes with what it belongs to.
    auto& shape = static_cast<VXRShape&>(*shapes[0]);
    shape.setFill(Color::blackColor());
    const std::string changed = written(shapes);
    EXPECT_THAT(changed, HasSubstr("v:glow=\"2\""));
    EXPECT_THAT(changed, ::testing::Not(::testing::AnyOf(HasSubstr("midpoint"), HasSubstr("gold"))));
}

} // namespace
} // namespace vxr
