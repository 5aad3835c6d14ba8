#include "console/patients/PatientIdentity.h"

#include "console/Output.h"
#include "platform/runtime/Text.h"

#include <algorithm>
#include <cstdlib>
#include <fmt/format.h>
#include <memory>
#include <numeric>
#include <utf8proc.h>

namespace Console {
namespace {

using Parts = std::vector<std::string>;

/// Letters that have no decomposition into a base letter and a mark.
constexpr std::pair<std::string_view, std::string_view> BaseLetters[] = {
    {"ø", "o"}, {"ł", "l"}, {"đ", "d"}, {"ð", "d"}, {"ı", "i"}, {"æ", "ae"}, {"œ", "oe"}, {"þ", "th"}};

/// Returns the parts of a name, folded: blanks, hyphens and commas separate them, other punctuation is left out.
Parts PartsOf(const std::string& name) {
    constexpr std::string_view separators = " \t^,-", leftOut = ".'`\"()/\\";
    Parts parts(1);
    for (const char c : Platform::Replace(Folded(name), "\u2019", "")) {
        if (separators.find(c) != std::string_view::npos)
            parts.emplace_back();
        else if (leftOut.find(c) == std::string_view::npos)
            parts.back() += c;
    }
    std::erase(parts, "");
    return parts;
}

std::string Concatenated(const Parts& parts) { return std::accumulate(parts.begin(), parts.end(), std::string()); }

Parts SortedParts(const Parts& family, const Parts& given) {
    Parts all = family;
    all.insert(all.end(), given.begin(), given.end());
    std::ranges::sort(all);
    return all;
}

/// Returns the first character of a UTF-8 text.
std::string_view Initial(std::string_view text) {
    std::size_t end = 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) ++end;
    return text.substr(0, end);
}

/// Returns true if one of the parts is the initial of the other.
bool IsInitialOf(const std::string& a, const std::string& b) {
    const std::string_view initial = Initial(a);
    return initial == Initial(b) && (a == initial || b == initial);
}

/// Removes from both lists the parts that both have.
void TakeOutEqualParts(Parts& a, Parts& b) {
    std::erase_if(a, [&](const std::string& part) {
        const auto same = std::ranges::find(b, part);
        if (same == b.end()) return false;
        b.erase(same);
        return true;
    });
}

/// Returns true if the given names can belong to one person: each part of the shorter list is a part of the longer one,
/// as the whole name or as an initial.
bool GivenNamesAgree(Parts a, Parts b) {
    if (a.size() > b.size()) std::swap(a, b);
    if (a.empty() || Concatenated(a) == Concatenated(b)) return true;
    TakeOutEqualParts(a, b);
    return std::ranges::all_of(a, [&](const std::string& part) {
        const auto hit = std::ranges::find_if(b, [&](const std::string& other) { return IsInitialOf(part, other); });
        if (hit == b.end()) return false;
        b.erase(hit);
        return true;
    });
}

bool WritingsAgree(const NameWriting& a, const NameWriting& b) {
    const Parts familyA = PartsOf(a.family), givenA = PartsOf(a.given);
    const Parts familyB = PartsOf(b.family), givenB = PartsOf(b.given);
    if (SortedParts(familyA, givenA) == SortedParts(familyB, givenB)) return true;
    const bool oneFamilyUnknown = familyA.empty() || familyB.empty();
    if ((oneFamilyUnknown || Concatenated(familyA) == Concatenated(familyB)) && GivenNamesAgree(givenA, givenB))
        return true;
    return Concatenated(familyA) == Concatenated(givenB) && Concatenated(givenA) == Concatenated(familyB);
}

bool IsKnown(const NameWriting& writing) { return !PartsOf(writing.family + " " + writing.given).empty(); }

bool NameKnown(const PatientIdentity& person) { return std::ranges::any_of(person.names, IsKnown); }

bool NamesAgree(const PatientIdentity& a, const PatientIdentity& b) {
    return std::ranges::any_of(a.names, [&](const NameWriting& one) {
        return IsKnown(one) && std::ranges::any_of(b.names, [&](const NameWriting& other) {
                   return IsKnown(other) && WritingsAgree(one, other);
               });
    });
}

/// Completes a writing that has only a family name or only a given name, by a writing of `said` with the same name.
/// Returns false if `said` has no such writing.
bool CompleteName(NameWriting& writing, const PatientIdentity& said) {
    const Parts family = PartsOf(writing.family), given = PartsOf(writing.given);
    if (family.empty() == given.empty()) return false;
    for (const NameWriting& other : said.names) {
        const Parts otherFamily = PartsOf(other.family), otherGiven = PartsOf(other.given);
        if (otherFamily.empty() || otherGiven.empty()) continue;
        if (family.empty() ? !GivenNamesAgree(given, otherGiven) : family != otherFamily) continue;
        (family.empty() ? writing.family : writing.given) = family.empty() ? other.family : other.given;
        return true;
    }
    return false;
}

bool SexKnown(const PatientIdentity& person) { return person.sex == "M" || person.sex == "F" || person.sex == "O"; }

std::string Trimmed(const std::string& text) { return Platform::Trim(text); }

bool Differ(const PatientIdentity& a, const PatientIdentity& b, IdentityField field) {
    switch (field) {
        case IdentityField::PatientID: return !Platform::EqualsIgnoringCase(Trimmed(a.patientID), Trimmed(b.patientID));
        case IdentityField::Issuer: {
            const std::string one = Trimmed(a.issuer), other = Trimmed(b.issuer);
            return !one.empty() && !other.empty() && !Platform::EqualsIgnoringCase(one, other);
        }
        case IdentityField::Name: return NameKnown(a) && NameKnown(b) && !NamesAgree(a, b);
        case IdentityField::BirthDate:
            return a.birthDate.Days != 0 && b.birthDate.Days != 0 && a.birthDate != b.birthDate;
        case IdentityField::Sex: return SexKnown(a) && SexKnown(b) && a.sex != b.sex;
    }
    return false;
}

/// Returns the text cut or filled with blanks to `width` columns.
std::string Cell(const std::string& text, std::size_t width) {
    const std::string shown = Printable(text.empty() ? "-" : text);
    const std::string cut = Platform::Left(shown, static_cast<Platform::Long>(width));
    return cut + std::string(width - std::min(width, DisplayWidth(cut)), ' ');
}

}  // namespace

