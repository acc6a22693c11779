#include <vxr/fills/VXRAngleGradient.h>
#include <vxr/fills/VXRReflection.h>
#include <vxr/fills/VXRShadow.h>
#include <vxr/fills/VXRTransformGradient.h>
#include <vxr/host/archiving/VXAXMLDocument.h>
#include <vxr/persistence/VXRArchiving.h>
#include <vxr/platform/graphics/path/Path.h>
#include <vxr/renderables/VXRLineEnd.h>
#include <vxr/strokes/VXRStroke.h>
#include <vxr/strokes/VXRStrokePattern.h>

#include "tests/support/LogCapture.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <random>

namespace vxr {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::LogCapture;

struct Archive : ::testing::Test {
    static void SetUpTestSuite() { VXRInitArchivingClassToElementNameMappings(false); }
};

/// The object's own element, with the namespaces' declarations left out.
std::string written(const Object& object, const char* name)
{
    VXAXMLDocument document(VelloraNamespace, "d");
    VXAXMLArchiver archiver;
    archiver.encodeObjectAsChildOfWithNameXmlNamespace(object, document.root(), name, VelloraNamespace);
    const std::string text = document.serialize();
    const auto begin = text.find("\n  <") + 3, end = text.rfind("\n</");
    return text.substr(begin, end - begin);
}

struct Reading {
    explicit Reading(const std::string& element)
        : document(VXAXMLDocument::parse(std::as_bytes(std::span(text = "<v:d xmlns:v=\"urn:vxr:model\" "
                                                                        "xmlns:a=\"urn:vxr:archive\">"
                + element + "</v:d>"))))
    {
    }
    template <class Class> std::shared_ptr<Class> as()
    {
        VXAXMLUnarchiver unarchiver;
        return VXRObjectFromNode<Class>(unarchiver, vxaxmlFirstChildElement(document->root()));
    }

