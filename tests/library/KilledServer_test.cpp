#include "kit/FaultyProvider.h"

#include "anatomy/cAnatomicDescription.h"
#include "cards/cImagecard.h"
#include "cards/cTemplate.h"
#include "frame/cGlobalList.h"
#include "images/cImage.h"
#include "people/cClinic.h"
#include "people/cDoctor.h"
#include "people/cPatient.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

#include <functional>
#include <unistd.h>

/// A server that ends the connection in front of any statement of a save, as a crash or an administrator does.
namespace OXClass {
namespace {

using namespace TestKit;

class KilledServer : public WithFaults {
protected:
    void SetUp() override { OXCLASS_ONLY_IF(!IsFile()); }
    ~KilledServer() override { BeforeEachCall({}); }

    /// Ends the connection of `faulty` in front of its call with this number, from 1; 0: never.
    void KillAt(int call) {
        const bool postgres = TestedEngine() == Engine::PostgreSQL;
        const String process =
            faulty->Execute(postgres ? "SELECT pg_backend_pid()" : "SELECT connection_id()")->Fields(0).As<String>();
        const String kill = postgres ? "SELECT pg_terminate_backend(" + process + ")" : "KILL " + process;
        const String count =
            "SELECT count(*) FROM " +
            String(postgres ? "pg_stat_activity WHERE pid=" : "information_schema.processlist WHERE id=") + process;
        calls_ = 0;
        BeforeEachCall([this, call, kill, count] {
            if (++calls_ != call) return;
            Run(kill);
            while (CLng(Ask(count)) > 0) usleep(500);
        });
    }

    /// Returns the values of all tables that the operations change.
    std::vector<String> Content() {
        std::vector<String> content;
        for (const char* table : {"Patient_T", "Doctor_T", "Clinic_T", "ImageBild_T", "Comments_T", "Study_T",
                                  "Series_T", "ImageCard_T", "ImageAttribute_T", "ImageManipulation_T",
                                  "TemplateCard_T", "TemplateAttribute_T", "GlobalList_T", "StandardGroupName"}) {
            content.emplace_back(table);
            for (const Ref<Recordset> rs = Connect()->Execute("SELECT * FROM " + String(table)); !rs->Eof();
                 rs->MoveNext())
                for (Long i = 0; i < rs->FieldCount(); ++i)
                    content.push_back(rs->Fields(i).IsNull() ? "null" : rs->Fields(i).As<String>());
        }
        return content;
    }

    int calls_ = 0;
};

/// The saves of the library, each with a new object. A name for messages, and the work.
std::vector<std::pair<String, std::function<void(const Ref<Connection>&)>>> Saves() {
    return {
        {"patient",
         [](const Ref<Connection>& con) {
             const Ref<cPatient> patient = New<cPatient>();
             patient->PatientID = "19800131-1234";
             patient->Save(con);
         }},
        {"doctor",
         [](const Ref<Connection>& con) {
             const Ref<cDoctor> doctor = New<cDoctor>();
             doctor->DrLastName = "Alm";
             doctor->SaveDoctor(con);
         }},
        {"clinic",
         [](const Ref<Connection>& con) {
             const Ref<cClinic> clinic = New<cClinic>();
             clinic->ClinicName = "North";
             clinic->SaveClinic(con);
         }},
        {"image with comments",
         [](const Ref<Connection>& con) {
             const Ref<cImage> image = New<cImage>();
             image->URL = "a.dcm";
             image->addComment("first", "a", Date{}, false);
             image->addComment("second", "a", Date{}, false);
             image->SaveEx(false, con);
             image->CRC = "new";
             image->Save(con);
         }},
        {"study",
         [](const Ref<Connection>& con) {
             const Ref<cStudy> study = New<cStudy>();
             study->instanceUID = "1.2.3";
             study->savestudy(false, con);
         }},
        {"series",
         [](const Ref<Connection>& con) {
             const Ref<cSerie> series = New<cSerie>();
             series->instanceUID = "1.2.4";
             series->studyID = 5;
             series->SaveSeries(false, con);
         }},
        {"card with placed images",
         [](const Ref<Connection>& con) {
             const Ref<cImagecard> card = New<cImagecard>();
             for (const Long image : {11, 12}) {
                 const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
                 placed->ImageID = image;
                 const Ref<cImageManipulation> step = New<cImageManipulation>();
                 step->ManipulationType = ManRotate;
                 placed->Manipulations->Add(step);
                 card->ImagecardAttributes->Add(placed);
             }
             card->Save(con);
         }},
        {"template with slots",
         [](const Ref<Connection>& con) {
             const Ref<cTemplate> layout = New<cTemplate>();
             layout->TCName = "Two";
             for (int i = 0; i < 2; ++i) layout->TemplateAttributes->Add(New<cTemplateAttribute>());
             layout->Save(con);
         }},
        {"setting",
         [](const Ref<Connection>& con) {
             const Ref<cGlobalList> setting = New<cGlobalList>();
             setting->ListText = "x";
             setting->Save(con);
         }},
        {"anatomic group",
         [](const Ref<Connection>& con) {
             const Ref<cAnatomicDescription> group = New<cAnatomicDescription>();
             group->ADName = "x";
             group->SaveSGN(con);
         }},
    };
}

TEST_F(KilledServer, ASaveInATransactionLeavesNothingWhateverStatementItIsKilledAt) {
    for (const auto& named : Saves()) {
        const auto& save = named.second;
        SCOPED_TRACE(named.first);
        KillAt(0);
        faulty->BeginTrans();
        save(faulty);
        faulty->RollbackTrans();
        const int statements = calls_ - 1;  // without the begin
        EXPECT_GE(statements, 1);
        const std::vector<String> before = Content();
        for (int call = 1; call <= statements; ++call) {
            SCOPED_TRACE("killed at statement " + CStr(Long{call}));
            KillAt(call + 1);
            faulty->BeginTrans();
            const TextBoxes
                boxes;  // some operations show a failure and return, and a save of a card continues after one
            const Long raised = NumberOf([&] { save(faulty); });
            BeforeEachCall({});
            EXPECT_TRUE(raised == ADODB::ConnectionLost || raised == 0) << raised;
            EXPECT_EQ(NumberOf([&] { faulty->CommitTrans(); }), ADODB::ConnectionLost);
            faulty->RollbackTrans();
            faulty->Close();
            faulty->Open();
            EXPECT_EQ(Content(), before);
        }
        save(faulty);
        EXPECT_NE(Content(), before) << "the connection works again";
    }
}

}  // namespace
}  // namespace OXClass
