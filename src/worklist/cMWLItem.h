#pragma once

#include "people/IntendedRecipients.h"
#include "people/OtherPatIDs.h"

namespace OXClass {

/// One entry of a DICOM modality worklist: the patient, the requested procedure, the scheduled procedure
/// step.
///
/// The object only holds its values: nothing here checks, converts or stores them. All values are texts,
/// also dates, times and the weight. Two attributes with several values are held twice, as a text and as a
/// list, and neither follows the other. An object belongs to the thread that created it.
class cMWLItem final : public Object {
public:
    static constexpr const char* ClassName = "cMWLItem";

    // ---- the client's own values -------------------------------------------------------------------

    /// The client's key of this item.
    String Key;
    /// The client's address text of this item.
    String DS_URL;

    // ---- patient -----------------------------------------------------------------------------------

    /// Patient ID.
    String PatientID;
    /// Patient's name.
    String PatientName;
    /// Patient's birth date.
    String PatientBirthDate;
    /// Patient's sex.
    String PatientSex;
    /// Patient's weight.
    String PatientWeight;
    /// Patient's address.
    String PatientAddress;
    /// Ethnic group.
    String EthnicGroup;
    /// Patient comments.
    String PatientComments;
    /// Additional patient history.
    String AddPatientHistory;
    /// Admission ID.
    String AdmissionID;
    /// Other patient IDs as one text, apart from `OtherPatIDs`.
    String OtherPatientID;

    /// Other patient IDs as a list. `OtherPatIDs` never returns null: it creates an empty list if there is
    /// none. `SetOtherPatIDs` replaces the list without copying it; the argument may be null.
    const Ref<OXClass::OtherPatIDs>& OtherPatIDs();
    void SetOtherPatIDs(const Ref<OXClass::OtherPatIDs>& list) { otherIDs_ = list; }

    /// Adds an identifier to `OtherPatIDs` as `AddRecipient` adds a recipient, by the rules of
    /// `OtherPatIDs::Add`: doesn't add a text of blanks or one that the list already contains, and leaves
    /// `NewPID` trimmed and in upper case unless the list contained it. Raises 457 as `AddRecipient`.
    void AddOtherPID(String& NewPID);

    // ---- requested procedure -----------------------------------------------------------------------

    /// Requested procedure ID.
    String ReqProcID;
    /// Requested procedure description.
    String ReqProcDesc;
    /// Meaning of the requested procedure code.
    String ReqProcCodeMeaning;
    /// Requested procedure priority.
    String ReqProcPrio;
    /// Requesting physician.
    String ReqPhys;
    /// Accession number.
    String Accession;
    /// Study instance UID.
    String StudyUID;
    /// Referring physician's name.
    String RefPhysName;
    /// Referring physician's address.
    String RefPhysAddress;
    /// Intended recipients of results as one text, apart from `IntendedRecipients`.
    String IntendedRecipientsOfResults;

    /// Intended recipients of results as a list. `IntendedRecipients` never returns null: it creates an
    /// empty list if there is none. `SetIntendedRecipients` replaces the list without copying it; the
    /// argument may be null.
    const Ref<OXClass::IntendedRecipients>& IntendedRecipients();
    void SetIntendedRecipients(const Ref<OXClass::IntendedRecipients>& list) { recipients_ = list; }

    /// Adds a recipient at the end of `IntendedRecipients`. Its `ID` is the new number of members, its key
    /// "K" + that number. Raises 457 if a member has this key, as can happen after a removal; the list stays
    /// unchanged then.
    void AddRecipient(const String& NewRecipient);

    // ---- scheduled procedure step ------------------------------------------------------------------

    /// Scheduled procedure step ID.
    String SchProcStepID;
    /// Scheduled procedure step description.
    String SchProcStepDesc;
    /// Scheduled procedure step start date.
    String SchProcStepStartDate;
    /// Scheduled procedure step start time.
    String SchProcStepStartTime;
    /// Scheduled procedure step location.
    String SchProcStepLocation;
    /// Scheduled procedure step status.
    String SchProcStepStatus;
    /// Scheduled performing physician's name.
    String SchPerfPhysName;
    /// Scheduled station AE title.
    String SchStatAE;
    /// Modality.
    String Modality;
    /// Meaning of the scheduled protocol code.
    String ProtocolCodeMeaning;

    const Interface& Describe() const override;

private:
    Ref<OXClass::IntendedRecipients> recipients_;  // null until the first use
    Ref<OXClass::OtherPatIDs> otherIDs_;           // null until the first use
};

}  // namespace OXClass
