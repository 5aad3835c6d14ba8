#include "platform/adodb/Recordset.h"

#include "kit/Database.h"
#include "platform/runtime/Collection.h"

namespace {

using namespace ADODB;
using namespace Platform;
using TestKit::FailureOf;

class RecordsetTest : public TestKit::WithDatabase {
protected:
    RecordsetTest() {
        Run("INSERT INTO Clinic_T (ClinicID, ClinicName, City) VALUES "
            "(1,'A','Lund'),(2,'B',NULL),(3,'C','Ystad')");
    }

    Ref<Recordset> Open(const String& statement = "SELECT * FROM Clinic_T ORDER BY ClinicID",
                        CursorLocationEnum location = adUseClient, LockTypeEnum lock = adLockOptimistic,
                        CursorTypeEnum cursor = adOpenKeyset) {
        Ref<Recordset> rs = New<Recordset>();
        rs->SetCursorLocation(location);
        rs->Open(statement, con, cursor, lock, adCmdText);
        return rs;
    }

    static Long NumberOf(const std::function<void()>& call) { return FailureOf(call).Number; }
    static String Name(const Ref<Recordset>& rs) { return CStr(rs->Fields("ClinicName").Value()); }
};

TEST_F(RecordsetTest, TheFirstRowIsCurrentAfterOpen) {
    const Ref<Recordset> rs = Open();
    EXPECT_FALSE(rs->Eof());
    EXPECT_FALSE(rs->Bof());
    EXPECT_EQ(Name(rs), "A");
    EXPECT_EQ(rs->AbsolutePosition(), 1);
    EXPECT_EQ(rs->RecordCount(), 3);
    const Ref<Recordset> none = Open("SELECT * FROM Clinic_T WHERE ClinicID=9");
    EXPECT_TRUE(none->Eof() && none->Bof());
    EXPECT_EQ(none->RecordCount(), 0);
    EXPECT_EQ(none->AbsolutePosition(), adPosUnknown);
}

TEST_F(RecordsetTest, MovingFollowsTheTableOfEnds) {
    const Ref<Recordset> rs = Open();
    rs->MoveNext();
    rs->MoveNext();
    rs->MoveNext();
    EXPECT_TRUE(rs->Eof());
    EXPECT_EQ(rs->AbsolutePosition(), adPosEOF);
    EXPECT_EQ(NumberOf([&] { rs->MoveNext(); }), adErrNoCurrentRecord);
    EXPECT_EQ(NumberOf([&] { rs->Move(0); }), adErrNoCurrentRecord);
    EXPECT_EQ(NumberOf([&] { rs->Fields(0).Value(); }), adErrNoCurrentRecord);
    rs->MovePrevious();
    EXPECT_EQ(Name(rs), "C");
    rs->MoveFirst();
    rs->MovePrevious();
    EXPECT_TRUE(rs->Bof());
    EXPECT_EQ(rs->AbsolutePosition(), adPosBOF);
    EXPECT_EQ(NumberOf([&] { rs->MovePrevious(); }), adErrNoCurrentRecord);
    rs->Move(2);
    EXPECT_EQ(Name(rs), "B");
    rs->Move(-9);
    EXPECT_TRUE(rs->Bof());
    rs->MoveLast();
    EXPECT_EQ(Name(rs), "C");
    const Ref<Recordset> none = Open("SELECT * FROM Clinic_T WHERE ClinicID=9");
    EXPECT_EQ(NumberOf([&] { none->MoveFirst(); }), adErrNoCurrentRecord);
    EXPECT_EQ(NumberOf([&] { none->MoveLast(); }), adErrNoCurrentRecord);
    EXPECT_EQ(NumberOf([&] { none->MoveNext(); }), adErrNoCurrentRecord);
}

TEST_F(RecordsetTest, AForwardOnlyServerCursorKnowsNoCountAndNoWayBack) {
    const Ref<Recordset> rs = Open("SELECT * FROM Clinic_T", adUseServer, adLockReadOnly, adOpenForwardOnly);
    EXPECT_EQ(rs->RecordCount(), -1);
    EXPECT_EQ(NumberOf([&] { rs->MovePrevious(); }), adErrIllegalOperation);
    EXPECT_EQ(NumberOf([&] { rs->MoveLast(); }), adErrIllegalOperation);
    rs->MoveNext();
    rs->MoveFirst();
    EXPECT_EQ(Name(rs), "A");
}

TEST_F(RecordsetTest, TheConnectionsCursorLocationHoldsUnlessTheRecordsetHasItsOwn) {
    con->CursorLocation = adUseClient;
    const Ref<Recordset> rs = New<Recordset>();
    rs->Open("SELECT * FROM Clinic_T", con);
    EXPECT_EQ(rs->CursorType(), adOpenStatic);
    EXPECT_EQ(rs->RecordCount(), 3);
    EXPECT_EQ(con->Execute("SELECT * FROM Clinic_T")->RecordCount(), 3);
    EXPECT_EQ(Open("SELECT 1", adUseServer, adLockReadOnly, adOpenForwardOnly)->RecordCount(), -1);
}

TEST_F(RecordsetTest, AClientCursorBecomesStaticAndOptimistic) {
    const Ref<Recordset> rs = Open("SELECT * FROM Clinic_T", adUseClient, adLockPessimistic, adOpenDynamic);
    EXPECT_EQ(rs->CursorType(), adOpenStatic);
    EXPECT_EQ(rs->LockType(), adLockOptimistic);
    rs->Close();
    EXPECT_EQ(rs->CursorType(), adOpenDynamic) << "closed, it tells what was asked for";
}

TEST_F(RecordsetTest, ColumnsAreFoundByNameWithoutCaseAndByOrdinalFromZero) {
    OXCLASS_ONLY_IF(TestKit::KeepsCaseOfNames());
    const Ref<Recordset> rs = Open();
    EXPECT_EQ(CStr(rs->Fields("cLINICname").Value()), "A");
    EXPECT_EQ(rs->Fields("cLINICname").Name(), "ClinicName");
    EXPECT_EQ(CLng(rs->Fields(0).Value()), 1);
    EXPECT_EQ(NumberOf([&] { rs->Fields("Nothing"); }), adErrItemNotFound);
    EXPECT_EQ(NumberOf([&] { rs->Fields("Clinic_T.ClinicName"); }), adErrItemNotFound);
    EXPECT_EQ(NumberOf([&] { rs->Fields("0"); }), adErrItemNotFound);
    EXPECT_EQ(NumberOf([&] { rs->Fields(99); }), adErrItemNotFound);
    EXPECT_EQ(NumberOf([&] { rs->Fields(-1); }), adErrItemNotFound);
    EXPECT_TRUE(rs->HasField("city"));
    EXPECT_FALSE(rs->HasField("town"));
    EXPECT_EQ(CStr(rs->FieldOf("city").Value()), "Lund");
    EXPECT_EQ(CStr(rs->FieldOf("CITY").Value()), "Lund");
    EXPECT_EQ(NumberOf([&] { rs->FieldOf("town"); }), adErrItemNotFound);
}

TEST_F(RecordsetTest, OfTwoColumnsOfOneNameTheFirstIsFound) {
    const Ref<Recordset> rs = Open("SELECT 1 AS x, 2 AS X");
    EXPECT_EQ(CLng(rs->Fields("x").Value()), 1);
    EXPECT_EQ(CLng(rs->Fields(1).Value()), 2);
    const Ref<Recordset> umlauts = Open("SELECT 1 AS \"Ä\", 2 AS \"ä\", 3 AS \"K\"");
    EXPECT_EQ(CLng(umlauts->Fields("ä").Value()), 1);
    EXPECT_EQ(CLng(umlauts->Fields("Ä").Value()), 1);
    EXPECT_EQ(CLng(umlauts->Fields("\u212A").Value()), 3) << "the sign of the unit Kelvin, whose small letter is k";
    EXPECT_EQ(CLng(umlauts->FieldOf("k").Value()), 3);
    EXPECT_EQ(NumberOf([&] { umlauts->Fields("ö"); }), adErrItemNotFound);
    EXPECT_EQ(NumberOf([&] { Field(*umlauts, -1).IsNull(); }), adErrItemNotFound);
}

TEST_F(RecordsetTest, ANameBuiltAtRunTimeIsFoundLikeALiteral) {
    const Ref<Recordset> rs = Open();
    for (int round = 0; round < 3; ++round)
        for (const char* name : {"ClinicID", "ClinicName", "City", "Nothing"}) {
            String built;
            for (const char* c = name; *c; ++c) built += *c;
            EXPECT_EQ(rs->HasField(built), built != "Nothing") << built;
        }
}

TEST_F(RecordsetTest, ValuesHaveTheTypesOfTheirColumns) {
    OXCLASS_ONLY_IF(TestKit::KeepsValuesOfOtherTypes());
    Run("INSERT INTO ImageBild_T (PatientID, DateCaptured_SD, ExposureTime_F, GraphicURL_NVC) "
        "VALUES (7,'2026-01-02 03:04:05',1.5,'x')");
    Run("INSERT INTO ImageBild_T (PatientID, DateCaptured_SD, ExposureTime_F) VALUES ('12abc','no "
        "date',NULL)");
    const Ref<Recordset> rs = Open(
        "SELECT PatientID, DateCaptured_SD, ExposureTime_F, GraphicURL_NVC, 5 AS n, "
        "5000000000 AS big FROM ImageBild_T");
    EXPECT_EQ(rs->Fields(0).Value(), Variant(Long{7}));
    EXPECT_EQ(rs->Fields(1).Value(), Variant(DateFrom({2026, 1, 2, 3, 4, 5})));
    EXPECT_EQ(rs->Fields(2).Value(), Variant(1.5));
    EXPECT_EQ(rs->Fields(3).Value(), Variant("x"));
    EXPECT_EQ(rs->Fields(4).Value(), Variant(Long{5}));
    EXPECT_EQ(rs->Fields(5).Value(), Variant(std::int64_t{5000000000}));
    EXPECT_EQ(rs->Fields(1).Type(), adDate);
    EXPECT_EQ(rs->Fields(3).Type(), adVarWChar);
    rs->MoveNext();
    EXPECT_EQ(rs->Fields(0).Value(), Variant("12abc")) << "what doesn't fit the type is given as it is stored";
    EXPECT_EQ(rs->Fields(1).Value(), Variant("no date"));
    EXPECT_EQ(rs->Fields(2).Value(), Variant(Null{}));
}

TEST_F(RecordsetTest, ReadingAsATypeReturnsTheConvertedValue) {
    Run("INSERT INTO ImageBild_T (PatientID, DateCaptured_SD, ExposureTime_F, GraphicURL_NVC, RootId) "
        "VALUES (7,'2026-01-02',2.5,'12',NULL)");
    const Ref<Recordset> rs = Open(
        "SELECT PatientID, DateCaptured_SD, ExposureTime_F, GraphicURL_NVC, RootId, "
        "5000000000 AS big FROM ImageBild_T");
    for (Long i = 0; i < rs->FieldCount(); ++i) {
        const auto same = [&]<class T>(T) {
            const Error expected = FailureOf([&] { To<T>(rs->Fields(i).Value()); });
            EXPECT_EQ(FailureOf([&] { rs->Fields(i).As<T>(); }).Number, expected.Number) << i;
            if (expected.Number == 0) {
                EXPECT_EQ(rs->Fields(i).As<T>(), To<T>(rs->Fields(i).Value())) << i;
            }
        };
        same(Long{});
        same(String{});
        same(double{});
        same(Date{});
        same(false);
    }
}

TEST_F(RecordsetTest, ASnapshotDoesNotSeeLaterChanges) {
    const Ref<Recordset> rs = Open();
    Run("UPDATE Clinic_T SET ClinicName='Z'");
    Run("DELETE FROM Clinic_T WHERE ClinicID=3");
    EXPECT_EQ(Name(rs), "A");
    EXPECT_EQ(rs->RecordCount(), 3);
    rs->Requery();
    EXPECT_EQ(Name(rs), "Z");
    EXPECT_EQ(rs->RecordCount(), 2);
}

TEST_F(RecordsetTest, ADisconnectedRecordsetStaysReadable) {
    OXCLASS_ONLY_IF(TestKit::IsOwnConnection());
    const Ref<Recordset> rs = Open();
    rs->SetActiveConnection(nullptr);
    rs->MoveNext();
    EXPECT_EQ(Name(rs), "B");
    EXPECT_EQ(NumberOf([&] { rs->Requery(); }), adErrInvalidConnection);
    EXPECT_EQ(NumberOf([&] { rs->Collect("City", "x"); }), adErrInvalidConnection);
    rs->SetActiveConnection(con);
    rs->Collect("City", "Malmö");
    rs->Update();
    EXPECT_EQ(Ask("SELECT City FROM Clinic_T WHERE ClinicID=2"), Variant("Malmö"));
    const Ref<Recordset> server = Open("SELECT 1", adUseServer, adLockReadOnly, adOpenForwardOnly);
    EXPECT_EQ(NumberOf([&] { server->SetActiveConnection(nullptr); }), adErrObjectOpen);
}

TEST_F(RecordsetTest, UpdateNamesChangedColumnsOnlyAndKeepsTheRowCurrent) {
    const Ref<Recordset> rs = Open();
    rs->Collect("ClinicName", "A2");
    rs->Collect("City", "Lund");  // the value that it has already
    EXPECT_EQ(rs->EditMode(), adEditInProgress);
    Run("UPDATE Clinic_T SET City='Elsewhere' WHERE ClinicID=1");
    rs->Update();
    EXPECT_EQ(rs->EditMode(), adEditNone);
    EXPECT_EQ(Name(rs), "A2");
    EXPECT_EQ(Ask("SELECT City FROM Clinic_T WHERE ClinicID=1"), Variant("Elsewhere"))
        << "a column that wasn't changed here isn't written";
    rs->Collect("ClinicName", "A3");
    rs->Update();
    EXPECT_EQ(Ask("SELECT ClinicName FROM Clinic_T WHERE ClinicID=1"), Variant("A3"));
}

TEST_F(RecordsetTest, ARowThatAnotherClientChangedRaisesAndKeepsTheEdit) {
    const Ref<Recordset> rs = Open();
    Run("UPDATE Clinic_T SET ClinicName='theirs' WHERE ClinicID=1");
    rs->Collect("ClinicName", "mine");
    EXPECT_EQ(NumberOf([&] { rs->Update(); }), ConcurrencyViolation);
    EXPECT_EQ(rs->EditMode(), adEditInProgress);
    EXPECT_EQ(NumberOf([&] { rs->MoveNext(); }), ConcurrencyViolation) << "a move posts the edit first";
    EXPECT_EQ(NumberOf([&] { rs->Close(); }), adErrIllegalOperation);
    rs->CancelUpdate();
    EXPECT_EQ(Name(rs), "A");
    rs->MoveNext();
    Run("DELETE FROM Clinic_T WHERE ClinicID=2");
    EXPECT_EQ(NumberOf([&] { rs->Delete(); }), ConcurrencyViolation);
}

TEST_F(RecordsetTest, ANewRowIsCurrentAtTheEndWithItsCounter) {
    const Ref<Recordset> rs = Open();
    rs->AddNew();
    EXPECT_EQ(rs->EditMode(), adEditAdd);
    EXPECT_TRUE(rs->Fields("City").IsNull());
    rs->Collect("ClinicName", "Ω");
    EXPECT_EQ(Name(rs), "Ω");
    rs->Update();
    EXPECT_EQ(CLng(rs->Fields("ClinicID").Value()), 4);
    EXPECT_EQ(rs->RecordCount(), 4);
    rs->MoveNext();
    EXPECT_TRUE(rs->Eof());
    EXPECT_EQ(Ask("SELECT ClinicName FROM Clinic_T WHERE ClinicID=4"), Variant("Ω"));
}

TEST_F(RecordsetTest, ANewRowCanBeDroppedAndANewOnePostsTheOneBefore) {
    const Ref<Recordset> rs = Open();
    rs->MoveNext();
    rs->AddNew();
    rs->Collect("ClinicName", "x");
    rs->CancelUpdate();
    EXPECT_EQ(Name(rs), "B");
    rs->AddNew();
    rs->AddNew();
    rs->Update();
    EXPECT_EQ(CLng(Ask("SELECT count(*) FROM Clinic_T")), 5) << "rows without a value are made of defaults";
}

TEST_F(RecordsetTest, ADeletedRowStaysCurrentUntilAMove) {
    const Ref<Recordset> rs = Open();
    rs->MoveNext();
    rs->Delete();
    EXPECT_FALSE(rs->Eof() || rs->Bof());
    EXPECT_EQ(rs->RecordCount(), 2);
    EXPECT_EQ(NumberOf([&] { rs->Fields(0).Value(); }), DeletedRow);
    EXPECT_EQ(NumberOf([&] { rs->Delete(); }), DeletedRow);
    rs->MoveNext();
    EXPECT_EQ(Name(rs), "C");
    rs->Delete();
    rs->MovePrevious();
    EXPECT_EQ(Name(rs), "A");
}

TEST_F(RecordsetTest, AfterTheLastRowWasDeletedMoveFirstFindsNoRowOnce) {
    const Ref<Recordset> rs = Open("SELECT * FROM Clinic_T WHERE ClinicID=1");
    rs->Delete();
    EXPECT_FALSE(rs->Eof());
    rs->MoveFirst();
    EXPECT_TRUE(rs->Eof() && rs->Bof());
    EXPECT_EQ(NumberOf([&] { rs->MoveFirst(); }), adErrNoCurrentRecord);
    const Ref<Recordset> other = Open("SELECT * FROM Clinic_T WHERE ClinicID=2");
    other->Delete();
    other->MoveNext();
    EXPECT_TRUE(other->Eof() && other->Bof());
}

TEST_F(RecordsetTest, ChangesOfReadOnlyJoinedOrComputedRowsRaise3251) {
    const Ref<Recordset> readOnly = Open("SELECT * FROM Clinic_T", adUseClient, adLockReadOnly);
    EXPECT_EQ(NumberOf([&] { readOnly->Collect("City", "x"); }), adErrFeatureNotAvailable);
    EXPECT_EQ(NumberOf([&] { readOnly->AddNew(); }), adErrFeatureNotAvailable);
    EXPECT_EQ(NumberOf([&] { readOnly->Delete(); }), adErrFeatureNotAvailable);
    const Ref<Recordset> joined =
        Open("SELECT c.*, s.* FROM Clinic_T c LEFT JOIN Study_T s ON s.Study_ID = c.ClinicID");
    EXPECT_EQ(NumberOf([&] { joined->Collect("City", "x"); }), adErrFeatureNotAvailable);
    const Ref<Recordset> computed = Open("SELECT ClinicID, City || 'x' AS y FROM Clinic_T");
    EXPECT_EQ(NumberOf([&] { computed->Collect("y", "x"); }), adErrFeatureNotAvailable);
    const Ref<Recordset> keyless = Open("SELECT City FROM Clinic_T");
    keyless->Collect("City", "x");
    EXPECT_EQ(NumberOf([&] { keyless->Update(); }), Failed);
    EXPECT_EQ(NumberOf([&] { Open()->Delete(adAffectAll); }), adErrInvalidArgument);
}

TEST_F(RecordsetTest, ValuesThatAColumnCannotTakeRaiseAtTheAssignment) {
    const Ref<Recordset> rs = Open();
    EXPECT_EQ(NumberOf([&] { rs->Collect("City", String(51, 'x')); }), MultipleStepFailed);
    EXPECT_EQ(NumberOf([&] { rs->Collect("ClinicID", "no number"); }), adErrDataConversion);
    EXPECT_EQ(NumberOf([&] { rs->Collect("ClinicID", 1e12); }), MultipleStepFailed);
    EXPECT_EQ(NumberOf([&] { rs->Collect("City", New<Collection>()); }), adErrDataConversion);
    EXPECT_EQ(rs->EditMode(), adEditNone) << "a refused value starts no edit";
    String wide;
    for (int i = 0; i < 50; ++i) wide += "å";
    rs->Collect("City", wide);
    rs->Collect("ClinicName", Null{});
    rs->Collect("Telephone", Long{-5});
    rs->Update();
    EXPECT_EQ(Ask("SELECT City FROM Clinic_T WHERE ClinicID=1"), Variant(wide)) << "widths count characters";
    EXPECT_EQ(Ask("SELECT Telephone FROM Clinic_T WHERE ClinicID=1"), Variant("-5"));
}

TEST_F(RecordsetTest, AConstraintLeavesTheEditPending) {
    const Ref<Recordset> rs = Open();
    rs->AddNew();
    rs->Collect("ClinicID", Long{1});
    EXPECT_EQ(NumberOf([&] { rs->Update(); }), IntegrityViolation);
    EXPECT_EQ(rs->EditMode(), adEditAdd);
    rs->Collect("ClinicID", Long{77});
    rs->Update();
    EXPECT_EQ(CLng(rs->Fields("ClinicID").Value()), 77);
}

TEST_F(RecordsetTest, AClosedRecordsetRejectsAlmostEveryMember) {
    const Ref<Recordset> rs = Open();
    rs->Close();
    for (const auto& call : std::vector<std::function<void()>>{
             [&] { rs->Eof(); }, [&] { rs->Bof(); }, [&] { rs->MoveFirst(); }, [&] { rs->RecordCount(); },
             [&] { rs->AddNew(); }, [&] { rs->Update(); }, [&] { rs->Delete(); }, [&] { rs->Close(); },
             [&] { rs->Fields("City"); }, [&] { rs->Requery(); }})
        EXPECT_EQ(NumberOf(call), adErrObjectClosed);
    EXPECT_EQ(rs->State(), adStateClosed);
    rs->Open("SELECT 1", con);
    EXPECT_EQ(NumberOf([&] { rs->Open("SELECT 1", con); }), adErrObjectOpen);
    EXPECT_EQ(NumberOf([&] { rs->SetCursorLocation(adUseServer); }), adErrObjectOpen);
}

TEST_F(RecordsetTest, AFieldOutlivesTheRowsThatItWasTakenFromWithoutHarm) {
    const Ref<Recordset> rs = Open();
    Field last = rs->Fields(rs->FieldCount() - 1);
    rs->Close();
    EXPECT_EQ(NumberOf([&] { last.Value(); }), adErrObjectClosed);
    EXPECT_EQ(NumberOf([&] { last.As<String>(); }), adErrObjectClosed);
    EXPECT_EQ(NumberOf([&] { last.Name(); }), adErrObjectClosed);
    EXPECT_EQ(NumberOf([&] { last.OriginalValue(); }), adErrObjectClosed);
    rs->Open("SELECT 1", con);
    EXPECT_EQ(NumberOf([&] { last.Value(); }), adErrItemNotFound);
    EXPECT_EQ(NumberOf([&] { last.IsNull(); }), adErrItemNotFound);
    EXPECT_EQ(NumberOf([&] { last.Name(); }), adErrItemNotFound);
}

TEST_F(RecordsetTest, ANewRowOnNoRowsIsNeitherBofNorEof) {
    const Ref<Recordset> rs = Open("SELECT * FROM Clinic_T WHERE ClinicID=99");
    rs->AddNew();
    EXPECT_FALSE(rs->Bof() || rs->Eof());
    EXPECT_EQ(rs->AbsolutePosition(), 1);
    rs->CancelUpdate();
    EXPECT_TRUE(rs->Bof() && rs->Eof());
}

TEST_F(RecordsetTest, AKeyThatIsTheRowsNumberIsWrittenBackToo) {
    const Ref<Recordset> rs = Open("SELECT * FROM Root_T");
    rs->AddNew();
    rs->Collect("RootDirectory", "x");
    rs->Update();
    EXPECT_EQ(CLng(rs->Fields("RootID").Value()), 1);
    rs->Collect("RootDirectory", "y");
    rs->Update();
    EXPECT_EQ(Ask("SELECT RootDirectory FROM Root_T WHERE RootID=1"), Variant("y"));
}

TEST_F(RecordsetTest, OpenTakesNoRequestForNoRecords) {
    EXPECT_EQ(NumberOf([&] {
                  New<Recordset>()->Open("SELECT 1", con, adOpenForwardOnly, adLockReadOnly, adExecuteNoRecords);
              }),
              adErrInvalidArgument);
}

TEST_F(RecordsetTest, AnActionStatementLeavesItClosed) {
    const Ref<Recordset> rs = New<Recordset>();
    rs->Open("DELETE FROM Clinic_T", con);
    EXPECT_EQ(rs->State(), adStateClosed);
    EXPECT_EQ(CLng(Ask("SELECT count(*) FROM Clinic_T")), 0);
}

TEST_F(RecordsetTest, DatesAreStoredInTheirTextForm) {
    Run("INSERT INTO Series_T (SeriesDateTime) VALUES ('2020-01-01 00:00:00')");
    const Ref<Recordset> rs = Open("SELECT * FROM Series_T");
    rs->Collect("SeriesDateTime", DateFrom({2026, 5, 6, 7, 8, 9}));
    rs->Update();
    EXPECT_EQ(Ask("SELECT SeriesDateTime || '' FROM Series_T"), Variant("2026-05-06 07:08:09"));
    EXPECT_EQ(rs->Fields("SeriesDateTime").Value(), Variant(DateFrom({2026, 5, 6, 7, 8, 9})));
    rs->Collect("SeriesDateTime", "2027-01-01");
    rs->Update();
    EXPECT_EQ(Ask("SELECT SeriesDateTime || '' FROM Series_T"), Variant("2027-01-01 00:00:00"));
}

}  // namespace
