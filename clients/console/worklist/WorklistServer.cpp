#include "console/worklist/WorklistServer.h"

#include "console/dicom/DicomFile.h"
#include "console/dicom/DicomValues.h"
#include "console/import/WorkerPool.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/dcmnet/dcmtrans.h>
#include <dcmtk/dcmnet/diutil.h>
#include <dcmtk/dcmnet/scu.h>
#include <dcmtk/dcmtls/tlslayer.h>
#include <dcmtk/oflog/appender.h>
#include <dcmtk/oflog/oflog.h>
#include <dcmtk/oflog/spi/logevent.h>

#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <charconv>
#include <cstdlib>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace Console {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr int TimeOut_s = 10;
constexpr const char* SystemAuthorities = "/etc/ssl/certs/ca-certificates.crt";

/// Adds a text to the request: a return key, and a matching key if `wanted` is not empty.
void Put(DcmItem& item, const DcmTagKey& tag, const std::string& wanted = {}) {
    item.putAndInsertString(tag, wanted.c_str());
}

std::string DayRange(const WorklistKeys& keys) {
    return keys.firstDay == keys.lastDay ? keys.firstDay : keys.firstDay + "-" + keys.lastDay;
}

/// Adds a code sequence to the request, with all attributes of its item as return keys.
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

[[noreturn]] void Refuse(const WorklistAddress& server, const std::string& why) {
    throw std::runtime_error(fmt::format("no worklist from {}: {}", server.Text(), why));
}

/// A client that takes a limited number of answers and saves each as a file.
template <class Scu>
class SavingScu : public Scu {
public:
    SavingScu(const fs::path& folder, std::size_t most) : folder_(folder), most_(most) {}

    OFCondition handleFINDResponse(const T_ASC_PresentationContextID context, QRResponse* response,
                                   OFBool& waitForNext) override {
        const OFCondition handled = Scu::handleFINDResponse(context, response, waitForNext);
        status = response->m_status;
        if (!response->m_dataset) return handled;
        if (saved == most_) {
            cut = true;
            waitForNext = OFFalse;
            return EC_Normal;
        }
        const std::string file = (folder_ / std::to_string(saved++)).string();
        return response->m_dataset->saveFile(file.c_str(), EXS_LittleEndianExplicit);
    }

    std::size_t saved = 0;
    bool cut = false;
    Uint16 status = STATUS_Success;

private:
    fs::path folder_;
    std::size_t most_;
};

/// Keeps what the toolkit logs about associations: the reason of a refusal is found only there.
class NetworkLog : public dcmtk::log4cplus::Appender {
public:
    /// Starts the log, in a worker process, once.
    static NetworkLog& Start() {
        auto* const log = new NetworkLog;  // owned by the logger
        auto logger = dcmtk::log4cplus::Logger::getInstance("dcmtk.dcmnet");
        logger.setLogLevel(dcmtk::log4cplus::DEBUG_LOG_LEVEL);
        logger.setAdditivity(false);
        logger.addAppender(dcmtk::log4cplus::SharedAppenderPtr(log));
        return *log;
    }
    ~NetworkLog() override { destructorImpl(); }
    void close() override {}

    std::string text;

protected:
    void append(const dcmtk::log4cplus::spi::InternalLoggingEvent& event) override {
        text += event.getMessage().c_str();
    }
};

/// Returns the reason why the connection failed and what the user can do; empty for any other failure.
std::string ReasonOfConnection(const std::string& text, const WorklistAddress& server) {
    const auto says = [&](const char* words) { return text.find(words) != std::string::npos; };
    if (says("Connection refused"))
        return fmt::format(
            "nothing listens at port {} (Connection refused); look at host and port, and whether "
            "the server runs",
            server.port);
    if (says("unknown host")) return fmt::format("there is no host {}; look at its name", server.host);
    if (says("Unrecognized PDU type")) return "what answers there doesn't speak DICOM; look at host and port";
    if (says("wrong version number"))
        return "what answers there doesn't speak TLS; look at the port, or ask without --tls";
    if (says("certificate verify failed"))
        return fmt::format(
            "its certificate isn't trusted, or isn't one for {}; name the PEM file of its authority "
            "with --tls-ca, and the server by the name in its certificate",
            server.host);
    if (says("SSL_ERROR_WANT_READ"))
        return fmt::format("it didn't answer within {} seconds; does it speak TLS at this port?", TimeOut_s);
    if (says("SSL_ERROR_SYSCALL") || says("unexpected eof"))
        return "it cut the connection; does it speak TLS at this port?";
    return {};
}

