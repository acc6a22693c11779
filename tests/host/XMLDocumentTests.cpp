#include <vxr/host/archiving/VXAXMLDocument.h>
#include <vxr/host/archiving/VXAXMLUnarchiver.h>

#include <gmock/gmock.h>

#include <clocale>
#include <cmath>
#include <limits>

namespace vxr {
namespace {

using ::testing::HasSubstr;

std::unique_ptr<VXAXMLDocument> parse(const std::string& text, const VXAXMLLimits& limits = {})
{
    return VXAXMLDocument::parse(std::as_bytes(std::span(text)), limits);
}

/// The message of the refusal; empty when the text is a document.
std::string refusal(const std::string& text, const VXAXMLLimits& limits = {})
{
    try {
        parse(text, limits);
        return {};
    } catch (const VXAXMLError& error) {
        return error.what();
    }
}

std::string repeated(const std::string& text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

TEST(XMLDocument, RefusesHostileTextWithItsLine)
{
    std::string attributes = "<a>\n<b";
    for (int i = 0; i < 20'000; ++i)
        attributes += " a" + std::to_string(i) + "=''";
    const struct {
        std::string text;
        const char* message;
    } cases[] = {
        { "", "line 1: Document is empty" },
        { "<a>\n<b></a>", "line 2: Opening and ending tag mismatch" },
        { "<!DOCTYPE a [<!ENTITY e 'x'><!ENTITY f '&e;&e;'>]><a>&f;</a>",
            "line 1: a document type is not allowed" },
        { "<?xml version='1.0'?>\n<!DOCTYPE a SYSTEM 'file:///etc/passwd'><a/>",
            "line 2: a document type is not allowed" },
        { "<a>&undefined;</a>", "Entity 'undefined' not defined" },
        { repeated("<a>", 300) + repeated("</a>", 300), "nested more than 200 deep" },
        { attributes + "/></a>", "line 2: an element has more than 256 attributes" },
        { "<a>\n" + std::string(5 << 20, 'x') + "</a>", "an element has more than 4194304 bytes of text" },
        { "<a>" + repeated("<b/>", 101) + "</a>", "more than 100 elements" },
        { std::string("<a b='\0'/>", 10), "line 1:" },
        { "<a b='\x01'/>", "line 1:" },
        { "<a b='\xff\xfe'/>", "line 1:" },
    };
    VXAXMLLimits limits;
    for (const auto& [text, message] : cases) {
        limits.elements = text.size() < 1000 && text.size() > 300 ? 100 : 1000;
        EXPECT_THAT(refusal(text, limits), HasSubstr(message)) << text.substr(0, 60);
    }
    limits.bytes = 10;
    EXPECT_EQ(refusal("<a>123456</a>", limits), "more than 10 bytes");
}

TEST(XMLDocument, KeepsNumbersExactlyInAnyLocale)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    const double values[] = { 0.1, -0.0, 1e300, 5e-324, 1.0 / 3, double(0.1f), INFINITY, -INFINITY,
        std::numeric_limits<double>::max() };
    VXAXMLDocument document(VelloraNamespace, "d");
    for (const double value : values) {
        double back = 0;
        EXPECT_TRUE(vxaxmlSetDoubleNsProp(document.root(), VelloraNamespace, "n", value));
        EXPECT_TRUE(vxaxmlGetDoubleNsProp(document.root(), VelloraNamespace, "n", back));
        EXPECT_EQ(back, value);
        EXPECT_EQ(std::signbit(back), std::signbit(value));
    }
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_THAT(document.serialize(), ::testing::Not(HasSubstr(",")));
}

TEST(XMLDocument, ReadsAttributesOfItsNamespaceOnly)
{
    const auto document = parse(R"(<d xmlns:v="urn:vxr:model" xmlns:w="urn:vxr:model" xmlns:x="urn:other"
        v:a=" +1.5 " x:a="2" a="3" v:bad="1.5x" v:big="4294967296" v:neg="-1" v:u="4294967295"
        v:yes="YES" v:no="0" v:maybe="2"><x:p/><w:p v:x="1" v:y="2"/><v:s v:width="1"/></d>)");
    VXAXMLNode* const root = document->root();
    double number = 7;
    std::uint32_t whole = 7;
    EXPECT_TRUE(vxaxmlGetDoubleNsProp(root, VelloraNamespace, "a", number));
    EXPECT_EQ(number, 1.5);
    for (const char* name : { "bad", "missing" })
        EXPECT_FALSE(vxaxmlGetDoubleNsProp(root, VelloraNamespace, name, number)) << name;
    for (const char* name : { "big", "neg", "a" })
        EXPECT_FALSE(vxaxmlGetUnsignedLongNsProp(root, VelloraNamespace, name, whole)) << name;
    EXPECT_EQ(number, 1.5);
    EXPECT_TRUE(vxaxmlGetUnsignedLongNsProp(root, VelloraNamespace, "u", whole));
    EXPECT_EQ(whole, 4294967295u);
    EXPECT_TRUE(vxaxmlBoolNsPropDefault(root, VelloraNamespace, "yes", false));
    EXPECT_FALSE(vxaxmlBoolNsPropDefault(root, VelloraNamespace, "no", true));
    EXPECT_TRUE(vxaxmlBoolNsPropDefault(root, VelloraNamespace, "maybe", true));
    Point point;
    Size size { 5, 6 };
    EXPECT_TRUE(vxaxmlPopulatePointFromChild(root, VelloraNamespace, "p", point));
    EXPECT_EQ(point, (Point { 1, 2 }));
    EXPECT_FALSE(vxaxmlPopulateSizeFromChild(root, VelloraNamespace, "s", size));
    EXPECT_EQ(size, (Size { 5, 6 }));
}

TEST(XMLDocument, WritesOnlyWhatXMLCanHold)
{
    VXAXMLDocument document(VelloraNamespace, "d");
    VXAXMLNode* const root = document.root();
    EXPECT_TRUE(vxaxmlSetNSStringNsProp(root, VelloraNamespace, "s", "<&\"'\n\t\u00e9\U0001f600"));
    for (const std::string_view bad : { std::string_view("\xff"), std::string_view("a\0b", 3),
             std::string_view("\x01"), std::string_view("\xef\xbf\xbf") })
        EXPECT_FALSE(vxaxmlSetNSStringNsProp(root, VelloraNamespace, "s", bad));
    EXPECT_TRUE(vxaxmlSetBoolNsPropDefault(root, VelloraNamespace, "b", false, false));
    std::string text;
    EXPECT_TRUE(vxaxmlGetNSStringNsProp(parse(document.serialize())->root(), VelloraNamespace, "s", text));
    EXPECT_EQ(text, "<&\"'\n\t\u00e9\U0001f600");
    EXPECT_EQ(document.serialize(), parse(document.serialize())->serialize());
    EXPECT_THAT(document.serialize(), ::testing::Not(HasSubstr("v:b")));
}

TEST(XMLDocument, KeepsADictionary)
{
    VXAXMLDocument document(VelloraNamespace, "d");
    VXAXMLArchiver archiver;
    const VXAStringKeyDictionary dictionary { { "flag", true }, { "name", std::string("a b") },
        { "value", 0.1 } };
    vxaxmlEncodeStringKeyDictionary(dictionary, document.root(), VelloraNamespace, archiver);
    VXAXMLUnarchiver unarchiver;
    EXPECT_EQ(vxaxmlDecodeStringKeyDictionary(document.root(), unarchiver), dictionary);
}

} // namespace
} // namespace vxr