    std::string text;
    std::unique_ptr<VXAXMLDocument> document;
};

template <class Class> std::shared_ptr<Class> readBack(const Class& object)
{
    return Reading(written(object, "object")).as<Class>();
}

TEST_F(Archive, WritesStylesAsDocumentsSpellThem)
{
    const float entries[] = { 1, 2.5f, 3 };
    const VXRStroke stroke(Color::colorWithDeviceCMYK(0, 0.25f, 1, 0), 2.5f, 1, 2,
        VXRStrokePattern::strokePatternWithPatternCountPhase(entries, 3, 0.5f));
    EXPECT_EQ(written(stroke, "stroke"),
        R"(<v:stroke v:miter-limit="4" v:width="2.5" v:cap="round" v:join="bevel">
    <v:color v:space="device-cmyk" v:cyan="0" v:magenta="0.25" v:yellow="1" v:black="0" v:alpha="1"/>
    <v:pattern v:phase="0.5" v:type="pattern">
      <v:pattern>
        <v:element v:val="1"/>
        <v:element v:val="2.5"/>
        <v:element v:val="3"/>
      </v:pattern>
    </v:pattern>
  </v:stroke>)");
    EXPECT_EQ(written(*VXRShadow::nullShadow(), "shadow"), R"(<v:shadow v:is-null="true"/>)");
    EXPECT_THAT(written(*VXRLineEnd::filledSquare(), "line-end"),
        AllOf(HasSubstr(R"(<v:line-end v:filled="true">)"), HasSubstr("<v:path v:data=\"M "),
            HasSubstr("<v:end-point v:x=")));
    const auto gradient = VXRAngleGradient::radialGradientWithStartColorEndColor(
        Color::whiteColor(), Color::colorWithCalibratedRGB(1, 0, 0.5f));
    gradient->setGradientAngleInDegrees(90);
    EXPECT_EQ(written(*gradient, "fill"),
        R"(<v:fill v:opacity="1" v:type="radial" v:angle="1.5707963705062866">
    <v:stops>
      <v:gradient-stop v:fraction="0">
        <v:color v:space="calibrated-white" v:white="1" v:alpha="1"/>
      </v:gradient-stop>
      <v:gradient-stop v:fraction="1">
        <v:color v:space="calibrated-rgb" v:red="1" v:green="0" v:blue="0.5" v:alpha="1"/>
      </v:gradient-stop>
    </v:stops>
  </v:fill>)");
}

TEST_F(Archive, RefusesCodesThatHaveNoWord)
{
    const auto messageOf = [](const Object& object) -> std::string {
        try {
            return "written: " + written(object, "object");
        } catch (const GenericException& exception) {
            return exception.what();
        }
    };
    struct BadCap : VXRStroke {
        using VXRStroke::VXRStroke;
    };
    const auto pattern = VXRStrokePattern::solidPattern();
    pattern->_setPatternType(3);
    EXPECT_EQ(messageOf(*pattern), "Cannot archive stroke style with type '3'");
    const auto gradient = std::make_shared<VXRGradient>(Color::whiteColor(), Color::blackColor(), 2);
    EXPECT_EQ(messageOf(*gradient), "Cannot encode gradient with type 2");
    EXPECT_THAT(messageOf(BadCap(Color::blackColor(), 1, 0, 0, VXRStrokePattern::solidPattern())),
        HasSubstr("its class is not registered"));
}

TEST_F(Archive, ReadsWhatIsMissingAsDefaultsAndSaysSo)
{
    struct Case {
        const char* element;
        std::function<std::string(Reading&)> describe;
        std::vector<std::string> logged;
    };
    const auto shadow = [](Reading& reading) {
        const auto s = reading.as<VXRShadow>();
        return fmt::format("{} {} {} {} {}{}", s->angle(), s->offset(), s->radius(), s->opacity(),
            s->color() ? s->color()->description() : "none", s->isNullShadow() ? " null" : "");
    };
    const auto stroke = [](Reading& reading) {
        const auto s = reading.as<VXRStroke>();
        return fmt::format("{} {} {} {} {} {}", s->width(), s->miterLimit(), s->cap(), s->join(),
            s->pattern()->patternType(), s->color() == Color::blackColor());
    };
    const auto pattern = [](Reading& reading) {
        const auto p = reading.as<VXRStrokePattern>();
        std::string text = fmt::format("{} {} {}:", p->patternType(), p->phase(), p->count());
        for (int i = 0; i < p->count(); ++i)
            text += fmt::format(" {}", p->pattern()[i]);
        return text;
    };
    const auto gradient = [](Reading& reading) {
        const auto g = reading.as<VXRGradient>();
        std::string text = fmt::format("{} {}:", g->gradientType(), g->opacity());
        for (const auto& stop : g->gradientStops())
            text += fmt::format(" {:.3}", stop->fraction());
        return text;
    };
    const auto none = [](Reading& reading) {
        return reading.as<VXRLineEnd>() || reading.as<VXRGradientStop>() ? "made" : "none";
    };
    const std::string black = Color::blackColor()->description();
    const std::string color = R"(<v:color v:space="named" v:alpha="1"/>)";
    const auto stop = [&](const char* fraction) {
        return fmt::format(R"(<v:gradient-stop v:fraction="{}">{}</v:gradient-stop>)", fraction, color);
    };
    const std::string repaired = R"(<v:g v:opacity="1" v:type="linear"><v:stops>)" + stop("0.5") + stop("0.2")
        + stop("0.8") + "</v:stops></v:g>";
    const std::string repairedLast
        = R"(<v:g v:opacity="1" v:type="l"><v:stops>)" + stop("0.5") + stop("0.2") + "</v:stops></v:g>";
    const std::string lone = R"(<v:g v:opacity="1" v:type="r"><v:stops>)" + stop("0.3") + "</v:stops></v:g>";
    const std::string loneLate
        = R"(<v:g v:opacity="1" v:type="x"><v:stops>)" + stop("0.7") + "</v:stops></v:g>";
    const std::string late = R"(<v:g v:opacity="1" v:type="l"><v:stops>)" + stop("1") + stop("0.2")
        + stop("0.4") + "</v:stops></v:g>";
    const std::string invalid
        = "10 WARNING, unarchiving gradient <vxr::VXRGradient %p>, stop <vxr::VXRGradientStop "
          "%p> was invalid.  Attempting to fix.";
    const std::string single = "10 WARNING, unarchiving gradient <vxr::VXRGradient %p>, there was only one "
                               "stop.  Attempting to fix.";
    const Case cases[] = {
        { "<v:s/>", shadow,
            { "10 WARNING, initialzing a shadow prop from %p, cannot get angle.",
                "10 WARNING, initializng a shadow prop from %p, cannot get offset.",
                "10 WARNING, initializing a shadow prop from %p, cannot get radius.",
                "10 WARNING, initializing a shadow prop from %p, cannot get opacity.",
                "10 WARNING, initializing a shadow prop from %p, cannot get color.  Using black as "
                "default." } },
        { R"(<v:s v:is-null="1"/>)", shadow, {} },
        { R"(<v:s v:angle="30" v:offset="2e0" v:radius="2.9" v:opacity="x"><v:color v:space="calibrated-white" v:white="0" v:alpha="1"/></v:s>)",
            shadow, { "10 WARNING, initializing a shadow prop from %p, cannot get opacity." } },
        { "<v:s/>", stroke,
            { "1 No color on stroke %p, using black as default.", "1 No pattern on stroke %p, using default.",
                "10 WARNING, initializing %p from %p, miter limit not found",
                "10 WARNING, initialinzg %p from %p, width not found",
                "1 no prop val for cap on %p, using default",
                "1 no prop val for join on %p, using default" } },
        { R"(<v:s v:width="3" v:miter-limit="5" v:cap="pointed" v:join="miterr"><v:color v:space="calibrated-white" v:white="0" v:alpha="1"/><v:pattern v:phase="0" v:type="solid"><v:pattern/></v:pattern></v:s>)",
            stroke,
            { "10 Cannot decode stroke style with line cap type of 'pointed'",
                "10 Cannot decode stroke style with line join type of 'miterr'" } },
        { "<v:p/>", pattern,
            { "10 WARNING, no phase property when initializing VXRStrokePattern %p from node %p",
                "10 No type property for stroke pattern during initialization, using empty pattern for "
                "default.",
                "10 Warning, initializing stroke pattern from %p, there was no pattern." } },
        { R"(<v:p v:phase="1" v:type="dotted"><v:pattern><v:element v:val="1"/><v:element v:val="2"/><v:element v:val="3"/><v:element v:val="4"/><v:element v:val="5"/><v:element v:val="6"/><v:element v:val="7"/></v:pattern></v:p>)",
            pattern,
            { "10 Don't know what to do with type 'dotted' for stroke style",
                "10 WARNING, there were more elements in the pattern XML than are allowed." } },
        { "<v:g/>", gradient,
            { "10 WARNING, VXRGradient initializing from %p couldn't get opacity.",
                "10 Couldn't get type for gradient, assuming linear.",
                "1 Initializing %p, no stops were found.  Making something up." } },
        { repaired.c_str(), gradient, { invalid } },
        { repairedLast.c_str(), gradient, { invalid } },
        { lone.c_str(), gradient, { single } },
        { loneLate.c_str(), gradient, { single } },
        { late.c_str(), gradient, { invalid, invalid } },
        { "<v:l/>", none,
            { "10 initializing line end, couldn't get end point.  Returning nil.",
                "10 WARNING, initializing gradient stop from %p, could not get fraction",
                "10 Could not get color initializing gradient stop.  Returning nil." } },
        { R"(<v:l><v:end-point v:x="1" v:y="2"/></v:l>)", none,
            { "10 initializing line end, couldn't get path.  Returning nil.",
                "10 WARNING, initializing gradient stop from %p, could not get fraction",
                "10 Could not get color initializing gradient stop.  Returning nil." } },
    };
    const std::string expected[] = { "0 0 0 0 " + black, "0 0 0 0 none null", "30 2 2 0 " + black,
        "1 4 0 0 1 true", "3 5 0 0 1 false", "2 0 0:", "0 1 6: 1 2 3 4 5 6", "0 0: 1 0", "0 1: 0.5 0.65 0.8",
        "0 1: 0.5 0.75", "1 1: 0.3 1", "0 1: 0 0.7", "0 1: 1 1 1", "none", "none" };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE(cases[i].element);
        Reading reading(cases[i].element);
        LogCapture log;
        EXPECT_EQ(cases[i].describe(reading), expected[i]);
        EXPECT_EQ(log.lines(), cases[i].logged);
    }
}

