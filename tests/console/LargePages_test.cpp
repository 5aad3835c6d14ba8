#include "Pixels.h"
#include "ProgramTest.h"

#include <cmath>
#include <fstream>
#include <glib.h>
#include <regex>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// Reports and drawings of many and of large pictures: their size and their memory.
namespace {

using namespace ProgramTest;

#ifdef __has_feature
#if __has_feature(address_sanitizer)
#define KEEPS_FREED_MEMORY
#endif
#endif
#if defined(KEEPS_FREED_MEMORY) || defined(__SANITIZE_ADDRESS__)
constexpr long MostMegabytes = 500;  // up to 256 of them are freed memory
#else
constexpr long MostMegabytes = 120;
#endif

/// Turns a film into one of noise, which no compression makes smaller.
std::function<void(DcmDataset&)> Noise(int width, int height) {
    return [=](DcmDataset& set) {
        std::vector<Uint8> pixels(static_cast<std::size_t>(width) * height);
        unsigned state = 1;
        for (Uint8& pixel : pixels) {
            state = state * 1664525U + 1013904223U;
            pixel = static_cast<Uint8>(state >> 24);
        }
        set.putAndInsertUint16(DCM_Rows, static_cast<Uint16>(height));
        set.putAndInsertUint16(DCM_Columns, static_cast<Uint16>(width));
        set.putAndInsertUint8Array(DCM_PixelData, pixels.data(), pixels.size());
        set.putAndInsertString(DCM_WindowCenter, "128");
        set.putAndInsertString(DCM_WindowWidth, "256");
        set.putAndInsertString(DCM_PatientID, "P");
    };
}

std::string Read(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// A picture of a drawing, with the size that the drawing shows it in.
struct Shown {
    double width, height;  ///< in units of the drawing
    Pixels pixels;
};

std::vector<Shown> PicturesIn(const std::string& drawing) {
    const std::regex form("<image [^>]* width=\"([0-9.]+)\" height=\"([0-9.]+)\"[^>]*href=\"data:image/png;base64,");
    std::vector<Shown> pictures;
    // The regular expression must not run over the pictures themselves: it is matched with the tag's beginning.
    for (auto at = drawing.find("<image "); at != std::string::npos; at = drawing.find("<image ", at + 1)) {
        std::smatch found;
        const std::string tag = drawing.substr(at, 400);
        EXPECT_TRUE(std::regex_search(tag, found, form)) << tag;
        const auto begin = at + static_cast<std::size_t>(found.position() + found.length());
        const std::string text = drawing.substr(begin, drawing.find('"', begin) - begin);
        gsize size = 0;
        guchar* const bytes = g_base64_decode(text.c_str(), &size);
        pictures.push_back({std::stod(found[1]), std::stod(found[2]),
                            Pixels(std::string(reinterpret_cast<const char*>(bytes), size))});
        g_free(bytes);
    }
    return pictures;
}

class LargePages : public Program {
protected:
    std::string File(const char* name) { return (folder.Path() / name).string(); }

    /// Returns the megabytes of memory that this process has now.
    static long Megabytes() {
        std::ifstream sizes("/proc/self/statm");
        long total = 0, resident = 0;
        sizes >> total >> resident;
        return resident * sysconf(_SC_PAGESIZE) / (1024 * 1024);
    }

    /// Runs the program in a process of its own; returns the megabytes that it needed at most, besides those that this
    /// process has.
    long MegabytesOf(const std::vector<std::string>& arguments) {
        const long before = Megabytes();
        const pid_t process = fork();
        if (process == 0) {
            std::vector<const char*> argv{"oxclass", "--db"};
            const std::string database = Database();
            argv.push_back(database.c_str());
            for (const std::string& argument : arguments) argv.push_back(argument.c_str());
            _exit(Console::RunProgram(static_cast<int>(argv.size()), argv.data()));
        }
        int status = 0;
        rusage usage{};
        EXPECT_EQ(wait4(process, &status, 0, &usage), process);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
        return usage.ru_maxrss / 1024 - before;
    }
};

TEST_F(LargePages, APictureOfAReportHasAtMostTwoPixelsForEachOfThePage) {
    constexpr std::size_t entries = 4;
    Init();
    for (std::size_t i = 1; i <= entries; ++i) {
        const std::string series = "1.2." + std::to_string(i);
        if (i % 2)
            Write(series, 1, {{16}, ""}, Noise(700, 1100));
        else
            Write(series, 1, {}, Noise(1500, 500));
    }
    Ok({"import", Films()});
    Ok({"card", "new", "P", "Whole"});
    Ok({"card", "add", "IC1", "1", "--at", "0,0", "--size", "1,1"});
    Ok({"card", "add", "IC1", "2", "--at", "0,1", "--size", "1,0.5"});
    ASSERT_EQ(Try({"--db", Database(), "report", "P", "-o", File("r.html")}).code, 0);
    const std::string html = Read(File("r.html"));
    const std::vector<Shown> pictures = PicturesIn(html);
    ASSERT_EQ(pictures.size(), entries + 2);
    constexpr double pageWidth = 46 * 16, canvasWidth = 1000;
    double pixels = 0;
    for (const Shown& shown : pictures) {
        const double width = 2 * shown.width * pageWidth / canvasWidth,
                     height = 2 * shown.height * pageWidth / canvasWidth;
        EXPECT_NEAR(shown.pixels.Width(), width, 1.5);
        EXPECT_NEAR(shown.pixels.Height(), height, 1.5);
        EXPECT_TRUE(shown.pixels.gray);
        pixels += width * height;
    }
    constexpr double base64 = 4.0 / 3, textOfAnEntry = 4000, page = 10'000;
    EXPECT_LT(static_cast<double>(html.size()), pixels * base64 * 1.02 + textOfAnEntry * (entries + 2) + page);
}

TEST_F(LargePages, ADrawingThatIsWiderThanItsCanvasHasNoMorePixelsThanItShows) {
    Init();
    Write("1.2.1", 1, {}, Noise(800, 800));
    Ok({"import", Films()});
    Ok({"card", "new", "P", "Wide", "--canvas", "1000x1000"});
    Ok({"card", "add", "IC1", "1", "--at", "3,0", "--size", "1,1"});
    Ok({"draw", "IC1", "-o", File("c.svg"), "--width", "1600"});
    const std::vector<Shown> pictures = PicturesIn(Read(File("c.svg")));
    ASSERT_EQ(pictures.size(), 1U);
    EXPECT_EQ(pictures[0].pixels.Width(), 400);
}

/// A PNG file of noise.
std::string NoisePng(int side) {
    std::vector<Pixel> noise(static_cast<std::size_t>(side) * side);
    unsigned state = 1;
    for (Pixel& p : noise) {
        state = state * 1664525U + 1013904223U;
        p = {static_cast<int>(state >> 24), static_cast<int>(state >> 16 & 255), static_cast<int>(state >> 8 & 255)};
    }
    return PictureOf(side, noise).bytes;
}

/// A card of 600 pictures, each as large as the card, which together have 200 megabytes as text.
TEST_F(LargePages, TheMemoryOfALargeCardIsThatOfOnePicture) {
    Init();
    Write("1.2.1", 1, {});
    Ok({"import", Films()});
    Run("UPDATE ImageBild_T SET GraphicURL_NVC = 'noise.png'");
    std::ofstream(folder.Path() / "images" / "noise.png", std::ios::binary) << NoisePng(300);
    Ok({"card", "new", "p-1.2.1", "One", "--canvas", "1000x1000"});
    Ok({"card", "add", "IC1", "1", "--at", "0,0", "--size", "1,1"});
    Run("INSERT INTO ImageAttribute_T (ImageCardID, ImageBildId, IAFullViewWidth, IAFullViewHeight, IAFullViewPosX, "
        "IAFullViewPosY, IASequence, IAComments, IAMirrRotStatus) WITH RECURSIVE n(i) AS (SELECT 2 UNION ALL SELECT i "
        "+ 1 "
        "FROM n WHERE i < 600) SELECT 1, 1, 1, 1, 0, 0, i, '', 1 FROM n");
    for (const char* name : {"c.svg", "c.png"})
        EXPECT_LT(MegabytesOf({"draw", "IC1", "-o", File(name), "--width", "300"}), MostMegabytes) << name;
    EXPECT_GT(fs::file_size(File("c.svg")), 200'000'000U);
}

}  // namespace
