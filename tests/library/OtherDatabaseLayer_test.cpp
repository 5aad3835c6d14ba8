#include "images/cImage.h"
#include "kit/Database.h"
#include "kit/NamedObject.h"
#include "people/cDoctor.h"
#include "series/cStudy.h"

/// The classes on test doubles of the connections and recordsets of the system's own database layer. They have the
/// members that the classes use, and behave as that layer where it differs from ours: a column of a new row is empty
/// before it is assigned, a deleted row can't be read, a forward-only cursor has no count, columns of a join have the
/// name of their table.
namespace {

using namespace OXClass;
using namespace Platform;
using testing::ElementsAre;
using TestKit::NamedCall;

using RowOfNames = std::map<String, Variant>;

constexpr Long noCurrentRow = 3021, noColumn = 3265, closed = 3704, notRestartable = static_cast<Long>(0x80040E18);

[[noreturn]] void RaiseAs(Long number) { throw Error(number, "ADODB.Recordset", "as the system's layer"); }

/// What a connection is asked for, in its order, and the rows that it returns.
struct OtherLayer {
    std::vector<RowOfNames> rows;
    std::vector<String> names;  ///< of the columns
    String counter;             ///< the column that the database numbers
    Long next = 41;
    std::vector<String> calls;
};

/// A recordset of the other layer.
class OtherRecordset : public std::enable_shared_from_this<OtherRecordset> {
public:
    explicit OtherRecordset(OtherLayer& layer) : layer_(layer) {}

    Ref<Object> Named() {
        auto self = shared_from_this();
        const auto member = [self](auto body) { return [self, body](NamedCall& call) { return body(*self, call); }; };
        return TestKit::NamedObject({
            {"State", member([](auto& rs, auto&) { return Variant(Long{rs.open_}); })},
            {"CursorLocation", member([](auto& rs, NamedCall& call) {
                 rs.location_ = CLng(call.arguments[0]);
                 return Variant();
             })},
            {"Open", member([](auto& rs, NamedCall& call) { return rs.Open(call.arguments); })},
            {"EOF", member([](auto& rs, auto&) {
                 rs.RequireOpen();
                 return Variant(!rs.adding_ && rs.position_ >= rs.layer_.rows.size());
             })},
            {"BOF", member([](auto& rs, auto&) { return Variant(!rs.adding_ && rs.layer_.rows.empty()); })},
            {"RecordCount", member([](auto& rs, auto&) {
                 constexpr Long client = 3;
                 return Variant(rs.location_ == client ? static_cast<Long>(rs.layer_.rows.size()) : -1);
             })},
            {"MoveNext", member([](auto& rs, auto&) {
                 if (rs.position_ >= rs.layer_.rows.size()) RaiseAs(noCurrentRow);
                 ++rs.position_;
                 return Variant();
             })},
            {"MoveFirst", member([](auto&, auto&) -> Variant { RaiseAs(notRestartable); })},
            {"Fields", member([](auto& rs, NamedCall& call) { return rs.FieldOf(CStr(call.arguments[0])); })},
            {"Collect", member([](auto& rs, NamedCall& call) {
                 rs.RequireColumn(CStr(call.arguments[0]));
                 rs.assigned_[LCase(CStr(call.arguments[0]))] = call.arguments[1];
                 return Variant();
             })},
            {"AddNew", member([](auto& rs, auto&) {
                 rs.layer_.calls.emplace_back("AddNew");
                 rs.adding_ = true;
                 return Variant();
             })},
            {"Update", member([](auto& rs, auto&) { return rs.Update(); })},
            {"Delete", member([](auto& rs, NamedCall& call) {
                 rs.layer_.calls.push_back("Delete " + CStr(call.arguments[0]));
                 rs.deleted_ = true;
                 return Variant();
             })},
            {"Close", member([](auto& rs, auto&) {
                 rs.RequireOpen();
                 rs.open_ = false;
                 rs.layer_.calls.emplace_back("Close");
                 return Variant();
             })},
        });
    }

    Variant Open(const std::vector<Variant>& given) {
        layer_.calls.push_back("Open " + CStr(given[0]) + " " + CStr(given[2]) + " " + CStr(given[3]) + " " +
                               CStr(given[4]) + " at " + CStr(location_));
        EXPECT_TRUE(given[1].Is<Empty>()) << "the recordset has its connection";
        open_ = true;
        return {};
    }

private:
    void RequireOpen() const {
        if (!open_) RaiseAs(closed);
    }
    void RequireColumn(const String& name) const {
        for (const String& known : layer_.names)
            if (EqualsIgnoringCase(known, name)) return;
        RaiseAs(noColumn);
    }

