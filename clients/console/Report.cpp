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

/// A picture is 46rem wide in the page (report.html), which are 736 CSS pixels; a dense screen shows each of them with
/// two of its own.
constexpr unsigned PixelWidth = 2 * 46 * 16;

/// Writes the text of the page, and calls the function of "{{name}}" in its place.
void WriteFilled(std::string_view page, const std::map<std::string, std::function<void()>>& parts,
                 const TextSink& write) {
    for (std::size_t from = 0;;) {
        const auto open = page.find("{{", from);
        write(page.substr(from, open == std::string_view::npos ? open : open - from));
        if (open == std::string_view::npos) return;
        const auto close = page.find("}}", open);
        parts.at(std::string(page.substr(open + 2, close - open - 2)))();
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
    return fmt::format("<td>{}</td><td>{}</td><td>{}</td><td>{}</td><td>{}</td>", XmlText(TeethText(*image)),
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

/// Writes an entry, and reads its pictures one by one.
void WriteSection(const Database& database, const cUniCard& entry, Page& page, const TextSink& write) {
    const std::string name = XmlText(page.title);
    const std::string kind = entry.Series ? "Series" : "Image card";
    const std::string description = entry.Series || entry.Imagecard->ICDescription.empty()
                                        ? ""
                                        : fmt::format("<p>{}</p>\n", XmlText(entry.Imagecard->ICDescription));
    write(fmt::format("<article id=\"{0}\">\n<h2>{1}</h2>\n<p class=\"quiet\">{2} {0}, {3}, {4} images</p>\n{5}{6}",
                      entry.Key, name, kind, DateText(entry.SortDate()), page.pictures.size(), description,
                      Damages(DamagesOf(entry))));
    if (!page.pictures.empty()) {
        write(fmt::format("<button type=\"button\" class=\"enlarge\" aria-label=\"Enlarge {} {}\">", kind, name));
        WriteSvg(page, {.numbers = true, .within = true}, write);
        write("</button>\n");
    }
    write(Table(database, entry, page));
    write("</article>\n");
}

/// Returns an entry that can't be read at all.
std::string DamagedSection(const UnreadEntry& entry) {
    return fmt::format("<article id=\"{0}\">\n<h2>{0}</h2>\n{1}</article>\n", entry.Key,
                       Damages({"it can't be read: " + DamageOf(entry.Failure)}));
}

/// Writes the entries of a list, which are loaded one by one, and counts them.
class Entries {
public:
    Entries(const Database& database, const CardList& list) : database_(database), list_(list) {}

    /// Returns the number of images of all entries.
    std::size_t CountImages() const {
        std::size_t images = 0;
        for (cUniCard& entry : *list_.entries) {
            LoadReadable(database_.Con(), entry);
            images += static_cast<std::size_t>(entry.Imagecard->ImagecardAttributes->Count());
            entry.colImages = nullptr;
        }
        return images;
    }

    ReportTally Write(const TextSink& write) const {
        ReportTally tally;
        Progress progress("entries", static_cast<std::size_t>(list_.entries->Count()));
        for (cUniCard& entry : *list_.entries) {
            LoadReadable(database_.Con(), entry);
            WriteEntry(entry, tally, write);
            entry.colImages = nullptr;
            progress.Step();
        }
        progress.Clear();
        for (const UnreadEntry& entry : list_.damaged) write(DamagedSection(entry));
        tally.damaged += list_.damaged.size();
        return tally;
    }

private:
    void WriteEntry(const cUniCard& entry, ReportTally& tally, const TextSink& write) const {
        Page page = PageOf(entry, PixelWidth);
        WriteSection(database_, entry, page, write);
        ++tally.entries;
        tally.images += page.pictures.size();
        tally.damaged += DamagesOf(entry).size() + DamagedComments(database_, entry);
        for (const PlacedPicture& placed : page.pictures) tally.missing += !placed.missing.empty();
    }

    const Database& database_;
    const CardList& list_;
};

}  // namespace

ReportTally WriteReport(const Database& database, const std::string& patient, const std::filesystem::path& file) {
    const CardList list = ListCards(database, patient);
    const Entries entries(database, list);
    const std::string name = XmlText(FullName(*list.patient));
    ReportTally tally;
    WholeFile out(file);
    const TextSink write = [&](std::string_view text) { out.Write(text); };
    WriteFilled(page::report_html,
                {{"title", [&] { write(name + ", dental images"); }},
                 {"patient", [&] { write(name); }},
                 {"facts", [&] { write(Facts(database, *list.patient)); }},
                 {"summary",
                  [&] {
                      write(fmt::format("{} cards and series with {} images, newest first.", list.entries->Count(),
                                        entries.CountImages()));
                  }},
                 {"entries", [&] { tally = entries.Write(write); }}},
                write);
    out.Commit();
    return tally;
}

}  // namespace Console
