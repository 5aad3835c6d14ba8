#pragma once

#include "people/cDoctor.h"

namespace OXClass {

/// The doctors of a clinic. `Item` and `Remove` raise on a missing member. An object belongs to one thread.
class cDoctors final : public Keyed<cDoctor> {
public:
    static constexpr const char* ClassName = "cDoctors";

    /// Loads all doctors by last and first name, under "K" + their number, and gives how many. The list
    /// starts empty, even if the statement fails. A doctor without a GUID gets a new one in memory, which is
    /// another one at the next load unless somebody saves it. Raises, with "cDoctors.GetAllDoctors, " in
    /// front of the source, 94 for a null number and what the database raises; those read before stay.
    Long GetAllDoctors(const Ref<Connection>& Con);

    /// Makes a doctor of these values, adds it at the end, under `sKey` if that is not empty, and gives it.
    /// Raises 457 for a key that is present.
    Ref<cDoctor> Add(const Long& drID, const String& DrName, const String& DrFirstName,
                     const String& DrLastName, const String& DrPrefix, const String& DrContactInfo,
                     const DoctorType& DrType, const String& sKey = {});

    /// A new identifier, 32 hexadecimal digits in upper case; the empty text where the system has none.
    String GetGUID() const;

    const Interface& Describe() const override;
};

}  // namespace OXClass