/// Returns the reason why the association failed and what the user can do.
std::string ReasonOf(const OFCondition& condition, const std::string& log, const WorklistAddress& server,
                     const WorklistCall& call) {
    const std::string text = condition.text() + ("\n" + log);
    const auto says = [&](const char* words) { return text.find(words) != std::string::npos; };
    if (const std::string reason = ReasonOfConnection(text, server); !reason.empty()) return reason;
    if (says("Calling AE Title Not Recognized"))
        return fmt::format(
            "it doesn't know this station as {}; have the title entered there, or name another "
            "one with --as",
            call.title);
    if (says("Called AE Title Not Recognized"))
        return fmt::format("its AE title isn't {}; write the right one before the @", server.title);
    if (condition == DUL_ASSOCIATIONREJECTED)
        return fmt::format("it refuses; is {} its AE title, and does it know {}?", server.title, call.title);
    if (condition == DIMSE_NODATAAVAILABLE || condition == DUL_READTIMEOUT || condition == DUL_NETWORKCLOSED ||
        condition == DUL_PEERABORTEDASSOCIATION || condition == DIMSE_READPDVFAILED)
        return condition == DIMSE_NODATAAVAILABLE || condition == DUL_READTIMEOUT
                   ? fmt::format("it didn't answer within {} seconds", TimeOut_s)
                   : std::string("it cut the connection");
    return text.substr(0, text.find('\n'));
}

template <class Scu>
void Configure(Scu& scu, const WorklistAddress& server, const WorklistCall& call) {
    scu.setAETitle(call.title);
    scu.setPeerAETitle(server.title);
    scu.setPeerHostName(server.host);
    scu.setPeerPort(static_cast<Uint16>(server.port));
    dcmSocketReceiveTimeout.set(TimeOut_s);
    dcmSocketSendTimeout.set(TimeOut_s);
    scu.setConnectionTimeout(TimeOut_s);
    scu.setACSETimeout(TimeOut_s);
    scu.setDIMSETimeout(TimeOut_s);
    scu.setDIMSEBlockingMode(DIMSE_NONBLOCKING);
    OFList<OFString> syntaxes;
    for (const char* syntax : {UID_LittleEndianExplicitTransferSyntax, UID_LittleEndianImplicitTransferSyntax})
        syntaxes.push_back(syntax);
    scu.addPresentationContext(UID_FINDModalityWorklistInformationModel, syntaxes);
}

/// Runs one query on one association. The answer contains the number of data sets in the folder.
template <class Scu>
json Ask(SavingScu<Scu>& scu, const WorklistAddress& server, const WorklistCall& call, const WorklistKeys& keys) {
    const NetworkLog& networkLog = NetworkLog::Start();
    const auto require = [&](const OFCondition& condition) {
        if (condition.bad()) Refuse(server, ReasonOf(condition, networkLog.text, server, call));
    };
    Configure(scu, server, call);
    require(scu.initNetwork());
    require(scu.negotiateAssociation());
    const T_ASC_PresentationContextID context =
        scu.findPresentationContextID(UID_FINDModalityWorklistInformationModel, "");
    if (context == 0) Refuse(server, "it keeps no worklist");
    DcmDataset query = Query(keys);
    require(scu.sendFINDRequest(context, &query, nullptr));
    if (scu.cut)
        scu.abortAssociation();
    else
        scu.closeAssociation(DCMSCU_RELEASE_ASSOCIATION);
    if (!scu.cut && scu.status != STATUS_Success && !DICOM_PENDING_STATUS(scu.status))
        Refuse(server, DU_cfindStatusString(scu.status));
    return {{"saved", scu.saved}, {"cut", scu.cut}};
}

/// A client that encrypts, and takes only a server whose certificate is valid for the host that was named.
class EncryptingScu : public DcmSCU {
public:
    EncryptingScu() : layer_(NET_REQUESTOR, nullptr, OFTrue) {}

