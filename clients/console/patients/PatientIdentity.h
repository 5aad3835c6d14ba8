#pragma once

#include "platform/runtime/Date.h"

#include <string>
#include <vector>

namespace Console {

/// Family and given name of one writing of a person's name.
struct NameWriting {
    std::string family;
    std::string given;  ///< first and middle names, separated by blanks

    bool operator==(const NameWriting&) const = default;
};

/// The data that identify a person, from a file, a worklist entry or a patient's row.
///
/// Every text is UTF-8. An empty text means that the source does not contain it. A plain value.
struct PatientIdentity {
    long number = 0;  ///< the patient's row; 0 for a person who isn't read from the database
    std::string patientID;
    std::string issuer;              ///< who assigned `patientID`
    std::vector<NameWriting> names;  ///< the same name in one or more scripts
    Platform::Date birthDate;        ///< the zero date: not known
    std::string sex;                 ///< "M", "F" or "O"; any other text counts as not known

    /// Returns the first writing as "Family, Given".
    std::string Name() const;

    bool operator==(const PatientIdentity&) const = default;
};

/// A property in which two identities differ.
enum class IdentityField { PatientID, Issuer, Name, BirthDate, Sex };

/// Returns the text in lower case without accents; a text that isn't valid UTF-8 in lower case only.
std::string Folded(const std::string& text);

/// Returns the properties of which both sides have a value and in which the values differ, in the order of the
/// enumeration, `PatientID` excepted: the caller has compared it already.
///
/// Names are compared without regard to letter case, accents, punctuation, blanks and the order of their
/// parts. A missing middle name or an initial in place of a name does not count as a difference; another family name
/// does. If there are several writings, one pair that agrees is enough. Issuers are compared without regard to case and
/// outer blanks.
std::vector<IdentityField> Contradictions(const PatientIdentity& a, const PatientIdentity& b);

/// Returns true if name or birth date is known on both sides and agrees, and nothing contradicts it.
bool Confirms(const PatientIdentity& a, const PatientIdentity& b);

/// Copies from `said` what `known` lacks: issuer, name, birth date and sex. A family name or a given name alone is
/// completed by a name of `said` that contains it. Returns the properties that were copied. The two must not contradict
/// each other, and must have the same identifier.
std::vector<IdentityField> Complete(PatientIdentity& known, const PatientIdentity& said);

/// Returns true if the family name is the only contradiction, and given name and birth date are known and agree: a
/// person who has changed the name, or whose name was corrected.
bool DifferInFamilyNameOnly(const PatientIdentity& a, const PatientIdentity& b);

/// Returns true if the two have the same values, names compared as in `Contradictions`.
bool SameInEachField(const PatientIdentity& a, const PatientIdentity& b);

/// Returns true if the identifier alone is enough to take both for one person: both issuers are known and equal,
/// or neither is known.
bool SameIssuer(const PatientIdentity& a, const PatientIdentity& b);

/// Returns both identities as a table of five lines, the properties that differ marked with "<>". `titleA` and
/// `titleB` are the titles of the columns. Control characters are replaced by blanks; the text ends with a
/// line break.
std::string SideBySide(const PatientIdentity& a, const std::string& titleA, const PatientIdentity& b,
                       const std::string& titleB);

}  // namespace Console
