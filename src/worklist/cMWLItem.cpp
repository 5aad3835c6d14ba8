#include "worklist/cMWLItem.h"

#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

const Ref<IntendedRecipients>& cMWLItem::IntendedRecipients() {
    if (!recipients_) recipients_ = New<OXClass::IntendedRecipients>();
    return recipients_;
}

const Ref<OtherPatIDs>& cMWLItem::OtherPatIDs() {
    if (!otherIDs_) otherIDs_ = New<OXClass::OtherPatIDs>();
    return otherIDs_;
}

void cMWLItem::AddRecipient(const String& NewRecipient) {
    const Long n = IntendedRecipients()->Count() + 1;
    recipients_->Add(NewRecipient, n, "K" + CStr(n));
}

void cMWLItem::AddOtherPID(String& NewPID) {
    const Long n = OtherPatIDs()->Count() + 1;
    otherIDs_->Add(NewPID, n, "K" + CStr(n));
}

const Interface& cMWLItem::Describe() const {
    using Self = cMWLItem;
    static const Interface& self = InterfaceOf<Self>(
        "One entry of a DICOM modality worklist, held as texts; nothing is stored or checked.",
        {
            Property<&Self::Key>("Key", "A key that the client assigns to the entry; the library doesn't read it."),
            Property<&Self::DS_URL>("DS_URL",
                                    "An address that the client assigns to the entry; the library doesn't read it."),
            Property<&Self::PatientWeight>("PatientWeight",
                                           "The weight of the patient, as text; in kilograms in DICOM."),
            Property<&Self::SchPerfPhysName>(
                "SchPerfPhysName", "The name of the physician who is scheduled to perform the procedure step."),
            Property<&Self::PatientComments>("PatientComments", "Comments on the patient, free text."),
            Property<&Self::SchProcStepID>("SchProcStepID", "The identifier of the scheduled procedure step."),
            Property<&Self::StudyUID>("StudyUID", "The DICOM UID of the study, Study Instance UID."),
            Property<&Self::AddPatientHistory>("AddPatientHistory", "Additional history of the patient, free text."),
            Property<&Self::OtherPatientID>(
                "OtherPatientID", "The other patient identifiers as one text; OtherPatIDs isn't derived from it."),
            Property<&Self::EthnicGroup>("EthnicGroup", "The ethnic group of the patient."),
            Property<&Self::IntendedRecipientsOfResults>(
                "IntendedRecipientsOfResults", "The recipients as one text; IntendedRecipients isn't derived from it."),
            Property<&Self::ReqProcPrio>("ReqProcPrio", "The priority of the requested procedure."),
            Property<&Self::SchProcStepLocation>("SchProcStepLocation",
                                                 "The location of the scheduled procedure step."),
            Property<&Self::SchProcStepStatus>("SchProcStepStatus", "The status of the scheduled procedure step."),
            Property<&Self::PatientAddress>("PatientAddress", "The address of the patient as one text."),
            Property<&Self::PatientSex>("PatientSex", "The sex of the patient; in DICOM M, F or O."),
            Property<&Self::PatientBirthDate>("PatientBirthDate",
                                              "The birth date of the patient, as text; any form is accepted."),
            Property<&Self::RefPhysName>("RefPhysName", "The name of the referring physician."),
            Property<&Self::ReqProcCodeMeaning>("ReqProcCodeMeaning",
                                                "The meaning of the code of the requested procedure, in words."),
            Property<&Self::ReqProcDesc>("ReqProcDesc", "The description of the requested procedure, free text."),
            Property<&Self::ProtocolCodeMeaning>("ProtocolCodeMeaning",
                                                 "The meaning of the code of the scheduled protocol, in words."),
            Property<&Self::SchProcStepStartTime>(
                "SchProcStepStartTime",
                "The start time of the scheduled procedure step, as text; any form is accepted."),
            Property<&Self::SchProcStepDesc>("SchProcStepDesc",
                                             "The description of the scheduled procedure step, free text."),
            Property<&Self::Modality>("Modality",
                                      "The kind of device for the procedure step, a DICOM code such as IO, PX or DX."),
            Property<&Self::SchProcStepStartDate>(
                "SchProcStepStartDate",
                "The start date of the scheduled procedure step, as text; any form is accepted."),
            Property<&Self::SchStatAE>("SchStatAE", "The application entity title of the scheduled station."),
            Property<&Self::ReqProcID>("ReqProcID", "The identifier of the requested procedure."),
            Property<&Self::Accession>("Accession", "The accession number of the imaging request, as text."),
            Property<&Self::PatientID>(
                "PatientID", "The patient identifier; the library doesn't compare it with cPatient.PatientID."),
            Property<&Self::PatientName>("PatientName", "The name of the patient, unchanged as the client sets it."),
            Property<&Self::ReqPhys>("ReqPhys", "The name of the physician who requested the procedure."),
            Operation<&Self::AddRecipient>(
                "AddRecipient",
                "Adds a recipient to IntendedRecipients, under the key K and the new number of members.",
                {{"NewRecipient", "The recipient, added unchanged."}}),
            Operation<&Self::AddOtherPID>(
                "AddOtherPID", "Adds an identifier to OtherPatIDs, unless it is blank or the list contains it.",
                {{"NewPID", "The identifier; comes back trimmed and in upper case unless the list contains it."}}),
            ObjectProperty<&Self::IntendedRecipients, &Self::SetIntendedRecipients>(
                "IntendedRecipients", "The recipients of results as a collection, never null; a put doesn't copy it."),
            ObjectProperty<&Self::OtherPatIDs, &Self::SetOtherPatIDs>(
                "OtherPatIDs", "The other patient identifiers as a collection, never null; a put doesn't copy it."),
            Property<&Self::AdmissionID>("AdmissionID",
                                         "The identifier of the patient's admission to the hospital or clinic."),
            Property<&Self::RefPhysAddress>("RefPhysAddress", "The address of the referring physician as one text."),
        });
    return self;
}

}  // namespace OXClass
