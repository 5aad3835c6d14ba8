#include "images/cImage.h"
#include "kit/Database.h"
#include "kit/Random.h"
#include "series/cSerie.h"

#include <algorithm>
#include <array>

/// Hanging compared with a slow model on random series: the model runs the same procedures in their simplest form, one
/// loop after the other.
namespace OXClass {
namespace {

using namespace TestKit;

/// A slot of a template, in the order of the numbers.
struct Slot {
    Long number;
    Long sequence;
};

/// The properties of an image that hanging reads and writes.
struct Film {
    String teeth, laterality, region, modifier;
    Long frame = 0;
    double taken = 0;

    friend bool operator==(const Film&, const Film&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Film& film) {
        return out << '[' << film.teeth << ' ' << film.laterality << ' ' << film.region << ' ' << film.modifier
                   << " at " << film.taken << " -> " << film.frame << ']';
    }
};

/// The teeth that a tooth string selects, by number; raises 91 where two characters name none.
std::array<bool, 89> SelectedIn(const String& text) {
    std::array<bool, 89> selected{};
    if (text.find_first_not_of(' ') == String::npos) return selected;
    for (std::size_t i = 0; i < text.size(); i += 3) {
        const String two = text.substr(i, 2);
        bool tooth = false;
        for (int quadrant = 1; quadrant <= 8; ++quadrant)
            for (int place = 1; place <= (quadrant <= 4 ? 8 : 5); ++place)
                if (two == std::to_string(quadrant * 10 + place)) {
                    selected[static_cast<std::size_t>(quadrant * 10 + place)] = true;
                    tooth = true;
                }
        if (!tooth) Raise(91);
    }
    return selected;
}

struct Model {
    Long count = 0;
    String modality, description;
    Long layout = 0;
    std::vector<Film> films;
    std::vector<Slot> slots;  // of whichever layout is asked for

    // ---- deriving ---------------------------------------------------------------------------------------

    static std::array<bool, 89> NumbersIn(const String& text) {
        std::array<bool, 89> numbers{};
        for (std::size_t n = 11; n <= 88; ++n) numbers[n] = text.find(std::to_string(n)) != String::npos;
        return numbers;
    }
    static bool Between(const std::array<bool, 89>& numbers, std::size_t from, std::size_t to) {
        bool any = false;
        for (std::size_t n = from; n <= to; ++n) any = any || numbers[n];
        return any;
    }
    static void DeriveLaterality(Film& film) {
        const auto n = NumbersIn(film.teeth);
        const bool right = Between(n, 11, 18) || Between(n, 41, 48) || Between(n, 51, 58) || Between(n, 81, 88);
        const bool left = Between(n, 21, 28) || Between(n, 31, 38) || Between(n, 61, 68) || Between(n, 71, 78);
        if (right && left)
            film.laterality = "B";
        else if (left)
            film.laterality = "L";
        else if (right)
            film.laterality = "R";
    }
    static void DeriveRegion(Film& film) {
        const auto n = NumbersIn(film.teeth);
        const bool upper = Between(n, 11, 18) || Between(n, 21, 28) || Between(n, 51, 58) || Between(n, 61, 68);
        const bool lower = Between(n, 31, 38) || Between(n, 41, 48) || Between(n, 71, 78) || Between(n, 81, 88);
        if (upper && lower)
            film.region = "T-D1213";
        else if (lower)
            film.region = "T-11180";
        else if (upper)
            film.region = "T-11170";
    }
    static void DeriveModifier(Film& film) {
        const auto n = NumbersIn(film.teeth);
        const bool molars =
            n[16] || n[17] || n[18] || n[26] || n[27] || n[28] || n[36] || n[37] || n[38] || n[46] || n[47] || n[48];
        const bool laterals = n[12] || n[22] || n[32] || n[42], canines = n[13] || n[23] || n[33] || n[43];
        const bool centrals = n[11] || n[21] || n[31] || n[41], firsts = n[14] || n[24] || n[34] || n[44];
        const bool seconds = n[15] || n[25] || n[35] || n[45], sixes = n[16] || n[26] || n[36] || n[46];
        const bool sevens = n[17] || n[27] || n[37] || n[47], eights = n[18] || n[28] || n[38] || n[48];
        if (molars && !laterals)
            film.modifier = "T-5100B";
        else if (molars && !canines)
            film.modifier = "T-5100C";
        else if ((sixes || sevens) && !laterals)
            film.modifier = "T-5100A";
        else if ((firsts || seconds || sixes) && !laterals && !eights)
            film.modifier = "T-51009";
        else if ((firsts || seconds) && !sevens && !centrals)
            film.modifier = "T-51008";
        else if (canines && !seconds && !centrals)
            film.modifier = "T-51007";
        else if (centrals && !firsts)
            film.modifier = "T-51005";
        else if (laterals && !seconds)
            film.modifier = "T-51006";
    }

