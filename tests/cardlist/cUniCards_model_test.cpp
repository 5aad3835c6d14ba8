#include "cardlist/cUniCards.h"
#include "kit/Database.h"
#include "kit/Random.h"
#include "platform/runtime/Services.h"

#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <utility>

/// The card list against a slow model: an insertion loop in its plainest form over plain selects of its
/// own, compared entry by entry on random databases.
namespace OXClass {
namespace {

using namespace TestKit;

/// The properties of an entry of the list. Two entries with one study object have the same `study` number.
struct Shown {
    String key;
    Long kind = 0;
    double date = 0;
    String name;
    Long images = 0, location = 0;
    bool approved = false;
    int study = 0;

    friend bool operator==(const Shown&, const Shown&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Shown& shown) {
        return out << '[' << shown.key << " kind " << shown.kind << " at " << shown.date << " '" << shown.name
                   << "' images " << shown.images << " location " << shown.location << " approved " << shown.approved
                   << " study " << shown.study << ']';
    }
};

/// All that a call leaves behind.
struct Outcome {
    Long result = 0;
    std::vector<String> boxes;
    std::vector<Shown> list;
    std::set<Long> series;

    friend bool operator==(const Outcome&, const Outcome&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
        out << "result " << outcome.result;
        for (const String& box : outcome.boxes) out << "\n  box " << box;
        for (const Shown& shown : outcome.list) out << "\n  " << shown;
        out << "\n  rows";
        for (const Long key : outcome.series) out << ' ' << key;
        return out;
    }
};

/// A failure of the model: an error number.
struct Failed {
    Long number;
};

/// A text from a table: nothing for a null.
using Cell = std::optional<String>;

const String& NotNull(const Cell& cell) {
    if (!cell) throw Failed{94};
    return *cell;
}

double DaysOf(const String& text) { return CDate(Variant(text)).Days; }

/// The documented list, computed from rows that the model selects itself.
class Model {
public:
    Model(const Ref<Connection>& con, double tenMinutesAgo) : con_(con), tenMinutesAgo_(tenMinutesAgo) {}

    struct Member {
        Shown shown;
        bool undated = false;  // asking for its date fails
    };
    std::vector<Member> list;

    Outcome Load(const String& person) {
        Outcome outcome;
        int step = 0;
        arrived_.clear();
        try {
            Long patient = ReadCards(person, step);
            if (patient == 0) patient = KeyOf(person);
            step = 6;
            outcome.result = patient;
            ReadSeries(patient, step);
            Merge(step);
        } catch (const Failed& failure) {
            outcome.boxes.push_back("cUniCards.GetICAndSEList4Patient error: " + CStr(failure.number) + ", " +
                                    CStr(Long{step}) + "\r\n" + DescriptionOf(failure.number));
        }
        for (const Member& member : list) outcome.list.push_back(member.shown);
        for (const auto& row : Rows("SELECT Series_ID FROM Series_T")) outcome.series.insert(CLng(Variant(*row[0])));
        return outcome;
    }

private:
    std::vector<std::vector<Cell>> Rows(const String& select) {
        std::vector<std::vector<Cell>> rows;
        const Ref<Recordset> rs = con_->Execute(select);
        const Long columns = rs->FieldCount();
        for (; !rs->Eof(); rs->MoveNext()) {
            std::vector<Cell>& row = rows.emplace_back();
            for (Long i = 0; i < columns; ++i) {
                const Variant value = rs->Fields(i).Value();
                row.push_back(value.Is<Null>() ? Cell() : Cell(CStr(value)));
            }
        }
        return rows;
    }

    Long KeyOf(const String& person) {
        const auto rows = Rows("SELECT PatientID FROM Patient_T WHERE PersonNr_CH='" + person + "'");
        return rows.empty() ? 0 : CLng(Variant(*rows[0][0]));
    }

    Long ReadCards(const String& person, int& step) {
        Long patient = 0;
        const auto rows = Rows(
            "SELECT ImageCardID, C.PatientID, ICDateCreated||'', ICLastUpdate||'', ICName, ICDescription,"
            " ICFullViewHeight FROM ImageCard_T C, Patient_T P WHERE C.PatientID=P.PatientID AND"
            " PersonNr_CH='" +
            person + "' ORDER BY ICDateCreated DESC, C.PatientID, ImageCardID");
        step = 1;
        for (const auto& row : rows) {
            step = 2;
            const double created = DaysOf(NotNull(row[2]));
            NotNull(row[5]);
            if (row[6] && row[6]->starts_with('-')) throw Failed{13};
            const double changed = DaysOf(NotNull(row[3]));
            Member entry;
            entry.shown.name = NotNull(row[4]);
            entry.shown.key = "IC" + *row[0];
            entry.shown.kind = 1;
            entry.shown.date = created != 0 ? created : changed;
            patient = CLng(Variant(*row[1]));
            arrived_.push_back(entry);
            step = 4;
        }
        step = 5;
        return patient;
    }

