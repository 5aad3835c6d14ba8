#include "console/records/ImageCorrection.h"

#include "anatomy/RegionCodes.h"
#include "console/Completeness.h"
#include "console/Hanging.h"
#include "console/TypedTeeth.h"
#include "console/dicom/DicomCodes.h"
#include "console/patients/TypedDate.h"
#include "frame/Statement.h"
#include "platform/runtime/Services.h"

#include <cmath>
#include <fmt/format.h>
#include <regex>

namespace Console {
namespace {

using namespace OXClass;

/// The regions by the words that a person writes.
constexpr std::pair<const char*, const char*> RegionWords[] = {{"upper", RegionCode::UpperJaw},
                                                               {"lower", RegionCode::LowerJaw},
                                                               {"both", RegionCode::BothJaws},
                                                               {"skull", RegionCode::Skull},
                                                               {"", ""}};

std::string RegionTyped(const std::string& text) {
    for (const auto& [word, code] : RegionWords)
        if (EqualsIgnoringCase(word, Trim(text)) || EqualsIgnoringCase(code, Trim(text))) return code;
    throw UserError(fmt::format("\"{}\" is not a region; write upper, lower, both or skull, or nothing", text));
}

std::string SideTyped(const std::string& text) {
    std::string side = UCase(Trim(text));
    if (!side.empty() && side != "R" && side != "L" && side != "B")
        throw UserError(fmt::format("\"{}\" is not a side; write R, L or B (both), or nothing", text));
    return side;
}

/// Returns the time of day that a text is, as a part of a day: "10:30" or "10:30:15".
double TimeTyped(const std::string& text) {
    static const std::regex form(R"((\d{1,2}):(\d{2})(?::(\d{2}))?)");
    std::smatch match;
    if (std::regex_match(text, match, form)) {
        const int hours = std::stoi(match[1]), minutes = std::stoi(match[2]),
                  seconds = match[3].matched ? std::stoi(match[3]) : 0;
        if (hours < 24 && minutes < 60 && seconds < 60) return (hours * 3600 + minutes * 60 + seconds) / 86400.0;
    }
    throw UserError(fmt::format("\"{}\" is not a time of day; write it as 10:30", text));
}

/// Returns the date that a person typed; the time of day is that of `before` where none is typed.
Date DateTyped(const std::string& text, Date before) {
    const std::string typed = Trim(text);
    const auto blank = typed.rfind(' ');
    const bool hasTime = blank != std::string::npos && Contains(typed.substr(blank), ":");
    const Date day = TypedDate(hasTime ? typed.substr(0, blank) : typed);
    const double time = hasTime ? TimeTyped(Trim(typed.substr(blank))) : before.Days - std::floor(before.Days);
    const Date date{day.Days + time};
    if (date > Now()) throw UserError(fmt::format("the date {} is in the future", DateText(date)));
    return date;
}

/// Returns side and region that follow from the teeth of an image; empty where nothing does.
Ref<cImage> DerivedFrom(const String& teeth) {
    Ref<cImage> derived = New<cImage>();
    derived->sTeeth = teeth;
    derived->DeriveLaterality();
    derived->DeriveAnaRegion();
    derived->DeriveAnaRegionMod();
    return derived;
}

void RequireFollowing(const char* what, const String& stated, const String& derived, const String& teeth) {
    if (stated.empty() || derived.empty() || stated == derived) return;
    throw UserError(fmt::format("the {} {} contradicts the teeth {} which have {}; correct the teeth with --teeth",
                                what, stated, teeth, derived));
}

/// Sets the corrected values in the image.
void Apply(const ImageCorrection& correction, cImage& image) {
    if (correction.teeth) {
        const bool none = Trim(*correction.teeth).empty();
        image.sTeeth = none ? std::string() : ToothString(TeethTyped(*correction.teeth));
        const Ref<cImage> derived = DerivedFrom(image.sTeeth);
        image.Laterality = derived->Laterality;
        image.AnaRegion = derived->AnaRegion;
        image.AnaRegionMod = derived->AnaRegionMod;
    }
    const Ref<cImage> derived = DerivedFrom(image.sTeeth);
    if (correction.side) image.Laterality = SideTyped(*correction.side);
    if (correction.region) image.AnaRegion = RegionTyped(*correction.region);
    if (correction.side) RequireFollowing("side", image.Laterality, derived->Laterality, image.sTeeth);
    if (correction.region) RequireFollowing("region", image.AnaRegion, derived->AnaRegion, image.sTeeth);
    if (correction.date) image.dateTime = DateTyped(*correction.date, image.dateTime);
}

/// Stores what differs in the columns of an image, with a comment for each; returns false if nothing does.
bool StoreDifferences(RecordChange& change, const cImage& before, const cImage& after) {
    std::string columns;
    const auto text = [&](const char* what, const char* column, const String& from, const String& to) {
        if (from == to) return;
        columns += sql(Clause(columns.empty() ? "" : ", "), Clause(column), " = '", FixSqlString(to), "'");
        const auto shown = [](const String& value) { return value.empty() ? String("none") : value; };
        change.Tell(fmt::format("{} of image {}", what, before.ID), from, to);
        change.Comment({before.ID}, fmt::format("Corrected {} from {} to {}", what, shown(from), shown(to)));
    };
    text("teeth", "PriStructure", before.sTeeth, after.sTeeth);
    text("side", "Laterality", before.Laterality, after.Laterality);
    text("region", "AnaRegion", before.AnaRegion, after.AnaRegion);
    text("region modifier", "AnaRegionMod", before.AnaRegionMod, after.AnaRegionMod);
    text("date", "DateCaptured_SD", Stamp(before.dateTime).text, Stamp(after.dateTime).text);
    if (columns.empty()) return false;
    change.Con()->Execute(sql("UPDATE ImageBild_T SET ", Clause(columns), " WHERE ImageBildID = ", before.ID));
    return true;
}

}  // namespace

void CorrectImages(RecordChange& change, const std::set<Long>& images, const ImageCorrection& correction) {
    std::set<Long> series;
    bool changed = false;
    for (const Long number : images) {
        const Ref<cImage> before = LoadWholeImage(change.Con(), number), after = LoadWholeImage(change.Con(), number);
        Apply(correction, *after);
        if (!StoreDifferences(change, *before, *after)) continue;
        changed = true;
        if (after->seriesID != 0) series.insert(after->seriesID);
    }
    if (!changed) throw UserError("nothing differs from what is stored, and nothing was changed");
    for (const Long number : series) {
        const HungSeries hung = HangStored(change.Con(), number);
        if (hung.changed > 0)
            change.Tell(fmt::format("series {}", number), "", fmt::format("hung again, {} images moved", hung.changed));
    }
}

}  // namespace Console
