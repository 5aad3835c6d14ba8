#include "console/records/RecordMove.h"

#include "console/Chart.h"
#include "console/Completeness.h"
#include "console/Hanging.h"
#include "console/patients/PatientSearch.h"
#include "frame/Class1.h"
#include "frame/Statement.h"
#include "series/cSerie.h"
#include "series/cStudy.h"

#include <fmt/format.h>
#include <map>

namespace Console {
namespace {

using namespace OXClass;
using Keys = std::set<Long>;

/// Returns the number in a column; 0 for a null.
Long KeyIn(const Ref<Recordset>& row, const char* column) {
    const ADODB::Field field = row->Fields(column);
    return field.IsNull() ? 0 : field.As<Long>();
}

/// One move.
class Move {
public:
    Move(RecordChange& change, const MovedRecords& moved, const std::string& toPatient, bool force)
        : change_(change), con_(change.Con()), named_(moved), to_(LoadPatient(con_, toPatient)), force_(force) {}

    void Run() {
        FindAll();
        RequireOthers();
        FindWhole();
        RecordOnImages();
        MoveStudies();
        MoveWholeSeries();
        MoveSingleImages();
        MoveLooseImages();
        SetPatient();
        MoveCards();
        HangAgain();
    }

private:
    struct Image {
        Long patient = 0, series = 0, study = 0;
    };

    std::string Target() const { return PatientCalled(to_->ID, to_->PatientID); }

    std::string Called(Long patient) {
        const auto [known, isNew] = called_.try_emplace(patient);
        if (!isNew) return known->second;
        const Ref<Recordset> row = con_->Execute(sql("SELECT PersonNr_CH FROM Patient_T WHERE PatientID = ", patient));
        const bool hasID = !row->Eof() && !row->Fields(0).IsNull();
        return known->second = PatientCalled(patient, hasID ? row->Fields(0).As<String>() : String());
    }

    // ---- what moves -------------------------------------------------------------------------------

    void FindAll() {
        ReadStudies("Study_ID", named_.studies);
        Require(named_.studies, studies_, "study", "studies");
        ReadSeries("Series_ID", named_.series);
        Require(named_.series, seriesStudy_, "series", "series");
        ReadSeries("Study_ID", named_.studies);
        for (const auto& [series, study] : seriesStudy_) wholeSeries_.insert(series);
        ReadImages("ImageBildID", named_.images);
        Require(named_.images, images_, "image", "images");
        ReadImages("Series_ID", wholeSeries_);
        ReadImages("Study_ID", named_.studies);
        Keys series, studies;
        for (const auto& [number, image] : images_) series.insert(image.series);
        ReadSeries("Series_ID", series);
        for (const auto& [number, study] : seriesStudy_) studies.insert(study);
        for (const auto& [number, image] : images_) studies.insert(image.study);
        ReadStudies("Study_ID", studies);
    }

    template <class Records>
    static void Require(const Keys& named, const Records& found, const char* one, const char* list) {
        for (const Long key : named)
            if (!found.contains(key))
                throw UserError(fmt::format("there is no {} {}; see: oxclass {}", one, key, list));
    }

    void ReadImages(const char* column, const Keys& keys) {
        EachList(keys, [&](const std::string& list) {
            const Ref<Recordset> rows =
                con_->Execute(sql("SELECT ImageBildID, PatientID, Series_ID, Study_ID FROM ImageBild_T WHERE ",
                                  Clause(column), " IN (", Clause(list), ")"));
            for (; !rows->Eof(); rows->MoveNext())
                images_[KeyIn(rows, "ImageBildID")] = {KeyIn(rows, "PatientID"), KeyIn(rows, "Series_ID"),
                                                       KeyIn(rows, "Study_ID")};
        });
    }

    void ReadSeries(const char* column, const Keys& keys) {
        EachList(keys, [&](const std::string& list) {
            const Ref<Recordset> rows = con_->Execute(
                sql("SELECT Series_ID, Study_ID FROM Series_T WHERE ", Clause(column), " IN (", Clause(list), ")"));
            for (; !rows->Eof(); rows->MoveNext()) seriesStudy_[KeyIn(rows, "Series_ID")] = KeyIn(rows, "Study_ID");
        });
    }

    void ReadStudies(const char* column, const Keys& keys) {
        EachList(keys, [&](const std::string& list) {
            const Ref<Recordset> rows = con_->Execute(
                sql("SELECT Study_ID, PatientID FROM Study_T WHERE ", Clause(column), " IN (", Clause(list), ")"));
            for (; !rows->Eof(); rows->MoveNext()) studies_[KeyIn(rows, "Study_ID")] = KeyIn(rows, "PatientID");
        });
    }

