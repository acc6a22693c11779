#include <apps/document/Document.h>
#include <apps/document/PageDrawing.h>
#include <apps/vxr/render/Roads.h>

#include <vxr/host/data/VXEData.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRPictureRenderer.h>
#include <vxr/platform/base/Data.h>
#include <vxr/renderables/VXRImageRenderable.h>
#include <vxr/renderables/VXRShape.h>
#include <vxr/strokes/VXRStroke.h>

#include <gmock/gmock.h>

#include "tests/support/TracedCalls.h"

#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace app {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using vxr::testing::TracedCalls;

std::string contentsOf(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

ImportedDrawing drawingOf(const std::string& content)
{
    return importDrawing(svg::readDrawing(
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 40 30'>" + content + "</svg>"));
}

/// A document of as many pages as there are contents.
std::unique_ptr<Document> documentOf(const std::vector<std::string>& contents)
{
    auto document = std::make_unique<Document>();
    for (const std::string& content : contents)
        document->insertPage(document->pageCount(), pageFrom(drawingOf(content)));
    return document;
}

const std::string rect = "<rect id='r' width='9' height='9' fill='red'/>";

/// Files of a document as they would be without this program.
std::string container(const std::vector<std::pair<std::string, std::string>>& files)
{
    ContainerWriter writer;
    for (const auto& [name, bytes] : files)
        writer.add(name, bytes, ContainerWriter::Packing::Stored);
    return writer.finish();
}

const std::string space(vxr::VelloraNamespace.uri);

std::string manifest(const std::string& content, const std::string& version = "1")
{
    return "<v:document xmlns:v='" + space + "' v:version='" + version + "'>" + content + "</v:document>";
}

std::string page(const std::string& content, const std::string& size = "v:width='40' v:height='30'")
{
    return "<v:page xmlns:v='" + space + "'>\n<v:size " + size + "/>\n<v:renderables>" + content
        + "</v:renderables>\n</v:page>";
}

class TemporaryFolder {
public:
    TemporaryFolder()
    {
        std::string pattern = (fs::temp_directory_path() / "vxr-document-XXXXXX").string();
        mPath = mkdtemp(pattern.data());
    }
    ~TemporaryFolder() { fs::remove_all(mPath); }
    fs::path operator/(const char* name) const { return mPath / name; }
    std::size_t fileCount() const
    {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(mPath), fs::directory_iterator()));
    }

private:
    fs::path mPath;
};

TEST(Document, DrawsAndWritesWhatItWasMadeOf)
{
    for (const auto& entry : fs::directory_iterator(VXR_DRAWINGS)) {
        if (entry.path().extension() != ".svg")
            continue;
        const ImportedDrawing drawing = importDrawing(svg::readDrawing(contentsOf(entry.path())));
        Document made;
        made.insertPage(0, pageFrom(drawing));
        const std::string bytes = made.bytes();
        const auto read = Document::fromBytes(bytes);
        const ImportedDrawing again = drawingFrom(read->page(0));
        ASSERT_THAT(read->losses(), IsEmpty()) << entry;
        EXPECT_EQ(again.shapeCount, drawing.shapeCount) << entry;
        const auto picture = [](const ImportedDrawing& d) {
            const float scale = 200 / d.size.width;
            return drawDirect({ d, 200, static_cast<int>(std::lround(d.size.height * scale)), scale,
                svg::Rgba { 1, 1, 1, 1 }, false });
        };
        EXPECT_EQ(picture(again).pixels, picture(drawing).pixels) << entry;
        static_cast<void>(read->editPage(0)); // so that it is written anew
        EXPECT_EQ(read->bytes(), bytes) << entry;
    }
}

TEST(Document, KeepsWhatItDoesNotKnow)
{
    const std::string shape
        = "<v:shape v:label='a'><v:path v:data='M 0 0 L 9 0 L 9 9 Z'/><v:glow v:size='3'/></v:shape>";
    const std::string original = container({ { "mimetype", "application/x-vxr-document" },
        { "document.xml", manifest("<v:page v:file='pages/p.xml'/><x:plan xmlns:x='urn:x' day='7'/>") },
        { "pages/p.xml", page(shape + "<v:hologram v:depth='8'>text</v:hologram>" + shape) + "" },
        { "notes/readme.txt", "by hand" } });
    const auto document = Document::fromBytes(original);
    EXPECT_EQ(document->page(0).renderables.size(), 3u);
    EXPECT_THAT(
        document->losses(), ElementsAre(HasSubstr("pages/p.xml: line 3: 'hologram' is of no known kind")));
    document->editPage(0).guides.push_back({ true, 12 });
    const std::string saved = document->bytes();
    const auto files = ContainerReader::fromBytes(saved);
    EXPECT_EQ(files->read("notes/readme.txt"), "by hand");
    EXPECT_THAT(files->read("document.xml"), HasSubstr("day=\"7\""));
    const std::string text = files->read("pages/p.xml");
    for (const char* kept : { "v:size=\"3\"", "v:depth=\"8\">text<", "v:label=\"a\"" })
        EXPECT_THAT(text, HasSubstr(std::string(kept).substr(2))) << text;
    EXPECT_LT(text.find("glow"), text.find("hologram")); // in their places
    const auto again = Document::fromBytes(saved);
    EXPECT_THAT(again->page(0).guides, ElementsAre(Guide { true, 12 }));
    static_cast<void>(again->editPage(0));
    EXPECT_TRUE(again->bytes() == saved);
}

/// A binary of bytes that nothing decodes, with a data object of its own.
std::shared_ptr<vxr::VXRImageBinary> binaryOf(const std::string& bytes, vxr::VXEDataManager* manager)
{
    auto binary = std::make_shared<vxr::VXRImageBinary>();
    binary->setData(std::make_shared<vxr::VXEData>(vxr::Data::dataWithBytes(bytes.data(), bytes.size()),
        "photo", "../photo 1.jpg", 0x4a504547, manager));
    binary->setNaturalImageSize({ 20, 10 });
    return binary;
}

TEST(Document, HoldsTheBytesOfPlacedPicturesOnce)
{
    vxr::VXEDataManager elsewhere;
    auto document = documentOf({ rect, rect });
    for (std::size_t i = 0; i < 2; ++i) {
        for (const char* bytes : { "one picture", "another" })
            document->editPage(i).renderables.push_back(
                vxr::VXRImageRenderable::imageRenderableWithImageBinary(binaryOf(bytes, &elsewhere)));
    }
    auto fill = vxr::VXRImageFill::imageFillWithImageRenderer(
        vxr::VXRPictureRenderer::rendererWithBinaryCrop(binaryOf("one picture", nullptr)));
    static_cast<vxr::VXRShape&>(*document->editPage(0).renderables[0]).setFill(fill);
    const std::string bytes = document->bytes();
    EXPECT_TRUE(document->bytes() == bytes);
    EXPECT_THAT(document->data()->names(), ElementsAre("pictures/picture-1.jpg", "pictures/picture-2.jpg"));

    const auto again = Document::fromBytes(bytes);
    const auto& image = static_cast<const vxr::VXRImageRenderable&>(*again->page(1).renderables[1]);
    const auto& shape = static_cast<const vxr::VXRShape&>(*again->page(0).renderables[0]);
    const auto& painter = dynamic_cast<const vxr::VXRImageFill&>(*shape.fill());
    EXPECT_EQ(static_cast<const vxr::VXRPictureRenderer&>(*painter.renderer()).binary(), image.imageBinary());
    EXPECT_TRUE(image.imageBinary()->data()->isEquivalent(*binaryOf("one picture", nullptr)->data()));
    static_cast<void>(again->editPage(0));
    EXPECT_TRUE(again->bytes() == bytes);

    // A damaged one draws as a placeholder, and is said to be lost.
    std::string damaged = bytes;
    damaged[damaged.find("one picture")] = 'O';
    const auto lossy = Document::fromBytes(damaged);
    const auto picture = [](DocumentPage page) {
        const ImportedDrawing drawing = drawingFrom(page);
        return drawDirect({ drawing, 40, 30, 1, svg::Rgba { 1, 1, 1, 1 }, false });
    };
    static_cast<void>(picture(lossy->page(1)));
    EXPECT_THAT(lossy->losses(), ElementsAre(HasSubstr("'pictures/picture-1.jpg': CRC error")));
}

TEST(Document, KeepsAttributesOfLaterVersions)
{
    const std::string style
        = "<v:style v:name='S' v:folder='f'><v:stroke v:texture='rough' v:miter-limit='4' "
          "v:width='1' v:cap='butt' v:join='miter'><v:color v:space='named' v:alpha='1'/>"
          "<v:pattern v:phase='0' v:type='solid'><v:pattern/></v:pattern></v:stroke></v:style>";
    const std::string original = container({ { "mimetype", "application/x-vxr-document" },
        { "document.xml",
            manifest("<v:styles v:sorted='no'>" + style
                    + "<v:style v:name='T'><v:sparkles v:n='2'/></v:style></v:styles>"
                      "<v:page v:file='pages/p.xml' v:thumbnail='t.png'/>",
                "1' v:author='me") },
        { "pages/p.xml",
            page("<v:shape v:angle-lock='1'><v:path v:data='M 0 0 L 9 0 L 9 9 Z' v:closed='1'/>"
                 "<v:stroke v:style='S'/><v:fill v:style='gone'/></v:shape>",
                "v:width='40' v:height='30' v:unit='mm'") } });
    const auto document = Document::fromBytes(original);
    static_cast<void>(document->editPage(0));
    EXPECT_THAT(document->losses(),
        ElementsAre(HasSubstr("document.xml: line 1: a style without a name or of no known kind"),
            HasSubstr(
                "pages/p.xml: line 3: WARNING, initializing from the document, there is no style 'gone'."),
            HasSubstr(
                "pages/p.xml: line 3: WARNING, initializing a shape from the document, cannot get fill")));
    const std::string saved = document->bytes();
    const auto files = ContainerReader::fromBytes(saved);
    const std::string list = files->read("document.xml"), text = files->read("pages/p.xml");
    for (const char* part : { "v:author=\"me\"", "v:sorted=\"no\"", "v:folder=\"f\"", "v:texture=\"rough\"",
             "v:n=\"2\"", "v:thumbnail=\"t.png\"" })
        EXPECT_THAT(list, HasSubstr(part));
    for (const char* part : { "v:angle-lock=\"1\"", "v:closed=\"1\"", "v:unit=\"mm\"", "v:style=\"gone\"" })
        EXPECT_THAT(text, HasSubstr(part));
    const auto again = Document::fromBytes(saved);
    static_cast<void>(again->editPage(0));
    EXPECT_TRUE(again->bytes() == saved);
}

TEST(Document, KeepsPicturesOnceAndStylesByName)
{
    auto document = documentOf({ rect });
    const std::string name = document->data()->add("picture bytes", "png");
    EXPECT_EQ(document->data()->add("picture bytes", "png"), name);
    EXPECT_NE(document->data()->add("other bytes", "png"), name);
    EXPECT_THROW(document->data()->add("x", "../png"), DocumentFileError);
    document->styles["Heading"] = vxr::VXRStroke::strokeWithColorWidth(vxr::Color::blackColor(), 3);
    const auto read = Document::fromBytes(document->bytes());
    EXPECT_EQ(read->data()->add("picture bytes", "jpg"), name);
    EXPECT_EQ(read->data()->bytes(name), "picture bytes");
    EXPECT_EQ(read->data()->names().size(), 2u);
    EXPECT_TRUE(read->styles.at("Heading")->isEqual(*document->styles.at("Heading")));
    EXPECT_EQ(read->bytes(), document->bytes());

    const auto shapeOf
        = [](DocumentPage& page) { return static_cast<vxr::VXRShape*>(page.renderables.at(0).get()); };
    shapeOf(document->editPage(0))
        ->setStroke(std::dynamic_pointer_cast<vxr::VXRStroke>(document->styles.at("Heading")));
    const auto shared = Document::fromBytes(document->bytes());
    EXPECT_EQ(shapeOf(shared->editPage(0))->stroke(), shared->styles.at("Heading"));
}

TEST(Document, ReadsOnlyThePagesAskedFor)
{
    std::string bytes = documentOf({ rect, rect, rect })->bytes();
    bytes.replace(bytes.find("pages/page-2.xml") + 40, 3, "???"); // within the page's compressed text
    const auto document = Document::fromBytes(bytes);
    EXPECT_EQ(document->page(0).renderables.size(), 1u);
    EXPECT_EQ(document->page(2).renderables.size(), 1u);
    EXPECT_THAT(document->losses(), IsEmpty());
    EXPECT_EQ(document->page(1).renderables.size(), 0u);
    EXPECT_THAT(document->losses(), ElementsAre(HasSubstr("pages/page-2.xml")));
}

TEST(Document, OpensWhatCanBeReadAndSaysWhatIsLost)
{
    const std::string whole = documentOf({ rect, rect })->bytes();
    std::string nested;
    for (int i = 0; i < 300; ++i)
        nested += "<v:group><v:renderables>";
    std::string attributes = "<v:shape ";
    for (int i = 0; i < 20'000; ++i)
        attributes += "a" + std::to_string(i) + "='' ";
    const auto named = [](const std::string& name, const std::string& old, std::string bytes) {
        for (auto at = bytes.find(old); at != bytes.npos; at = bytes.find(old))
            bytes.replace(at, old.size(), name);
        return bytes;
    };
    const auto onePage = [](const std::string& text) {
        return container(
            { { "document.xml", manifest("<v:page v:file='pages/p.xml'/>") }, { "pages/p.xml", text } });
    };
    const struct {
        const char* name;
        std::string bytes;
        std::size_t pages;
        const char* loss;
    } cases[] = {
        { "Truncated", whole.substr(0, whole.size() - 30), 2, "the list of contents is damaged" },
        { "NoManifest", container({ { "pages/p.xml", page("") } }), 1, "'document.xml' is missing" },
        { "DamagedManifest", container({ { "document.xml", "<a>\n<b" }, { "pages/p.xml", page("") } }), 1,
            "document.xml: line 2: " },
        { "MissingPage", container({ { "document.xml", manifest("<v:page v:file='pages/p.xml'/>") } }), 1,
            "'pages/p.xml' is missing" },
        { "PageTwice",
            container({ { "document.xml", manifest("<v:page v:file='p'/><v:page v:file='p'/>") },
                { "p", page("") } }),
            1, "the page 'p' is listed twice" },
        { "PageOutside", container({ { "document.xml", manifest("<v:page v:file='../p'/>") } }), 0,
            "a page without a usable file" },
        { "NameOutside", container({ { "document.xml", manifest("") }, { "../../evil", "x" } }), 0,
            "'../../evil' is left out: a name" },
        { "Backslash", container({ { "document.xml", manifest("") }, { "a\\b", "x" } }), 0,
            "'a\\b' is left out" },
        { "DocumentType", onePage("<!DOCTYPE p [<!ENTITY a 'b'>]>\n" + page("&a;")), 1,
            "pages/p.xml: line 1" },
        { "Nested", onePage(page(nested)), 1, "pages/p.xml: line 3" },
        { "Attributes", onePage(page(attributes + "/>")), 1, "pages/p.xml: line 3" },
        { "HugeSize", onePage(page("", "v:width='1e999' v:height='3'")), 1,
            "line 1: the page has no usable size" },
        { "NoSize", onePage(page("", "")), 1, "no usable size" },
        { "ShapeWithoutPath", onePage(page("<v:shape/>")), 1,
            "line 3: WARNING, initializing a shape from the document, cannot get path." },
        { "InfinitePath", onePage(page("<v:shape><v:path v:data='M 0 0 L 1e30 inf'/></v:shape>")), 1,
            "line 3: WARNING, initializing a path from the document, its coordinates are not finite." },
        { "InfiniteTransform",
            onePage(page("<v:shape><v:path v:data=''/><v:transform v:m11='inf'/></v:shape>")), 1,
            "line 3: WARNING, initializing a renderable from the document, cannot get transform." },
        { "UnreadableFill", onePage(page("<v:shape><v:path v:data=''/><v:fill/></v:shape>")), 1,
            "line 3: WARNING, initializing a shape from the document, cannot get fill." },
        { "NotAPage", onePage("<html/>"), 1, "this is no page" },
        { "EntityBomb",
            onePage("<!DOCTYPE p [<!ENTITY a 'aaaaaaaa'><!ENTITY b '&a;&a;&a;&a;'>]>\n" + page("&b;&b;")), 1,
            "pages/p.xml: line 1: a document type is not allowed" },
        { "ExternalEntity", onePage("\n<!DOCTYPE p SYSTEM 'file:///etc/passwd'>" + page("")), 1,
            "pages/p.xml: line 2" },
        { "Text", onePage(page("<v:shape>" + std::string(11'000'000, 'x') + "</v:shape>")), 1,
            "pages/p.xml: line 3" },
        { "AttributeText", onePage(page("<v:shape v:label='" + std::string(11'000'000, 'x') + "'/>")), 1,
            "pages/p.xml: line 3" },
        { "Overflow",
            onePage(page("<v:star v:inner-radius='1e999' v:outer-radius='2' v:number-of-points='1e999'/>")),
            1, "line 3: WARNING, initializing a star from the document, cannot get inner-radius." },
        { "ManyPoints",
            onePage(page("<v:star v:inner-radius='1' v:outer-radius='2' v:number-of-points='2e9'/>")), 1,
            "line 3: WARNING, initializing a star from the document, cannot get number-of-points." },
        { "NameTwice",
            named("aaaa", "bbbb",
                container({ { "document.xml", manifest("") }, { "aaaa", "x" }, { "bbbb", "y" } })),
            0, "'aaaa' is left out: a second entry of that name" },
    };
    for (const auto& c : cases) {
        const auto document = Document::fromBytes(c.bytes);
        EXPECT_EQ(document->pageCount(), c.pages) << c.name;
        for (std::size_t i = 0; i < document->pageCount(); ++i)
            document->page(i);
        EXPECT_THAT(document->losses(), Contains(HasSubstr(c.loss))) << c.name;
    }
    const std::pair<std::string, const char*> refused[] = {
        { container({ { "document.xml", manifest("", "2") } }), "version 2" },
        { container({ { "document.xml", "<html/>" } }), "no document" },
        { container({ { "letter.txt", "x" } }), "neither a list of pages nor pages" },
        { "PK\x03\x04", "no document" },
        { "", "" },
    };
    for (const auto& [bytes, message] : refused) {
        try {
            Document::fromBytes(bytes);
            ADD_FAILURE() << message;
        } catch (const DocumentFileError& error) {
            EXPECT_THAT(error.what(), HasSubstr(message));
        }
    }
}

TEST(Document, UnpacksNoMoreThanItsLimits)
{
    ContainerWriter writer;
    writer.add("small", "x");
    writer.add("large", std::string(100'000, '\0'));
    const std::string bytes = writer.finish();
    ContainerLimits limits;
    limits.entryBytes = 99'999;
    for (const std::string& file : { bytes, bytes.substr(0, bytes.size() - 4) }) {
        const auto reader = ContainerReader::fromBytes(file, limits);
        EXPECT_EQ(reader->read("small"), "x");
        EXPECT_THROW(reader->read("large"), DocumentFileError);
    }
    limits.entries = 1;
    EXPECT_THROW(ContainerReader::fromBytes(bytes, limits), DocumentFileError);
}

TEST(Document, SavingLeavesTheOldFileOrTheNewOne)
{
    const TemporaryFolder folder;
    const fs::path path = folder / "kept.vxr";
    const auto saveOld = [&] { documentOf({ rect })->save(path.string()); };
    saveOld();
    const std::string old = contentsOf(path);
    std::string noise(20'000, ' '); // more than one write
    for (std::size_t i = 0; i < noise.size(); ++i)
        noise[i] = static_cast<char>(i * i * 31 >> 7);
    auto changed = documentOf({ rect, rect, rect });
    changed->data()->add(noise, "png");
    const std::string wanted = changed->bytes();
    const auto save = [&] { changed->save(path.string()); };

    const TracedCalls whole(save, {});
    if (!whole.canTrace())
        GTEST_SKIP() << "no process can be traced here";
    EXPECT_EQ(whole.outcome(), "saved");
    EXPECT_EQ(contentsOf(path), wanted);
    ASSERT_GT(whole.calls().size(), 6u);
    EXPECT_THAT(whole.calls(), Contains("fsync").Times(2)); // the content and the folder

    bool wasOld = false, wasNew = false;
    for (std::size_t n = 0; n < whole.calls().size(); ++n) {
        // Killed before the call and after it, and told that it has failed.
        for (const auto action : { TracedCalls::KillBefore, TracedCalls::KillAfter, TracedCalls::Fail }) {
            SCOPED_TRACE(whole.calls()[n] + " " + std::to_string(n) + " " + std::to_string(action));
            saveOld();
            const TracedCalls run(save, { n, action });
            const std::string found = contentsOf(path);
            ASSERT_TRUE(found == old || found == wanted);
            (found == old ? wasOld : wasNew) = true;
            if (action != TracedCalls::Fail) {
                EXPECT_EQ(run.outcome(), "killed");
            } else if (run.outcome() != "saved") {
                EXPECT_EQ(run.outcome(), "No space left on device");
                EXPECT_EQ(found, old);
                EXPECT_EQ(folder.fileCount(), 1u);
            }
            for (const auto& entry : fs::directory_iterator(path.parent_path())) {
                if (entry.path() != path)
                    fs::remove(entry.path()); // of a process that was killed
            }
        }
    }
    EXPECT_TRUE(wasOld && wasNew);
}

TEST(Document, ADamagedFileIsReplacedOnlyWhenToldSo)
{
    const TemporaryFolder folder;
    const fs::path path = folder / "damaged.vxr";
    const std::string whole = documentOf({ rect, rect })->bytes();
    std::ofstream(path, std::ios::binary) << whole.substr(0, whole.size() - 30);
    const auto document = Document::open(path.string());
    EXPECT_THROW(document->save(path.string()), DocumentFileError);
    EXPECT_EQ(contentsOf(path).size(), whole.size() - 30);
    EXPECT_NO_THROW(document->save((folder / "copy.vxr").string()));
    document->save(path.string(), Document::Overwrite::Damaged);
    EXPECT_EQ(contentsOf(path), whole);
}

} // namespace
} // namespace app