    void ReadSeries(Long patient, int& step) {
        const auto rows = Rows(
            "SELECT S.Series_ID, T.Study_ID, S.orgServerID, S.SeriesDateTime||'', S.SeriesDescription,"
            " S.SeriesInstanceUID, T.StudyDateTime||'', T.Studydesc, T.studyID, T.StudyInstanceUID FROM"
            " Series_T S, Study_T T WHERE S.Study_ID=T.Study_ID AND T.PatientID=" +
            CStr(patient) + " ORDER BY T.StudyDateTime DESC, S.Series_ID DESC");
        step = 7;
        String lastStudy = "0";
        double studyDate = 0;
        for (const auto& row : rows) {
            step = 8;
            if (*row[1] != lastStudy) {
                NotNull(row[8]);
                studyDate = DaysOf(NotNull(row[6]));
                NotNull(row[7]);
                NotNull(row[9]);
                ++studies_;
                lastStudy = *row[1];
            }
            step = 11;
            const double taken = row[3] ? DaysOf(*row[3]) : 0;
            Long count = 0, approved = 0, status = 0;
            bool anyApproved = false;
            for (const auto& image : Rows("SELECT Approved, DicomStatus_INT FROM ImageBild_T WHERE "
                                          "GraphicURL_NVC<>'' AND Series_ID=" +
                                          *row[0])) {
                ++count;
                if (image[0]) {
                    approved += CLng(Variant(*image[0]));
                    anyApproved = true;
                }
                if (image[1]) status += CLng(Variant(*image[1]));
            }
            Member entry;
            if (count > 0) {
                entry.shown.images = count;
                entry.shown.location = status == 2 * count ? gdcmObjectLocBoth : gdcmObjectLocLocal;
            } else if (!(taken > tenMinutesAgo_ && (!row[2] || *row[2] == "0"))) {
                con_->Execute("DELETE FROM Series_T WHERE Series_ID=" + *row[0]);
                continue;
            }
            step = 12;
            entry.shown.approved = entry.shown.location == 0 || (anyApproved && std::abs(approved) == count);
            NotNull(row[5]);
            entry.shown.key = "SE" + *row[0];
            entry.shown.kind = 2;
            entry.shown.name = row[4].value_or("");
            entry.shown.date = taken != 0 ? taken : studyDate;
            entry.shown.study = studies_;
            arrived_.push_back(entry);
            step = 14;
        }
        step = 15;
    }

    void Merge(int& step) {
        for (const Member& entry : arrived_) {
            std::size_t place = 0;
            for (; place < list.size(); ++place) {
                step = 16;
                if (list[place].undated) throw Failed{91};
                if (list[place].shown.date < entry.shown.date) break;
                step = 17;
            }
            for (const Member& member : list)
                if (LCase(member.shown.key) == LCase(entry.shown.key)) throw Failed{457};
            list.insert(list.begin() + static_cast<std::ptrdiff_t>(place), entry);
        }
    }

    const Ref<Connection> con_;
    const double tenMinutesAgo_;
    std::vector<Member> arrived_;
    int studies_ = 0;
};

class UniCardsModel : public WithDatabase {
protected:
    UniCardsModel() {
        con->Unadvise(log);
        TheHost().Now = [] { return DateFrom({2024, 5, 6, 12, 10, 0}); };
    }
    ~UniCardsModel() override {
        TheHost().Now = clock_;
        con->Advise(log);
    }

    /// One of a few texts for a column, a number or a quoted text.
    String OneOf(std::initializer_list<const char*> texts) {
        return texts.begin()[random.Below(static_cast<int>(texts.size()))];
    }
    /// Rarely a null, else this.
    String Rarely(const String& text) { return random.OneIn(120) ? "NULL" : text; }
    String DateText() {
        return OneOf({"'2024-01-01 00:00:00'", "'2024-01-02 00:00:00'", "'2024-01-02 00:00:01'",
                      "'2023-12-31 23:59:59'", "'1899-12-30 00:00:00'", "'1899-12-29 12:00:00'"});
    }
    String DateOfSeries() {
        if (random.OneIn(4)) return DateText();
        return OneOf({"NULL", "'2024-05-06 12:00:00'", "'2024-05-06 12:00:01'", "'2024-05-06 11:59:59'",
                      "'2024-05-06 12:09:00'", "'2025-01-01 00:00:00'", "'2024-01-02 00:00:00'"});
    }