    /// Throws `UserError` for a named record of the patient to whom it is to be moved.
    void RequireOthers() const {
        const auto refuse = [&](const char* what, Long key) {
            throw UserError(fmt::format("{} {} belongs to patient {} already; leave it out", what, key, Target()));
        };
        for (const Long study : named_.studies)
            if (studies_.at(study) == to_->ID) refuse("study", study);
        for (const Long series : named_.series)
            if (PatientOfStudy(seriesStudy_.at(series)) == to_->ID) refuse("series", series);
        for (const Long image : named_.images)
            if (images_.at(image).patient == to_->ID && PatientOfStudy(images_.at(image).study) == to_->ID)
                refuse("image", image);
    }

    Long PatientOfStudy(Long study) const {
        const auto found = studies_.find(study);
        return found == studies_.end() ? 0 : found->second;
    }

    /// Finds the series of which all images move, and the studies of which all series and images do.
    void FindWhole() {
        std::map<Long, Long> moving;
        for (const auto& [number, image] : images_) ++moving[image.series];
        for (const auto& [series, count] : moving)
            if (seriesStudy_.contains(series) && Count("ImageBild_T", "Series_ID", series) == count)
                wholeSeries_.insert(series);
        std::map<Long, Long> seriesOf, imagesOf;
        for (const Long series : wholeSeries_) ++seriesOf[seriesStudy_.at(series)];
        for (const auto& [number, image] : images_) ++imagesOf[image.study];
        for (const auto& [study, patient] : studies_)
            if (named_.studies.contains(study) ||
                (seriesOf.contains(study) && Count("Series_T", "Study_ID", study) == seriesOf[study] &&
                 Count("ImageBild_T", "Study_ID", study) == imagesOf[study]))
                wholeStudies_.insert(study);
    }

    Long Count(const char* table, const char* column, Long key) const {
        return con_->Execute(sql("SELECT count(*) FROM ", Clause(table), " WHERE ", Clause(column), " = ", key))
            ->Fields(0)
            .As<Long>();
    }

    // ---- moving -----------------------------------------------------------------------------------

    Keys AllImages() const {
        Keys all;
        for (const auto& [number, image] : images_) all.insert(number);
        return all;
    }

    void RecordOnImages() {
        std::map<Long, Keys> from;
        for (const auto& [number, image] : images_) from[image.patient].insert(number);
        for (const auto& [patient, images] : from) change_.Comment(images, MovedComment(Called(patient), Target()));
    }

    void Set(const char* table, const char* column, Long value, const char* key, const Keys& keys) const {
        EachList(keys, [&](const std::string& list) {
            con_->Execute(sql("UPDATE ", Clause(table), " SET ", Clause(column), " = ", value, " WHERE ", Clause(key),
                              " IN (", Clause(list), ")"));
        });
    }

    void MoveStudies() {
        for (const Long study : wholeStudies_)
            change_.Tell(fmt::format("study {}", study), Called(studies_.at(study)), Target());
        Set("Study_T", "PatientID", to_->ID, "Study_ID", wholeStudies_);
    }

    bool IsInWholeStudy(Long study) const { return wholeStudies_.contains(study); }

    void MoveWholeSeries() {
        for (const Long series : wholeSeries_) {
            const Long study = seriesStudy_.at(series);
            const bool withStudy = IsInWholeStudy(study);
            const Long target = withStudy ? study : TargetStudy(study);
            change_.Tell(fmt::format("series {}", series), fmt::format("study {} of {}", study, StudyOwner(study)),
                         fmt::format("{} of {}", withStudy ? fmt::format("study {}", study) : "a new study", Target()));
            if (withStudy) continue;
            Set("Series_T", "Study_ID", target, "Series_ID", {series});
            Set("ImageBild_T", "Study_ID", target, "Series_ID", {series});
        }
    }

    std::string StudyOwner(Long study) {
        const Long patient = PatientOfStudy(study);
        return patient == 0 ? "no patient" : Called(patient);
    }

    void MoveSingleImages() {
        std::map<Long, Keys> bySeries;
        for (const auto& [number, image] : images_)
            if (seriesStudy_.contains(image.series) && !wholeSeries_.contains(image.series))
                bySeries[image.series].insert(number);
        for (const auto& [series, images] : bySeries) {
            const Long study = TargetStudy(seriesStudy_.at(series));
            const Long target = NewSeries(series, study);
            Set("ImageBild_T", "Series_ID", target, "ImageBildID", images);
            Set("ImageBild_T", "Study_ID", study, "ImageBildID", images);
            for (const Long image : images)
                change_.Tell(fmt::format("image {}", image),
                             fmt::format("series {} of {}", series, Called(images_.at(image).patient)),
                             fmt::format("a new series of {}", Target()));
            hungAgain_.insert({series, target});
        }
    }

    /// Moves the images whose series is not in the database.
    void MoveLooseImages() {
        for (const auto& [number, image] : images_) {
            if (seriesStudy_.contains(image.series)) continue;
            if (studies_.contains(image.study) && !IsInWholeStudy(image.study))
                Set("ImageBild_T", "Study_ID", TargetStudy(image.study), "ImageBildID", {number});
            change_.Tell(fmt::format("image {}", number), Called(image.patient), Target());
        }
    }