    // ---- the choice -------------------------------------------------------------------------------------

    Long HangSeries() {
        if (count == 0) return 0;
        for (Film& film : films) {
            if (film.laterality.empty() && !film.teeth.empty()) DeriveLaterality(film);
            if (film.region.empty() && !film.teeth.empty()) DeriveRegion(film);
            if (film.modifier.empty() && !film.teeth.empty()) DeriveModifier(film);
        }
        bool bothJaws = false, panoramic = false, lateralHead = false, frontalHead = false;
        if (count < 5) {
            bothJaws = true;
            for (const Film& film : films) {
                if (film.region != "T-D1213" && film.region != "T-D1217") bothJaws = false;
                if (film.laterality == "B") bothJaws = false;
                if (modality == "PX") {
                    bothJaws = false;
                    panoramic = true;
                    break;
                }
                if (modality != "DX") continue;
                if (film.region == "T-11100" && film.laterality == "B") {
                    frontalHead = true;
                    bothJaws = false;
                }
                if (film.region == "T-11100" && (film.laterality == "L" || film.laterality == "R")) {
                    lateralHead = true;
                    bothJaws = false;
                }
                String upper = description;
                for (char& c : upper) c = static_cast<char>(std::toupper(c));
                if (upper.find("CEPH") != String::npos) {
                    bothJaws = false;
                    (film.laterality == "B" ? frontalHead : lateralHead) = true;
                }
            }
        }
        if (bothJaws && (count == 1 || count == 2))
            layout = 8;
        else if (bothJaws && (count == 3 || count == 4))
            layout = 7;
        else if (count == 1 && frontalHead)
            layout = 14;
        else if (count == 1 && lateralHead)
            layout = 2;
        else if (count == 1 && panoramic)
            layout = 1;
        else if (count == 1)
            layout = 9;
        else if (count < 4)
            layout = 10;
        else if (count <= 5)
            layout = 11;
        else if (count <= 9)
            layout = 12;
        else if (count <= 18)
            layout = 6;
        else if (count <= 20)
            layout = 5;
        else
            layout = 0;
        HangImages();
        return layout;
    }

    // ---- the placing ------------------------------------------------------------------------------------

    void HangImages() {
        for (Film& film : films) {
            if (film.region == "T-D1217") film.region = "T-D1213";
            film.frame = 0;
        }
        if (layout == 5)
            Twenty();
        else if (layout == 6)
            Eighteen();
        else if (layout == 7)
            Four();
        else if (layout == 8)
            Two();
        else
            ByTime();
        Long sum = 0;
        for (const Film& film : films) sum += film.frame;
        if (layout > 0 && sum == 0)
            for (std::size_t i = 1; i <= films.size(); ++i) {
                Film* const oldest = Oldest();
                for (const Slot& slot : slots) {
                    if (slot.sequence != static_cast<Long>(i)) continue;
                    if (oldest) oldest->frame = slot.number;
                    break;
                }
            }
        for (std::size_t i = 1; i <= films.size(); ++i) {
            int counter = 0;
            for (Film& film : films) {
                if (film.frame == static_cast<Long>(i)) ++counter;
                if (counter > 1) film.frame = 0;
            }
        }
    }

    Film* Oldest() {
        Film* candidate = nullptr;
        double limit = DateFrom({9999, 12, 31, 23, 59, 0}).Days;
        for (Film& film : films)
            if (film.frame == 0 && film.taken < limit) {
                candidate = &film;
                limit = film.taken;
            }
        return candidate;
    }

    void ByTime() {
        for (std::size_t i = 1; i <= films.size(); ++i)
            if (Film* const oldest = Oldest()) oldest->frame = static_cast<Long>(i);
    }

    static bool TeethFitMod(const std::array<bool, 89>& t, const String& modifier) {
        const auto two = [&](std::size_t a, std::size_t b, std::size_t c) { return t[a] + t[b] + t[c] >= 2; };
        const bool canines = t[13] || t[23] || t[33] || t[43], laterals = t[12] || t[22] || t[32] || t[42];
        const bool centrals = t[11] || t[21] || t[31] || t[41], seconds = t[15] || t[25] || t[35] || t[45];
        const bool firsts = t[14] || t[24] || t[34] || t[44], sixes = t[16] || t[26] || t[36] || t[46];
        const bool eights = t[18] || t[28] || t[38] || t[48];
        if (modifier == "T-5100C")
            return two(16, 17, 18) || two(26, 27, 28) || two(36, 37, 38) || (two(46, 47, 48) && !canines);
        if (modifier == "T-51009") return (firsts || seconds || sixes) && !laterals && !eights;
        if (modifier == "T-51007") return canines && !centrals && !seconds;
        if (modifier == "T-51006") return laterals && !seconds;
        if (modifier == "T-51005") return centrals && !firsts;
        return false;
    }