    /// Prepares the encryption, before anything is connected. Throws `std::runtime_error`.
    void Encrypt(const WorklistAddress& server, const WorklistCall& call) {
        const auto require = [&](const OFCondition& condition) {
            if (condition.bad()) Refuse(server, condition.text());
        };
        const std::string authorities = call.authorities.empty() ? SystemAuthorities : call.authorities;
        require(layer_.setTLSProfile(TSP_Profile_BCP195));
        require(layer_.activateCipherSuites());
        require(layer_.addTrustedCertificateFile(authorities.c_str(), DCF_Filetype_PEM));
        if (!call.certificate.empty()) {
            require(layer_.setPrivateKeyFile(call.key.c_str(), DCF_Filetype_PEM));
            require(layer_.setCertificateFile(call.certificate.c_str(), DCF_Filetype_PEM));
        }
        layer_.setCertificateVerification(DCV_requireCertificate);
        RequireHost(server);
    }

    OFCondition initNetwork() override {
        const OFCondition ready = DcmSCU::initNetwork();
        return ready.bad() ? ready : useSecureConnection(&layer_);
    }

private:
    void RequireHost(const WorklistAddress& server) {
        X509_VERIFY_PARAM* const wanted = SSL_CTX_get0_param(layer_.getNativeHandle());
        X509_VERIFY_PARAM_set_hostflags(wanted, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
        if (X509_VERIFY_PARAM_set1_ip_asc(wanted, server.host.c_str()) != 1 &&
            X509_VERIFY_PARAM_set1_host(wanted, server.host.c_str(), 0) != 1)
            Refuse(server, "its host name can't be compared with a certificate");
    }

    DcmTLSTransportLayer layer_;
};

json AskEncrypted(const WorklistAddress& server, const WorklistCall& call, const WorklistKeys& keys,
                  const fs::path& folder) {
    SavingScu<EncryptingScu> scu(folder, call.mostAnswers);
    scu.Encrypt(server, call);
    return Ask(scu, server, call, keys);
}

/// Runs in the worker process. Returns a JSON text with the answers, or with the reason of a failure.
std::string AskInto(const fs::path& folder, const WorklistAddress& server, const WorklistCall& call,
                    const WorklistKeys& keys) {
    SilenceToolkit();
    try {
        if (call.tls) return AskEncrypted(server, call, keys, folder).dump();
        SavingScu<DcmSCU> scu(folder, call.mostAnswers);
        return Ask(scu, server, call, keys).dump();
    } catch (const std::exception& failure) {
        return json{{"failure", failure.what()}}.dump(-1, ' ', false, json::error_handler_t::replace);
    }
}

/// A folder of this process's own, removed with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (fs::temp_directory_path() / "oxclass-XXXXXX").string();
        if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder can be made");
        path_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    const fs::path& Path() const { return path_; }

private:
    fs::path path_;
};

void TakeDataset(const fs::path& file, const std::string& source, WorklistAnswer& answer) {
    DcmDataset dataset;
    try {
        if (dataset.loadFile(file.c_str(), EXS_LittleEndianExplicit).bad())
            throw std::runtime_error("it can't be read");
        RequireShallow(dataset);
        for (WorklistEntry& entry : ItemsOf(dataset, source)) answer.items.push_back(std::move(entry));
        answer.guessed += LacksCharacterSet(dataset);
    } catch (const std::runtime_error& broken) {
        if (answer.broken++ == 0) answer.reason = broken.what();
    }
}

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

WorklistAnswer AskWorklist(const WorklistAddress& server, const WorklistCall& call, const WorklistKeys& keys) {
    const TemporaryFolder folder;
    WorkerPool pool([&](const std::string&) { return AskInto(folder.Path(), server, call, keys); }, 1,
                    {.seconds = call.seconds});
    pool.Submit({});
    const auto worked = pool.Next([] { return false; });
    if (worked->outOfTime)
        Refuse(server, fmt::format("it didn't finish its answer within {:g} seconds; ask for fewer entries, or for "
                                   "longer with --timeout",
                                   call.seconds));
    if (!worked->failure.empty()) Refuse(server, "its answer can't be read: it is damaged, or nested too deeply");
    const json told = json::parse(worked->bytes);
    if (told.contains("failure")) throw std::runtime_error(told["failure"].get<std::string>());
    WorklistAnswer answer;
    answer.cut = told["cut"].get<bool>();
    for (std::size_t i = 0; i < told["saved"].get<std::size_t>(); ++i)
        TakeDataset(folder.Path() / std::to_string(i), server.Text(), answer);
    return answer;
}

}  // namespace Console
