#include "console/worklist/WorklistData.h"

#include "console/dicom/DicomFile.h"
#include "console/dicom/DicomValues.h"

#include <stdexcept>

namespace Console {
namespace {

using namespace OXClass;

const std::string NonAscii = [] {
    std::string bytes;
    for (int byte = 0x80; byte <= 0xFF; ++byte) bytes += static_cast<char>(byte);
    return bytes;
}();

/// Returns a day as "YYYY-MM-DD", or the text unchanged if it is not a day.
std::string ReadableDay(const std::string& text) {
    const std::string day = DayText(text);
    return day.empty() ? text : day;
}

/// Returns a time as "hh:mm:ss", or the text unchanged if it is not a time. The conversion returns midnight for any
/// text that is not a time, so the function accepts midnight only from a text of zeros.
std::string ReadableTime(const std::string& text) {
    const std::string time = TimeText(text);
    const bool midnight = text.find_first_not_of("0:.") == std::string::npos;
    return text.empty() || (time == "00:00:00" && !midnight) ? text : time;
}

/// Fills items from one data set, a subject an operation.
class Filler {
public:
    explicit Filler(DcmItem& dataset) : set_(dataset), values_(dataset) {}

    Ref<cMWLItem> Filled(DcmItem& step) {
        item_ = New<cMWLItem>();
        Patient();
        OtherIdentifiers();
        Visit();
        Procedure();
        Step(step);
        return item_;
    }

    std::string Issuer() { return Text(DCM_IssuerOfPatientID); }

private:
    std::string Text(const DcmTagKey& tag) { return values_.Text(set_, tag); }

    /// Returns the meaning of the first code of a sequence.
    std::string Meaning(DcmItem& parent, const DcmTagKey& sequence) {
        std::string meaning;
        EachItem(parent, sequence, [&](DcmItem& code) {
            if (meaning.empty()) meaning = values_.Text(code, DCM_CodeMeaning);
        });
        return meaning;
    }

    void Patient() {
        item_->PatientID = Text(DCM_PatientID);
        item_->PatientName = Text(DCM_PatientName);
        item_->PatientSex = Text(DCM_PatientSex);
        item_->PatientBirthDate = ReadableDay(Text(DCM_PatientBirthDate));
        item_->PatientWeight = Text(DCM_PatientWeight);
        item_->PatientAddress = Text(DCM_PatientAddress);
        item_->PatientComments = Text(DCM_PatientComments);
        item_->EthnicGroup = Text(DCM_EthnicGroup);
        item_->AddPatientHistory = Text(DCM_AdditionalPatientHistory);
    }

    void OtherIdentifiers() {
        item_->OtherPatientID = Text(DCM_RETIRED_OtherPatientIDs);
        for (std::string id : values_.OtherPatientIDs(set_)) item_->AddOtherPID(id);
    }

    void Visit() {
        item_->AdmissionID = Text(DCM_AdmissionID);
        item_->RefPhysName = Text(DCM_ReferringPhysicianName);
        item_->RefPhysAddress = Text(DCM_ReferringPhysicianAddress);
    }

    void Procedure() {
        item_->StudyUID = Text(DCM_StudyInstanceUID);
        item_->Accession = Text(DCM_AccessionNumber);
        item_->ReqPhys = Text(DCM_RequestingPhysician);
        item_->ReqProcID = Text(DCM_RequestedProcedureID);
        item_->ReqProcDesc = Text(DCM_RequestedProcedureDescription);
        item_->ReqProcCodeMeaning = Meaning(set_, DCM_RequestedProcedureCodeSequence);
        item_->ReqProcPrio = Text(DCM_RequestedProcedurePriority);
        item_->IntendedRecipientsOfResults = Text(DCM_NamesOfIntendedRecipientsOfResults);
        for (const std::string& name : values_.Texts(set_, DCM_NamesOfIntendedRecipientsOfResults))
            item_->AddRecipient(name);
    }

    void Step(DcmItem& step) {
        item_->SchProcStepID = values_.Text(step, DCM_ScheduledProcedureStepID);
        item_->SchProcStepDesc = values_.Text(step, DCM_ScheduledProcedureStepDescription);
        item_->SchProcStepLocation = values_.Text(step, DCM_ScheduledProcedureStepLocation);
        item_->SchProcStepStatus = values_.Text(step, DCM_ScheduledProcedureStepStatus);
        item_->SchProcStepStartDate = ReadableDay(values_.Text(step, DCM_ScheduledProcedureStepStartDate));
        item_->SchProcStepStartTime = ReadableTime(values_.Text(step, DCM_ScheduledProcedureStepStartTime));
        item_->SchPerfPhysName = values_.Text(step, DCM_ScheduledPerformingPhysicianName);
        item_->SchStatAE = values_.Text(step, DCM_ScheduledStationAETitle);
        item_->Modality = values_.Text(step, DCM_Modality);
        item_->ProtocolCodeMeaning = Meaning(step, DCM_ScheduledProtocolCodeSequence);
    }

    DcmItem& set_;
    Values values_;
    Ref<cMWLItem> item_;
};

}  // namespace

WorklistItems ItemsOf(DcmItem& dataset, const std::string& source) {
    WorklistItems items;
    Filler filler(dataset);
    EachItem(dataset, DCM_ScheduledProcedureStepSequence, [&](DcmItem& step) {
        items.push_back({filler.Filled(step), filler.Issuer()});
        items.back().item->DS_URL = source;
    });
    if (items.empty()) throw std::runtime_error("it has no scheduled procedure step");
    const cMWLItem& first = *items.front().item;
    if (first.PatientID.empty() && first.PatientName.empty()) throw std::runtime_error("it names no patient");
    return items;
}

bool LacksCharacterSet(DcmItem& dataset) {
    if (dataset.tagExistsWithValue(DCM_SpecificCharacterSet)) return false;
    const char* name = nullptr;
    for (const DcmTagKey& tag : {DCM_PatientName, DCM_PatientAddress, DCM_RequestedProcedureDescription})
        if (dataset.findAndGetString(tag, name).good() && name &&
            std::string_view(name).find_first_of(NonAscii) != std::string_view::npos)
            return true;
    return false;
}

WorklistItems ReadWorklistFile(const std::filesystem::path& path) {
    constexpr Uint32 longestValueRead = 64 * 1024;
    SilenceToolkit();
    DcmFileFormat file;
    const OFCondition loaded = file.loadFile(path.c_str(), EXS_Unknown, EGL_noChange, longestValueRead);
    if (loaded.bad()) throw std::runtime_error(std::string("can't be read as DICOM: ") + loaded.text());
    RequireShallow(*file.getDataset());
    return ItemsOf(*file.getDataset(), path.string());
}

}  // namespace Console