    Film* FindImageByMod(const String& laterality, const String& region, const String& modifier) {
        for (Film& film : films) {
            if (film.frame != 0 || film.laterality != laterality || film.region != region) continue;
            if (film.modifier == modifier || TeethFitMod(SelectedIn(film.teeth), modifier)) return &film;
        }
        return nullptr;
    }

    Film* FindImageForFrame(const String& laterality, const String& region, const String& first,
                            const String& second = {}, const String& third = {}) {
        Film* found = FindImageByMod(laterality, region, first);
        if (!found && !second.empty()) found = FindImageByMod(laterality, region, second);
        if (!found && !third.empty()) found = FindImageByMod(laterality, region, third);
        return found;
    }

    static constexpr const char *C = "T-5100C", *B = "T-5100B", *A = "T-5100A", *M9 = "T-51009", *M8 = "T-51008",
                                *M7 = "T-51007", *M6 = "T-51006", *M5 = "T-51005";

    Film* Frame(Long number, const String& laterality, const String& region, const String& first,
                const String& second = {}, const String& third = {}) {
        Film* const found = FindImageForFrame(laterality, region, first, second, third);
        if (found) found->frame = number;
        return found;
    }

    /// The frame beside the canine of an upper side, by what hangs there.
    void Beside(const Film* canine, Long number, const String& laterality) {
        if (!canine) return;
        if (canine->modifier == M7)
            Frame(number, laterality, "T-11170", M6, M5);
        else if (canine->modifier == M6)
            Frame(number, laterality, "T-11170", M5);
        else
            Frame(number, laterality, "T-11170", M6, M5);
    }

    void Twenty() {
        Frame(1, "R", "T-11170", C, B, A);
        Frame(2, "R", "T-11170", M9, M8);
        Beside(Frame(3, "R", "T-11170", M7, M6, M5), 4, "R");
        Frame(5, "B", "T-11170", M7, M6, M5);
        Beside(Frame(7, "L", "T-11170", M7, M6, M5), 6, "L");
        Frame(8, "L", "T-11170", M9, M8);
        Frame(9, "L", "T-11170", C, B, A);
        Frame(11, "R", "T-D1213", M9, M8);
        Frame(10, "R", "T-D1213", C, B, A);
        Frame(12, "L", "T-D1213", M9, M8);
        Frame(13, "L", "T-D1213", C, B, A);
        Frame(14, "R", "T-11180", C, B, A);
        Frame(15, "R", "T-11180", M9, M8);
        Frame(16, "R", "T-11180", M7, M6, M5);
        Frame(17, "B", "T-11180", M5, M6, M7);
        Frame(18, "L", "T-11180", M7, M6, M5);
        Frame(19, "L", "T-11180", M9, M8);
        Frame(20, "L", "T-11180", C, B, A);
    }

    void Eighteen() {
        Frame(1, "R", "T-11170", C, B, A);
        Frame(2, "R", "T-11170", M9, M8);
        Frame(3, "R", "T-11170", M7, M6, M5);
        Frame(4, "B", "T-11170", M5, M6, M7);
        Frame(5, "L", "T-11170", M7, M6, M5);
        Frame(6, "L", "T-11170", M9, M8);
        Frame(7, "L", "T-11170", C, B, A);
        Frame(8, "R", "T-D1213", C, B, A);
        Frame(9, "R", "T-D1213", M9, M8);
        Frame(10, "L", "T-D1213", M9, M8);
        Frame(11, "L", "T-D1213", C, B, A);
        Frame(12, "R", "T-11180", C, B, A);
        Frame(13, "R", "T-11180", M9, M8);
        Frame(14, "R", "T-11180", M7, M6, M5);
        Frame(15, "B", "T-11180", M5, M6, M7);
        Frame(16, "L", "T-11180", M7, M6, M5);
        Frame(17, "L", "T-11180", M9, M8);
        Frame(18, "L", "T-11180", C, B, A);
    }

