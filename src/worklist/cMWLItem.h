#pragma once

#include "people/IntendedRecipients.h"
#include "people/OtherPatIDs.h"

namespace OXClass {

/// One entry of a DICOM modality worklist: the patient, the requested procedure, the scheduled step. A
/// plain carrier of texts, dates and weight too, which nothing here checks or converts. The two lists are
/// apart from the texts of the same attributes. An object belongs to one thread.
class cMWLItem final : public Object {
public:
    static constexpr const char* ClassName = "cMWLItem";

    String Key;     ///< the client's key for this item
    String DS_URL;  ///< the client's address text for this item
    String PatientWeight;
    String SchPerfPhysName;
    String PatientComments;
    String SchProcStepID;
    String StudyUID;
    String AddPatientHistory;
    String OtherPatientID;  ///< other identifiers as one text, apart from `OtherPatIDs`
    String EthnicGroup;
    String IntendedRecipientsOfResults;  ///< as one text, apart from `IntendedRecipients`
    String ReqProcPrio;
    String SchProcStepLocation;
    String SchProcStepStatus;
    String PatientAddress;
    String PatientSex;
    String PatientBirthDate;
    String RefPhysName;
    String ReqProcCodeMeaning;
    String ReqProcDesc;
    String ProtocolCodeMeaning;
    String SchProcStepStartTime;
    String SchProcStepDesc;
    String Modality;
    String SchProcStepStartDate;
    String SchStatAE;
    String ReqProcID;
    String Accession;
    String PatientID;
    String PatientName;
    String ReqPhys;

    /// Adds a recipient at the end of `IntendedRecipients`, with the next count as its `ID`, under "K" + that
    /// count. Raises 457 where a removal made the count one that is present.
    void AddRecipient(const String& NewRecipient);

    /// The same with `OtherPatIDs`, whose rules hold: a value that is there or is blank is not added, and a
    /// new one comes back trimmed and in upper case.
    void AddOtherPID(String& NewPID);

    /// The lists; made empty on first use, so never nothing. A put replaces the list, and copies nothing.
    const Ref<OXClass::IntendedRecipients>& IntendedRecipients();
    void SetIntendedRecipients(const Ref<OXClass::IntendedRecipients>& list) { recipients_ = list; }
    const Ref<OXClass::OtherPatIDs>& OtherPatIDs();
    void SetOtherPatIDs(const Ref<OXClass::OtherPatIDs>& list) { otherIDs_ = list; }

    String AdmissionID;
    String RefPhysAddress;

    const Interface& Describe() const override;

private:
    Ref<OXClass::IntendedRecipients> recipients_;
    Ref<OXClass::OtherPatIDs> otherIDs_;
};

}  // namespace OXClass
