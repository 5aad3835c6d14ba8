#include "ProgramTest.h"

#include "console/worklist/WorklistServer.h"

#include <arpa/inet.h>
#include <csignal>
#include <dcmtk/dcmnet/assoc.h>
#include <dcmtk/dcmnet/dimse.h>
#include <fstream>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

/// Worklists in files and of servers, and the patients that are registered from them.
namespace {

using namespace ProgramTest;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// A port of the loopback address that nothing listens on.
class Port {
public:
    Port() {
        const int s = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        bind(s, reinterpret_cast<sockaddr*>(&address), size);
        getsockname(s, reinterpret_cast<sockaddr*>(&address), &size);
        number = ntohs(address.sin_port);
        close(s);
    }

    /// Waits until something listens; false after ten seconds.
    bool IsServed() const {
        for (int attempt = 0; attempt < 200; ++attempt) {
            const int s = socket(AF_INET, SOCK_STREAM, 0);
            sockaddr_in address{};
            address.sin_family = AF_INET;
            address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
            address.sin_port = htons(static_cast<std::uint16_t>(number));
            const bool connected = connect(s, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
            close(s);
            if (connected) return true;
            usleep(50'000);
        }
        return false;
    }

    int number = 0;
};

void Put(DcmItem& item, const DcmTagKey& tag, const std::string& value) { item.putAndInsertString(tag, value.c_str()); }

void FillStep(DcmItem& step, const std::string& day) {
    Put(step, DCM_Modality, "IO");
    Put(step, DCM_ScheduledStationAETitle, "ROOM1");
    Put(step, DCM_ScheduledProcedureStepStartDate, day);
    Put(step, DCM_ScheduledProcedureStepStartTime, "101500");
    Put(step, DCM_ScheduledProcedureStepDescription, "Four bitewings");
    Put(step, DCM_ScheduledProcedureStepID, "S1");
    Put(step, DCM_ScheduledPerformingPhysicianName, "Alm^Bo");
}

/// Sets the values that a worklist item has unless a test changes them.
void FillItem(DcmItem& set, const std::string& patient, const std::string& day) {
    Put(set, DCM_SpecificCharacterSet, "ISO_IR 100");
    Put(set, DCM_PatientName, "\xC5kesson^Lotta");
    Put(set, DCM_PatientID, patient);
    Put(set, DCM_PatientBirthDate, "19800131");
    Put(set, DCM_PatientSex, "F");
    Put(set, DCM_RETIRED_OtherPatientIDs, "x1\\x'2");
    Put(set, DCM_AccessionNumber, "A1");
    Put(set, DCM_StudyInstanceUID, "1.2.3.4");
    Put(set, DCM_RequestingPhysician, "Ek^Anna");
    Put(set, DCM_RequestedProcedureID, "P1");
    Put(set, DCM_RequestedProcedureDescription, "Control");
    Put(set, DCM_NamesOfIntendedRecipientsOfResults, "Ek^Anna\\Alm^Bo");
    DcmItem* step = nullptr;
    set.findOrCreateSequenceItem(DCM_ScheduledProcedureStepSequence, step, -2);
    FillStep(*step, day);
}

class Worklist : public Program {
protected:
    /// Writes an item's file into the folder "wl/RIS".
    void WriteItem(
        const std::string& name, const std::string& patient, const std::string& day,
        const std::function<void(DcmDataset&)>& change = [](DcmDataset&) {}) {
        fs::create_directories(Folder() + "/RIS");
        std::ofstream(Folder() + "/RIS/lockfile");
        DcmFileFormat file;
        FillItem(*file.getDataset(), patient, day);
        change(*file.getDataset());
        ASSERT_TRUE(file.saveFile((Folder() + "/RIS/" + name).c_str(), EXS_LittleEndianExplicit).good());
    }

    /// Returns the checksum that is valid for positions of the folder's list.
    std::string Checksum() {
        const std::string entry = Listed({Folder()})[0]["entry"];
        return entry.substr(entry.find('@') + 1);
    }
    std::string Folder() const { return (folder.Path() / "wl").string(); }

    json Listed(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--json", "worklist"});
        const Result run = Try(arguments);
        EXPECT_EQ(run.code, 0) << run.err;
        return json::parse(run.out);
    }

    std::vector<std::string> PatientsOf(const json& list) {
        std::vector<std::string> patients;
        for (const json& item : list) patients.push_back(item["patient"]);
        return patients;
    }
};

TEST_F(Worklist, FilesAreListedByDayAndTime) {
    WriteItem("a.wl", "P2", "20260202");
    WriteItem("b.wl", "P1", "20260201");
    const json list = Listed({Folder()});
    EXPECT_THAT(PatientsOf(list), ElementsAre("P1", "P2"));
    EXPECT_EQ(list[0]["number"], 1);
    EXPECT_EQ(list[0]["date"], "2026-02-01");
    EXPECT_EQ(list[0]["time"], "10:15:00");
    EXPECT_EQ(list[0]["name"], "Åkesson^Lotta");
    EXPECT_EQ(list[0]["born"], "1980-01-31");
    EXPECT_EQ(list[0]["station"], "ROOM1");
    EXPECT_EQ(list[0]["procedure"], "Four bitewings");
    EXPECT_THAT(PatientsOf(Listed({Folder() + "/RIS/a.wl"})), ElementsAre("P2"));
}

TEST_F(Worklist, EveryTextOfAnItemHasItsProperty) {
    DcmDataset set;
    FillItem(set, "P1", "20260201");
    DcmItem* step = nullptr;
    set.findOrCreateSequenceItem(DCM_ScheduledProcedureStepSequence, step, -2);
    step->putAndInsertString(DCM_ScheduledProcedureStepStartTime, "soon");
    const Console::WorklistItems items = Console::ItemsOf(set, "here");
    ASSERT_EQ(items.size(), 2U);
    OXClass::cMWLItem& item = *items[0].item;
    EXPECT_EQ(item.PatientName, "Åkesson^Lotta");
    EXPECT_EQ(item.PatientSex, "F");
    EXPECT_EQ(item.OtherPatientID, "x1\\x'2");
    ASSERT_EQ(item.OtherPatIDs()->Count(), 2);
    EXPECT_EQ(item.OtherPatIDs()->Item("K1")->str, "X1");
    EXPECT_EQ(item.Accession, "A1");
    EXPECT_EQ(item.StudyUID, "1.2.3.4");
    EXPECT_EQ(item.ReqPhys, "Ek^Anna");
    EXPECT_EQ(item.ReqProcID, "P1");
    EXPECT_EQ(item.ReqProcDesc, "Control");
    EXPECT_EQ(item.IntendedRecipientsOfResults, "Ek^Anna\\Alm^Bo");
    ASSERT_EQ(item.IntendedRecipients()->Count(), 2);
    EXPECT_EQ(item.IntendedRecipients()->Item(2)->str, "Alm^Bo");
    EXPECT_EQ(item.SchProcStepID, "S1");
    EXPECT_EQ(item.SchPerfPhysName, "Alm^Bo");
    EXPECT_EQ(item.Modality, "IO");
    EXPECT_EQ(item.DS_URL, "here");
    EXPECT_EQ(items[1].item->PatientID, "P1");
    EXPECT_EQ(items[1].item->SchProcStepStartTime, "soon");
    EXPECT_EQ(items[1].item->SchStatAE, "");
}

TEST_F(Worklist, KeysChooseAmongFiles) {
    WriteItem("a.wl", "P1", "20260201");
    WriteItem("b.wl", "P2", "20260202");
    WriteItem("c.wl", "P3", "20260203", [](DcmDataset& set) {
        DcmItem* step = nullptr;
        set.findOrCreateSequenceItem(DCM_ScheduledProcedureStepSequence, step, 0);
        step->putAndInsertString(DCM_Modality, "PX");
        step->putAndInsertString(DCM_ScheduledStationAETitle, "ROOM2");
    });
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--date", "2026-02-02"})), ElementsAre("P2"));
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--date", "2026-02-01..2026-02-02"})), ElementsAre("P1", "P2"));
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--modality", "px"})), ElementsAre("P3"));
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--station", "ROOM2"})), ElementsAre("P3"));
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--patient", "p1"})), ElementsAre("P1"));
    EXPECT_EQ(Try({"worklist", Folder(), "--patient", "nobody"}).out, "The worklist is empty.\n");
}

TEST_F(Worklist, KeysMayHoldWildcardsAndOpenRanges) {
    WriteItem("a.wl", "P10", "20260201");
    WriteItem("b.wl", "P20", "20260202", [](DcmDataset& set) {
        DcmItem* step = nullptr;
        set.findOrCreateSequenceItem(DCM_ScheduledProcedureStepSequence, step, 0);
        step->putAndInsertString(DCM_ScheduledStationAETitle, "ROOM1\\ROOM2");
    });
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--patient", "*0"})), ElementsAre("P10", "P20"));
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--patient", "p?0*"})), ElementsAre("P10", "P20"));
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--patient", "*1*"})), ElementsAre("P10"));
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--patient", "P1"})), ElementsAre());
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--station", "ROOM2"})), ElementsAre("P20"));
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--date", "2026-02-02.."})), ElementsAre("P20"));
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--date", "..20260201"})), ElementsAre("P10"));
}

TEST_F(Worklist, AKnownPatientWhoCannotBeReadIsNotTakenForANewOne) {
    Init();
    WriteItem("a.wl", "P1", "20260201");
    Ok({"worklist", Folder(), "--register", "A1"});
    Run("UPDATE Patient_T SET PrevXrayDate_CH = 'garbage', LastName_NVC = 'Ek'");
    const Result run = Try({"--db", Database(), "worklist", Folder(), "--register", "A1"});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("patient #1 can't be read: correct its column PrevXrayDate_CH"));
    EXPECT_EQ(OkJson({"patients"})[0]["last_name"], "Ek");
}

TEST_F(Worklist, IdentifiersThatDoNotFitAreOmittedAndReported) {
    Init();
    WriteItem("a.wl", "P1", "20260201", [](DcmDataset& set) {
        std::string many;
        for (int i = 100; i < 140; ++i) many += (many.empty() ? "" : "\\") + std::string("NUMBER") + std::to_string(i);
        set.putAndInsertString(DCM_RETIRED_OtherPatientIDs, many.c_str());
    });
    const Result run = Try({"--db", Database(), "worklist", Folder(), "--register", "A1"});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.err, HasSubstr("the other identifier NUMBER139 is not stored"));
    EXPECT_EQ(OkJson({"patient", "P1"})["OtherIDs"].get<std::string>().size(), 25U * 10 - 1);
}

TEST_F(Worklist, TwoPatientsOfOneIdentifierAreNotMadeOne) {
    Init();
    WriteItem("a.wl", "P1", "20260201");
    Run("INSERT INTO Patient_T (PersonNr_CH, LastName_NVC) VALUES ('P1', 'First'), ('P1', 'Second')");
    const Result run = Try({"--db", Database(), "worklist", Folder(), "--register", "A1"});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("stored as #2"));
    EXPECT_THAT(run.err, HasSubstr("nothing was registered"));
    EXPECT_EQ(OkJson({"patients", "Second"}).size(), 1U);
}