    void Four() {
        std::array<bool, 21> done{};
        const auto take = [&](Long number, const String& laterality, const std::vector<String>& modifiers, bool free) {
            for (Film& film : films) {
                if (film.region != "T-D1213" || film.laterality != laterality || (free && film.frame != 0)) continue;
                if (std::find(modifiers.begin(), modifiers.end(), film.modifier) == modifiers.end()) continue;
                film.frame = number;
                done[static_cast<std::size_t>(number)] = true;
                return;
            }
        };
        take(1, "R", {B, C}, false);
        take(2, "R", {M8, M9}, false);
        take(3, "L", {M8, M9}, false);
        take(4, "L", {B, C}, false);
        if (!done[1]) take(1, "R", {A, B, C, M9}, true);
        if (!done[2]) take(2, "R", {M8, M9, A}, true);
        if (!done[3]) take(3, "L", {M8, M9, A}, true);
        if (!done[4]) take(4, "L", {A, B, C, M9}, true);
    }

    void Two() {
        for (const auto& [number, laterality] : {std::pair{1, "R"}, std::pair{2, "L"}})
            for (Film& film : films)
                if (film.region == "T-D1213" && film.laterality == laterality) {
                    film.frame = number;
                    break;
                }
    }
};

// ---- random series ----------------------------------------------------------------------------------------

class HangingModel : public WithDatabase {
protected:
    template <std::size_t N>
    String OneOf(const char* const (&texts)[N]) {
        return texts[random.Below(N)];
    }

    String AnyTeeth() {
        static constexpr const char* usual[] = {
            "17,16,",       "15,14,",       "13,12,",       "11,21,",       "22,23,", "24,25,", "26,27,",
            "17,16,47,46,", "15,14,45,44,", "24,25,34,35,", "26,27,36,37,", "47,46,", "45,44,", "43,42,",
            "41,31,",       "32,33,",       "34,35,",       "36,37,",       "13,",    "12,",    "22,",
            "23,",          "18,17,",       "28,27,",       "48,47,13,"};
        static constexpr const char* odd[] = {"112", "16,1", "24,2,", "45,9", "1617,", "16 17", "4", "abc"};
        if (random.OneIn(4)) return "";
        if (random.OneIn(60)) return OneOf(odd);
        if (!random.OneIn(3)) return OneOf(usual);
        String teeth;
        for (std::size_t left = random.Below(5); left > 0; --left) {
            const std::size_t quadrant = random.Below(8) + 1;
            teeth += std::to_string(quadrant * 10 + random.Below(quadrant <= 4 ? 8 : 5) + 1) + ",";
        }
        return teeth;
    }

    Film AnyFilm(bool blank) {
        static constexpr const char* sides[] = {"L", "R", "B", "X"};
        static constexpr const char* regions[] = {"T-11170", "T-11180", "T-D1213", "T-D1217", "T-11100", "other"};
        static constexpr const char* modifiers[] = {"T-5100C", "T-5100B", "T-5100A", "T-51009", "T-51008",
                                                    "T-51007", "T-51006", "T-51005", "other"};
        const std::array dates{Date{},
                               DateFrom({2024, 3, 1, 8, 0, 0}),
                               DateFrom({2024, 3, 1, 8, 0, 1}),
                               DateFrom({2024, 3, 2, 8, 0, 0}),
                               DateFrom({2023, 3, 2, 8, 0, 0}),
                               Date{-5.5},
                               DateFrom({9999, 12, 31, 23, 58, 59}),
                               DateFrom({9999, 12, 31, 23, 59, 0})};
        Film film;
        film.taken = dates[random.Below(dates.size())].Days;
        film.frame = static_cast<Long>(random.Below(30));
        if (blank) return film;
        film.teeth = AnyTeeth();
        if (random.OneIn(3)) film.laterality = OneOf(sides);
        if (random.OneIn(3)) film.region = OneOf(regions);
        if (random.OneIn(3)) film.modifier = OneOf(modifiers);
        return film;
    }

    Model AnySeries() {
        static constexpr const char* modalities[] = {"IO", "PX", "DX", "DX", ""};
        static constexpr const char* descriptions[] = {"", "Lateral ceph", "CEPH", "Full mouth"};
        Model model;
        model.modality = OneOf(modalities);
        model.description = OneOf(descriptions);
        model.layout = 42;
        const bool few = random.OneIn(3), blank = random.OneIn(6), bitewings = few && random.OneIn(2);
        for (std::size_t left = few ? random.Below(6) : random.Below(26); left > 0; --left) {
            model.films.push_back(AnyFilm(blank));
            if (bitewings) model.films.back().region = random.OneIn(9) ? "" : "T-D1213";
            if (bitewings && model.films.back().laterality != "L") model.films.back().laterality = "R";
        }
        model.count = static_cast<Long>(model.films.size());
        if (random.OneIn(5)) model.count = static_cast<Long>(random.Below(28)) - 3;
        return model;
    }