    void FillTables() {
        for (const char* table : {"Patient_T", "ImageCard_T", "Study_T", "Series_T", "ImageBild_T"})
            con->Execute("DELETE FROM " + String(table));
        con->Execute("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (7, 'A'), (8, 'B'), (9, '" +
                     OneOf({"A", "C", "C", "C"}) + "')");
        for (int i = random.Below(6); i > 0; --i) AddCard(i);
        for (int i = random.Below(4); i > 0; --i) AddStudy(i);
        for (int i = random.Below(7); i > 0; --i) AddSeries(i);
    }

    void AddCard(int key) {
        con->Execute(
            "INSERT INTO ImageCard_T (ImageCardID, PatientID, ICDateCreated, ICLastUpdate, ICName,"
            " ICDescription, ICFullViewHeight) VALUES (" +
            CStr(Long{key}) + ", " + OneOf({"7", "7", "7", "8", "9", "99"}) + ", " + Rarely(DateText()) + ", " +
            Rarely(DateText()) + ", " + Rarely("'n" + CStr(Long{key}) + "'") + ", " + Rarely("''") + ", " +
            (random.OneIn(120) ? "-5" : OneOf({"NULL", "0", "600"})) + ")");
    }
    void AddStudy(int key) {
        con->Execute(
            "INSERT INTO Study_T (Study_ID, PatientID, StudyDateTime, Studydesc, studyID,"
            " StudyInstanceUID) VALUES (" +
            CStr(Long{key}) + ", " + OneOf({"7", "7", "7", "8", "0"}) + ", " + Rarely(DateText()) + ", " +
            Rarely("''") + ", " + Rarely(OneOf({"''", "'s'"})) + ", " + Rarely("'1.2'") + ")");
    }
    void AddSeries(int key) {
        con->Execute(
            "INSERT INTO Series_T (Series_ID, Study_ID, orgServerID, SeriesDateTime,"
            " SeriesDescription, SeriesInstanceUID) VALUES (" +
            CStr(Long{key}) + ", " + CStr(Long{1 + random.Below(3)}) + ", " + OneOf({"0", "0", "NULL", "3"}) + ", " +
            DateOfSeries() + ", " + OneOf({"NULL", "'d'"}) + ", " + Rarely("'1.3'") + ")");
        const bool whole = random.OneIn(2);
        for (int i = random.Below(4); i > 0; --i)
            con->Execute(
                "INSERT INTO ImageBild_T (Series_ID, GraphicURL_NVC, Approved, DicomStatus_INT)"
                " VALUES (" +
                CStr(Long{key}) + ", " + OneOf({"'a'", "'a'", "'a'", "''", "NULL"}) + ", " +
                (whole ? "1" : OneOf({"1", "-1", "0", "NULL"})) + ", " +
                (whole ? "2" : OneOf({"0", "2", "4", "NULL"})) + ")");
    }

    /// Puts entries of the client's own into both lists, in any order.
    void Preload(cUniCards& list, Model& model) {
        // The one way into an empty list is a patient's row.
        con->Execute("INSERT INTO Patient_T (PatientID, PersonNr_CH) VALUES (1, 'FIRST')");
        con->Execute(
            "INSERT INTO ImageCard_T (ImageCardID, PatientID, ICDateCreated, ICLastUpdate, ICName,"
            " ICDescription) VALUES (1000, 1, '2024-01-01 00:00:00', '2024-01-01 00:00:00', '', '')");
        list.GetICAndSEList4Patient(con, "FIRST", 0);
        con->Execute("DELETE FROM ImageCard_T WHERE ImageCardID=1000");
        for (int i = 1 + random.Below(3); i > 0; --i) {
            Model::Member member;
            member.undated = random.OneIn(6);
            member.shown.key = random.OneIn(5) ? "ic" + CStr(Long{i}) : "own" + CStr(Long{i});
            const Ref<cUniCard> entry = New<cUniCard>();
            entry->Key = member.shown.key;
            if (member.undated) {
                entry->Series = New<cSerie>();
                member.shown.kind = 2;
            } else {
                String date = DateText();
                date = date.substr(1, date.size() - 2);
                entry->Imagecard = New<cImagecard>();
                entry->Imagecard->ICCreateDate = CDate(Variant(date));
                member.shown.kind = 1;
                member.shown.date = DaysOf(date);
            }
            list.AddObj(entry, entry->Key, "IC1000");
            model.list.push_back(member);
        }
        list.Remove("IC1000");
    }

