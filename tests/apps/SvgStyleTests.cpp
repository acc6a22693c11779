#include <apps/vxr/svg/Style.h>
#include <apps/vxr/svg/Xml.h>

#include <gmock/gmock.h>

namespace app::svg {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

XmlElement element(const std::string& xml)
{
    return parseXml("<svg xmlns='http://www.w3.org/2000/svg'>" + xml + "</svg>").children.front();
}

TEST(SvgCascade, PicksTheWinner)
{
    const struct {
        const char* name;
        const char* css;
        const char* xml;
        const char* fill;
    } cases[] = {
        { "TypeRuleBeatsAttribute", "path { fill: b }", "<path fill='a'/>", "b" },
        { "ClassBeatsType", ".k{fill:c} path{fill:b}", "<path class='k'/>", "c" },
        { "IdBeatsClasses", "#i{fill:d}.k.l.m{fill:c}", "<path id='i' class='k l m'/>", "d" },
        { "StyleBeatsId", "#i{fill:d}", "<path id='i' style='fill: e ;'/>", "e" },
        { "ImportantBeatsStyle", "path{fill:b !important}", "<path style='fill:e'/>", "b" },
        { "ImportantStyleBeatsThat", "#i{fill:b!important}", "<path id='i' style='fill:e ! important'/>",
            "e" },
        { "LaterOfEqualsWins", "path{fill:b}path{fill:c}", "<path/>", "c" },
        { "CompoundMustMatchWhole", "path.k#i{fill:b}", "<path class='k'/>", "none" },
        { "TwoClasses", ".j.k{fill:b}.j{fill:c}", "<path class='k j'/>", "b" },
        { "PartOfAClassNameIsNoMatch", ".k{fill:b}", "<path class='kk'/>", "none" },
        { "Universal", "*{fill:b}", "<path fill='a'/>", "b" },
        { "List", "rect, path , circle{fill:b}", "<path/>", "b" },
        { "CommentsAreSpace", "path/*x*/{fill:/* } */b}/*", "<path/>", "b" },
        { "AtRulesAreSkipped", "@import 'x;y.css'; @media print{path{fill:z}} path{fill:b}", "<path/>", "b" },
        { "CombinatorsAreLeftOut", "g path{fill:b}", "<path fill='a'/>", "a" },
        { "ListSurvivesABadPart", "g > path, .k{fill:b}", "<path class='k'/>", "b" },
        { "SemicolonInUrl", "path{fill:url('a;b#c')}", "<path/>", "url('a;b#c')" },
        { "PropertyNamesIgnoreCase", "path{FILL:b}", "<path/>", "b" },
        { "Unclosed", "path{fill:b", "<path/>", "b" },
        { "Empty", "path{fill:}", "<path fill='a'/>", "a" },
    };

    for (const auto& c : cases) {
        StyleSheet sheet;
        sheet.add(c.css);
        const Declarations declarations = sheet.cascade(element(c.xml));
        const std::string* fill = declarations.get(Property::Fill);
        EXPECT_EQ(fill ? *fill : "none", c.fill) << c.name;
    }
}

TEST(SvgCascade, SaysWhatItLeavesOut)
{
    std::vector<std::string> left;
    StyleSheet sheet;
    sheet.add("@font-face{src:url(x)} a:hover{fill:b} g path, path{fill:c} path::before{} [x]{}",
        [&](std::string_view what) { left.emplace_back(what); });
    EXPECT_THAT(left, ElementsAre("@font-face", "a:hover", "g path", "path::before", "[x]"));
}

TEST(SvgCascade, ComparesAnElementOnlyWithRulesThatMayMatch)
{
    std::string css = "*{fill:x}";
    for (int i = 0; i < 20'000; ++i)
        css += ".c" + std::to_string(i) + "{fill:c}#i" + std::to_string(i) + "{fill:i}t{fill:t}";
    StyleSheet sheet;
    sheet.add(css);
    for (int i = 0; i < 6'000; ++i) // more comparisons than are allowed, were every rule asked
        ASSERT_EQ(*sheet.cascade(element("<g class='c7 c8'/>")).get(Property::Fill), "c");
    EXPECT_THROW(
        {
            for (int i = 0; i < 6'000; ++i)
                sheet.cascade(element("<t/>"));
        },
        DocumentError);
}

Style styled(const std::string& attributes, const Style& parent = {}, std::vector<std::string>* bad = nullptr)
{
    return computeStyle(parent, StyleSheet().cascade(element("<path " + attributes + "/>")), { 300, 400 },
        [&](Property, const std::string& warning) {
            if (bad)
                bad->push_back(warning);
        });
}

TEST(SvgStyle, InheritsWhatIsInheritedOnly)
{
    const Style parent = styled("style='fill:red;stroke-width:3;opacity:.5;clip-path:url(#c);color:blue;"
                                "marker:url(#m);stroke-dasharray:1 2;font-size:10px;visibility:hidden'");
    const Style child = styled("", parent);
    EXPECT_EQ(child.fill.color, *parseColor("red"));
    EXPECT_EQ(child.strokeWidth, 3);
    EXPECT_EQ(child.markerMid, "m");
    EXPECT_THAT(child.dash, ElementsAre(1, 2));
    EXPECT_FALSE(child.isVisible);
    EXPECT_EQ(child.opacity, 1);
    EXPECT_EQ(child.clipPath, "");
    const Style asked
        = styled("style='opacity:inherit;fill:initial;clip-path:inherit;visibility:visible'", parent);
    EXPECT_EQ(asked.opacity, 0.5);
    EXPECT_EQ(asked.fill.color, *parseColor("black"));
    EXPECT_EQ(asked.clipPath, "c");
    EXPECT_TRUE(asked.isVisible);
}

TEST(SvgStyle, KeepsWhatItHadWhenAValueIsNone)
{
    std::vector<std::string> bad;
    const Style parent = styled("fill='red' stroke-width='3'");
    const Style style = styled("fill='redd' stroke-width='-1' stroke-miterlimit='.5' stroke-linecap='flat' "
                               "stroke-dasharray='1 -2' opacity='x' fill-rule='odd'",
        parent, &bad);
    EXPECT_EQ(style.fill.color, *parseColor("red"));
    EXPECT_EQ(style.strokeWidth, 3);
    EXPECT_TRUE(style.dash.empty());
    EXPECT_THAT(bad,
        testing::UnorderedElementsAre("'redd' is no value for fill", "'-1' is no value for stroke-width",
            "'.5' is no value for stroke-miterlimit", "'flat' is no value for stroke-linecap",
            "'1 -2' is no value for stroke-dasharray", "'x' is no value for opacity",
            "'odd' is no value for fill-rule"));
}

TEST(SvgStyle, MeasuresLengthsByFontAndViewport)
{
    // Half of the viewport's diagonal measure, sqrt((300^2 + 400^2) / 2).
    EXPECT_NEAR(styled("stroke-width='50%'").strokeWidth, 250 / std::sqrt(2), 1e-9);
    EXPECT_EQ(styled("style='stroke-width:2em;font-size:10px'").strokeWidth, 20);
    Style parent;
    parent.fontSize = 8;
    EXPECT_EQ(styled("font-size='150%' stroke-width='1em'", parent).strokeWidth, 12);
    EXPECT_THAT(styled("stroke-dasharray='1, 2 3'").dash, ElementsAre(1, 2, 3, 1, 2, 3));
    EXPECT_TRUE(styled("stroke-dasharray='0 0'").dash.empty());
}

TEST(SvgStyle, ReadsPaints)
{
    using Kind = PaintValue::Kind;
    EXPECT_EQ(styled("fill='none'").fill.kind, Kind::None);
    EXPECT_EQ(styled("fill='currentColor'").fill.kind, Kind::CurrentColor);
    EXPECT_EQ(styled("fill='context-stroke'").fill.kind, Kind::ContextStroke);
    const PaintValue reference = styled("fill='url( \"#g\" ) rgb(255,0,0)'").fill;
    EXPECT_EQ(reference.kind, Kind::Reference);
    EXPECT_EQ(reference.reference, "g");
    EXPECT_EQ(reference.fallback, Kind::Color);
    EXPECT_EQ(reference.color, *parseColor("red"));
    EXPECT_EQ(styled("stop-color='currentColor' color='lime'").stopColor, *parseColor("lime"));
}

TEST(SvgXml, RefusesWhatIsHostileOrBroken)
{
    std::string deep = "<svg>";
    for (int i = 0; i < 300; ++i)
        deep += "\n<g>";
    // Refused in time by a parser that compares each attribute with all before it.
    std::string attributes = "<svg>\n<!-- ' -->\n<g ";
    for (int i = 0; i < 300'000; ++i)
        attributes += "a" + std::to_string(i) + "=''\n";
    std::string manyEntities = "<!DOCTYPE svg [", references;
    for (int i = 0; i < 101; ++i)
        manyEntities += "<!ENTITY e" + std::to_string(i) + " 'x'>";
    for (int i = 0; i < 10'000; ++i)
        references += "<g>&a;</g>";
    const struct {
        const char* name;
        std::string xml;
        int line;
        const char* message;
    } cases[] = {
        { "MarkupInAnEntity", "<!DOCTYPE svg [\n<!ENTITY a '<g/>'>]><svg>&a;</svg>", 2, "'a' is no plain" },
        { "ExternalEntity", "<!DOCTYPE svg [<!ENTITY a SYSTEM 'file:///etc/hostname'>]><svg>&a;</svg>", 1,
            "'a' is no plain" },
        { "ParameterEntity",
            "<!DOCTYPE svg SYSTEM 'file:///etc/hostname' [<!ENTITY % a SYSTEM 'b'> %a;]><svg/>", 1,
            "'a' is no plain" },
        { "EntitiesInEntities",
            "<!DOCTYPE svg [<!ENTITY a 'x'><!ENTITY b '&a;'><!ENTITY c '&b;'>]><svg>&c;</svg>", 1,
            "'c' is nested more than 2 deep" },
        { "LongEntity", "<!DOCTYPE svg [<!ENTITY a '" + std::string(4097, 'x') + "'>]><svg/>", 1,
            "longer than 4096" },
        { "ManyEntities", manyEntities + "]><svg/>", 1, "more than 100 entities" },
        { "EntityBomb",
            "<!DOCTYPE svg [<!ENTITY a '" + std::string(4000, 'x') + "'>]><svg>" + references + "</svg>", 1,
            "grows to more than" },
        { "DeclaredAttribute", "<!DOCTYPE svg [<!ATTLIST svg a (b|c) 'b'>]><svg/>", 1, "entities only" },
        { "DeclaredElement", "<!DOCTYPE svg [<!ELEMENT svg ANY>]><svg/>", 1, "entities only" },
        { "LongAttribute", "<svg\na='" + std::string(10'000'001, 'x') + "'/>", 2, "longer than 10 million" },
        { "UndefinedEntity", "<svg>\n&nope;</svg>", 2, "nope" },
        { "Unclosed", "<svg>\n<g>\n</svg>", 3, "g" },
        { "Deep", deep + "</svg>", 201, "nested more than 200 deep" },
        { "Attributes", attributes + "/></svg>", 203, "more than 200 attributes" }, // at the 201st
        { "NotSvg", "<html/>", 1, "'html', not an SVG" },
        { "OtherNamespace", "<svg xmlns='urn:x'/>", 1, "not an SVG" },
        { "Empty", " \n ", 0, "empty" },
        { "Utf16", std::string("\xff\xfe<\0s\0", 6), 1, "UTF-16" },
        { "Binary", std::string("<svg>\0", 6), 1, "no drawing" },
        { "Encoding", "<?xml version='1.0' encoding='UTF-7'?><svg/>", 1, "'UTF-7' is not supported" },
        { "BadUtf8", "<svg a='\xff\xfe'/>", 1, "UTF-8" },
        { "TwoRoots", "<svg/>\n<svg/>", 2, "Extra content" },
    };
    for (const auto& c : cases) {
        try {
            parseXml(c.xml);
            ADD_FAILURE() << c.name << " was accepted";
        } catch (const DocumentError& error) {
            EXPECT_EQ(error.line, c.line) << c.name << ": " << error.what();
            EXPECT_THAT(error.what(), HasSubstr(c.message)) << c.name;
        }
    }
    XmlLimits limits;
    limits.elements = 3;
    EXPECT_NO_THROW(parseXml("<svg><g/><g/></svg>", limits));
    EXPECT_THROW(parseXml("<svg><g/><g/><g/></svg>", limits), DocumentError);
    limits.bytes = 10;
    EXPECT_NO_THROW(parseXml("<svg    />", limits));
    EXPECT_THROW(parseXml("<svg     />", limits), DocumentError);
}

TEST(SvgXml, ReplacesEntitiesOfPlainText)
{
    const XmlElement root
        = parseXml("<!DOCTYPE svg PUBLIC 'p' 'http://127.0.0.1:9/x.dtd' [\n<!ENTITY ns "
                   "'http://www.w3.org/2000/svg'>\n<!ENTITY k 'a&lt;b'>\n<!ENTITY n '[&k;]'>"
                   "]>\n<svg xmlns='&ns;' id='&n;'><style>&n;</style></svg>");
    EXPECT_EQ(root.name, "svg");
    EXPECT_EQ(root.line, 5);
    EXPECT_EQ(*root.attribute("id"), "[a<b]");
    EXPECT_EQ(root.children.at(0).text, "[a<b]");
}

TEST(SvgXml, TakesADocumentTypeWithoutSubsetAndLoadsNothing)
{
    const XmlElement root
        = parseXml("<?xml version='1.0' encoding='ISO-8859-1'?>\n"
                   "<!DOCTYPE svg PUBLIC '-//W3C//DTD SVG 1.1//EN' 'http://127.0.0.1:9/svg11.dtd'>\n"
                   "<svg xmlns='http://www.w3.org/2000/svg' xmlns:x='urn:x' "
                   "xmlns:xlink='http://www.w3.org/1999/xlink' id='\xe9' x:a='1' xlink:href='#b'>\n"
                   "<x:g/><style>a&lt;b<![CDATA[>c]]></style></svg>");
    EXPECT_EQ(root.name, "svg");
    EXPECT_EQ(root.line, 3);
    ASSERT_TRUE(root.attribute("id"));
    EXPECT_EQ(*root.attribute("id"), "\xc3\xa9");
    EXPECT_EQ(*root.attribute("xlink:href"), "#b");
    EXPECT_FALSE(root.attribute("a"));
    ASSERT_EQ(root.children.size(), 2u);
    EXPECT_EQ(root.children[0].name, "");
    EXPECT_EQ(root.children[1].text, "a<b>c");
    EXPECT_EQ(root.children[1].line, 4);
}

} // namespace
} // namespace app::svg
