#pragma once

#include "people/cClinic.h"

namespace OXClass {

/// The clinics of an organisation, as a keyed list that is counted from 1. One of them is the head office.
///
/// `Remove` raises 9 for a position and 5 for a key that doesn't exist. An object belongs to the thread that
/// created it.
class cClinics final : public Keyed<cClinic> {
public:
    static constexpr const char* ClassName = "cClinics";
    /// The name of the head office. Names are compared with it without regard to case.
    static constexpr const char* HeadOffice = "__HQ";

    // ---- load and find -----------------------------------------------------------------------------

    /// Replaces the members by all clinics, sorted by name, under the keys "K" + `ID`. Returns their number.
    ///
    /// If the table is empty, first inserts a row for the head office: a load can write. The list is emptied
    /// before the statement runs. Raises, with "cClinics.GetAllClinics, " in front of the source, 94 for a
    /// null key, 457 for a key that occurs twice and what the database raises; the list then holds the
    /// clinics that were read before.
    Long GetAllClinics(const Ref<Connection>& Con);

    /// Returns the head office, or null if no clinic has its name. Calls `GetAllClinics` first if the list is
    /// empty, and raises what that raises.
    Ref<cClinic> GetHQClinic(const Ref<Connection>& Con);

    /// Returns the first clinic whose name is `sName` without regard to case, or null if there is none. Calls
    /// `GetAllClinics` first if the list is empty; ignores a failure of it and returns null then. A list that
    /// isn't empty isn't loaded again, so a clinic that was stored later is not found. Raises nothing.
    Ref<cClinic> ItemOnClinicName(const String& sName, const Ref<Connection>& Con);

    // ---- members -----------------------------------------------------------------------------------

    /// Returns the clinic at a position or under a key, or null if there is none. Raises nothing.
    Ref<cClinic> Item(Variant vntIndexKey) const { return Find(vntIndexKey); }

    /// Creates a clinic with these values, adds it at the end, under `sKey` unless that is empty, and returns
    /// it. Stores nothing. Raises 457 if the key exists; the list stays unchanged then.
    Ref<cClinic> Add(const Long& ID, const String& ClinicName, const String& OrgNumber, const String& ZipCode,
                     const String& StreetAddress, const String& City, const String& Telephone, const String& Remarks16,
                     const String& sKey = {});

    const Interface& Describe() const override;

private:
    Ref<cClinic> FirstNamed(const String& upperCaseName, const Ref<Connection>& con);
};

}  // namespace OXClass
