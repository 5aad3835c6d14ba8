#include "cards/CardGrid.h"
#include "console/CardList.h"
#include "console/Commands.h"
#include "console/Completeness.h"
#include "console/Program.h"
#include "console/WriteTransaction.h"
#include "console/page/Page.h"
#include "console/patients/PatientSearch.h"
#include "frame/Statement.h"
#include "platform/runtime/Services.h"

#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <optional>
#include <set>

namespace Console {
namespace {

using namespace OXClass;

// ---- numbers of the command line --------------------------------------------------------------------

Long CardNumber(const std::string& key) {
    return NumberOf(EqualsIgnoringCase(key.substr(0, 2), "IC") ? key.substr(2) : key, "an image card");
}

/// "0.5,0.25", or one number for both.
std::pair<double, double> PairOf(const std::string& text, const char* what) {
    double numbers[2] = {0, 0};
    const char* at = text.data();
    const char* const end = at + text.size();
    for (int i = 0; i < 2; ++i) {
        const auto result = std::from_chars(at, end, numbers[i]);
        const bool whole = result.ec == std::errc() && std::abs(numbers[i]) <= 100;
        if (whole && result.ptr == end) return {numbers[0], i == 0 ? numbers[0] : numbers[1]};
        if (!whole || i == 1 || *result.ptr != ',') break;
        at = result.ptr + 1;
    }
    throw UserError(fmt::format(
        "\"{}\" is not a {}; write fractions of the card as in 0.5,0.25, or one number for both", text, what));
}

std::pair<Long, Long> CanvasOf(const std::string& text) {
    const auto cross = text.find_first_of("xX");
    const Long width = NumberOf(text.substr(0, cross), "a canvas (write 1000x700)");
    const Long height = NumberOf(cross == std::string::npos ? "" : text.substr(cross + 1), "a canvas (write 1000x700)");
    constexpr Long largest = 100'000;
    if (width < 1 || height < 1 || width > largest || height > largest)
        throw UserError("a canvas has a width and a height above 0, and at most 100000");
    return {width, height};
}

// ---- composing --------------------------------------------------------------------------------------

/// Returns a placed image of a card.
cImagecardAttribute& Placed(const cImagecard& card, const std::string& number) {
    const String key = "K" + CStr(NumberOf(number, "a placed image"));
    if (!card.ImagecardAttributes->HasKey(key))
        throw UserError(
            fmt::format("card IC{0} has no placed image {1}; see: oxclass card show IC{0}", card.ICID, number));
    return *To<Ref<cImagecardAttribute>>(card.ImagecardAttributes->Item(key));
}

/// Loads a stored card, changes it by `change`, and stores it, in one transaction. Returns the card.
Ref<cImagecard> ChangeCard(const Database& database, const std::string& key,
                           const std::function<void(cImagecard&)>& change) {
    Ref<cImagecard> card;
    Write(database.Con(), [&] {
        card = New<cImagecard>();
        LoadWhole(database.Con(), *card, CardNumber(key));
        change(*card);
        card->ICLastUpdate = Now();
        SaveWhole(database.Con(), *card);
    });
    return card;
}

void NewCard(const Options& options, const std::string& patient, const std::string& name,
             const std::string& description, const std::string& canvas) {
    constexpr Long width = 255;
    if (Len(name) > width) throw UserError("the name of a card has at most 255 characters");
    const Database database(options);
    Ref<cImagecard> card;
    Write(database.Con(), [&] {
        card = New<cImagecard>();
        card->ICPID = LoadPatient(database, patient)->ID;
        card->ICName = name;
        card->ICDescription = description;
        card->ICCreateDate = card->ICLastUpdate = Now();
        std::tie(card->ICWidth, card->ICHeight) = CanvasOf(canvas);
        SaveWhole(database.Con(), *card);
    });
    if (options.json) return PrintJson({{"card", fmt::format("IC{}", card->ICID)}});
    fmt::print("IC{} is made. Place images on it: oxclass card add IC{} IMAGE\n", card->ICID, card->ICID);
}

/// Places and sizes an image as the command line says; empty texts change nothing.
void PutAt(cImagecardAttribute& placed, const std::string& at, const std::string& size) {
    if (!at.empty()) std::tie(placed.IAPosX, placed.IAPosY) = PairOf(at, "place");
    if (size.empty()) return;
    std::tie(placed.IAWidth, placed.IAHeight) = PairOf(size, "size");
    if (placed.IAWidth <= 0 || placed.IAHeight <= 0) throw UserError("a size is above 0");
}

bool Overlap(const cImagecardAttribute& a, const cImagecardAttribute& b) {
    return a.IAPosX < b.IAPosX + b.IAWidth && b.IAPosX < a.IAPosX + a.IAWidth && a.IAPosY < b.IAPosY + b.IAHeight &&
           b.IAPosY < a.IAPosY + a.IAHeight;
}

/// Places the image in the first free cell of the grid, beginning with `cell`, and sets `cell` to the next one.
void PutInFreeCell(cImagecardAttribute& placed, const cImagecard& card, Long& cell) {
    const auto covered = [&] {
        for (const auto& other : Each<cImagecardAttribute>(*card.ImagecardAttributes))
            if (Overlap(placed, other)) return true;
        return false;
    };
    do PlaceInGrid(placed, cell++);
    while (covered());
}

void AddImages(const Options& options, const std::string& key, const std::vector<std::string>& images,
               const std::string& at, const std::string& size) {
    if (!at.empty() && images.size() > 1)
        throw UserError("--at places one image; leave it out to place several in a grid");
    const Database database(options);
    const Ref<cImagecard> stored = ChangeCard(database, key, [&](cImagecard& card) {
        Long cell = 0;
        for (const std::string& number : images) {
            const Ref<cImage> image = LoadWholeImage(database.Con(), NumberOf(number, "an image"));
            if (image->PatID != card.ICPID)
                throw UserError(fmt::format("image {} belongs to another patient than the card", number));
            const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
            placed->ImageID = image->ID;
            placed->ICID = card.ICID;
            placed->IAMirrRotStatus = static_cast<Integer>(Orientation(image->MirrRotStatus).Number());
            PutInFreeCell(*placed, card, cell);
            PutAt(*placed, at, size);
            card.ImagecardAttributes->Add(placed);
        }
    });
    if (!options.json) return fmt::print("{} images placed on IC{}.\n", images.size(), stored->ICID);
    nlohmann::ordered_json placed = nlohmann::ordered_json::array();
    const Long count = stored->ImagecardAttributes->Count();
    for (Long i = count - static_cast<Long>(images.size()) + 1; i <= count; ++i)
        placed.push_back(To<Ref<cImagecardAttribute>>(stored->ImagecardAttributes->At(i))->ID);
    PrintJson({{"card", fmt::format("IC{}", stored->ICID)}, {"placed", placed}});
}

/// "ManRotate=90,text" as a manipulation. Throws `UserError` for an unknown kind or number.
Ref<cImageManipulation> ManipulationOf(const std::string& text) {
    const auto equals = text.find('=');
    const std::string name = text.substr(0, equals);
    Ref<cImageManipulation> step = New<cImageManipulation>();
    for (const EnumerationValue& value : EnumerationOf<ManipulationType>::Values)
        if (EqualsIgnoringCase(value.Name, name)) step->ManipulationType = static_cast<ManipulationType>(value.Value);
    if (step->ManipulationType == ManCosmetic)
        throw UserError(
            "a cosmetic manipulation belongs to the program that makes its file; it can't be recorded here");
    if (step->ManipulationType == ManipulationType{} || step->ManipulationType == UndoStop) {
        std::string names;
        for (const EnumerationValue& value : EnumerationOf<ManipulationType>::Values)
            if (value.Value != UndoStop && value.Value != ManCosmetic)
                names += std::string(names.empty() ? "" : ", ") + value.Name;
        throw UserError(fmt::format("there is no manipulation \"{}\"; there are {}", name, names));
    }
    if (equals == std::string::npos) return step;
    const std::string parameters = text.substr(equals + 1);
    const auto comma = parameters.find(',');
    step->LongParameter = NumberOf(parameters.substr(0, comma), "a manipulation (write NAME=NUMBER,TEXT)");
    if (comma != std::string::npos) step->StringParameter = parameters.substr(comma + 1);
    if (Contains(step->StringParameter, "'"))
        throw UserError("the text of a manipulation can't hold a single quote; leave it out");
    return step;
}

Ref<cImageManipulation> Step(ManipulationType type, Long parameter) {
    Ref<cImageManipulation> step = New<cImageManipulation>();
    step->ManipulationType = type;
    step->LongParameter = parameter;
    return step;
}

/// The arguments of `card move`.
struct Move {
    std::string at, size;
    std::optional<std::string> comment;
    int turn = 0;
    bool mirror = false;
    std::vector<std::string> records;
};

/// Changes a placed image as the command line says.
void Apply(const Move& move, cImagecardAttribute& placed) {
    PutAt(placed, move.at, move.size);
    if (move.comment) placed.IAComments = *move.comment;
    Orientation form(placed.IAMirrRotStatus);
    if (move.mirror) {
        form = form.MirroredAsSeen();
        placed.Manipulations->Add(Step(ManMirror, 1));
    }
    if (move.turn % 360 != 0) {
        form = form.Turned(move.turn);
        placed.Manipulations->Add(Step(ManRotate, move.turn));
    }
    if (move.mirror || move.turn % 360 != 0) placed.IAMirrRotStatus = static_cast<Integer>(form.Number());
    for (const std::string& record : move.records) placed.Manipulations->Add(ManipulationOf(record));
}

void MoveImage(const Options& options, const std::string& key, const std::string& number, const Move& move) {
    if (move.turn % 90 != 0) throw UserError("an image turns by 90, 180 or 270 degrees, clockwise");
    if (move.at.empty() && move.size.empty() && !move.comment && move.turn == 0 && !move.mirror && move.records.empty())
        throw UserError("nothing to change; oxclass card move --help lists the options");
    const Database database(options);
    const Ref<cImagecard> card =
        ChangeCard(database, key, [&](cImagecard& changed) { Apply(move, Placed(changed, number)); });
    const Long placed = Placed(*card, number).ID;
    if (options.json) return PrintJson({{"card", fmt::format("IC{}", card->ICID)}, {"placed", {placed}}});
    fmt::print("Placed image {} of IC{} is stored.\n", placed, card->ICID);
}

void RemoveImages(const Options& options, const std::string& key, const std::vector<std::string>& numbers) {
    const Database database(options);
    std::set<Long> removed;
    const Ref<cImagecard> stored = ChangeCard(database, key, [&](cImagecard& changed) {
        removed.clear();  // of an attempt that met a conflict
        for (const std::string& number : numbers) {
            cImagecardAttribute& placed = Placed(changed, number);
            placed.ToBeDeleted = true;
            removed.insert(placed.ID);
        }
    });
    const Long card = stored->ICID;
    if (options.json) return PrintJson({{"card", fmt::format("IC{}", card)}, {"removed", removed}});
    fmt::print("{} placed images are off IC{}; the images themselves stay.\n", removed.size(), card);
}

// ---- showing ----------------------------------------------------------------------------------------

std::string TextOf(const cImageManipulation& step) {
    std::string name = CStr(Long{step.ManipulationType});
    for (const EnumerationValue& value : EnumerationOf<ManipulationType>::Values)
        if (value.Value == step.ManipulationType) name = value.Name;
    name += "=" + CStr(step.LongParameter);
    return step.StringParameter.empty() ? name : name + "," + step.StringParameter;
}

std::string ManipulationsOf(const cImagecardAttribute& placed) {
    std::string text;
    for (const auto& step : Each<cImageManipulation>(*placed.Manipulations))
        text += (text.empty() ? "" : " ") + TextOf(step);
    return text;
}

List PlacedImagesOf(const cUniCard& entry) {
    List list({{"placed", "Placed"},
               {"place", "No."},
               {"image", "Image"},
               {"teeth", "Teeth"},
               {"x", "X"},
               {"y", "Y"},
               {"width", "Width"},
               {"height", "Height"},
               {"turned", "Turned"},
               {"mirrored", "Mirrored"},
               {"manipulations", "Manipulations"},
               {"comment", "Comment"}});
    for (const auto& placed : Each<cImagecardAttribute>(*entry.Imagecard->ImagecardAttributes)) {
        const Ref<cImage> image = ImageOf(entry, placed);
        const Orientation form(placed.IAMirrRotStatus);
        list.Add({placed.ID, placed.IASequence, placed.ImageID,
                  image ? CaptionOf(*image) : WhyNoImage(entry, placed.ImageID), placed.IAPosX, placed.IAPosY,
                  placed.IAWidth, placed.IAHeight, form.Degrees(), form.Mirrored(), ManipulationsOf(placed),
                  placed.IAComments});
    }
    return list;
}

void ShowCard(Program& program, const std::string& key) {
    const Options& options = program.options;
    const Database database(options);
    const Ref<cUniCard> entry = OpenEntry(database, fmt::format("IC{}", CardNumber(key)));
    const cImagecard& card = *entry->Imagecard;
    const List placed = PlacedImagesOf(*entry);
    const std::vector<std::string> damages = DamagesOf(*entry);
    if (!damages.empty()) program.exitCode = PartlyDone;
    if (options.json)
        return PrintJson({{"card", fmt::format("IC{}", card.ICID)},
                          {"name", card.ICName},
                          {"description", card.ICDescription},
                          {"created", DateText(card.ICCreateDate)},
                          {"changed", DateText(card.ICLastUpdate)},
                          {"width", card.ICWidth},
                          {"height", card.ICHeight},
                          {"images", placed.Rows()},
                          {"damaged", damages}});
    fmt::print("IC{}: {}, {} x {}, made {}, changed {}\n", card.ICID, Printable(NameOf(*entry)), card.ICWidth,
               card.ICHeight, DateText(card.ICCreateDate), DateText(card.ICLastUpdate));
    if (!card.ICDescription.empty()) fmt::print("{}\n", Printable(card.ICDescription));
    placed.Print(false, fmt::format("No images yet; place some: oxclass card add IC{} IMAGE", card.ICID));
    for (const std::string& damage : damages) fmt::print("Damaged: {}\n", Printable(damage));
}

}  // namespace

void AddComposing(Program& program) {
    struct Arguments {
        std::string key, name, description, canvas = "1000x700", at, size, placed, comment;
        std::vector<std::string> numbers;
        Move move;
    };
    const auto given = std::make_shared<Arguments>();
    const auto& options = program.options;

    auto* card = program.app.add_subcommand("card", "compose a page of a patient's images");
    card->require_subcommand(1);
    card->footer("Example: oxclass card new TEST-FMX18 \"Caries 16\" && oxclass card add IC1 30 31");
    const auto cardArgument = [&](CLI::App* command) {
        command->add_option("CARD", given->key, "an image card, as IC5")->required();
    };
    const auto placing = [&](CLI::App* command) {
        command->add_option("--at", given->at, "upper left corner, in fractions of the card")->type_name("X,Y");
        command->add_option("--size", given->size, "width and height, in fractions of the card")->type_name("W,H");
    };

    auto* fresh = card->add_subcommand("new", "make an empty card");
    fresh->add_option("PATIENT", given->key, PatientHelp)->required();
    fresh->add_option("NAME", given->name, "name of the card")->required();
    fresh->add_option("--description", given->description, "free text")->type_name("TEXT");
    fresh->add_option("--canvas", given->canvas, "size of the canvas; default 1000x700")->type_name("WxH");
    fresh->footer("Example: oxclass card new TEST-FMX18 \"Caries 16\" --canvas 1200x800");
    fresh->callback(
        [&options, given] { NewCard(options, given->key, given->name, given->description, given->canvas); });

    auto* add = card->add_subcommand("add", "place images, by default in a grid of five columns");
    cardArgument(add);
    add->add_option("IMAGE", given->numbers, "numbers of images of the same patient")->required();
    placing(add);
    add->footer("Example: oxclass card add IC1 30 --at 0.5,0.1 --size 0.4,0.3");
    add->callback([&options, given] { AddImages(options, given->key, given->numbers, given->at, given->size); });

    auto* move = card->add_subcommand("move", "move, size, turn or mirror a placed image, record manipulations");
    cardArgument(move);
    move->add_option("PLACED", given->placed, "number of a placed image, as listed by card show")->required();
    placing(move);
    move->add_option("--turn", given->move.turn, "turn clockwise by 90, 180 or 270 degrees")->type_name("DEGREES");
    move->add_flag("--mirror", given->move.mirror, "mirror left to right, before it is turned");
    move->add_option("--record", given->move.records, "record a manipulation, as ManContrast=10")
        ->type_name("NAME=NUMBER,TEXT");
    auto* comment = move->add_option("--comment", given->comment, "a comment on the placed image")->type_name("TEXT");
    move->footer("Example: oxclass card move IC1 3 --turn 90 --at 0.2,0.2");
    move->callback([&options, given, comment] {
        if (comment->count() > 0) given->move.comment = given->comment;
        given->move.at = given->at;
        given->move.size = given->size;
        MoveImage(options, given->key, given->placed, given->move);
    });

    auto* remove = card->add_subcommand("remove", "remove placed images from the card; the images stay");
    cardArgument(remove);
    remove->add_option("PLACED", given->numbers, "numbers of placed images, as listed by card show")->required();
    remove->footer("Example: oxclass card remove IC1 3");
    remove->callback([&options, given] { RemoveImages(options, given->key, given->numbers); });

    auto* show = card->add_subcommand("show", "list what is placed on the card");
    cardArgument(show);
    show->footer("Example: oxclass card show IC1");
    show->callback([&program, given] { ShowCard(program, given->key); });
}

}  // namespace Console
