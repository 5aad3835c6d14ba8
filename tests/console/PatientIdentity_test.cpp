#include "console/patients/PatientIdentity.h"
#include "console/Output.h"
#include "console/patients/TypedDate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace Console;
using Platform::Date;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

PatientIdentity Named(const std::string& family, const std::string& given) {
    return {.patientID = "4711", .names = {{family, given}}};
}

bool SameName(const PatientIdentity& a, const PatientIdentity& b) {
    EXPECT_EQ(Contradictions(a, b), Contradictions(b, a)) << a.Name() << " / " << b.Name();
    return Contradictions(a, b).empty();
}

TEST(PatientIdentity, SpellingsOfOneNameDoNotContradict) {
    const std::pair<PatientIdentity, PatientIdentity> same[] = {
        {Named("Ek", "Anna"), Named("EK", "anna")},
        {Named("Åkesson", "Lotta"), Named("Akesson", "Lotta")},
        {Named("Müller", "Jürgen"), Named("MULLER", "JURGEN")},
        {Named("Ek", "Anna"), Named("Anna", "Ek")},
        {Named("Ek Anna", ""), Named("Ek", "Anna")},
        {Named("van der Berg", "Jan"), Named("VanDerBerg", "Jan")},
        {Named("O'Brien", "Pat"), Named("O\u2019Brien", "Pat")},
        {Named("O'Brien", "Pat"), Named("OBrien", "Pat")},
        {Named("Ek-Berg", "Anna"), Named("Ek Berg", "Anna")},
        {Named("Ek", "Anna"), Named("Ek", "Anna Maria")},
        {Named("Ek", "A."), Named("Ek", "Anna")},
        {Named("Ek", ""), Named("Ek", "Anna")},
        {Named("Ek", "A Anna"), Named("Ek", "Anna Astrid")},
        {Named("Sørensen", "Bjørn"), Named("Sorensen", "Bjorn")},
        {Named("Şahin", "Işık"), Named("SAHIN", "ISIK")},
        {Named("Παπαδοπούλου", "Ελένη"), Named("ΠΑΠΑΔΟΠΟΥΛΟΥ", "ΕΛΕΝΗ")},
        {Named("", ""), Named("Ek", "Anna")},
    };
    for (const auto& [a, b] : same) EXPECT_TRUE(SameName(a, b)) << a.Name() << " / " << b.Name();
}

TEST(PatientIdentity, DifferentNamesContradict) {
    const std::pair<PatientIdentity, PatientIdentity> different[] = {
        {Named("Ek", "Anna"), Named("Berg", "Nils")}, {Named("Ek", "Anna"), Named("Berg", "Anna")},
        {Named("Ek", "Anna"), Named("Ek", "Berta")},  {Named("Ek", "Anna Maria"), Named("Ek", "Anna Lisa")},
        {Named("Ek", "A"), Named("Ek", "Berta")},     {Named("Ek", "Anna"), Named("Ek-Berg", "Anna")},
        {Named("Anna", "Ek"), Named("Berg", "Anna")}, {Named("Öberg", ""), Named("Åberg", "")},
    };
    for (const auto& [a, b] : different)
        EXPECT_THAT(Contradictions(a, b), ElementsAre(IdentityField::Name)) << a.Name() << " / " << b.Name();
}

TEST(PatientIdentity, OneWritingThatAgreesIsEnough) {
    PatientIdentity file = Named("Yamada", "Tarou");
    file.names.push_back({"山田", "太郎"});
    EXPECT_THAT(Contradictions(file, Named("山田", "太郎")), IsEmpty());
    EXPECT_THAT(Contradictions(file, Named("Yamada", "Tarou")), IsEmpty());
    EXPECT_THAT(Contradictions(file, Named("鈴木", "太郎")), ElementsAre(IdentityField::Name));
}

TEST(PatientIdentity, IssuerBirthDateAndSexAreComparedWhereBothAreKnown) {
    PatientIdentity a = Named("Ek", "Anna"), b = a;
    a.issuer = "Clinic A";
    a.birthDate = Date{29251};
    a.sex = "F";
    EXPECT_THAT(Contradictions(a, b), IsEmpty());
    b.issuer = " CLINIC a ";
    b.birthDate = a.birthDate;
    b.sex = "F";
    EXPECT_THAT(Contradictions(a, b), IsEmpty());
    b.issuer = "B";
    b.birthDate = Date{20214};
    b.sex = "M";
    EXPECT_THAT(Contradictions(a, b), ElementsAre(IdentityField::Issuer, IdentityField::BirthDate, IdentityField::Sex));
    b.sex = "weiblich";
    EXPECT_THAT(Contradictions(a, b), ElementsAre(IdentityField::Issuer, IdentityField::BirthDate))
        << "a sex in other words says nothing";
}

TEST(PatientIdentity, OnlyAKnownNameOrBirthDateConfirms) {
    PatientIdentity a = Named("Ek", "Anna"), b = Named("", "");
    EXPECT_FALSE(Confirms(a, b));
    b.birthDate = a.birthDate = Date{29251};
    EXPECT_TRUE(Confirms(a, b));
    b.names = {{"Berg", "Nils"}};
    EXPECT_FALSE(Confirms(a, b)) << "the same birth date under another name";
    EXPECT_TRUE(SameIssuer(a, b));
    b.issuer = "B";
    EXPECT_FALSE(SameIssuer(a, b));
}

TEST(PatientIdentity, BothPeopleAreShownSideBySideWithoutControlCharacters) {
    PatientIdentity a = Named("Ek", "Anna"), b = Named("Berg\033[2J", "Nils");
    a.sex = b.sex = "F";
    const std::string table = SideBySide(a, "stored as #1", b, "in the file");
    EXPECT_THAT(table, HasSubstr("stored as #1"));
    EXPECT_THAT(table, ::testing::ContainsRegex("Name +Ek, Anna +<> Berg .2J, Nils\n"));
    EXPECT_THAT(table, ::testing::ContainsRegex("Sex +F +F\n"));
    EXPECT_EQ(table.find('\033'), std::string::npos);
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 6);
}

// ---- dates that people type -------------------------------------------------------------------------

TEST(TypedDate, DatesWithOneReadingAreAccepted) {
    for (const char* text : {"1980-01-31", "19800131", "1980/01/31", "1980.1.31", "31.01.1980", "01/31/1980",
                             "31 Jan 1980", "January 31, 1980", "31-jan-1980", " 1980-01-31 "})
        EXPECT_EQ(DateText(TypedDate(text)), "1980-01-31") << text;
    EXPECT_EQ(DateText(TypedDate("05.05.1980")), "1980-05-05") << "both readings are the same day";
}

TEST(TypedDate, TwoReadingsAreBothShown) {
    for (const char* text : {"05.03.1980", "5/3/1980", "05-03-1980"}) {
        try {
            TypedDate(text);
            FAIL() << text;
        } catch (const UserError& refused) {
            EXPECT_THAT(refused.what(), HasSubstr("1980-03-05"));
            EXPECT_THAT(refused.what(), HasSubstr("1980-05-03"));
        }
    }
}

TEST(TypedDate, ATextThatIsNotADateIsRejected) {
    for (const char* text : {"", "soon", "1980", "31.02.1980", "1980-13-01", "31.01.80", "05031980", "12", "1.5",
                             "0000-00-00", "1980-01-31x", "32 Jan 1980", "3 Foo 1980"})
        EXPECT_THROW(TypedDate(text), UserError) << text;
}

}  // namespace