TEST_F(Archive, ReadsOneMissingAngleOfAGradient)
{
    Reading reading(R"(<v:g v:opacity="1" v:type="radial"/>)");
    LogCapture log;
    EXPECT_EQ(reading.as<VXRAngleGradient>()->gradientAngle(), 0);
    EXPECT_THAT(log.lines(),
        ElementsAre(::testing::_,
            "10 WARNING, -[VXRAngleGradient initWithXMLUnarchiver:node:version:] couldn't get angle; using "
            "0.0 "
            "as default."));
    Reading empty("<v:r/>");
    EXPECT_EQ(empty.as<VXRReflection>()->opacity(), 0);
    EXPECT_EQ(log.lines().back(), "10 WARNING, initializing a reflection prop from %p, cannot get opacity.");
}

/// Any float a style may hold, the odd ones included.
class RandomValues {
public:
    explicit RandomValues(unsigned seed)
        : mEngine(seed)
    {
    }
    float number()
    {
        const float odd[] = { 0, -0.0f, 1e-40f, 3.4e38f, INFINITY, -INFINITY, 0.1f, 1.0f / 3 };
        const unsigned choice = mEngine() % 12;
        return choice < 8 ? odd[choice] : std::uniform_real_distribution<float>(-300, 300)(mEngine);
    }
    int below(int count) { return int(mEngine() % unsigned(count)); }
    std::shared_ptr<Color> color()
    {
        switch (below(6)) {
        case 0:
            return Color::colorWithCalibratedWhite(number(), number());
        case 1:
            return Color::colorWithCalibratedRGB(number(), number(), number(), number());
        case 2:
            return Color::colorWithDeviceWhite(number(), number());
        case 3:
            return Color::colorWithDeviceRGB(number(), number(), number(), number());
        case 4:
            return Color::colorWithDeviceCMYK(number(), number(), number(), number(), number());
        default:
            return Color::namedColor(number());
        }
    }
    std::shared_ptr<Path> path()
    {
        auto path = Path::path();
        for (int i = below(12); i > 0; --i) {
            const Point a { number(), number() }, b { number(), number() }, c { number(), number() };
            switch (below(4)) {
            case 0:
                path->moveTo(a);
                break;
            case 1:
                path->lineTo(a);
                break;
            case 2:
                path->curveTo(a, b, c);
                break;
            default:
                path->close();
            }
        }
        const float dash[] = { number(), number(), number() };
        path->setLineDash(dash, below(4), number());
        path->setLineWidth(number());
        path->setWindingRule(WindingRule(below(2)));
        path->setLineCap(LineCap(below(3)));
        path->setLineJoin(LineJoin(below(3)));
        path->setFlatness(number());
        return path;
    }

private:
    std::mt19937 mEngine;
};