    /// Returns a column, which always shows the row that is current when it is read.
    Variant FieldOf(const String& name) {
        RequireOpen();
        RequireColumn(name);
        auto self = shared_from_this();
        return TestKit::NamedObject({{"Value", [self, name](NamedCall&) { return self->ValueOf(LCase(name)); }}});
    }

    Variant ValueOf(const String& name) const {
        if (deleted_) RaiseAs(noCurrentRow);
        if (assigned_.contains(name)) return assigned_.at(name);
        if (adding_) return Empty{};
        if (position_ >= layer_.rows.size()) RaiseAs(noCurrentRow);
        const RowOfNames& row = layer_.rows[position_];
        return row.contains(name) ? row.at(name) : Variant(Null{});
    }

    Variant Update() {
        layer_.calls.emplace_back("Update");
        if (adding_) {
            layer_.rows.emplace_back();
            position_ = layer_.rows.size() - 1;
            layer_.rows.back()[layer_.counter] = layer_.next++;
        }
        for (const auto& [name, value] : assigned_) layer_.rows[position_][name] = value;
        assigned_.clear();
        adding_ = false;
        return {};
    }

    OtherLayer& layer_;
    Long location_ = 2;
    bool open_ = false, adding_ = false, deleted_ = false;
    std::size_t position_ = 0;
    RowOfNames assigned_;
};

class OtherDatabaseLayer : public testing::Test {
protected:
    /// Returns a connection of the other layer as the classes receive it.
    Ref<ADODB::Connection> Connect() {
        return To<Ref<ADODB::Connection>>(Variant(TestKit::NamedObject({
            {"Execute",
             [this](NamedCall& call) {
                 layer.calls.push_back("Execute " + CStr(call.arguments[0]));
                 return Variant(Ref<Object>());
             }},
            {"NewRecordset", [this](NamedCall&) { return Variant(std::make_shared<OtherRecordset>(layer)->Named()); }},
        })));
    }