TEST_F(Worklist, AFileThatIsNotAnItemIsReportedAndTheOthersAreListed) {
    WriteItem("a.wl", "P1", "20260201");
    WriteItem("b.wl", "P2", "20260202", [](DcmDataset& set) { delete set.remove(DCM_ScheduledProcedureStepSequence); });
    WriteItem("c.wl", "", "20260203", [](DcmDataset& set) { delete set.remove(DCM_PatientName); });
    std::ofstream(Folder() + "/RIS/d.wl") << "no item";
    const Result run = Try({"--json", "worklist", Folder()});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(PatientsOf(json::parse(run.out)), ElementsAre("P1"));
    EXPECT_THAT(run.err, HasSubstr("b.wl: not a worklist item: it has no scheduled procedure step\n"));
    EXPECT_THAT(run.err, HasSubstr("c.wl: not a worklist item: it names no patient\n"));
    EXPECT_THAT(run.err, HasSubstr("d.wl: not a worklist item: can't be read as DICOM"));
}

TEST_F(Worklist, RegisteringMakesThePatientThatTheNextImportFinds) {
    Init();
    WriteItem("a.wl", "p-1.2.3", "20260201");
    const json made = OkJson({"worklist", Folder(), "--register", "A1"});
    EXPECT_EQ(made["patient"], "P-1.2.3");
    EXPECT_EQ(made["new"], true);
    const json patient = OkJson({"patient", "P-1.2.3"});
    EXPECT_EQ(patient["LastName"], "Åkesson");
    EXPECT_EQ(patient["FirstName"], "Lotta");
    EXPECT_EQ(patient["BirthDate"], "1980-01-31");
    EXPECT_EQ(patient["Sex"], "F");
    EXPECT_EQ(patient["OtherIDs"], "X1\\X\u20192");
    Write("1.2.3", 1, {{11}, ""}, [](DcmDataset& set) { set.putAndInsertString(DCM_PatientName, "Akesson^Lotta"); });
    Ok({"import", Films()});
    ASSERT_EQ(OkJson({"patients"}).size(), 1U);
    EXPECT_EQ(OkJson({"patients"})[0]["last_name"], "Åkesson");
    EXPECT_EQ(OkJson({"worklist", Folder(), "--register", "A1"})["new"], false);
    EXPECT_EQ(OkJson({"patient", "P-1.2.3"}), patient);
}

