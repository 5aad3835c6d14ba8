#include "bench/Growth.h"

#include "bench/Clinic.h"
#include "bench/Report.h"
#include "bench/Samples.h"

#include "cardlist/cUniCards.h"
#include "platform/adodb/Transaction.h"
#include "series/cSerie.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <malloc.h>
#include <nlohmann/json.hpp>
#include <random>

namespace Bench {
namespace {

using namespace OXClass;
using Json = nlohmann::ordered_json;

constexpr Long Patient = 1, PerPatient = 500;

/// Returns a number of kilobytes that the system keeps about this process.
double Kilobytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name)) return std::stod(line.substr(name.size()));
    return 0;
}

/// Returns the median time of some rounds in microseconds. `prepare` runs before each of them and is not timed.
double Median(int rounds, const std::function<void()>& prepare, const std::function<void()>& work) {
    std::vector<double> times;
    for (int round = 0; round <= rounds; ++round) {
        prepare();
        const auto start = std::chrono::steady_clock::now();
        work();
        if (round == 0) continue;  // the first round warms the caches
        times.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() * 1e6);
    }
    const auto middle = times.begin() + rounds / 2;
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

/// The operations of the comparison with work by hand, on a clinic of any size.
class Operations {
public:
    Operations(const Ref<Connection>& con, int images) : con_(con), images_(images) {}

    Json Run() {
        Add("load", "load the 500 images of a patient", 30, [&] {
            const Ref<cImages> images = New<cImages>();
            Require(images->LoadAll4Object(con_, iootPatient, Patient) == PerPatient);
        });
        Add("single", "load an image by its key, 1,000 times", 15, [&] {
            std::mt19937 random(1);
            for (int i = 0; i < 1000; ++i) {
                const Ref<cImage> image = New<cImage>();
                Require(image->GetImage(con_, static_cast<Long>(random() % static_cast<unsigned>(images_)) + 1));
            }
        });
        Add(
            "save-together", "save 500 images in one transaction", 9, [&] { Save(true); }, true);
        Add(
            "save-alone", "save 500 images each on its own", 5, [&] { Save(false); }, true);
        Add("series", "load, hang and save a series of 18", 50, [&] { HangStored(); });
        Add("list", "list 100 cards and series of a patient", 50, [&] {
            const Ref<cUniCards> entries = New<cUniCards>();
            entries->GetICAndSEList4Patient(con_, "P" + std::to_string(ShortList.patient), 0);
            Require(entries->Count() == ShortList.entries);
        });
        OpenEntries();
        Forget();
        return rows_;
    }

private:
    void Add(const char* key, const char* what, int rounds, const std::function<void()>& work, bool saves = false) {
        const auto prepare = [&] {
            if (saves) Forget();
        };
        rows_.push_back({{"key", key}, {"what", what}, {"us", Median(rounds, prepare, work)}});
    }

    /// Deletes what the operations have saved.
    void Forget() { con_->Execute("DELETE FROM ImageBild_T WHERE Series_ID >= 9000000"); }

    void Save(bool oneTransaction) {
        std::optional<ADODB::Transaction> transaction;
        if (oneTransaction) transaction.emplace(con_);
        for (int i = 0; i < 500; ++i) {
            const Ref<cImage> image = ObjectOf(SampleOf(i));
            image->PatID = Patient;
            image->Save(con_);
        }
        if (transaction) transaction->Commit();
    }

    void HangStored() {
        constexpr Long id = 9'000'018;
        const Ref<cImages> images = New<cImages>();
        if (images->LoadAll4Object(con_, iootSeries, id) == 0) {
            const Ref<cImages> films = NewSeries(18);
            for (cImage& image : *films) {
                image.seriesID = id;
                image.Save(con_);
            }
            images->LoadAll4Object(con_, iootSeries, id);
        }
        const Ref<cSerie> series = New<cSerie>();
        series->ImgCount = images->Count();
        series->HangSeries(images, con_);
        ADODB::Transaction transaction(con_);
        for (cImage& image : *images) image.Save(con_);
        transaction.Commit();
    }

