#include "console/page/Svg.h"

#include "platform/runtime/Text.h"

#include <algorithm>
#include <fmt/format.h>
#include <glib.h>
#include <memory>
#include <utility>

namespace Console {
namespace {

constexpr const char* Font = "DejaVu Sans, Verdana, Arial, sans-serif";

using Rectangle = Box;  // in units of the canvas

constexpr const char* End = "</svg>\n";

/// Writes the parts of a drawing: its beginning, and its elements one by one.
class Writer {
public:
    Writer(Page& page, const DrawingOptions& options) : page_(page), options_(options), whole_(WholeOf(page)) {}

    std::string Beginning() {
        Begin();
        return Taken();
    }

    /// Calls `write` with each element, the black canvas first.
    void EachElement(const TextSink& write) {
        Add("<rect x=\"{:.6g}\" y=\"{:.6g}\" width=\"100%\" height=\"100%\" fill=\"#000\"/>\n", whole_.x, whole_.y);
        write(Taken());
        if (options_.empty)
            for (const EmptySlot& slot : page_.empty) {
                Outline(InUnits(page_, slot.box), {slot.caption});
                Number(InUnits(page_, slot.box), slot.number);
                write(Taken());
            }
        for (PlacedPicture& placed : page_.pictures) {
            Put(placed);
            write(Taken());
        }
    }

private:
    std::string Taken() { return std::exchange(svg_, {}); }

    template <class... Values>
    void Add(fmt::format_string<Values...> element, Values&&... values) {
        fmt::format_to(std::back_inserter(svg_), element, std::forward<Values>(values)...);
    }

    void Begin() {
        if (!options_.within) svg_ += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        Add("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"{:.6g} {:.6g} {:.6g} {:.6g}\" role=\"img\"", whole_.x,
            whole_.y, whole_.width, whole_.height);
        if (!options_.within) Add(" width=\"{:.6g}\" height=\"{:.6g}\"", whole_.width, whole_.height);
        Add(" aria-label=\"{0}\">\n<title>{0}</title>\n", XmlText(page_.title));
    }

    void Put(PlacedPicture& placed) {
        const Rectangle r = InUnits(page_, placed.box);
        const auto picture = PictureOf(placed);
        if (picture)
            Show(*picture, placed, r);
        else
            Outline(r, {placed.caption, "no picture", placed.missing});
        Note(r, placed.note);
        if (options_.numbers || !picture) Number(r, placed.number);
    }

    void Show(const Picture& picture, const PlacedPicture& placed, const Rectangle& r) {
        const Orientation& form = placed.orientation;
        const bool exchanged = form.Degrees() % 180 != 0;
        const double width = exchanged ? r.height : r.width, height = exchanged ? r.width : r.height;
        Add("<g><title>{}</title><image transform=\"translate({:.6g} {:.6g})", XmlText(TitleOf(placed)),
            r.x + r.width / 2, r.y + r.height / 2);
        if (form.Degrees() != 0) Add(" rotate({})", form.Degrees());
        if (form.Mirrored()) svg_ += " scale(-1 1)";
        Add("\" {} href=\"", PlaceOf(picture, width, height));
        svg_ += DataAddress(picture);
        svg_ += "\"/></g>\n";
    }

    static std::string TitleOf(const PlacedPicture& placed) {
        return placed.caption + (placed.note.empty() ? "" : ", ") + placed.note;
    }

    /// Returns the attributes that place a picture around the middle of its box. A picture of known proportion fills a
    /// rectangle that is computed here, independent of its pixels; the viewer fits any other picture into the box.
    static std::string PlaceOf(const Picture& picture, double width, double height) {
        const bool known = picture.proportion > 0;
        if (known && width > height * picture.proportion)
            width = height * picture.proportion;
        else if (known)
            height = width / picture.proportion;
        return fmt::format("x=\"{:.6g}\" y=\"{:.6g}\" width=\"{:.6g}\" height=\"{:.6g}\"{}", -width / 2, -height / 2,
                           width, height, known ? " preserveAspectRatio=\"none\"" : "");
    }

