#include "Pixels.h"
#include "ProgramTest.h"

#include "console/page/Png.h"
#include "console/page/Svg.h"

#include <fstream>
#include <gdk-pixbuf/gdk-pixbuf.h>

/// The font library does not free its cache, to which no pointer refers at the end of the process.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

/// Drawings: photographs, the page as SVG, and its pixels.
namespace {

using namespace Console;
using namespace ProgramTest;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

/// The same picture as a JPEG file.
std::string JpegOf(const Picture& png) {
    GdkPixbufLoader* const loader = gdk_pixbuf_loader_new();
    gdk_pixbuf_loader_write(loader, reinterpret_cast<const guchar*>(png.bytes.data()), png.bytes.size(), nullptr);
    gdk_pixbuf_loader_close(loader, nullptr);
    gchar* bytes = nullptr;
    gsize size = 0;
    EXPECT_TRUE(
        gdk_pixbuf_save_to_buffer(gdk_pixbuf_loader_get_pixbuf(loader), &bytes, &size, "jpeg", nullptr, nullptr));
    std::string file(bytes, size);
    g_free(bytes);
    g_object_unref(loader);
    return file;
}

// ---- photographs ------------------------------------------------------------------------------------

/// Behind the start of a JPEG file, an EXIF segment whose one entry is the orientation 6.
const std::string TurnedRight(
    "\xFF\xE1\x00\x22"
    "Exif\0\0II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0\x06\0\0\0\0\0\0\0",
    36);

class Photograph : public ::testing::Test {
protected:
    TestKit::TemporaryFolder folder;
};

TEST_F(Photograph, APngOrJpegFileIsTakenAsItIs) {
    const Picture png = PictureOf(1, {Red});
    std::ofstream(folder.Path() / "a.dat", std::ios::binary) << png.bytes;
    EXPECT_EQ(ReadPicture(folder.Path() / "a.dat", {1, 1}).mediaType, "image/png");
    EXPECT_EQ(ReadPicture(folder.Path() / "a.dat", {1, 1}).bytes, png.bytes);
    const std::string jpeg = JpegOf(png);
    std::ofstream(folder.Path() / "b.dat", std::ios::binary) << jpeg;
    EXPECT_EQ(ReadPicture(folder.Path() / "b.dat", {1, 1}).mediaType, "image/jpeg");
    EXPECT_EQ(ReadPicture(folder.Path() / "b.dat", {1, 1}).bytes, jpeg);
    EXPECT_THROW(ReadPicture(folder.Path() / "c.dat", {1, 1}), std::runtime_error);
    EXPECT_THROW(ReadPicture(folder.Path(), {1, 1}), std::runtime_error);
}

TEST_F(Photograph, APhotographIsTurnedAsItsFileSays) {
    const Picture wide = PictureOf(16, std::vector<Pixel>(16 * 8, Red));
    std::string jpeg = JpegOf(wide);
    jpeg.insert(2, TurnedRight);
    std::ofstream(folder.Path() / "photo.jpg", std::ios::binary) << jpeg;
    const Picture turned = ReadPicture(folder.Path() / "photo.jpg", {16, 16});
    EXPECT_EQ(turned.mediaType, "image/png");
    EXPECT_EQ(Pixels(turned.bytes).Width(), 8);
    EXPECT_EQ(Pixels(turned.bytes).Height(), 16);
}

TEST_F(Photograph, ALargerOneIsReducedToTheMeansOfItsAreas) {
    const Picture png = PictureOf(4, {Red,
                                      Red,
                                      Blue,
                                      White,
                                      Red,
                                      Red,
                                      White,
                                      Blue,  //
                                      Black,
                                      White,
                                      {9, 20, 31},
                                      {9, 20, 31},
                                      White,
                                      Black,
                                      {9, 20, 31},
                                      {9, 20, 31}});
    std::ofstream(folder.Path() / "a.png", std::ios::binary) << png.bytes;
    const Picture reduced = ReadPicture(folder.Path() / "a.png", {2, 9});
    EXPECT_EQ(reduced.mediaType, "image/png");
    const Pixels pixels(reduced.bytes);
    ASSERT_EQ(pixels.Width(), 2);
    ASSERT_EQ(pixels.Height(), 2);
    const auto near = [&](int x, int y, Pixel expected) {
        const Pixel is = pixels.At(x, y);
        return std::abs(is.red - expected.red) <= 1 && std::abs(is.green - expected.green) <= 1 &&
               std::abs(is.blue - expected.blue) <= 1;
    };
    EXPECT_TRUE(near(0, 0, Red));
    EXPECT_TRUE(near(1, 0, {128, 128, 255}));
    EXPECT_TRUE(near(0, 1, {128, 128, 128})) << "gray stays gray";
    EXPECT_TRUE(near(1, 1, {9, 20, 31}));
}

TEST_F(Photograph, ALargeFactorKeepsTheMean) {
    std::vector<Pixel> columns(static_cast<std::size_t>(1000) * 3);
    for (std::size_t i = 0; i < columns.size(); ++i) columns[i] = i % 2 ? White : Black;
    std::ofstream(folder.Path() / "a.png", std::ios::binary) << PictureOf(1000, columns).bytes;
    const Pixels pixels(ReadPicture(folder.Path() / "a.png", {2, 1}).bytes);
    ASSERT_EQ(pixels.Width(), 2);
    for (int x = 0; x < 2; ++x) EXPECT_NEAR(pixels.Gray(x, 0), 128, 2);
}

TEST_F(Photograph, AReducedPhotographKeepsItsKindAndIsTurned) {
    std::string jpeg = JpegOf(PictureOf(64, std::vector<Pixel>(static_cast<std::size_t>(64) * 32, {200, 100, 50})));
    jpeg.insert(2, TurnedRight);
    std::ofstream(folder.Path() / "photo.jpg", std::ios::binary) << jpeg;
    const Picture reduced = ReadPicture(folder.Path() / "photo.jpg", {40, 20});
    EXPECT_EQ(reduced.mediaType, "image/jpeg");
    std::ofstream(folder.Path() / "reduced.jpg", std::ios::binary) << reduced.bytes;
    int width = 0, height = 0;
    ASSERT_TRUE(gdk_pixbuf_get_file_info((folder.Path() / "reduced.jpg").c_str(), &width, &height));
    EXPECT_EQ(width, 10);
    EXPECT_EQ(height, 20);
    GdkPixbuf* const pixels = gdk_pixbuf_new_from_file((folder.Path() / "reduced.jpg").c_str(), nullptr);
    const guint8* const first = gdk_pixbuf_read_pixels(pixels);
    EXPECT_NEAR(first[0], 200, 4);
    EXPECT_NEAR(first[1], 100, 4);
    EXPECT_NEAR(first[2], 50, 4);
    g_object_unref(pixels);
}

TEST_F(Photograph, ADamagedOrCutPhotographIsRejected) {
    std::vector<Pixel> noise(static_cast<std::size_t>(64) * 64);
    for (std::size_t i = 0; i < noise.size(); ++i) noise[i] = {static_cast<int>(i * 7919 % 251), 0, 9};
    const Picture png = PictureOf(64, noise);
    const std::string jpeg = JpegOf(png);
    for (const std::string& bytes : {png.bytes.substr(0, png.bytes.size() / 2), jpeg.substr(0, jpeg.size() / 2),
                                     jpeg.substr(0, 3), std::string("\xFF\xD8\xFF\xE0 and so on")}) {
        std::ofstream(folder.Path() / "cut", std::ios::binary | std::ios::trunc) << bytes;
        EXPECT_THROW(ReadPicture(folder.Path() / "cut", {1, 1}), std::runtime_error) << bytes.size();
    }
}

// ---- the page as a drawing --------------------------------------------------------------------------

/// A canvas of 200 x 100 with one picture in its left half.
Page PageWith(const Picture& picture, Platform::Long orientation = 1) {
    Page page{.title = "Page", .width = 200, .height = 100};
    page.pictures.push_back({.box = {0, 0, 0.5, 1},
                             .number = 7,
                             .orientation = Orientation(orientation),
                             .caption = "16,17",
                             .picture = std::make_shared<Picture>(picture)});
    return page;
}

std::string SvgOf(Page page, const DrawingOptions& options) {
    std::string svg;
    WriteSvg(page, options, [&](std::string_view part) { svg += part; });
    return svg;
}

std::string PngOf(Page page, const DrawingOptions& options = {}) {
    std::string png;
    WritePng(page, options, 200, [&](std::string_view part) { png += part; });
    return png;
}

Pixels Drawn(const Page& page, const DrawingOptions& options = {}) { return Pixels(PngOf(page, options)); }

/// The four corners of the left half, which a picture of 2 x 2 fills.
std::vector<Pixel> Corners(const Pixels& pixels) {
    return {pixels.At(10, 10), pixels.At(90, 10), pixels.At(10, 90), pixels.At(90, 90)};
}

const Picture FourColours = PictureOf(2, {Red, Green, Blue, White});

TEST(Drawing, APictureFillsItsBoxAndTheRestIsBlack) {
    const Pixels pixels = Drawn(PageWith(FourColours));
    EXPECT_EQ(pixels.Width(), 200);
    EXPECT_EQ(pixels.Height(), 100);
    EXPECT_THAT(Corners(pixels), ElementsAre(Red, Green, Blue, White));
    EXPECT_EQ(pixels.At(150, 50), Black);
}

TEST(Drawing, APictureStaysInProportionInTheMiddleOfItsBox) {
    const Pixels pixels = Drawn(PageWith(PictureOf(2, {Red, Red})));
    EXPECT_EQ(pixels.At(50, 50), Red);
    EXPECT_EQ(pixels.At(50, 10), Black);
    EXPECT_EQ(pixels.At(50, 90), Black);
}

TEST(Drawing, PicturesAreTurnedAndMirrored) {
    EXPECT_THAT(Corners(Drawn(PageWith(FourColours, 2))), ElementsAre(Green, Red, White, Blue));
    EXPECT_THAT(Corners(Drawn(PageWith(FourColours, 3))), ElementsAre(White, Blue, Green, Red));
    EXPECT_THAT(Corners(Drawn(PageWith(FourColours, 4))), ElementsAre(Blue, White, Red, Green));
    EXPECT_THAT(Corners(Drawn(PageWith(FourColours, 5))), ElementsAre(Red, Blue, Green, White));
    EXPECT_THAT(Corners(Drawn(PageWith(FourColours, 6))), ElementsAre(Blue, Red, White, Green));
    EXPECT_THAT(Corners(Drawn(PageWith(FourColours, 7))), ElementsAre(White, Green, Blue, Red));
    EXPECT_THAT(Corners(Drawn(PageWith(FourColours, 8))), ElementsAre(Green, White, Red, Blue));
}

TEST(Drawing, ATurnedPictureFillsTheBoxThatItHas) {
    Page page = PageWith(PictureOf(2, {Red, Red}), 6);
    page.pictures[0].box = {0, 0, 0.25, 1};
    const Pixels pixels = Drawn(page);
    EXPECT_EQ(pixels.At(25, 10), Red);
    EXPECT_EQ(pixels.At(25, 90), Red);
    EXPECT_EQ(pixels.At(75, 50), Black);
}

TEST(Drawing, LaterPicturesLieOnEarlierOnes) {
    Page page = PageWith(PictureOf(1, {Red}));
    page.pictures.push_back(PageWith(PictureOf(1, {Blue})).pictures[0]);
    EXPECT_EQ(Drawn(page).At(50, 50), Blue);
}

TEST(Drawing, APictureBelowTheCanvasMakesTheDrawingLonger) {
    Page page = PageWith(PictureOf(1, {Red}));
    page.pictures[0].box = {0, 1, 0.5, 1};
    const Pixels pixels = Drawn(page);
    EXPECT_EQ(pixels.Height(), 200);
    EXPECT_EQ(pixels.At(50, 150), Red);
}

TEST(Drawing, APictureLeftOfTheCanvasMakesTheDrawingWider) {
    Page page = PageWith(PictureOf(1, {Red}));
    page.pictures[0].box = {-0.5, 0, 0.5, 1};
    EXPECT_THAT(SvgOf(page, {}), HasSubstr("viewBox=\"-100 0 300 100\""));
    EXPECT_EQ(Drawn(page).At(33, 33), Red);
    EXPECT_EQ(Drawn(page).At(133, 33), Black);
}

TEST(Drawing, ImpossiblePlacesStillResultInADrawing) {
    Page page = PageWith(PictureOf(1, {Red}));
    page.pictures[0].box = {1e300, -1e300, 1e300, 1};
    EXPECT_EQ(Drawn(page).Width(), 200);
}

TEST(Drawing, ADrawingTooHighIsRejected) {
    Page page = PageWith(PictureOf(1, {Red}));
    page.width = 1;
    page.height = 100'000;
    EXPECT_THROW(Drawn(page), std::runtime_error);
}

TEST(Drawing, NumbersAndEmptySlotsAreDrawnOnRequest) {
    Page page = PageWith(FourColours);
    page.empty.push_back({{0.5, 0, 0.5, 1}, 8, "Left <molars> & more"});
    const std::string plain = SvgOf(page, {});
    EXPECT_THAT(plain, Not(HasSubstr("<text")));
    EXPECT_EQ(Drawn(page).At(150, 20), Black);
    EXPECT_THAT(SvgOf(page, {.numbers = true}), HasSubstr(">7</text>"));
    const std::string both = SvgOf(page, {.numbers = true, .empty = true});
    EXPECT_THAT(both, HasSubstr(">8</text>"));
    EXPECT_THAT(both, HasSubstr("Left &lt;molars&gt; &amp; more"));
    EXPECT_NE(Drawn(page, {.empty = true}).At(150, 20), Black);
}

TEST(Drawing, AMissingPictureIsABoxThatSaysWhy) {
    Page page = PageWith(FourColours);
    page.pictures[0].picture = nullptr;
    page.pictures[0].missing = "the file is missing";
    EXPECT_THAT(SvgOf(page, {}), HasSubstr("16,17: no picture: the file is missing"));
    EXPECT_NE(Drawn(page).At(50, 20), Black);
}

TEST(Drawing, AnyTextIsXml) {
    EXPECT_EQ(XmlText("<a href=\"x\">&'</a>"), "&lt;a href=&quot;x&quot;&gt;&amp;&#39;&lt;/a&gt;");
    EXPECT_EQ(XmlText(std::string("a\x01\0b\tc", 6)),
              "a\xEF\xBF\xBD\xEF\xBF\xBD"
              "b\tc");
    EXPECT_EQ(XmlText("\xFF\xC3\xA5"), "\xEF\xBF\xBD\xC3\xA5");
    Page page = PageWith(FourColours);
    page.title = std::string("\x02<&\xFF\xEF\xBF\xBF", 7);
    EXPECT_EQ(Drawn(page).Width(), 200);
}

TEST(Drawing, ATextThatIsNotSvgIsRejected) {
    Canvas canvas(100, {0, 0, 10, 10});
    EXPECT_THROW(canvas.Draw("no drawing"), std::runtime_error);
}

TEST(Drawing, ThePngShowsWhatTheSvgShows) {
    Page page = PageWith(FourColours, 6);
    page.pictures.push_back(PageWith(PictureOf(1, {Red})).pictures[0]);
    page.pictures[1].box = {0.3, -0.2, 0.4, 0.6};
    page.pictures[1].note = "frame 1 of 2";
    page.pictures.push_back({.box = {0.6, 0.5, 0.6, 0.7}, .caption = "11", .missing = "the file is missing"});
    page.empty.push_back({{0.75, 0, 0.25, 0.5}, 8, "Left"});
    const DrawingOptions all{.numbers = true, .empty = true};
    Canvas canvas(200, WholeOf(page));
    canvas.Draw(SvgOf(page, all));
    std::string png;
    canvas.WritePng([&](std::string_view part) { png += part; });
    EXPECT_EQ(PngOf(page, all), png);
}

TEST(Drawing, AFailureOfTheReceiverIsThrown) {
    Page page = PageWith(FourColours);
    const TextSink full = [](std::string_view) { throw std::runtime_error("the disk is full"); };
    EXPECT_THROW(WritePng(page, {}, 200, full), std::runtime_error);
    EXPECT_THROW(WriteSvg(page, {}, full), std::runtime_error);
}

TEST(Drawing, PicturesLargerThanAParsersUsualLimitAreDrawn) {
    std::vector<Pixel> noise(static_cast<std::size_t>(2200) * 1800);
    unsigned state = 1;
    for (Pixel& p : noise) {
        state = state * 1664525U + 1013904223U;
        p = {static_cast<int>(state >> 24), static_cast<int>(state >> 16 & 255), static_cast<int>(state >> 8 & 255)};
    }
    const Picture picture = PictureOf(2200, noise);
    ASSERT_GT(picture.bytes.size(), 10'000'000U);
    EXPECT_NE(Drawn(PageWith(picture)).At(50, 50), Black);
}

}  // namespace