TEST_F(Worklist, RegisteringAKnownPatientAddsOnlyNewIdentifiers) {
    Init();
    WriteItem("a.wl", "P1", "20260201");
    Ok({"worklist", Folder(), "--register", "A1"});
    Ok({"patient", "P1", "LastName=AKESSON", "OtherIDs=X1\\OLD"});
    Ok({"worklist", Folder(), "--register", "A1"});
    EXPECT_EQ(OkJson({"patient", "P1"})["LastName"], "AKESSON");
    EXPECT_EQ(OkJson({"patient", "P1"})["OtherIDs"], "X1\\OLD\\X\u20192");
}

TEST_F(Worklist, RegisteringAKnownPatientStoresTheMissingData) {
    Init();
    WriteItem("a.wl", "P1", "20260201", [](DcmDataset& set) { set.putAndInsertString(DCM_IssuerOfPatientID, "ISSA"); });
    Run("INSERT INTO Patient_T (PersonNr_CH, LastName_NVC, FirstName_NVC) VALUES ('P1', 'Åkesson', 'Lotta')");
    const Result run = Try({"--db", Database(), "worklist", Folder(), "--register", "A1"});
    EXPECT_EQ(run.code, 0);
    EXPECT_THAT(run.err, HasSubstr("birth date 1980-01-31, sex F added from the worklist"));
    const json patient = OkJson({"patient", "#1"});
    EXPECT_EQ(patient["BirthDate"], "1980-01-31");
    EXPECT_EQ(patient["Sex"], "F");
    EXPECT_EQ(patient["Issuer"], "ISSA");
    WriteItem("a.wl", "P1", "20260201",
              [](DcmDataset& set) { set.putAndInsertString(DCM_PatientBirthDate, "19550505"); });
    EXPECT_EQ(Try({"--db", Database(), "worklist", Folder(), "--register", "A1"}).code, 3);
}