    /// Returns the members of the list. Numbers the studies in the order in which their objects occur, in `numbers`.
    static std::vector<Shown> ShownBy(const cUniCards& list) {
        std::vector<Shown> all;
        for (const cUniCard& entry : list) {
            Shown& shown = all.emplace_back();
            shown.key = entry.Key;
            shown.kind = entry.CardType();
            if (entry.Imagecard) shown.name = entry.Imagecard->ICName;
            if (!entry.Series) {
                shown.date = entry.SortDate().Days;
                continue;
            }
            shown.images = entry.Series->ImgCount;
            shown.location = entry.Series->location;
            shown.approved = entry.Series->Approved;
            shown.name = entry.Series->SeriesDescription;
            if (entry.Study) shown.date = entry.SortDate().Days;
        }
        return all;
    }

    /// Numbers shared objects by their first occurrence, so that two numberings can be compared.
    template <class Thing>
    static std::vector<int> Numbered(const std::vector<Thing>& things) {
        std::map<Thing, int> numbers;
        std::vector<int> numbered;
        for (const Thing& thing : things)
            numbered.push_back(numbers.try_emplace(thing, static_cast<int>(numbers.size())).first->second);
        return numbered;
    }

    static std::vector<int> StudiesOf(const cUniCards& list) {
        std::vector<const cStudy*> studies;
        for (const cUniCard& entry : list) studies.push_back(entry.Study.Get());
        return Numbered(studies);
    }

    Outcome Load(cUniCards& list, const String& person) {
        const TextBoxes boxes;
        Outcome outcome;
        outcome.result = list.GetICAndSEList4Patient(con, person, 0);
        outcome.boxes = boxes.shown;
        outcome.list = ShownBy(list);
        const Ref<Recordset> rs = con->Execute("SELECT Series_ID FROM Series_T");
        for (; !rs->Eof(); rs->MoveNext()) outcome.series.insert(CLng(rs->Fields(0).Value()));
        return outcome;
    }

    Random random;

private:
    const std::function<Date()> clock_ = TheHost().Now;
};

TEST_F(UniCardsModel, ReturnsTheSameListOnRandomDatabases) {
    // On a server the deleted rows of all rounds are read again in each one.
    const int rounds = TestKit::IsFile() ? 1000 : 200;
    const double tenMinutesAgo = DateFrom({2024, 5, 6, 12, 0, 0}).Days;
    int boxes = 0, orphans = 0, entries = 0, repeated = 0;
    con->BeginTrans();
    for (int round = 0; round < rounds; ++round) {
        FillTables();
        const Ref<cUniCards> list = New<cUniCards>();
        Model model(con, tenMinutesAgo);
        if (random.OneIn(4)) Preload(*list, model);
        for (int call = random.OneIn(3) ? 2 : 1; call > 0; --call) {
            const String person = OneOf({"A", "A", "A", "B", "X"});
            const Long before = CLng(con->Execute("SELECT COUNT(*) FROM Series_T")->Fields(0).Value());
            con->BeginTrans();
            Outcome expected = model.Load(person);
            con->RollbackTrans();
            const Outcome actual = Load(*list, person);
            std::vector<int> studies;
            for (Shown& shown : expected.list) studies.push_back(std::exchange(shown.study, 0));
            ASSERT_EQ(actual, expected) << "round " << round << ", patient " << person;
            ASSERT_EQ(StudiesOf(*list), Numbered(studies)) << "round " << round;
            boxes += static_cast<int>(actual.boxes.size());
            orphans += static_cast<int>(before) - static_cast<int>(actual.series.size());
            entries += static_cast<int>(actual.list.size());
            repeated += call == 2;
        }
    }
    con->RollbackTrans();
    EXPECT_GT(boxes, rounds / 20) << "the databases must hold failures";
    EXPECT_GT(orphans, rounds / 10);
    EXPECT_GT(entries, rounds);
    EXPECT_GT(repeated, rounds / 5);
}

}  // namespace
}  // namespace OXClass