TEST_F(Archive, ReadsBackWhatItWroteAndWritesItAgainTheSame)
{
    RandomValues random(20);
    for (int round = 0; round < 200; ++round) {
        const auto color = random.color();
        const auto path = random.path();
        const float entries[] = { random.number(), random.number(), random.number(), random.number(),
            random.number(), random.number() };
        const auto pattern
            = VXRStrokePattern::strokePatternWithPatternCountPhase(entries, random.below(7), random.number());
        pattern->_setPatternType(random.below(3));
        VXRStroke stroke(random.color(), random.number(), random.below(3), random.below(3), pattern);
        stroke.setMiterLimit(random.number());
        const auto shadow = VXRShadow::shadowWithAngleOffsetRadiusOpacityColor(
            random.number(), random.number(), random.below(50), random.number(), random.color());
        VXRTransformGradient gradient(random.color(), random.color(), random.below(2));
        gradient.setStartPoint({ random.number(), random.number() });
        gradient.setTransform(AffineTransform { random.number(), 2, random.number(), 4, 5, random.number() });
        const auto lineEnd = VXRLineEnd::lineEndWithPathEndPointIsFilled(
            path, { random.number(), random.number() }, random.below(2) == 1);

        LogCapture log;
        EXPECT_EQ(written(*readBack(*color), "o"), written(*color, "o"));
        EXPECT_EQ(written(*readBack(*path), "o"), written(*path, "o"));
        EXPECT_EQ(written(*readBack(stroke), "o"), written(stroke, "o"));
        EXPECT_EQ(written(*readBack(*shadow), "o"), written(*shadow, "o"));
        EXPECT_EQ(written(*readBack(gradient), "o"), written(gradient, "o"));
        EXPECT_EQ(written(*readBack(*lineEnd), "o"), written(*lineEnd, "o"));
        EXPECT_THAT(log.lines(), IsEmpty());
        const auto same = readBack(*path);
        EXPECT_EQ(same->points().size(), path->points().size());
        EXPECT_TRUE(std::ranges::equal(same->points(), path->points()));
        EXPECT_EQ(same->lineStyle(), path->lineStyle());
        for (int i = 0; i < color->componentCount(); ++i)
            EXPECT_EQ(readBack(*color)->component(i), color->component(i));
    }
}

TEST_F(Archive, KnowsManipulationsOnlyWhenAskedTo)
{
    EXPECT_EQ(vxaxmlClassForName("wobbly-path"), nullptr);
    EXPECT_STREQ(vxaxmlClassForName("core-image-filter")->name, "CIFilter");
    VXRInitArchivingClassToElementNameMappings(true);
    EXPECT_STREQ(vxaxmlClassForName("overshoot-joins")->name, "VXROverstrokePathManipulation");
}

TEST_F(Archive, FindsTheClassOfAnElementByItsAttributeFirst)
{
    VXAXMLDocument document(VelloraNamespace, "d");
    VXAXMLArchiver archiver;
    const auto stroke = VXRStroke::strokeWithColorWidth(Color::whiteColor(), 7);
    VXAXMLNode* const node = archiver.encodeObjectAndClassAsChildOfWithNameXmlNamespace(
        *stroke, document.root(), "outline", VelloraNamespace);
    VXAXMLUnarchiver unarchiver;
    EXPECT_TRUE(unarchiver.createObjectFromNode(node)->isEqual(*stroke));
    EXPECT_THROW(archiver.encodeObjectAndClassAsChildOfWithNameXmlNamespace(
                     *Color::whiteColor(), document.root(), "fill", VelloraNamespace),
        GenericException);
}

} // namespace
} // namespace vxr