TEST_F(Worklist, AFailedRegistrationReportsTheReason) {
    Init();
    WriteItem("a.wl", "", "20260201");
    const auto told = [&](const std::string& number) {
        const Result run = Try({"--db", Database(), "worklist", Folder(), "--register", number});
        EXPECT_EQ(run.code, 1);
        return run.err;
    };
    EXPECT_THAT(told("A1"), HasSubstr("the entry has no patient ID"));
    EXPECT_THAT(told("1"), HasSubstr("a position needs the checksum"));
    EXPECT_THAT(told("9@" + Checksum()), HasSubstr("the worklist has no entry 9"));
    EXPECT_THAT(told("0@" + Checksum()), HasSubstr("the worklist has no entry 0"));
    EXPECT_EQ(OkJson({"patients"}).size(), 0U);
}

TEST_F(Worklist, APositionIsValidOnlyWithTheListThatWasPrinted) {
    Init();
    WriteItem("a.wl", "P1", "20260201");
    WriteItem("b.wl", "P2", "20260203");
    const std::string second = "2@" + Checksum();
    EXPECT_EQ(Listed({Folder()})[1]["entry"], second);
    EXPECT_EQ(OkJson({"worklist", Folder(), "--register", second})["patient"], "P2");
    WriteItem("c.wl", "P3", "20260202");
    const Result run = Try({"--db", Database(), "worklist", Folder(), "--register", second});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("the worklist has changed since"));
    EXPECT_EQ(OkJson({"patients"}).size(), 1U);
}

TEST_F(Worklist, AnAccessionNumberOfSeveralPatientsNamesNone) {
    Init();
    WriteItem("a.wl", "P1", "20260201");
    WriteItem("b.wl", "P2", "20260203");
    const Result run = Try({"--db", Database(), "worklist", Folder(), "--register", "A1"});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("entries of several patients have the accession number or step A1, and none"));
    const std::string sum = Checksum();
    EXPECT_THAT(run.err, HasSubstr("1@" + sum + ": P1 Åkesson, Lotta, born 1980-01-31, 2026-02-01 10:15:00; 2@" + sum +
                                   ": P2 Åkesson, Lotta, born 1980-01-31, 2026-02-03 10:15:00"));
    EXPECT_EQ(OkJson({"patients"}).size(), 0U);
}

TEST_F(Worklist, APersonWhoContradictsTheStoredPatientIsNotRegistered) {
    Init();
    WriteItem("a.wl", "P1", "20260201");
    Run("INSERT INTO Patient_T (PersonNr_CH, LastName_NVC, FirstName_NVC) VALUES ('P1', 'Berg', 'Nils')");
    const Result run = Try({"--db", Database(), "worklist", Folder(), "--register", "A1"});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, ::testing::ContainsRegex("Name +Berg, Nils +<> Åkesson, Lotta"));
    EXPECT_EQ(OkJson({"patient", "#1"})["OtherIDs"], "");
    EXPECT_EQ(OkJson({"worklist", Folder(), "--register", "A1", "--register-as", "#1"})["number"], 1);
    EXPECT_EQ(OkJson({"patient", "#1"})["LastName"], "Berg");
    EXPECT_EQ(OkJson({"worklist", Folder(), "--register", "A1", "--new-patient"})["number"], 2);
    EXPECT_EQ(OkJson({"patient", "#2"})["LastName"], "Åkesson");
    EXPECT_EQ(OkJson({"worklist", Folder(), "--register", "A1"})["number"], 2) << "found by its name from now on";
}

TEST_F(Worklist, ADayWithTwoReadingsIsRejected) {
    const Result run = Try({"worklist", Folder(), "--date", "05.03.2026"});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("2026-03-05 or as 2026-05-03"));
}