    /// Replaces the slots of all layouts by random ones, whose numbers and sequences repeat and have gaps.
    std::vector<Slot> AnySlots() {
        std::vector<Slot> slots;
        String rows;
        for (std::size_t left = random.Below(24); left > 0; --left)
            slots.push_back({static_cast<Long>(random.Below(18)) + 1, static_cast<Long>(random.Below(22))});
        for (const Slot& slot : slots)
            rows +=
                (rows.empty() ? "(1, '', 0, " : ", (1, '', 0, ") + CStr(slot.number) + ", " + CStr(slot.sequence) + ")";
        Run("DELETE FROM TemplateAttribute_T");
        if (!rows.empty())
            Run("INSERT INTO TemplateAttribute_T (TemplateID, TAGroupName, TARotation, TANumberInTemplate, "
                "TASequence) "
                "VALUES " +
                rows);
        std::stable_sort(slots.begin(), slots.end(), [](const Slot& a, const Slot& b) { return a.number < b.number; });
        return slots;
    }

    /// Hangs the model's films by the library; what the films and the layout are afterwards.
    Model HungByLibrary(const Model& model, Long& result) {
        const Ref<cSerie> series = New<cSerie>();
        series->ImgCount = model.count;
        series->Modality = model.modality;
        series->SeriesDescription = model.description;
        series->TemplateID = model.layout;
        const Ref<Collection> images = New<Collection>();
        for (const Film& film : model.films) {
            const Ref<cImage> image = New<cImage>();
            image->sTeeth = film.teeth;
            image->Laterality = film.laterality;
            image->AnaRegion = film.region;
            image->AnaRegionMod = film.modifier;
            image->FrameNumber = film.frame;
            image->dateTime = Date{film.taken};
            images->Add(image);
        }
        const Error failure = FailureOf([&] { result = series->HangSeries(images, con); });
        if (failure.Number != 0) result = -failure.Number;
        Model hung = model;
        hung.layout = series->TemplateID;
        std::size_t next = 0;
        for (const cImage& image : Platform::Each<cImage>(*images))
            hung.films[next++] = {image.sTeeth,       image.Laterality,  image.AnaRegion,
                                  image.AnaRegionMod, image.FrameNumber, image.dateTime.Days};
        return hung;
    }

    Random random;
};

TEST_F(HangingModel, AgreesOnRandomSeries) {
    constexpr std::size_t coveredLayouts[] = {0, 1, 2, 5, 6, 7, 8, 9, 10, 11, 12, 14};
    Run("INSERT INTO TemplateCard_T (TemplateID, TCName) VALUES (1, 'any')");
    std::vector<Slot> slots;
    std::array<int, 21> layouts{};
    int placedByTemplate = 0, failed = 0;
    const auto covered = [&] {
        const bool all = std::ranges::all_of(coveredLayouts, [&](std::size_t layout) { return layouts[layout] > 0; });
        return all && placedByTemplate > 20 && failed > 3;
    };
    // A rare layout may need more series than usual.
    for (int round = 0; round < 2000 || (round < 20'000 && !covered()); ++round) {
        if (round % 50 == 0) slots = AnySlots();
        Model model = AnySeries();
        model.slots = slots;
        const Model given = model;
        Long expected = 0;
        const Error failure = FailureOf([&] { expected = model.HangSeries(); });
        if (failure.Number != 0) expected = -failure.Number;
        Run("UPDATE TemplateCard_T SET TCDicomId = " + CStr(model.layout));
        log.statements.clear();
        Long result = 0;
        const Model hung = HungByLibrary(given, result);
        ASSERT_EQ(result, expected) << "round " << round << ", count " << given.count;
        ASSERT_EQ(hung.layout, model.layout) << "round " << round << ", count " << given.count;
        ASSERT_EQ(hung.films, model.films) << "round " << round << ", count " << given.count << " in layout "
                                           << model.layout << ' ' << given.modality << ' ' << given.description;
        if (given.count != 0) ++layouts[static_cast<std::size_t>(model.layout)];
        placedByTemplate += !Sent().empty() && std::any_of(hung.films.begin(), hung.films.end(),
                                                           [](const Film& film) { return film.frame; });
        failed += failure.Number != 0;
    }
    for (const std::size_t layout : coveredLayouts) EXPECT_GT(layouts[layout], 0) << "no series of layout " << layout;
    EXPECT_GT(placedByTemplate, 20) << "too few series fell back on the template";
    EXPECT_GT(failed, 3) << "too few series failed";
}

}  // namespace
}  // namespace OXClass