    void OpenEntries() {
        constexpr Long key = 11, count = 20;
        const Ref<cUniCard> series = New<cUniCard>(), card = New<cUniCard>();
        series->Series = New<cSerie>();
        Require(series->Series->loadSeries(CStr(key), con_));
        Add("open-series", "open a series of 20", 100, [&] {
            Long number = key;
            series->LoadCardFull(con_, {}, number, ctseries);
            Require(series->Imagecard->ImagecardAttributes->Count() == count);
        });
        card->Imagecard = New<cImagecard>();
        card->Imagecard->GetImageCard(con_, key);
        Add("open-card", "open a card of 20", 100, [&] {
            Long number = key;
            card->LoadCardFull(con_, {}, number, ctImagecard);
            Require(card->colImages->Count() == count);
        });
    }

    Ref<Connection> con_;
    int images_;
    Json rows_ = Json::array();
};

/// Copies a clinic into a new database of the server, and opens it. Stores the microseconds that the copy took.
Ref<Connection> CopyToServer(const std::string& path, const std::string& server, int images, double& took) {
    const bool postgres = server.find("PostgreSQL") != std::string::npos;
    const std::string name = "growth_" + std::to_string(images);
    Ref<Connection> con = New<Connection>();
    con->SetCommandTimeout(0);
    con->Open(server + (postgres ? ";Database=postgres" : ""));
    con->Execute("CREATE DATABASE " + name +
                 (postgres ? " TEMPLATE template0" : " CHARACTER SET utf8mb4 COLLATE utf8mb4_nopad_bin"));
    con->Close();
    const std::string target = server + ";Database=" + name;
    const auto start = std::chrono::steady_clock::now();
    Require(std::system((OXCLASS " --db " + path + " copy --to \"" + target + "\" >/dev/null").c_str()) == 0);
    took = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() * 1e6;
    con->Open(target);
    if (postgres) con->Execute("VACUUM ANALYZE");
    return con;
}

/// Returns the heap bytes of a loaded image, and the bytes of its texts.
std::pair<double, double> MemoryOfImage(const Ref<Connection>& con) {
    const auto used = [] { return static_cast<double>(mallinfo2().uordblks); };
    const Ref<cImages> images = New<cImages>();
    images->LoadAll4Object(con, iootPatient, Patient);  // fills the caches of the connection
    images->LoadAll4Object(con, iootPatient, -1);
    const double before = used();
    Require(images->LoadAll4Object(con, iootPatient, Patient) == PerPatient);
    const double bytes = (used() - before) / PerPatient;
    std::size_t texts = 0;
    for (const cImage& image : *images)
        for (const String* text : {&image.URL, &image.CRC, &image.HWSourceTxt, &image.CapturePerson, &image.RespPerson,
                                   &image.sTeeth, &image.Laterality, &image.AnaRegion, &image.AnaRegionMod,
                                   &image.instanceUID, &image.ApprCrop, &image.Root_RootDirectory})
            texts += text->size();
    return {bytes, static_cast<double>(texts) / PerPatient};
}

}  // namespace

std::string Growth(const std::string& folder, int largest, const std::string& server) {
    Json sizes = Json::array();
    for (int images = 1000; images <= largest; images *= 10) {
        const std::string path = ClinicIn(folder, "growth-" + std::to_string(images) + ".db",
                                          {images, images / static_cast<int>(PerPatient)}, {ShortList});
        std::fprintf(stderr, "%d images ...\n", images);
        double copied = 0;
        const Ref<Connection> con = server.empty() ? Connect(path) : CopyToServer(path, server, images, copied);
        std::ofstream("/proc/self/clear_refs") << "5";                       // resets the peak of the memory
        con->Execute("DELETE FROM ImageBild_T WHERE Series_ID >= 9000000");  // of a run that was cut short
        Json operations = Operations(con, images).Run();
        if (!server.empty())
            operations.push_back(
                {{"key", "copy"}, {"what", "copy the clinic from a file and compare it"}, {"us", copied}});
        const auto [bytes, texts] = MemoryOfImage(con);
        sizes.push_back({{"images", images},
                         {"operations", operations},
                         {"peak_kB", Kilobytes("VmHWM:")},
                         {"image_bytes", bytes},
                         {"text_bytes", texts}});
    }
    return sizes.dump(2);
}

}  // namespace Bench