TEST_F(Worklist, AFileThatIsNotAWorklistIsReported) {
    const auto told = [&](const std::vector<std::string>& arguments) {
        const Result run = Try(arguments);
        EXPECT_EQ(run.code, 1);
        return run.err;
    };
    EXPECT_THAT(told({"worklist", "nowhere"}), HasSubstr("is not a file, a folder or a server AE@HOST:PORT"));
    EXPECT_THAT(told({"worklist", "AE@host:0"}), HasSubstr("or a server AE@HOST:PORT"));
    EXPECT_THAT(told({"worklist", "SEVENTEENLETTERSX@host:104"}), HasSubstr("or a server AE@HOST:PORT"));
    EXPECT_THAT(told({"worklist", "AE@[::1]:104"}), HasSubstr("or a server AE@HOST:PORT"));
    EXPECT_THAT(told({"worklist", std::string(5000, 'x')}), HasSubstr("or a server AE@HOST:PORT"));
    EXPECT_THAT(told({"worklist", Folder(), "--as", ""}), HasSubstr("1 to 16 characters"));
    EXPECT_THAT(told({"worklist", Folder(), "--date", "someday"}), HasSubstr("\"someday\" is not a date"));
    EXPECT_THAT(told({"worklist", Folder(), "--date", "2026-02-02..2026-02-01"}), HasSubstr("ends before it begins"));
}

// ---- servers ----------------------------------------------------------------------------------------

/// DCMTK's own worklist server on the loopback address, over the test's folder.
class WorklistServer : public Worklist {
protected:
    void Serve() {
        const std::string number = std::to_string(port.number), path = Folder();
        const char* const arguments[] = {"wlmscpfs", "-q", "-dfp", path.c_str(), number.c_str(), nullptr};
        ASSERT_EQ(posix_spawnp(&server, "wlmscpfs", nullptr, nullptr, const_cast<char* const*>(arguments), environ), 0);
        ASSERT_TRUE(port.IsServed());
    }
    ~WorklistServer() override {
        if (server <= 0) return;
        kill(server, SIGKILL);
        waitpid(server, nullptr, 0);
    }
    std::string Address(const std::string& title = "RIS") const {
        return title + "@localhost:" + std::to_string(port.number);
    }

    Port port;
    pid_t server = 0;
};

TEST_F(WorklistServer, AnswersAreListedAsFilesAre) {
    WriteItem("a.wl", "P1", "20260201");
    WriteItem("b.wl", "P2", "20260202");
    Serve();
    EXPECT_EQ(Listed({Address()}), Listed({Folder()}));
    EXPECT_THAT(PatientsOf(Listed({Address(), "--patient", "P2"})), ElementsAre("P2"));
    EXPECT_THAT(PatientsOf(Listed({Address(), "--date", "2026-02-01"})), ElementsAre("P1"));
    EXPECT_THAT(PatientsOf(Listed({Address(), "--date", "2026-01-01..2026-02-01"})), ElementsAre("P1"));
    EXPECT_THAT(PatientsOf(Listed({Address(), "--modality", "PX"})), ElementsAre());
    EXPECT_THAT(PatientsOf(Listed({Address(), "--station", "ROOM1"})), ElementsAre("P1", "P2"));
}

TEST_F(WorklistServer, APatientIsRegisteredFromAServersAnswer) {
    Init();
    WriteItem("a.wl", "P1", "20260201");
    Serve();
    const Result run = Try({"--db", Database(), "--json", "worklist", Address(), "--register", "A1"});
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_EQ(json::parse(run.out)["new"], true);
    EXPECT_THAT(run.err, HasSubstr("1 answers name no character set")) << "as this server sends them";
    EXPECT_EQ(OkJson({"patient", "P1"})["LastName"], "Åkesson");
}

TEST_F(WorklistServer, ARejectionIsReportedInOneLine) {
    WriteItem("a.wl", "P1", "20260201");
    Serve();
    const Result run = Try({"worklist", Address("NOBODY")});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.err, "oxclass: no worklist from " + Address("NOBODY") +
                           ": its AE title isn't NOBODY; write the right one before the @\n");
}

TEST_F(WorklistServer, AnUnreachableServerIsReportedInOneLine) {
    const Result run = Try({"worklist", Address()});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("no worklist from " + Address() + ": "));
    EXPECT_THAT(run.err, HasSubstr(": nothing listens at port "));
    EXPECT_THAT(run.err, HasSubstr("(Connection refused); look at host and port"));
    EXPECT_EQ(Try({"worklist", Address(), "--tls"}).err, run.err);
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
}

/// A server of the test's own that speaks as the test wants.
class OddServer : public WorklistServer {
protected:
    ~OddServer() override {
        if (speaking.joinable()) speaking.join();
    }