    void Number(const Rectangle& r, Platform::Long number) {
        const double size = TextSize(r);
        Add("<text x=\"{:.6g}\" y=\"{:.6g}\" font-family=\"{}\" font-size=\"{:.6g}\" fill=\"#ffd54a\" "
            "stroke=\"#000\" stroke-width=\"{:.6g}\" paint-order=\"stroke\">{}</text>\n",
            r.x + size * 0.3, r.y + size * 1.1, Font, size, size * 0.15, number);
    }

    /// Writes at the lower edge of a box.
    void Note(const Rectangle& r, const std::string& note) {
        if (note.empty()) return;
        const double size = Fitting(r, note, 0.06);
        Add("<text x=\"{:.6g}\" y=\"{:.6g}\" font-family=\"{}\" font-size=\"{:.6g}\" fill=\"#ffd54a\" "
            "stroke=\"#000\" stroke-width=\"{:.6g}\" paint-order=\"stroke\" "
            "text-anchor=\"middle\">{}</text>\n",
            r.x + r.width / 2, r.y + r.height - size * 0.4, Font, size, size * 0.15, XmlText(note));
    }

    static double TextSize(const Rectangle& r) { return std::max(r.height, r.width) * 0.09; }

    /// Returns the size at which a text fits the width of a box, at most this part of its longer side.
    static double Fitting(const Rectangle& r, const std::string& text, double part) {
        constexpr double widthOfACharacter = 0.62;
        const double fitting = r.width * 0.94 / (widthOfACharacter * std::max(Platform::Len(text), 1));
        return std::min(fitting, std::max(r.height, r.width) * part);
    }

    /// Draws an empty box with lines of text in its middle.
    void Outline(const Rectangle& r, const std::vector<std::string>& lines) {
        Add("<g><title>{}</title><rect x=\"{:.6g}\" y=\"{:.6g}\" width=\"{:.6g}\" height=\"{:.6g}\" "
            "fill=\"#1a1a1a\" "
            "stroke=\"#888\" stroke-dasharray=\"4 3\"/>",
            XmlText(fmt::format("{}", fmt::join(lines, ": "))), r.x, r.y, r.width, r.height);
        const double step = TextSize(r) * 1.2;
        double y = r.y + r.height / 2 - step * (static_cast<double>(lines.size()) - 1) / 2;
        for (const std::string& line : lines) {
            Add("<text x=\"{:.6g}\" y=\"{:.6g}\" font-family=\"{}\" font-size=\"{:.6g}\" fill=\"#bbb\" "
                "text-anchor=\"middle\">{}</text>",
                r.x + r.width / 2, y, Font, Fitting(r, line, 0.09), XmlText(line));
            y += step;
        }
        svg_ += "</g>\n";
    }

    Page& page_;
    const DrawingOptions& options_;
    Rectangle whole_;
    std::string svg_;
};

bool IsXmlCharacter(char16_t unit) {
    return unit >= 0x20 ? unit < 0xFFFE : unit == '\t' || unit == '\n' || unit == '\r';
}

}  // namespace

void WriteSvg(Page& page, const DrawingOptions& options, const TextSink& write) {
    Writer writer(page, options);
    write(writer.Beginning());
    writer.EachElement(write);
    write(End);
}

void EachLayer(Page& page, const DrawingOptions& options, const TextSink& draw) {
    Writer writer(page, options);
    const std::string beginning = writer.Beginning();
    writer.EachElement([&](std::string_view element) { draw(fmt::format("{}{}{}", beginning, element, End)); });
}

std::string XmlText(std::string_view text) {
    std::u16string units = Platform::ToUtf16(text);
    for (char16_t& unit : units)
        if (!IsXmlCharacter(unit)) unit = 0xFFFD;
    std::string escaped;
    for (const char c : Platform::FromUtf16(units)) {
        switch (c) {
            case '&': escaped += "&amp;"; break;
            case '<': escaped += "&lt;"; break;
            case '>': escaped += "&gt;"; break;
            case '"': escaped += "&quot;"; break;
            case '\'': escaped += "&#39;"; break;
            default: escaped += c;
        }
    }
    return escaped;
}

std::string DataAddress(const Picture& picture) {
    const std::unique_ptr<gchar, decltype(&g_free)> base64(
        g_base64_encode(reinterpret_cast<const guchar*>(picture.bytes.data()), picture.bytes.size()), &g_free);
    return "data:" + picture.mediaType + ";base64," + base64.get();
}

}  // namespace Console
