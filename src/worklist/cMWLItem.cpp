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
    static const Interface& self = InterfaceOf<Self>({
        Property<&Self::Key>("Key"),
        Property<&Self::DS_URL>("DS_URL"),
        Property<&Self::PatientWeight>("PatientWeight"),
        Property<&Self::SchPerfPhysName>("SchPerfPhysName"),
        Property<&Self::PatientComments>("PatientComments"),
        Property<&Self::SchProcStepID>("SchProcStepID"),
        Property<&Self::StudyUID>("StudyUID"),
        Property<&Self::AddPatientHistory>("AddPatientHistory"),
        Property<&Self::OtherPatientID>("OtherPatientID"),
        Property<&Self::EthnicGroup>("EthnicGroup"),
        Property<&Self::IntendedRecipientsOfResults>("IntendedRecipientsOfResults"),
        Property<&Self::ReqProcPrio>("ReqProcPrio"),
        Property<&Self::SchProcStepLocation>("SchProcStepLocation"),
        Property<&Self::SchProcStepStatus>("SchProcStepStatus"),
        Property<&Self::PatientAddress>("PatientAddress"),
        Property<&Self::PatientSex>("PatientSex"),
        Property<&Self::PatientBirthDate>("PatientBirthDate"),
        Property<&Self::RefPhysName>("RefPhysName"),
        Property<&Self::ReqProcCodeMeaning>("ReqProcCodeMeaning"),
        Property<&Self::ReqProcDesc>("ReqProcDesc"),
        Property<&Self::ProtocolCodeMeaning>("ProtocolCodeMeaning"),
        Property<&Self::SchProcStepStartTime>("SchProcStepStartTime"),
        Property<&Self::SchProcStepDesc>("SchProcStepDesc"),
        Property<&Self::Modality>("Modality"),
        Property<&Self::SchProcStepStartDate>("SchProcStepStartDate"),
        Property<&Self::SchStatAE>("SchStatAE"),
        Property<&Self::ReqProcID>("ReqProcID"),
        Property<&Self::Accession>("Accession"),
        Property<&Self::PatientID>("PatientID"),
        Property<&Self::PatientName>("PatientName"),
        Property<&Self::ReqPhys>("ReqPhys"),
        Operation<&Self::AddRecipient>("AddRecipient", {"NewRecipient"}),
        Operation<&Self::AddOtherPID>("AddOtherPID", {"NewPID"}),
        ObjectProperty<&Self::IntendedRecipients, &Self::SetIntendedRecipients>("IntendedRecipients"),
        ObjectProperty<&Self::OtherPatIDs, &Self::SetOtherPatIDs>("OtherPatIDs"),
        Property<&Self::AdmissionID>("AdmissionID"),
        Property<&Self::RefPhysAddress>("RefPhysAddress"),
    });
    return self;
}

}  // namespace OXClass
