// The usual tasks of a clinic program, each as one function. Reads and writes the clinic database "clinic.db".
#include "anatomy/RegionCodes.h"
#include "cardlist/cUniCards.h"
#include "cards/cImagecard.h"
#include "cards/cImagecardAttribute.h"
#include "frame/Class1.h"
#include "images/cImages.h"
#include "people/cPatient.h"
#include "platform/adodb/Transaction.h"
#include "platform/runtime/Services.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

#include <cstdio>

using namespace OXClass;

namespace {

/// [open]
Ref<Connection> OpenDatabase() {
    const Ref<Connection> con = New<Connection>();
    con->Open("Provider=SQLite;Data Source=clinic.db");
    return con;
}
/// [open]

/// [messages]
void PrintMessages() {
    TheHost().MsgBox = [](const String& text, Long) { std::fprintf(stderr, "%s\n", text.c_str()); };
}
/// [messages]

/// [patient]
Ref<cPatient> PatientOf(const Ref<Connection>& con, const String& identifier) {
    const Ref<cPatient> patient = New<cPatient>();
    if (patient->LoadOnPatientIDorPDBID(con, identifier, 0) == 1) return patient;
    patient->PatientID = identifier;
    patient->LastName = "Ek";
    patient->FirstName = "Anna";
    patient->Save(con);
    return patient;
}
/// [patient]

/// [change]
void ChangeAddress(const Ref<Connection>& con, const String& identifier, const String& address) {
    const Ref<cPatient> patient = New<cPatient>();
    if (patient->LoadOnPatientIDorPDBID(con, identifier, 0) == 0) return;  // unknown patient
    if (!patient->LoadCompletion().Complete()) return;  // a save would replace what could not be read
    patient->Address = address;
    patient->Save(con);
}
/// [change]

/// [store]
Ref<cSerie> StoreSeries(const Ref<Connection>& con, const cPatient& patient) {
    const Ref<Class1> services = New<Class1>();
    ADODB::Transaction transaction(con);

    const Ref<cStudy> study = New<cStudy>();
    study->instanceUID = services->GetInstanceUID(con);
    study->PatientID = patient.ID;
    study->dateTime = Now();
    study->savestudy(false, con);

    const Ref<cSerie> series = New<cSerie>();
    series->instanceUID = services->GetInstanceUID(con);
    series->studyID = study->ID;
    series->SeriesDateTime = Now();
    series->Modality = "IO";
    series->ImgCount = 2;
    series->SaveSeries(false, con);

    for (const String teeth : {"17,16,15,14,47,46,45,44,", "24,25,26,27,34,35,36,37,"}) {
        const Ref<cImage> image = New<cImage>();
        image->instanceUID = services->GetInstanceUID(con);
        image->PatID = patient.ID;
        image->seriesID = series->ID;
        image->dateTime = Now();
        image->sTeeth = teeth;
        image->AnaRegion = RegionCode::BothJaws;  // bitewing
        image->Save(con);
    }
    transaction.Commit();
    return series;
}
/// [store]

/// [hang]
void Hang(const Ref<Connection>& con, cSerie& series) {
    const Ref<cImages> images = New<cImages>();
    images->LoadAll4Object(con, iootSeries, series.ID);
    const Long layout = series.HangSeries(images, con);
    std::printf("layout %d\n", layout);

    ADODB::Transaction transaction(con);
    for (cImage& image : Each<cImage>(*images)) {
        std::printf("frame %d: teeth %s\n", CInt(image.FrameNumber), image.sTeeth.c_str());
        image.Save(con);
    }
    series.SaveSeries(true, con);
    transaction.Commit();
}
/// [hang]

/// [card]
void ComposeCard(const Ref<Connection>& con, const cPatient& patient) {
    const Ref<cImages> images = New<cImages>();
    images->LoadAll4Object(con, iootPatient, patient.ID);

    const Ref<cImagecard> card = New<cImagecard>();
    card->ICPID = patient.ID;
    card->ICName = "Before the treatment";
    card->ICCreateDate = card->ICLastUpdate = Now();
    card->ICWidth = 1000;
    card->ICHeight = 700;
    double left = 0;
    for (const cImage& image : Each<cImage>(*images)) {
        const Ref<cImagecardAttribute> placed = New<cImagecardAttribute>();
        placed->ImageID = image.ID;
        placed->IAPosX = left;
        placed->IAWidth = placed->IAHeight = 0.5;  // of the canvas
        card->ImagecardAttributes->Add(placed);
        left += 0.5;
    }
    ADODB::Transaction transaction(con);
    card->Save(con);
    transaction.Commit();
}
/// [card]

/// [list]
void PrintCards(const Ref<Connection>& con, const String& identifier) {
    const Ref<cUniCards> cards = New<cUniCards>();
    cards->GetICAndSEList4Patient(con, identifier, 0);
    for (cUniCard& entry : Each<cUniCard>(*cards)) {
        const bool isSeries = entry.CardType() == ctseries;
        Long key = isSeries ? entry.Series->ID : entry.Imagecard->ICID;
        entry.LoadCardFull(con, "", key, entry.CardType());
        std::printf("%s: %d images\n", entry.Key.c_str(), entry.colImages->Count());
    }
}
/// [list]

/// [error]
bool TryToPrintCards(const Ref<Connection>& con, const String& identifier) {
    try {
        PrintCards(con, identifier);
        return true;
    } catch (const Error& failure) {
        std::fprintf(stderr, "%d %s (%s)\n", failure.Number, failure.Description.c_str(), failure.Source.c_str());
        return false;
    }
}
/// [error]

}  // namespace

int main() {
    PrintMessages();
    const Ref<Connection> con = OpenDatabase();
    const Ref<cPatient> patient = PatientOf(con, "19800131-1234");
    ChangeAddress(con, "19800131-1234", "Storgatan 1");
    const Ref<cSerie> series = StoreSeries(con, *patient);
    Hang(con, *series);
    ComposeCard(con, *patient);
    return TryToPrintCards(con, "19800131-1234") ? 0 : 1;
}