    /// Takes one association and one question, and answers with these data sets.
    void Answer(std::vector<std::function<void(DcmDataset&)>> sets, Uint16 status = STATUS_Success) {
        T_ASC_Network* network = nullptr;
        ASSERT_TRUE(ASC_initializeNetwork(NET_ACCEPTOR, port.number, 10, &network).good());
        speaking = std::thread([this, network, sets = std::move(sets), status]() mutable {
            T_ASC_Association* association = nullptr;
            ASC_receiveAssociation(network, &association, ASC_DEFAULTMAXPDU, nullptr, nullptr, OFFalse, DUL_BLOCK, 10);
            const char* contexts[] = {UID_FINDModalityWorklistInformationModel};
            const char* syntaxes[] = {UID_LittleEndianExplicitTransferSyntax};
            ASC_acceptContextsWithPreferredTransferSyntaxes(association->params, contexts, 1, syntaxes, 1);
            ASC_acknowledgeAssociation(association);
            Speak(*association, sets, status);
            T_DIMSE_Message end{};
            T_ASC_PresentationContextID context = 0;
            if (DIMSE_receiveCommand(association, DIMSE_BLOCKING, 10, &context, &end, nullptr) ==
                DUL_PEERREQUESTEDRELEASE)
                ASC_acknowledgeRelease(association);
            ASC_dropAssociation(association);
            ASC_destroyAssociation(&association);
            ASC_dropNetwork(&network);
        });
    }

    void Speak(T_ASC_Association& association, std::vector<std::function<void(DcmDataset&)>>& sets, Uint16 status) {
        T_DIMSE_Message question{};
        T_ASC_PresentationContextID context = 0;
        DIMSE_receiveCommand(&association, DIMSE_BLOCKING, 10, &context, &question, nullptr);
        DcmDataset* query = nullptr;
        DIMSE_receiveDataSetInMemory(&association, DIMSE_BLOCKING, 10, &context, &query, nullptr, nullptr);
        asked = std::unique_ptr<DcmDataset>(query);
        const auto send = [&](Uint16 code, DcmDataset* set) {
            T_DIMSE_C_FindRSP response{};
            response.DimseStatus = code;
            response.MessageIDBeingRespondedTo = question.msg.CFindRQ.MessageID;
            OFStandard::strlcpy(response.AffectedSOPClassUID, question.msg.CFindRQ.AffectedSOPClassUID,
                                sizeof response.AffectedSOPClassUID);
            response.DataSetType = set ? DIMSE_DATASET_PRESENT : DIMSE_DATASET_NULL;
            DIMSE_sendFindResponse(&association, context, &question.msg.CFindRQ, &response, set, nullptr);
        };
        for (const auto& fill : sets) {
            DcmDataset set;
            fill(set);
            send(STATUS_Pending, &set);
        }
        send(status, nullptr);
    }

    std::unique_ptr<DcmDataset> asked;
    std::thread speaking;
};

TEST_F(OddServer, BrokenDataSetsAreReportedInOneLineAndTheOthersListed) {
    Answer({[](DcmDataset& set) { FillItem(set, "P1", "20260201"); },
            [](DcmDataset& set) { set.putAndInsertString(DCM_PatientID, "P2"); },
            [](DcmDataset& set) { set.putAndInsertString(DCM_Modality, "nonsense"); }});
    const Result run = Try({"--json", "worklist", Address()});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(PatientsOf(json::parse(run.out)), ElementsAre("P1"));
    EXPECT_EQ(run.err,
              "oxclass: 2 data sets of " + Address() + " are not worklist items: it has no scheduled procedure step\n");
}

TEST_F(OddServer, ItReceivesTheKeysAndTheIdentifiersOfASequence) {
    Init();
    Answer({[](DcmDataset& set) {
        FillItem(set, "P1", "20260201");
        delete set.remove(DCM_RETIRED_OtherPatientIDs);
        DcmItem* other = nullptr;
        set.findOrCreateSequenceItem(DCM_OtherPatientIDsSequence, other);
        Put(*other, DCM_PatientID, "SEQ1");
    }});
    Ok({"worklist", Address(), "--patient", "P1", "--modality", "IO", "--station", "ROOM1", "--date",
        "2026-02-01..2026-02-02", "--register", "A1"});
    speaking.join();
    ASSERT_TRUE(asked);
    const auto textOf = [](DcmItem& item, const DcmTagKey& tag) {
        OFString text;
        item.findAndGetOFString(tag, text);
        return std::string(text.c_str());
    };
    DcmItem* step = nullptr;
    ASSERT_TRUE(asked->findAndGetSequenceItem(DCM_ScheduledProcedureStepSequence, step).good());
    EXPECT_EQ(textOf(*asked, DCM_PatientID), "P1");
    EXPECT_EQ(textOf(*step, DCM_Modality), "IO");
    EXPECT_EQ(textOf(*step, DCM_ScheduledStationAETitle), "ROOM1");
    EXPECT_EQ(textOf(*step, DCM_ScheduledProcedureStepStartDate), "20260201-20260202");
    DcmItem* other = nullptr;
    ASSERT_TRUE(asked->findAndGetSequenceItem(DCM_OtherPatientIDsSequence, other).good());
    EXPECT_TRUE(other->tagExists(DCM_PatientID));
    EXPECT_EQ(OkJson({"patient", "P1"})["OtherIDs"], "SEQ1");
}

