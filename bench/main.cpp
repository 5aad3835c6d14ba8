#include "bench/Boundary.h"
#include "bench/ByHand.h"
#include "bench/Cards.h"
#include "bench/Clinic.h"
#include "bench/Ratio.h"

#include "images/cImages.h"
#include "series/cSerie.h"

#include <filesystem>
#include <random>

/// Benchmarks: what the library costs beside the same work written by hand on the engine's C interface,
/// with prepared statements and bound values, in the same run.
///
/// Usage: oxclass_bench [FOLDER]; the folder keeps the database of a million images between runs.
namespace {

using namespace Bench;
using namespace OXClass;

void LoadPatient(const Ref<Connection>& con, ByHand& hand) {
    constexpr std::size_t expected = Images / Patients;
    PrintRatio(
        "load 10,000 images of a patient, an image", expected, 9,
        [&] {
            const Ref<cImages> images = New<cImages>();
            Require(images->LoadAll4Object(con, iootPatient, 7) == Long{expected});
        },
        [&] { Require(hand.LoadPatient(7).size() == expected); });
}

void LoadSingle(const Ref<Connection>& con, ByHand& hand) {
    std::mt19937 random(1);
    std::vector<Long> ids(20'000);
    for (Long& id : ids) id = static_cast<Long>(random() % Images) + 1;
    PrintRatio(
        "20,000 single loads, one", ids.size(), 9,
        [&] {
            for (const Long id : ids) {
                const Ref<cImage> image = New<cImage>();
                Require(image->GetImage(con, id) && image->ID == id);
            }
        },
        [&] {
            for (const Long id : ids) {
                HandImage image;
                Require(hand.LoadImage(id, image) && image.id == id);
            }
        });
}

HandImage SampleOf(int number) {
    HandImage image{};
    image.patient = 7;
    image.url = "0_\\2.25.9" + std::to_string(number) + ".dcm";
    image.uid = "2.25.9" + std::to_string(number);
    image.source = "Sensor 3 serial 4";
    image.responsible = "Anna Ek";
    image.crc = "9AF3" + std::to_string(number);
    image.region = "T-11170";
    image.modifier = "T-5100B";
    image.laterality = "R";
    image.teeth = "16,17,18,";
    image.root = image.mirror = image.type = 1;
    image.dpiX = image.dpiY = 577;
    image.voltage = 65;
    image.current = 7;
    image.exposure = 120;
    image.study = image.series = 9'000'000;
    return image;
}

Ref<cImage> ObjectOf(const HandImage& image) {
    Ref<cImage> object = New<cImage>();
    object->PatID = static_cast<Long>(image.patient);
    object->URL = image.url;
    object->instanceUID = image.uid;
    object->HWSourceTxt = image.source;
    object->RespPerson = image.responsible;
    object->CRC = image.crc;
    object->AnaRegion = image.region;
    object->AnaRegionMod = image.modifier;
    object->Laterality = image.laterality;
    object->sTeeth = image.teeth;
    object->RootId = object->MirrRotStatus = 1;
    object->ImageType = imggTypeDXIntraOral;
    object->DPIX = object->DPIY = 577;
    object->Voltage_kV = 65;
    object->Current_mA = 7;
    object->ExposureTime_ms = 120;
    object->studyID = object->seriesID = 9'000'000;
    return object;
}

/// Takes out what saves put in, also those of a run that was cut short.
void Forget(ByHand& hand) {
    hand.Execute("DELETE FROM ImageBild_T WHERE Series_ID >= 9000000");
    hand.Execute("PRAGMA wal_checkpoint(TRUNCATE)");
}

void Save(const Ref<Connection>& con, ByHand& hand, bool oneTransaction) {
    constexpr int count = 5'000;
    std::vector<HandImage> values;
    for (int i = 0; i < count; ++i) values.push_back(SampleOf(i));
    PrintRatio(
        oneTransaction ? "5,000 saves in one transaction, one" : "5,000 saves each on its own, one", count, 7,
        [&] {
            if (oneTransaction) con->BeginTrans();
            for (const HandImage& value : values) {
                const Ref<cImage> image = ObjectOf(value);
                image->Save(con);
                Require(image->ID > 0);
            }
            if (oneTransaction) con->CommitTrans();
        },
        [&] {
            if (oneTransaction) hand.Execute("BEGIN IMMEDIATE");
            for (const HandImage& value : values) Require(hand.Insert(HandImage(value)) > 0);
            if (oneTransaction) hand.Execute("COMMIT");
        },
        [&] { Forget(hand); });
    Forget(hand);
}

using TeethOfFilms = std::vector<const char*>;
const TeethOfFilms Bitewings{"16,17,18,46,47,48,", "14,15,44,45,", "24,25,34,35,", "26,27,28,36,37,38,"};
const TeethOfFilms FullMouth{"16,17,18,",
                             "14,15,",
                             "12,13,",
                             "11,21,",
                             "22,23,",
                             "24,25,",
                             "26,27,28,",
                             "16,17,18,46,47,48,",
                             "14,15,44,45,",
                             "24,25,34,35,",
                             "26,27,28,36,37,38,",
                             "46,47,48,",
                             "44,45,",
                             "42,43,",
                             "31,41,",
                             "32,33,",
                             "34,35,",
                             "36,37,38,"};

TeethOfFilms Films(std::size_t count) {
    if (count == 4) return Bitewings;
    TeethOfFilms films = FullMouth;
    if (count == 20) films.insert(films.end(), {"11,12,", "21,22,"});
    return films;
}

Ref<cImages> NewSeries(std::size_t count) {
    TeethOfFilms films = Films(count);
    std::shuffle(films.begin(), films.end(), std::mt19937(3));
    Ref<cImages> images = New<cImages>();
    for (std::size_t i = 0; i < films.size(); ++i) {
        Ref<cImage> image = ObjectOf(SampleOf(static_cast<int>(i)));
        image->Laterality.clear(), image->AnaRegion.clear(), image->AnaRegionMod.clear();
        image->sTeeth = films[i];
        image->dateTime = Date{45000.0 + static_cast<double>(i)};
        images->AddObject(image);
    }
    return images;
}

/// Hanging alone, in memory: there is nothing by hand to set beside it.
void Hang(const Ref<Connection>& con, std::size_t count) {
    constexpr int rounds = 400;
    std::vector<Ref<cImages>> series;
    for (int i = 0; i < rounds; ++i) series.push_back(NewSeries(count));
    std::vector<double> times;
    for (const Ref<cImages>& images : series) {
        const Ref<cSerie> serie = New<cSerie>();
        serie->ImgCount = static_cast<Long>(count);
        times.push_back(Seconds([&] { serie->HangSeries(images, con); }));
        for (const cImage& image : *images) Require(image.FrameNumber > 0);
    }
    std::printf("hang %2zu images in memory %33.2f us\n", count, Median(times) * 1e6);
}

/// Loading a stored series, hanging it and saving its images, beside loading and updating the same rows.
void HangStored(const Ref<Connection>& con, ByHand& hand, std::size_t count) {
    const Ref<cImages> images = NewSeries(count);
    const Long id = 9'000'000 + static_cast<Long>(count);
    for (cImage& image : *images) {
        image.seriesID = id;
        image.Save(con);
    }
    const std::string what = "load, hang and save a series of " + std::to_string(count) + ", whole";
    PrintRatio(
        what.c_str(), 1, 200,
        [&] {
            const Ref<cImages> loaded = New<cImages>();
            const Ref<cSerie> serie = New<cSerie>();
            serie->ImgCount = loaded->LoadAll4Object(con, iootSeries, id);
            serie->HangSeries(loaded, con);
            con->BeginTrans();
            for (cImage& image : *loaded) image.Save(con);
            con->CommitTrans();
        },
        [&] {
            std::vector<HandImage> loaded = hand.LoadSeries(id);
            Require(loaded.size() == count);
            hand.Execute("BEGIN IMMEDIATE");
            for (const HandImage& image : loaded) hand.Update(image);
            hand.Execute("COMMIT");
        });
    Forget(hand);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string folder = argc > 1 ? argv[1] : std::filesystem::temp_directory_path() / "oxclass-bench";
    std::filesystem::create_directories(folder);
    const std::string path = ClinicWithMillionImages(folder);
    const Ref<Connection> con = Connect(path);
    ByHand hand(path);
    Forget(hand);
    std::printf("%-52s %12s  %12s  %6s\n", "", "library", "by hand", "ratio");
    LoadPatient(con, hand);
    LoadSingle(con, hand);
    Save(con, hand, true);
    Save(con, hand, false);
    for (const std::size_t count : {4, 18, 20}) HangStored(con, hand, count);
    for (const std::size_t count : {4, 18, 20}) Hang(con, count);
    BenchCards(con, path, hand);
    BenchBoundary();
}
