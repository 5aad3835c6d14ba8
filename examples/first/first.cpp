#include "people/cPatient.h"

#include <cstdio>

using namespace OXClass;

int main() {
    const Ref<Connection> con = New<Connection>();
    con->Open("Provider=SQLite;Data Source=clinic.db");  // made by: oxclass init clinic.db

    const Ref<cPatient> patient = New<cPatient>();
    patient->PatientID = "19800131-1234";
    patient->LastName = "Ek";
    patient->FirstName = "Anna";
    patient->Save(con);

    const Ref<cPatient> again = New<cPatient>();
    if (again->LoadOnPatientIDorPDBID(con, "19800131-1234", 0) == 0) return 1;
    std::printf("%d: %s, %s\n", again->ID, again->LastName.c_str(), again->FirstName.c_str());
}