TEST_F(OddServer, OnlyTheRequestedStepsAreListed) {
    Answer({[](DcmDataset& set) {
        FillItem(set, "P1", "20260131");
        DcmItem* step = nullptr;
        set.findOrCreateSequenceItem(DCM_ScheduledProcedureStepSequence, step, -2);
        FillStep(*step, "20260201");
    }});
    const json list = Listed({Address(), "--date", "2026-02-01"});
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list[0]["date"], "2026-02-01");
}

TEST_F(OddServer, AFailureThatItReportsIsShownInOneLine) {
    Answer({}, STATUS_FIND_Refused_OutOfResources);
    const Result run = Try({"worklist", Address()});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("no worklist from " + Address() + ": "));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1);
}

TEST_F(OddServer, AServerThatIsNotADicomServerIsReportedInOneLine) {
    const int listening = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port.number));
    ASSERT_EQ(bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listening, 1), 0);
    speaking = std::thread([listening] {
        const int s = accept(listening, nullptr, nullptr);
        constexpr std::string_view nonsense = "HTTP/1.1 400 Bad Request\r\n\r\n";
        send(s, nonsense.data(), nonsense.size(), MSG_NOSIGNAL);
        close(s);
        close(listening);
    });
    const Result run = Try({"worklist", Address()});
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.err, "oxclass: no worklist from " + Address() +
                           ": what answers there doesn't speak DICOM; look at host and port\n");
}

TEST_F(OddServer, MoreAnswersThanAllowedAreNotTaken) {
    const auto fill = [](DcmDataset& set) { FillItem(set, "P1", "20260201"); };
    Answer({fill, fill, fill, fill});
    const Result run = Try({"--json", "worklist", Address(), "--most", "2"});
    EXPECT_EQ(run.code, 3);
    EXPECT_EQ(json::parse(run.out).size(), 2U);
    EXPECT_THAT(run.err, HasSubstr("has more than 2 entries"));
}

TEST_F(OddServer, NamesInAnUnknownCharacterSetAreReported) {
    Answer({[](DcmDataset& set) {
        FillItem(set, "P1", "20260201");
        delete set.remove(DCM_SpecificCharacterSet);
    }});
    const Result run = Try({"--json", "worklist", Address()});
    EXPECT_EQ(json::parse(run.out)[0]["name"], "Åkesson^Lotta") << "taken for Latin-1";
    EXPECT_THAT(run.err, HasSubstr("1 answers name no character set"));
}

TEST_F(OddServer, AnAnswerNestedTooDeeplyIsRejected) {
    Answer({[](DcmDataset& set) {
        FillItem(set, "P1", "20260201");
        DcmItem* item = &set;
        for (int i = 0; i < 200; ++i) {
            DcmItem* inner = nullptr;
            item->findOrCreateSequenceItem(DCM_ContentSequence, inner, -2);
            item = inner;
        }
    }});
    const Result run = Try({"worklist", Address()});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(run.err, HasSubstr("nested"));
}

/// A server that listens and then does what the test wants with the one connection.
class RawServer : public OddServer {
protected:
    void Listen(std::function<void(int)> speak) {
        const int listening = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<std::uint16_t>(port.number));
        ASSERT_EQ(bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        ASSERT_EQ(listen(listening, 1), 0);
        speaking = std::thread([listening, speak = std::move(speak)] {
            const int s = accept(listening, nullptr, nullptr);
            speak(s);
            close(s);
            close(listening);
        });
    }
};

TEST_F(RawServer, AQueryEndsAfterItsTimeEvenIfTheServerAnswersSlowly) {
    Listen([](int s) {
        // The header of an association's acceptance announces 60,000 bytes, of which one comes at a time.
        const unsigned char header[] = {2, 0, 0, 0, 0xEA, 0x60};
        send(s, header, sizeof header, MSG_NOSIGNAL);
        for (int i = 0; i < 100 && send(s, "", 1, MSG_NOSIGNAL) == 1; ++i) usleep(100'000);
    });
    const auto started = std::chrono::steady_clock::now();
    const Result run = Try({"worklist", Address(), "--timeout", "1"});
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(5));
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("it didn't finish its answer within 1 seconds"));
}

TEST_F(RawServer, AConnectionThatIsCutIsReportedAsSuch) {
    Listen([](int s) {
        char bytes[64];
        static_cast<void>(recv(s, bytes, sizeof bytes, 0));
        shutdown(s, SHUT_RDWR);
    });
    const Result run = Try({"worklist", Address()});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("it cut the connection"));
}

TEST_F(RawServer, AServerWithoutTlsIsReportedAsSuch) {
    Listen([](int s) {
        char bytes[64];
        static_cast<void>(recv(s, bytes, sizeof bytes, 0));
        constexpr std::string_view plain = "HTTP/1.1 400 Bad Request\r\n\r\n";
        send(s, plain.data(), plain.size(), MSG_NOSIGNAL);
        while (recv(s, bytes, sizeof bytes, 0) > 0) continue;
    });
    EXPECT_EQ(Try({"worklist", Address(), "--tls"}).err,
              "oxclass: no worklist from " + Address() +
                  ": what answers there doesn't speak TLS; look at the port, or ask without --tls\n");
}

