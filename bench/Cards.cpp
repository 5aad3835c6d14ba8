#include "bench/Cards.h"

#include "bench/CardsByHand.h"
#include "bench/Clinic.h"
#include "cardlist/cUniCards.h"

namespace Bench {
namespace {

using namespace OXClass;

void List(Report& report, const Ref<Connection>& con, CardsByHand& hand, const ListOfCards& list, int rounds) {
    const auto count = static_cast<std::size_t>(list.entries);
    const std::string name = "P" + std::to_string(list.patient);
    const std::string size = std::to_string(count);
    report.Compare(
        "list-" + size, "card list of " + size + " entries", "an entry", count, rounds,
        [&] {
            const Ref<cUniCards> entries = New<cUniCards>();
            entries->GetICAndSEList4Patient(con, name, 0);
            Require(entries->Count() == list.entries);
        },
        [&] { Require(hand.List(name).size() == count); });
}

void OpenSeries(Report& report, const Ref<Connection>& con, CardsByHand& hand, ByHand& images) {
    constexpr Long series = 1234;
    constexpr std::size_t count = 20;
    const Ref<cUniCard> entry = New<cUniCard>();
    entry->Series = New<cSerie>();
    Require(entry->Series->loadSeries(CStr(series), con));
    report.Compare(
        "open-series", "open a series of 20", "whole", 1, 500,
        [&] {
            Long number = series;
            entry->LoadCardFull(con, {}, number, ctseries);
            Require(entry->Imagecard->ImagecardAttributes->Count() == Long{count});
        },
        [&] { Require(images.LoadSeriesWhole(series).size() == count && hand.SlotsOf(5).size() == 20); });
}

void OpenCard(Report& report, const Ref<Connection>& con, CardsByHand& hand, ByHand& images) {
    constexpr Long card = 1234;
    constexpr std::size_t count = 20;
    const Ref<cUniCard> entry = New<cUniCard>();
    entry->Imagecard = New<cImagecard>();
    entry->Imagecard->GetImageCard(con, card);
    report.Compare(
        "open-card", "open a card of 20", "whole", 1, 500,
        [&] {
            Long number = card;
            entry->LoadCardFull(con, {}, number, ctImagecard);
            Require(entry->colImages->Count() == Long{count});
        },
        [&] {
            std::vector<std::int64_t> ids;
            for (const HandPlaced& placed : hand.PlacedOn(card)) ids.push_back(placed.image);
            Require(images.LoadChosen(ids).size() == count);
        });
}

}  // namespace

void BenchCards(Report& report, const Ref<Connection>& con, const std::string& path, ByHand& images) {
    CardsByHand hand(path);
    List(report, con, hand, ShortList, 200);
    List(report, con, hand, LongList, 9);
    OpenSeries(report, con, hand, images);
    OpenCard(report, con, hand, images);
}

}  // namespace Bench
