#include "bench/Samples.h"

#include <algorithm>
#include <random>

namespace Bench {

using namespace OXClass;

namespace {

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

}  // namespace

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

}  // namespace Bench
