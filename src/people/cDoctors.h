#pragma once

#include "people/cDoctor.h"

namespace OXClass {

/// The doctors of a clinic, as a keyed list that is counted from 1.
///
/// `Item` and `Remove` raise 9 for a position and 5 for a key that doesn't exist. An object belongs to the
/// thread that created it.
class cDoctors final : public Keyed<cDoctor> {
public:
    static constexpr const char* ClassName = "cDoctors";

    /// Replaces the members by all doctors, sorted by last and first name, under the keys "K" + `drID`.
    /// Returns their number.
    ///
    /// A doctor without a GUID gets a new one in memory only: unless the caller saves it, the next load
    /// assigns another one. The list is emptied before the statement runs. Raises, with
    /// "cDoctors.GetAllDoctors, " in front of the source, 94 for a null number, 457 for a number that occurs
    /// twice, 13 or 6 for a kind that isn't a number, and what the database raises; the list then holds the
    /// doctors that were read before, the last of them possibly without e-mail address, GUID and login.
    Long GetAllDoctors(Ref<Connection> Con);

    /// Creates a doctor with these values, adds it at the end, under `sKey` unless that is empty, and returns
    /// it. Stores nothing. Raises 457 if the key exists; the list stays unchanged then.
    Ref<cDoctor> Add(const Long& drID, const String& DrName, const String& DrFirstName, const String& DrLastName,
                     const String& DrPrefix, const String& DrContactInfo, const DoctorType& DrType,
                     const String& sKey = {});

    /// Returns a new GUID as 32 hexadecimal digits in upper case, without braces and dashes. Returns the
    /// empty text if the system can't create one. Raises nothing.
    String GetGUID() const;

    const Interface& Describe() const override;
};

}  // namespace OXClass
