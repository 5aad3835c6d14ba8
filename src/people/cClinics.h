#pragma once

#include "people/cClinic.h"

namespace OXClass {

/// All clinics of an organisation. One row is special: the head office, named "__HQ" in any case. An object
/// belongs to one thread.
class cClinics final : public Keyed<cClinic> {
public:
    static constexpr const char* ClassName = "cClinics";
    static constexpr const char* HeadOffice = "__HQ";  ///< the head office's name, in any case

    /// The head office, or nothing. An empty list is loaded first. Raises as `GetAllClinics`.
    Ref<cClinic> GetHQClinic(const Ref<Connection>& Con);

    /// Loads all clinics by name, under "K" + their identifier, and gives how many. The list starts empty,
    /// even if the statement fails. An empty table gets its head office first, so a read may write. Raises,
    /// with "cClinics.GetAllClinics, " in front of the source, 94 for a null identifier and what the database
    /// raises; those read before stay.
    Long GetAllClinics(const Ref<Connection>& Con);

    /// Makes a clinic of these values, adds it at the end, under `sKey` if that is not empty, and gives it.
    /// Raises 457 for a key that is present.
    Ref<cClinic> Add(const Long& ID, const String& ClinicName, const String& OrgNumber, const String& ZipCode,
                     const String& StreetAddress, const String& City, const String& Telephone,
                     const String& Remarks16, const String& sKey = {});

    /// The clinic at a position or under a key; nothing where there is none. Never raises.
    Ref<cClinic> Item(const Variant& vntIndexKey) const { return Find(vntIndexKey); }

    /// The first clinic of this name without regard to case, or nothing. An empty list is loaded first; a
    /// list that can't be loaded has none. Never raises.
    Ref<cClinic> ItemOnClinicName(const String& sName, const Ref<Connection>& Con);

    const Interface& Describe() const override;

private:
    Ref<cClinic> FirstNamed(const String& upperCaseName, const Ref<Connection>& con);
};

}  // namespace OXClass