    OtherLayer layer;
    TestKit::TextBoxes boxes;
};

TEST_F(OtherDatabaseLayer, ANewRowIsWrittenByTheOtherRecordsetAndItsCounterIsReadBack) {
    layer.names = {"drID",         "DrContactInfo_NVC", "DrFirstName_NVC", "DrLastName_NVC", "DrName_NVC",
                   "DrPrefix_NVC", "DrType_INT",        "DrEMail",         "drGUID",         "DrLogin"};
    layer.counter = "drid";
    const Ref<cDoctor> doctor = New<cDoctor>();
    doctor->DrLastName = "Åsa";
    EXPECT_TRUE(doctor->SaveDoctor(Connect()));
    EXPECT_EQ(doctor->drID, 41);
    EXPECT_THAT(layer.calls,
                ElementsAre("Open SELECT * FROM Doctor_T WHERE DrID =0 1 3 1 at 3", "AddNew", "Update", "Close"));
    EXPECT_EQ(layer.rows[0]["drlastname_nvc"], Variant("Åsa"));
    EXPECT_TRUE(boxes.shown.empty());

    layer.calls.clear();
    doctor->DrFirstName = "Ek";
    EXPECT_TRUE(doctor->SaveDoctor(Connect()));
    EXPECT_THAT(layer.calls, ElementsAre("Open SELECT * FROM Doctor_T WHERE DrID =41 1 3 1 at 3", "Update", "Close"));
    EXPECT_EQ(layer.rows.size(), 1U);
}

TEST_F(OtherDatabaseLayer, AColumnThatTheOtherTableLacksIsLeftOut) {
    layer.names = {"Study_ID", "StudyInstanceUID"};
    layer.counter = "study_id";
    const Ref<cStudy> study = New<cStudy>();
    study->instanceUID = "1.2.3";
    EXPECT_TRUE(study->savestudy(true, Connect()));
    EXPECT_EQ(study->ID, 41);
    EXPECT_EQ(layer.rows[0]["studyinstanceuid"], Variant("1.2.3"));
}

TEST_F(OtherDatabaseLayer, ADeletedRowIsNotReadAgain) {
    layer.names = {"Study_ID"};
    layer.rows = {{{"study_id", Long{5}}}};
    const Ref<cStudy> study = New<cStudy>();
    study->ID = 5;
    study->Delete(Connect());
    EXPECT_THAT(layer.calls,
                ElementsAre("Open select * from Study_T where Study_T.Study_ID=5 1 3 1 at 3", "Delete 1", "Close"));
}

TEST_F(OtherDatabaseLayer, TheCountComesFromAClientCursor) {
    layer.names = {"PatientID"};
    layer.rows = {{{"patientid", Long{1}}}, {{"patientid", Long{2}}}};
    const Ref<cDoctor> doctor = New<cDoctor>();
    EXPECT_EQ(doctor->PatientCount(Connect()), 2);
}

TEST_F(OtherDatabaseLayer, AnImageIsReadFromOtherTypesAndFromColumnsWithTheNameOfTheirTable) {
    layer.names = {"Approved",
                   "Brightness_INT",
                   "Contrast_INT",
                   "DateCaptured_SD",
                   "ExposureTime_F",
                   "GraphicURL_NVC",
                   "HardwareSourcetxt_NVC",
                   "ImageBildID",
                   "ImageType",
                   "Invert_BT",
                   "PatientID",
                   "Responsible_Person_NVC",
                   "ImageBild_T.RootId",
                   "Root_T.RootId",
                   "Status",
                   "RootDirectory",
                   "AnaRegion",
                   "AnaRegionMod",
                   "Laterality",
                   "PriStructure",
                   "MirrRotStatus",
                   "CRC",
                   "DPIY_INT",
                   "DPIX_INT",
                   "Voltage_INT",
                   "Current_INT",
                   "Capture_Person_NVC",
                   "Study_ID",
                   "Series_ID",
                   "SOPInstanceUID_NVC",
                   "ImageNumberInSeries",
                   "DicomStatus_INT",
                   "FrameNumber_INT",
                   "SubType_INT",
                   "Gamma_INT",
                   "AnatomicRegion",
                   "DCMDerived_BT"};
    layer.rows = {{{"approved", true},
                   {"brightness_int", Integer{-4}},
                   {"contrast_int", String("12")},
                   {"datecaptured_sd", Date{40000.5}},
                   {"imagebildid", std::int64_t{7}},
                   {"imagetype", Integer{2}},
                   {"invert_bt", false},
                   {"patientid", 3.0},
                   {"imagebild_t.rootid", Long{9}},
                   {"root_t.rootid", Long{10}},
                   {"rootdirectory", "C:\\images"},
                   {"crc", "abc   "},
                   {"framenumber_int", Integer{4}}}};
    const Ref<cImage> image = New<cImage>();
    EXPECT_TRUE(image->GetImage(Connect(), 7));
    EXPECT_TRUE(image->LoadCompletion().Complete());
    EXPECT_EQ(image->ID, 7);
    EXPECT_EQ(image->PatID, 3);
    EXPECT_EQ(image->ApprBrightness, -4);
    EXPECT_EQ(image->ApprContrast, 12);
    EXPECT_EQ(image->dateTime, Date{40000.5});
    EXPECT_EQ(image->RootId, 9) << "of the image's table";
    EXPECT_EQ(image->CRC, "abc");
    EXPECT_EQ(image->MirrRotStatus, 1) << "of a null";
    EXPECT_EQ(layer.calls.back(), "Close");
}

TEST_F(OtherDatabaseLayer, AFailureOfTheOtherSideIsRaisedAsItIs) {
    const Ref<cDoctor> doctor = New<cDoctor>();
    layer.names = {"PatientID"};
    const Ref<ADODB::Connection> con = To<Ref<ADODB::Connection>>(Variant(TestKit::NamedObject(
        {{"Execute", [](NamedCall&) -> Variant { throw Error(static_cast<Long>(0x80040E14), "Engine", "syntax"); }}})));
    const Error failure = TestKit::FailureOf([&] { doctor->DeleteDoctor(con); });
    EXPECT_EQ(failure.Number, static_cast<Long>(0x80040E14));
    EXPECT_EQ(failure.Source, "cDoctor.DeleteDoctor, Engine");
    EXPECT_EQ(failure.Description, "syntax");
    EXPECT_EQ(con->Errors().size(), 1U);
}

}  // namespace
