#include "console/worklist/WorklistServer.h"

#include "console/dicom/DicomFile.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmnet/dcmtrans.h>
#include <dcmtk/dcmnet/diutil.h>
#include <dcmtk/dcmnet/scu.h>

#include <charconv>
#include <fmt/format.h>
#include <stdexcept>

namespace Console {
namespace {

constexpr int TimeOut_s = 10;

/// A text that is asked for, and that a match must have.
void Put(DcmItem& item, const DcmTagKey& tag, const std::string& wanted = {}) {
    item.putAndInsertString(tag, wanted.c_str());
}

std::string DayRange(const WorklistKeys& keys) {
    return keys.firstDay == keys.lastDay ? keys.firstDay : keys.firstDay + "-" + keys.lastDay;
}

/// An item of a code sequence that is asked for whole.
void PutCode(DcmItem& parent, const DcmTagKey& sequence) {
    DcmItem* code = nullptr;
    if (parent.findOrCreateSequenceItem(sequence, code).bad()) return;
    for (const DcmTagKey& tag : {DCM_CodeValue, DCM_CodingSchemeDesignator, DCM_CodeMeaning}) Put(*code, tag);
}

DcmDataset Query(const WorklistKeys& keys) {
    DcmDataset query;
    Put(query, DCM_SpecificCharacterSet, "ISO_IR 192");
    for (const DcmTagKey& tag : {DCM_AccessionNumber,
                                 DCM_IssuerOfPatientID,
                                 DCM_ReferringPhysicianName,
                                 DCM_ReferringPhysicianAddress,
                                 DCM_PatientName,
                                 DCM_PatientBirthDate,
                                 DCM_PatientSex,
                                 DCM_RETIRED_OtherPatientIDs,
                                 DCM_PatientWeight,
                                 DCM_PatientAddress,
                                 DCM_EthnicGroup,
                                 DCM_AdditionalPatientHistory,
                                 DCM_PatientComments,
                                 DCM_StudyInstanceUID,
                                 DCM_RequestingPhysician,
                                 DCM_RequestedProcedureDescription,
                                 DCM_AdmissionID,
                                 DCM_RequestedProcedureID,
                                 DCM_RequestedProcedurePriority,
                                 DCM_NamesOfIntendedRecipientsOfResults})
        Put(query, tag);
    Put(query, DCM_PatientID, keys.patient);
    DcmItem* other = nullptr;
    query.findOrCreateSequenceItem(DCM_OtherPatientIDsSequence, other);
    for (const DcmTagKey& tag : {DCM_PatientID, DCM_IssuerOfPatientID, DCM_TypeOfPatientID}) Put(*other, tag);
    PutCode(query, DCM_RequestedProcedureCodeSequence);
    DcmItem* step = nullptr;
    query.findOrCreateSequenceItem(DCM_ScheduledProcedureStepSequence, step);
    Put(*step, DCM_Modality, keys.modality);
    Put(*step, DCM_ScheduledStationAETitle, keys.station);
    Put(*step, DCM_ScheduledProcedureStepStartDate, DayRange(keys));
    for (const DcmTagKey& tag : {DCM_ScheduledProcedureStepStartTime, DCM_ScheduledPerformingPhysicianName,
                                 DCM_ScheduledProcedureStepDescription, DCM_ScheduledProcedureStepID,
                                 DCM_ScheduledProcedureStepLocation, DCM_ScheduledProcedureStepStatus})
        Put(*step, tag);
    PutCode(*step, DCM_ScheduledProtocolCodeSequence);
    return query;
}

/// An association with one server, released at its end.
class Association {
public:
    Association(const WorklistAddress& server, const std::string& callingTitle) : server_(server) {
        SilenceToolkit();
        scu_.setAETitle(callingTitle);
        scu_.setPeerAETitle(server.title);
        scu_.setPeerHostName(server.host);
        scu_.setPeerPort(static_cast<Uint16>(server.port));
        dcmSocketReceiveTimeout.set(TimeOut_s);
        scu_.setConnectionTimeout(TimeOut_s);
        scu_.setACSETimeout(TimeOut_s);
        scu_.setDIMSETimeout(TimeOut_s);
        scu_.setDIMSEBlockingMode(DIMSE_NONBLOCKING);
        OFList<OFString> syntaxes;
        for (const char* syntax :
             {UID_LittleEndianExplicitTransferSyntax, UID_LittleEndianImplicitTransferSyntax})
            syntaxes.push_back(syntax);
        scu_.addPresentationContext(UID_FINDModalityWorklistInformationModel, syntaxes);
        Require(scu_.initNetwork());
        Require(scu_.negotiateAssociation());
    }
    ~Association() {
        if (scu_.isConnected()) scu_.closeAssociation(DCMSCU_RELEASE_ASSOCIATION);
    }
    Association(const Association&) = delete;

