#pragma once

#include "bench/ByHand.h"
#include "bench/Report.h"
#include "bench/Samples.h"

#include "images/cImages.h"
#include "platform/adodb/Transaction.h"

#include <optional>
#include <random>

namespace Bench {

/// How much is loaded and saved in the comparisons of images.
struct ImageWork {
    std::string key;     ///< in front of the keys, such as "postgresql-"
    std::string engine;  ///< in front of the descriptions, such as "PostgreSQL: "
    int stored;          ///< images in the database, with the keys from 1; patient 7 has 10,000
    std::string storedText;
    int loads;  ///< single loads
    std::string loadsText;
    int saves;
    std::string savesText;
};

/// Compares the library with the same work by hand: the load of the images of a patient, single loads, saves in one
/// transaction and each on its own. `Hand` has `LoadPatient`, `LoadImage`, `Insert`, `Execute`, the text `BeginText`,
/// and `Forget`, which deletes what was saved. Both use the same database.
template <class Hand>
class ImageComparison {
public:
    ImageComparison(Report& report, OXClass::Ref<ADODB::Connection> con, Hand& hand, ImageWork work)
        : report_(report), con_(std::move(con)), hand_(hand), work_(std::move(work)) {}

    void Run() {
        CompareLoad();
        CompareSingleLoads();
        CompareSaves(true);
        CompareSaves(false);
    }

private:
    void CompareLoad() {
        constexpr std::size_t expected = 10'000;
        report_.Compare(
            work_.key + "load-patient", work_.engine + "load 10,000 images of a patient, of " + work_.storedText,
            "an image", expected, 15,
            [&] {
                const auto images = OXClass::New<OXClass::cImages>();
                Require(images->LoadAll4Object(con_, OXClass::iootPatient, 7) == OXClass::Long{expected});
            },
            [&] { Require(hand_.LoadPatient(7).size() == expected); });
    }

    void CompareSingleLoads() {
        std::mt19937 random(1);
        std::vector<OXClass::Long> ids(static_cast<std::size_t>(work_.loads));
        for (OXClass::Long& id : ids)
            id = static_cast<OXClass::Long>(random() % static_cast<unsigned>(work_.stored)) + 1;
        report_.Compare(
            work_.key + "load-single", work_.engine + work_.loadsText + " single loads", "each", ids.size(), 15,
            [&] {
                for (const OXClass::Long id : ids) {
                    const auto image = OXClass::New<OXClass::cImage>();
                    Require(image->GetImage(con_, id) && image->ID == id);
                }
            },
            [&] {
                for (const OXClass::Long id : ids) Require(hand_.LoadImage(id).id == id);
            });
    }

    void CompareSaves(bool together) {
        std::vector<HandImage> values;
        for (int i = 0; i < work_.saves; ++i) values.push_back(SampleOf(i));
        report_.Compare(
            work_.key + (together ? "save-together" : "save-alone"),
            work_.engine + work_.savesText + (together ? " saves in one transaction" : " saves each on its own"),
            "each", values.size(), 9, [&] { SaveAll(values, together); }, [&] { SaveAllByHand(values, together); },
            [&] { hand_.Forget(); });
        hand_.Forget();
    }

    void SaveAll(const std::vector<HandImage>& values, bool together) {
        std::optional<ADODB::Transaction> transaction;
        if (together) transaction.emplace(con_);
        for (const HandImage& value : values) {
            const OXClass::Ref<OXClass::cImage> image = ObjectOf(value);
            image->Save(con_);
            Require(image->ID > 0);
        }
        if (transaction) transaction->Commit();
    }

    void SaveAllByHand(const std::vector<HandImage>& values, bool together) {
        if (together) hand_.Execute(Hand::BeginText);
        for (const HandImage& value : values) Require(hand_.Insert(HandImage(value)) > 0);
        if (together) hand_.Execute("COMMIT");
    }

    Report& report_;
    OXClass::Ref<ADODB::Connection> con_;
    Hand& hand_;
    ImageWork work_;
};

}  // namespace Bench