    void SetPatient() const { Set("ImageBild_T", "PatientID", to_->ID, "ImageBildID", AllImages()); }

    /// Returns the study of the patient that takes what is moved out of `source`.
    Long TargetStudy(Long source) {
        const auto [known, isNew] = targetStudies_.try_emplace(source);
        if (!isNew) return known->second;
        const Ref<cStudy> from = New<cStudy>(), made = New<cStudy>();
        const bool found =
            WithRowName(fmt::format("study {}", source), [&] { return from->loadStudy(CStr(source), con_); });
        made->instanceUID = New<Class1>()->GetInstanceUID(con_);
        made->PatientID = to_->ID;
        if (found) {
            made->dateTime = from->dateTime;
            made->description = Undoubled(from->description);
        }
        made->savestudy(false, con_);
        change_.Tell("a new study", fmt::format("date and description of study {}", source), Target());
        return known->second = made->ID;
    }

    Long NewSeries(Long source, Long study) {
        const Ref<cSerie> from = LoadSeries(con_, source), made = New<cSerie>();
        made->instanceUID = New<Class1>()->GetInstanceUID(con_);
        made->studyID = study;
        made->Modality = from->Modality;
        made->seriesNumber = from->seriesNumber;
        made->SeriesDescription = Undoubled(from->SeriesDescription);
        made->SeriesDateTime = from->SeriesDateTime;
        made->location = from->location;
        made->SaveSeries(false, con_);
        return made->ID;
    }

    // ---- cards ------------------------------------------------------------------------------------

    struct Card {
        Long patient = 0;
        std::string name;
        Keys moved, placed;  ///< placed images: those that show moved images, and all
    };

    /// Returns the cards of other patients that show moved images.
    std::map<Long, Card> Cards() const {
        std::map<Long, Card> cards;
        const Keys all = AllImages();
        EachList(all, [&](const std::string& list) {
            const Ref<Recordset> rows = con_->Execute(
                sql("SELECT c.ImageCardID, c.PatientID, c.ICName, a.ImageAttributeID, a.ImageBildId FROM ImageCard_T c "
                    "JOIN ImageAttribute_T a ON a.ImageCardID = c.ImageCardID WHERE c.PatientID <> ",
                    to_->ID, " AND c.ImageCardID IN (SELECT ImageCardID FROM ImageAttribute_T WHERE ImageBildId IN (",
                    Clause(list), "))"));
            for (; !rows->Eof(); rows->MoveNext()) {
                Card& card = cards[KeyIn(rows, "ImageCardID")];
                card.patient = KeyIn(rows, "PatientID");
                card.name = rows->Fields("ICName").IsNull() ? String() : rows->Fields("ICName").As<String>();
                card.placed.insert(KeyIn(rows, "ImageAttributeID"));
                if (all.contains(KeyIn(rows, "ImageBildId"))) card.moved.insert(KeyIn(rows, "ImageAttributeID"));
            }
        });
        return cards;
    }

    void MoveCards() {
        for (const auto& [number, card] : Cards()) {
            if (card.moved == card.placed) {
                change_.Tell(fmt::format("card IC{}", number), Called(card.patient), Target());
                Set("ImageCard_T", "PatientID", to_->ID, "ImageCardID", {number});
                continue;
            }
            if (!force_)
                throw UserError(
                    fmt::format("card IC{} \"{}\" of patient {} shows images that move beside others, and nothing was "
                                "changed; --force takes the moved ones off the card",
                                number, card.name, Called(card.patient)));
            TakeOff(number, card.moved);
        }
    }

    void TakeOff(Long card, const Keys& placed) {
        EachList(placed, [&](const std::string& list) {
            con_->Execute(sql("DELETE FROM ImageManipulation_T WHERE ImageAttributeID IN (", Clause(list), ")"));
            con_->Execute(sql("DELETE FROM ImageAttribute_T WHERE ImageAttributeID IN (", Clause(list), ")"));
        });
        for (const Long number : placed)
            change_.Tell(fmt::format("placed image {}", number), fmt::format("card IC{}", card), "off the card");
    }

    void HangAgain() {
        for (const Long series : hungAgain_) HangStored(con_, series);
    }

    RecordChange& change_;
    Ref<Connection> con_;
    const MovedRecords& named_;
    Ref<cPatient> to_;
    bool force_;
    std::map<Long, Image> images_;
    std::map<Long, Long> seriesStudy_;  // the study of each series
    std::map<Long, Long> studies_;      // the patient of each study
    Keys wholeSeries_, wholeStudies_, hungAgain_;
    std::map<Long, Long> targetStudies_;
    std::map<Long, std::string> called_;
};

}  // namespace

void MoveRecords(RecordChange& change, const MovedRecords& moved, const std::string& toPatient, bool force) {
    Move(change, moved, toPatient, force).Run();
}

}  // namespace Console