    OFList<QRResponse*> Find(DcmDataset query) {
        const T_ASC_PresentationContextID context =
            scu_.findPresentationContextID(UID_FINDModalityWorklistInformationModel, "");
        if (context == 0) Refuse("it keeps no worklist");
        OFList<QRResponse*> responses;
        const OFCondition asked = scu_.sendFINDRequest(context, &query, &responses);
        if (asked.bad()) {
            for (QRResponse* response : responses) delete response;
            Require(asked);
        }
        return responses;
    }

    [[noreturn]] void Refuse(const std::string& why) const {
        throw std::runtime_error(fmt::format("no worklist from {}: {}", server_.Text(), why));
    }

private:
    void Require(const OFCondition& condition) const {
        if (condition.good()) return;
        if (condition == DUL_ASSOCIATIONREJECTED)
            Refuse(fmt::format("it refuses; is {} its AE title, and does it know {}?", server_.title,
                               scu_.getAETitle().c_str()));
        const std::string text = condition.text();
        Refuse(text.substr(0, text.find('\n')));
    }

    const WorklistAddress& server_;
    DcmSCU scu_;
};

}  // namespace

std::optional<WorklistAddress> WorklistAddress::Of(const std::string& text) {
    const auto at = text.find('@'), colon = text.rfind(':');
    if (at == std::string::npos || colon == std::string::npos || at == 0 || colon <= at + 1) return {};
    if (text.find_first_of("[]") != std::string::npos || text.find(':') != colon) return {};
    WorklistAddress address{text.substr(0, at), text.substr(at + 1, colon - at - 1), 0};
    const char* const end = text.data() + text.size();
    const auto number = std::from_chars(text.data() + colon + 1, end, address.port);
    constexpr std::size_t longestTitle = 16;
    if (number.ec != std::errc() || number.ptr != end || address.port < 1 || address.port > 65535 ||
        address.title.size() > longestTitle)
        return {};
    return address;
}

std::string WorklistAddress::Text() const { return fmt::format("{}@{}:{}", title, host, port); }

WorklistAnswer AskWorklist(const WorklistAddress& server, const std::string& callingTitle,
                           const WorklistKeys& keys) {
    Association association(server, callingTitle);
    const OFList<QRResponse*> responses = association.Find(Query(keys));
    WorklistAnswer answer;
    Uint16 status = STATUS_Success;
    for (QRResponse* response : responses) {
        const std::unique_ptr<QRResponse> held(response);
        status = response->m_status;
        if (!response->m_dataset) continue;
        try {
            for (auto& item : ItemsOf(*response->m_dataset, server.Text())) answer.items.push_back(item);
        } catch (const std::runtime_error& broken) {
            if (answer.broken++ == 0) answer.reason = broken.what();
        }
    }
    if (status != STATUS_Success && !DICOM_PENDING_STATUS(status))
        association.Refuse(DU_cfindStatusString(status));
    return answer;
}

}  // namespace Console
