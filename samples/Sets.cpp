#include "Sets.h"

#include "DicomWriter.h"
#include "Views.h"
#include "anatomy/RegionCodes.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace Samples {
namespace {

using Console::CodeGeneration;
namespace RegionCode = OXClass::RegionCode;
using Files = std::vector<SampleFile>;

// ------------------------------------------------------------------------------------------- the films

struct Shot {
    std::vector<int> teeth;
    bool portrait = false;
};

const std::vector<Shot> MolarBitewings{{{18, 17, 16, 48, 47, 46}}, {{26, 27, 28, 36, 37, 38}}};
const std::vector<Shot> Bitewings{
    {{18, 17, 16, 48, 47, 46}}, {{15, 14, 45, 44}}, {{26, 27, 28, 36, 37, 38}}, {{24, 25, 34, 35}}};
const std::vector<Shot> Posterior{{{18, 17, 16}}, {{15, 14}}, {{36, 37, 38}}, {{34, 35}},
                                  {{48, 47, 46}}, {{45, 44}}, {{26, 27, 28}}, {{24, 25}}};
const std::vector<Shot> Upper3{{{13, 12}, true}, {{11, 21}, true}, {{22, 23}, true}};
const std::vector<Shot> Upper5{
    {{13, 12}, true}, {{12, 11}, true}, {{11, 21}, true}, {{21, 22}, true}, {{22, 23}, true}};
const std::vector<Shot> Lower3{{{43, 42}, true}, {{41, 31}, true}, {{32, 33}, true}};

/// The usual order of taking a full mouth: bitewings, then posterior, then anterior teeth.
std::vector<Shot> FullMouth(const std::vector<Shot>& upperFront) {
    std::vector<Shot> all = Bitewings;
    for (const auto& group : {Posterior, upperFront, Lower3}) all.insert(all.end(), group.begin(), group.end());
    return all;
}

std::string SideOf(const std::vector<int>& teeth) {
    const bool right = std::ranges::any_of(teeth, Console::IsRightTooth);
    const bool left = !std::ranges::all_of(teeth, Console::IsRightTooth);
    return right && left ? "B" : right ? "R" : "L";
}

std::string RegionOf(const std::vector<int>& teeth) {
    const bool upper = std::ranges::any_of(teeth, Console::IsUpperTooth);
    const bool lower = !std::ranges::all_of(teeth, Console::IsUpperTooth);
    return upper && lower ? RegionCode::BothJaws : upper ? RegionCode::UpperJaw : RegionCode::LowerJaw;
}

std::string TwoDigits(int number) { return (number < 10 ? "0" : "") + std::to_string(number); }

/// A radiograph whose study, series and instance carry the name of its file.
Radiograph Named(const std::string& name, Kind kind, const std::string& description) {
    Radiograph about;
    about.kind = kind;
    about.patientID = "TEST-" + name;
    std::ranges::transform(about.patientID, about.patientID.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    about.patientName = "Test^" + name;
    about.studyName = about.seriesName = about.instanceName = name;
    about.studyDescription = about.seriesDescription = description;
    return about;
}

Radiograph IntraOral(const std::string& name, const std::vector<int>& teeth, const std::string& description) {
    Radiograph about = Named(name, Kind::IntraOral, description);
    about.teeth = teeth;
    about.laterality = SideOf(teeth);
    about.region = RegionOf(teeth);
    return about;
}

SampleFile File(const std::string& path, const Radiograph& about, const std::function<Picture()>& draw) {
    return {path, [=](const std::filesystem::path& file) { WriteRadiograph(about, draw(), file); }};
}

SampleFile FilmFile(const std::string& path, const Radiograph& about, const IntraOralFilm& film) {
    return File(path, about, [=] { return DrawIntraOral(film); });
}

// -------------------------------------------------------------------------------------------- the sets

/// Films of one series, numbered as they were taken.
Files Series(const std::string& name, const std::string& description, const std::vector<Shot>& shots, int bits) {
    Files files;
    for (int number = 1; number <= static_cast<int>(shots.size()); ++number) {
        const Shot& shot = shots[static_cast<std::size_t>(number - 1)];
        const std::string file = name + "-" + TwoDigits(number);
        Radiograph about = IntraOral(name, shot.teeth, description);
        about.instanceName = file;
        about.instanceNumber = number;
        about.minute = number;
        files.push_back(FilmFile(name + "/" + file + ".dcm", about,
                                 {shot.teeth, shot.portrait, bits, static_cast<unsigned>(number)}));
    }
    return files;
}

Radiograph PanoramicAbout(const std::string& name) {
    Radiograph about = Named(name, Kind::Panoramic, "Panoramic");
    about.laterality = "B";
    about.region = RegionCode::BothJaws;
    for (const int tooth : Console::AllTeeth) {
        if (tooth < 50) about.teeth.push_back(tooth);
    }
    return about;
}

Radiograph HeadAbout(const std::string& name, const std::string& description, const std::string& laterality) {
    Radiograph about = Named(name, Kind::Cephalogram, description);
    about.laterality = laterality;
    about.region = RegionCode::Skull;
    return about;
}

Files WholeHeads() {
    return {File("panoramic/panoramic.dcm", PanoramicAbout("panoramic"), [] { return DrawPanoramic(12, 1); }),
            File("ceph-lateral/ceph-lateral.dcm", HeadAbout("ceph-lateral", "Ceph lateral", "L"),
                 [] { return DrawLateralHead(12, 1); }),
            File("ceph-frontal/ceph-frontal.dcm", HeadAbout("ceph-frontal", "Ceph frontal", "B"),
                 [] { return DrawFrontalHead(12, 1); })};
}

// --------------------------------------------------------------------------------- the awkward files

std::string Awkward(const std::string& name) { return "awkward/" + name + ".dcm"; }

SampleFile AwkwardFilm(const Radiograph& about) {
    return FilmFile(Awkward(about.instanceName), about, {about.teeth, false, 8, 1});
}

Files OldCodes() {
    Radiograph previous = IntraOral("codes-previous", {17, 16}, "Periapical");
    previous.generation = CodeGeneration::Previous;
    Radiograph retired = IntraOral("codes-srt", {47, 46}, "Periapical");
    retired.generation = CodeGeneration::Srt;
    Radiograph contradicting = IntraOral("region-contradicts-teeth", {24, 25}, "Periapical");
    contradicting.region = RegionCode::BothJaws;
    contradicting.laterality = "R";
    Files files{AwkwardFilm(previous), AwkwardFilm(retired), AwkwardFilm(contradicting)};
    for (int number = 1; number <= 4; ++number) {
        const Shot& shot = Bitewings[static_cast<std::size_t>(number - 1)];
        Radiograph about = IntraOral("region-d1217", shot.teeth, "Bitewings");
        about.region = RegionCode::BothJawsOld;
        about.instanceName += "-" + std::to_string(number);
        about.instanceNumber = about.minute = number;
        files.push_back(AwkwardFilm(about));
    }
    return files;
}

Files Missing() {
    Files files;
    const auto without = [&](const std::string& name, std::vector<std::string> attributes) {
        Radiograph about = IntraOral(name, {36, 37}, "Periapical");
        about.leftOut = std::move(attributes);
        files.push_back(AwkwardFilm(about));
    };
    without("no-patient-id", {"PatientID", "IssuerOfPatientID"});
    without("no-study-date", {"StudyDate", "StudyTime"});
    without("no-series-description", {"SeriesDescription"});
    Radiograph toothless = IntraOral("no-teeth", {26, 27}, "Periapical");
    toothless.teeth.clear();
    toothless.regionModifier = RegionCode::FirstMolar;
    files.push_back(FilmFile(Awkward("no-teeth"), toothless, {{26, 27}, false, 8, 1}));
    Radiograph bare = PanoramicAbout("panoramic-no-anatomy");
    bare.laterality = bare.region = "";
    files.push_back(File(Awkward("panoramic-no-anatomy"), bare, [] { return DrawPanoramic(8, 2); }));
    return files;
}

Files Names() {
    struct Spelling {
        const char *file, *characterSet, *name;
    };
    constexpr Spelling singleByte[] = {{"name-latin1", "ISO_IR 100", "Müller^Jürgen"},
                                       {"name-greek", "ISO_IR 126", "Διονυσίου^Ελένη"},
                                       {"name-cyrillic", "ISO_IR 144", "Петров^Иван"},
                                       {"name-utf8", "ISO_IR 192", "Wang^XiaoDong=王^小東"}};
    Files files;
    for (const Spelling& spelling : singleByte) {
        Radiograph about = IntraOral(spelling.file, {14, 15}, "Periapical");
        about.characterSet = spelling.characterSet;
        about.patientName = Encoded(spelling.name, spelling.characterSet);
        files.push_back(AwkwardFilm(about));
    }
    Radiograph japanese = IntraOral("name-japanese", {14, 15}, "Periapical");
    japanese.characterSet = "\\ISO 2022 IR 87";
    japanese.patientName = "Yamada^Tarou=\x1b$B;3ED\x1b(B^\x1b$BB@O:\x1b(B=\x1b$B$d$^$@\x1b(B^\x1b$B$?$m$&\x1b(B";
    files.push_back(AwkwardFilm(japanese));
    return files;
}

/// A whole radiograph that loses its last third.
void WriteTruncated(const std::filesystem::path& file) {
    const std::vector<int> teeth{44, 45};
    WriteRadiograph(IntraOral("truncated", teeth, "Periapical"), DrawIntraOral({teeth, false, 8, 1}), file);
    std::filesystem::resize_file(file, std::filesystem::file_size(file) * 2 / 3);
}

void WriteText(const std::filesystem::path& file, std::string_view text) {
    std::ofstream out(file, std::ios::binary);
    out << text;
    out.close();
    if (!out) throw std::runtime_error("cannot write");
}

Files NoRadiographs() {
    const Radiograph report = Named("no-pixels", Kind::IntraOral, "Report");
    return {{Awkward("truncated"), WriteTruncated},
            {Awkward("text"), [](const auto& file) { WriteText(file, "This is a text, whatever its name says.\n"); }},
            {Awkward("empty"), [](const auto& file) { WriteText(file, ""); }},
            {Awkward("no-pixels"), [=](const auto& file) { WriteReport(report, file); }}};
}

}  // namespace

std::vector<SampleFile> AllSamples() {
    Files all;
    for (Files files :
         {Series("fmx18", "Full mouth, 18 films", FullMouth(Upper3), 12),
          Series("fmx20", "Full mouth, 20 films", FullMouth(Upper5), 12),
          Series("bitewings2", "Bitewings", MolarBitewings, 8), Series("bitewings4", "Bitewings", Bitewings, 12),
          WholeHeads(), OldCodes(), Missing(), Names(), NoRadiographs()})
        std::ranges::move(files, std::back_inserter(all));
    return all;
}

}  // namespace Samples