std::string Folded(const std::string& text) {
    if (std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return Platform::LCase(text);
    utf8proc_uint8_t* mapped = nullptr;
    const auto options = static_cast<utf8proc_option_t>(UTF8PROC_COMPAT | UTF8PROC_DECOMPOSE | UTF8PROC_STRIPMARK |
                                                        UTF8PROC_CASEFOLD | UTF8PROC_IGNORE);
    const auto length = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                     static_cast<utf8proc_ssize_t>(text.size()), &mapped, options);
    const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(mapped, &std::free);
    if (length < 0) return Platform::LCase(text);
    std::string folded(reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length));
    for (const auto& [letter, base] : BaseLetters) folded = Platform::Replace(folded, letter, base);
    return folded;
}

std::string PatientIdentity::Name() const {
    if (names.empty()) return {};
    const NameWriting& first = names.front();
    return first.family + (first.family.empty() || first.given.empty() ? "" : ", ") + first.given;
}

std::vector<IdentityField> Contradictions(const PatientIdentity& a, const PatientIdentity& b) {
    std::vector<IdentityField> fields;
    for (const IdentityField field :
         {IdentityField::Issuer, IdentityField::Name, IdentityField::BirthDate, IdentityField::Sex})
        if (Differ(a, b, field)) fields.push_back(field);
    return fields;
}

bool Confirms(const PatientIdentity& a, const PatientIdentity& b) {
    const bool sameName = NameKnown(a) && NamesAgree(a, b);
    const bool sameDay = a.birthDate.Days != 0 && a.birthDate == b.birthDate;
    return (sameName || sameDay) && Contradictions(a, b).empty();
}

bool SameIssuer(const PatientIdentity& a, const PatientIdentity& b) {
    return Platform::EqualsIgnoringCase(Trimmed(a.issuer), Trimmed(b.issuer));
}

std::vector<IdentityField> Complete(PatientIdentity& known, const PatientIdentity& said) {
    std::vector<IdentityField> taken;
    const auto take = [&](IdentityField field, bool lacks, auto& to, const auto& from) {
        if (!lacks) return;
        to = from;
        taken.push_back(field);
    };
    take(IdentityField::Issuer, Trimmed(known.issuer).empty() && !Trimmed(said.issuer).empty(), known.issuer,
         said.issuer);
    if (!NameKnown(known))
        take(IdentityField::Name, NameKnown(said), known.names, said.names);
    else if (CompleteName(known.names.front(), said))
        taken.push_back(IdentityField::Name);
    take(IdentityField::BirthDate, known.birthDate.Days == 0 && said.birthDate.Days != 0, known.birthDate,
         said.birthDate);
    take(IdentityField::Sex, !SexKnown(known) && SexKnown(said), known.sex, said.sex);
    return taken;
}

bool DifferInFamilyNameOnly(const PatientIdentity& a, const PatientIdentity& b) {
    const std::vector<IdentityField> contradictions = Contradictions(a, b);
    if (contradictions.size() != 1 || contradictions.front() != IdentityField::Name) return false;
    if (a.birthDate.Days == 0 || a.birthDate != b.birthDate) return false;
    const Parts one = PartsOf(a.names.front().given), other = PartsOf(b.names.front().given);
    return !one.empty() && !other.empty() && GivenNamesAgree(one, other);
}

bool SameInEachField(const PatientIdentity& a, const PatientIdentity& b) {
    return !Differ(a, b, IdentityField::PatientID) && SameIssuer(a, b) && NameKnown(a) == NameKnown(b) &&
           a.birthDate == b.birthDate && SexKnown(a) == SexKnown(b) && Contradictions(a, b).empty();
}

std::string SideBySide(const PatientIdentity& a, const std::string& titleA, const PatientIdentity& b,
                       const std::string& titleB) {
    constexpr std::size_t width = 34;
    const auto line = [&](const char* name, const std::string& one, const std::string& other, bool differs) {
        return fmt::format("  {:<12}{}{} {}\n", name, Cell(one, width), differs ? "<>" : "  ",
                           Printable(other.empty() ? "-" : other));
    };
    const auto row = [&](const char* name, IdentityField field, const std::string& one, const std::string& other) {
        return line(name, one, other, Differ(a, b, field));
    };
    return line("", titleA, titleB, false) + row("Patient ID", IdentityField::PatientID, a.patientID, b.patientID) +
           row("Issuer", IdentityField::Issuer, a.issuer, b.issuer) +
           row("Name", IdentityField::Name, a.Name(), b.Name()) +
           row("Born", IdentityField::BirthDate, DateText(a.birthDate), DateText(b.birthDate)) +
           row("Sex", IdentityField::Sex, a.sex, b.sex);
}

}  // namespace Console