TEST_F(RawServer, AServerThatCutsAnEncryptedConnectionIsReportedAsSuch) {
    Listen([](int s) {
        char bytes[64];
        static_cast<void>(recv(s, bytes, sizeof bytes, 0));
        shutdown(s, SHUT_RDWR);
    });
    EXPECT_THAT(Try({"worklist", Address(), "--tls"}).err,
                HasSubstr("it cut the connection; does it speak TLS at this port?"));
}

TEST_F(RawServer, ASilentServerIsReportedAsSuch) {
    Listen([](int s) {
        char bytes[64];
        while (recv(s, bytes, sizeof bytes, 0) > 0) continue;
    });
    EXPECT_THAT(Try({"worklist", Address(), "--tls"}).err,
                HasSubstr("it didn't answer within 10 seconds; does it speak TLS at this port?"));
}

TEST_F(WorklistServer, AnEncryptedServerIsQueriedIfItsCertificateIsTrusted) {
    WriteItem("a.wl", "P1", "20260201");
    Serve();
    const Port encrypted;
    const std::string at = folder.Path().string();
    const std::string make =
        "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=localhost -addext "
        "subjectAltName=DNS:ris.example,IP:127.0.0.1 -keyout " +
        at + "/key.pem -out " + at + "/cert.pem 2>/dev/null";
    ASSERT_EQ(std::system(make.c_str()), 0);
    const pid_t proxy = fork();
    if (proxy == 0) {
        execlp("python3", "python3", "-B", TLS_PROXY, (at + "/cert.pem").c_str(), (at + "/key.pem").c_str(),
               std::to_string(encrypted.number).c_str(), std::to_string(port.number).c_str(), nullptr);
        std::_Exit(127);
    }
    ASSERT_TRUE(encrypted.IsServed());
    const std::string address = "RIS@127.0.0.1:" + std::to_string(encrypted.number);
    const Result trusted = Try({"--json", "worklist", address, "--tls", "--tls-ca", at + "/cert.pem"});
    EXPECT_EQ(trusted.code, 0) << trusted.err;
    EXPECT_THAT(PatientsOf(json::parse(trusted.out)), ElementsAre("P1"));
    const Result strange = Try({"worklist", address, "--tls"});
    EXPECT_EQ(strange.code, 1) << "a certificate of an unknown authority";
    EXPECT_THAT(strange.err, HasSubstr("its certificate isn't trusted"));
    const std::string named = "RIS@localhost:" + std::to_string(encrypted.number);
    EXPECT_THAT(Try({"worklist", named, "--tls", "--tls-ca", at + "/cert.pem"}).err,
                HasSubstr("isn't one for localhost"));
    EXPECT_EQ(Try({"worklist", Address(), "--tls", "--tls-ca", at + "/cert.pem"}).code, 1) << "a plain server";
    kill(proxy, SIGTERM);
    waitpid(proxy, nullptr, 0);
}

TEST_F(Worklist, AnUnknownModalityIsReported) {
    const Result run = Try({"worklist", Folder(), "--modality", "intraoral"});
    EXPECT_EQ(run.code, 1);
    EXPECT_THAT(run.err, HasSubstr("\"intraoral\" is not a modality"));
    WriteItem("a.wl", "P1", "20260201");
    EXPECT_THAT(PatientsOf(Listed({Folder(), "--modality", "io"})), ElementsAre("P1"));
}

TEST_F(Worklist, OnlyTheFileThatWouldCrashTheProgramFails) {
    WriteItem("a.wl", "P1", "20260201");
    WriteItem("b.wl", "P2", "20260201", [](DcmDataset& set) {
        DcmItem* item = &set;
        for (int i = 0; i < 200; ++i) {
            DcmItem* inner = nullptr;
            item->findOrCreateSequenceItem(DCM_ContentSequence, inner, -2);
            item = inner;
        }
    });
    const Result run = Try({"--json", "worklist", Folder()});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(PatientsOf(json::parse(run.out)), ElementsAre("P1"));
    EXPECT_THAT(run.err, HasSubstr("b.wl: not a worklist item: its sequences are nested"));
}

TEST_F(Worklist, AFolderThatCannotBeReadDoesNotEndTheList) {
    WriteItem("a.wl", "P1", "20260201");
    fs::create_symlink(folder.Path() / "nowhere", Folder() + "/dead");
    const Result run = Try({"--json", "worklist", Folder()});
    EXPECT_EQ(run.code, 3);
    EXPECT_THAT(PatientsOf(json::parse(run.out)), ElementsAre("P1"));
    EXPECT_THAT(run.err, HasSubstr("dead: the link leads nowhere"));
}

}  // namespace
