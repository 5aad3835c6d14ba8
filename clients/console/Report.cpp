#include "console/Report.h"

#include "Report_page.h"
#include "console/CardList.h"
#include "console/Completeness.h"
#include "console/WholeFile.h"
#include "console/dicom/DicomCodes.h"
#include "console/page/Svg.h"
#include "platform/runtime/Services.h"

#include <fmt/format.h>

namespace Console {
namespace {

using namespace OXClass;

constexpr unsigned PixelWidth = 1600;

/// Returns the text of the page with each "{{name}}" replaced; `texts` are HTML already.
std::string Filled(std::string_view page, const std::map<std::string, std::string>& texts) {
    std::string filled;
    for (std::size_t from = 0;;) {
        const auto open = page.find("{{", from);
        filled += page.substr(from, open == std::string_view::npos ? open : open - from);
        if (open == std::string_view::npos) return filled;
        const auto close = page.find("}}", open);
        filled += texts.at(std::string(page.substr(open + 2, close - open - 2)));
        from = close + 2;
    }
}

std::string FullName(const cPatient& patient) {
    const std::string name = patient.FirstName + (patient.FirstName.empty() ? "" : " ") + patient.LastName;
    return name.empty() ? patient.PatientID : name;
}

/// Returns the name of the clinic: the first that is stored, except the head office, whose row has a mark instead of a
/// name.
std::string ClinicName(const Database& database) {
    const Ref<Recordset> names = database.Read(
        "SELECT ClinicName FROM Clinic_T WHERE trim(ClinicName) <> "
        "'' AND upper(ClinicName) <> '__HQ' ORDER "
        "BY ClinicID");
    return names->Eof() ? std::string() : CStr(names->Fields(0).Value());
}

std::string Facts(const Database& database, const cPatient& patient) {
    std::string facts;
    const auto add = [&](const char* name, const std::string& value) {
        if (!value.empty()) facts += fmt::format("<dt>{}</dt><dd>{}</dd>\n", name, XmlText(value));
    };
    add("Patient ID", patient.PatientID);
    add("Other IDs", patient.OtherIDs->GetAllAsString());
    add("Born", DateText(patient.BirthDate));
    add("Sex", patient.Sex);
    add("Clinic", ClinicName(database));
    add("Written", DateText(Now()));
    return facts;
}

/// Returns "65 kV, 7 mA, 120 ms"; omits unknown values. Empty for a photograph.
std::string ExposureOf(const cImage& image) {
    std::string text;
    if (image.ImageType == imggTypeVLPhotographic) return text;
    const auto add = [&](Long value, const char* unit) {
        if (value > 0) text += fmt::format("{}{} {}", text.empty() ? "" : ", ", value, unit);
    };
    add(image.Voltage_kV, "kV");
    add(image.Current_mA, "mA");
    add(image.ExposureTime_ms, "ms");
    return text;
}

/// Returns the comments of an image, newest first, one a line: "2026-01-31 AB: caries".
std::string CommentLines(const Database& database, const cImage& image) {
    std::string lines;
    for (const StoredComment& comment : CommentsOf(database.Con(), image.ID)) {
        const std::string by = Trim(DateText(comment.date) + " " + comment.signature);
        lines +=
            fmt::format("{}{}", lines.empty() ? "" : "<br>", XmlText(by + (by.empty() ? "" : ": ") + comment.text));
        if (!comment.damage.empty())
            lines += fmt::format(
                " <span class=\"damaged\">Damaged: comment {} can't "
                "be read: {}</span>",
                comment.number, XmlText(comment.damage));
    }
    return lines;
}

std::size_t DamagedComments(const Database& database, const cUniCard& entry) {
    std::size_t damaged = 0;
    for (const cImage& image : *entry.colImages)
        for (const StoredComment& comment : CommentsOf(database.Con(), image.ID)) damaged += !comment.damage.empty();
    return damaged;
}

std::string RemarkOf(const PlacedPicture& placed) {
    const std::string missing = placed.missing.empty() ? "" : "no picture: " + placed.missing;
    return placed.note + (placed.note.empty() || missing.empty() ? "" : "; ") + missing;
}

/// Returns the cells between an image's number and its remark.
std::string CellsOf(const Database& database, const PlacedPicture& placed, const Ref<cImage>& image) {
    if (!image) return fmt::format("<td>{}</td><td></td><td></td><td></td><td></td>", XmlText(placed.caption));
    return fmt::format("<td>{}</td><td>{}</td><td>{}</td><td>{}</td><td>{}</td>", XmlText(TeethOf(*image)),
                       XmlText(AnatomyInWords(image->AnaRegion, image->AnaRegionMod, image->Laterality)),
                       DateText(image->dateTime), ExposureOf(*image), CommentLines(database, *image));
}

/// Returns the table of a page's images.
std::string Table(const Database& database, const cUniCard& entry, const Page& page) {
    if (page.pictures.empty()) return "<p class=\"quiet\">No images.</p>\n";
    std::string rows;
    std::size_t next = 0;
    for (const auto& placed : Each<cImagecardAttribute>(*entry.Imagecard->ImagecardAttributes)) {
        const PlacedPicture& picture = page.pictures[next++];
        rows += fmt::format("<tr class=\"image\"><td class=\"number\">{}</td>{}<td>{}</td></tr>\n", picture.number,
                            CellsOf(database, picture, ImageOf(entry, placed)), XmlText(RemarkOf(picture)));
    }
    std::string titles;
    for (const char* title : {"Teeth", "Region", "Taken", "Exposure", "Comments", "Remark"})
        titles += fmt::format("<th scope=\"col\">{}</th>", title);
    return fmt::format(
        "<table><caption>Images</caption><thead><tr><th scope=\"col\" "
        "class=\"number\">{}</th>{}</tr></thead><tbody>\n{}</tbody></table>\n",
        entry.Series ? "Frame" : "Place", titles, rows);
}

/// Returns a paragraph for each part that could not be read.
std::string Damages(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += fmt::format("<p class=\"damaged\">Damaged: {}</p>\n", XmlText(line));
    return text;
}

std::string Section(const Database& database, const cUniCard& entry, const Page& page) {
    const std::string name = XmlText(page.title);
    const std::string kind = entry.Series ? "Series" : "Image card";
    std::string picture;
    if (!page.pictures.empty())
        picture = fmt::format(
            "<button type=\"button\" class=\"enlarge\" "
            "aria-label=\"Enlarge {} {}\">{}</button>\n",
            kind, name, SvgOf(page, {.numbers = true, .within = true}));
    const std::string description = entry.Series || entry.Imagecard->ICDescription.empty()
                                        ? ""
                                        : fmt::format("<p>{}</p>\n", XmlText(entry.Imagecard->ICDescription));
    return fmt::format(
        "<article id=\"{0}\">\n<h2>{1}</h2>\n<p "
        "class=\"quiet\">{2} {0}, {3}, {4} "
        "images</p>\n{5}{6}{7}{8}</article>\n",
        entry.Key, name, kind, DateText(entry.SortDate()), page.pictures.size(), description, Damages(DamagesOf(entry)),
        picture, Table(database, entry, page));
}

/// Returns an entry that can't be read at all.
std::string DamagedSection(const UnreadEntry& entry) {
    return fmt::format("<article id=\"{0}\">\n<h2>{0}</h2>\n{1}</article>\n", entry.Key,
                       Damages({"it can't be read: " + DamageOf(entry.Failure)}));
}

}  // namespace

ReportTally WriteReport(const Database& database, const std::string& patient, const std::filesystem::path& file) {
    const CardList list = ListCards(database, patient);
    ReportTally tally;
    std::string entries;
    Progress progress("entries", static_cast<std::size_t>(list.entries->Count()));
    for (cUniCard& entry : *list.entries) {
        LoadReadable(database.Con(), entry);
        const Page page = PageOf(entry, PixelWidth);
        entries += Section(database, entry, page);
        ++tally.entries;
        tally.images += page.pictures.size();
        tally.damaged += DamagesOf(entry).size() + DamagedComments(database, entry);
        for (const PlacedPicture& placed : page.pictures) tally.missing += placed.picture == nullptr;
        entry.colImages = nullptr;
        progress.Step();
    }
    progress.Clear();
    for (const UnreadEntry& entry : list.damaged) entries += DamagedSection(entry);
    tally.damaged += list.damaged.size();
    const std::string name = XmlText(FullName(*list.patient));
    WriteWholeFile(
        file, Filled(page::report_html, {{"title", name + ", dental images"},
                                         {"patient", name},
                                         {"facts", Facts(database, *list.patient)},
                                         {"summary", fmt::format("{} cards and series with {} images, newest first.",
                                                                 tally.entries, tally.images)},
                                         {"entries", entries}}));
    return tally;
}

}  // namespace Console
