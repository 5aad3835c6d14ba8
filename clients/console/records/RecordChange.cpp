#include "console/records/RecordChange.h"

#include "console/WriteTransaction.h"
#include "frame/Statement.h"
#include "platform/runtime/Services.h"

#include <fmt/format.h>
#include <optional>
#include <pwd.h>
#include <unistd.h>

namespace Console {
namespace {

using namespace OXClass;

constexpr Long CommentWidth = 150;

std::string SystemUser() {
    const passwd* const user = getpwuid(geteuid());
    return user && user->pw_name ? user->pw_name : std::string();
}

/// Returns the text, cut to the width of a column.
std::string Fitting(const std::string& text, Long width) {
    constexpr const char* cut = "...";
    return Len(text) <= width ? text : Left(text, width - Len(cut)) + cut;
}

}  // namespace

std::string SignatureOf(const ChangeOptions& options) {
    std::string name = Trim(options.by.empty() ? SystemUser() : options.by);
    if (name.empty()) throw UserError("nobody signs the change; name a person with --by NAME");
    if (Len(name) > CommentWidth)
        throw UserError(fmt::format("a signature has at most {} characters; shorten --by", CommentWidth));
    return name;
}

void EachList(const std::set<Long>& keys, const std::function<void(const std::string& list)>& work) {
    constexpr std::size_t most = 500;
    std::string list;
    std::size_t count = 0;
    for (const Long key : keys) {
        list += (list.empty() ? "" : ", ") + CStr(key);
        if (++count % most != 0) continue;
        work(std::exchange(list, {}));
    }
    if (!list.empty()) work(list);
}

RecordChange::RecordChange(Ref<Connection> con, std::string signature)
    : con_(std::move(con)),
      signature_(std::move(signature)),
      now_(Now()),
      report_({{"record", "Record"}, {"from", "From"}, {"to", "To"}}) {}

void RecordChange::Tell(const std::string& record, const std::string& from, const std::string& to) {
    report_.Add({record, from, to});
}

void RecordChange::Comment(const std::set<Long>& images, const std::string& text) const {
    EachList(images, [&](const std::string& list) {
        con_->Execute(sql("INSERT INTO Comments_T (dates, signature, tabelID, objectID, commentString) SELECT '",
                          Stamp(now_), "', '", FixSqlString(signature_), "', 1, ImageBildID, '",
                          FixSqlString(Fitting(text, CommentWidth)), "' FROM ImageBild_T WHERE ImageBildID IN (",
                          Clause(list), ")"));
    });
}

std::string RecordChange::WithRemark(const std::string& comments, const std::string& text) const {
    const std::string remark = fmt::format("{} {}: {}", FormatDate(now_, "yyyy-mm-dd hh:nn"), signature_, text);
    return comments.empty() ? remark : comments + "\n" + remark;
}

std::string MovedComment(const std::string& from, const std::string& to) {
    return fmt::format("Moved from patient {} to {}", from, to);
}

std::string MergedComment(const std::string& from, const std::string& to) {
    return fmt::format("Patient {} merged into {}", from, to);
}

std::set<Long> ImagesGivenToOthers(const Ref<Connection>& con) {
    std::set<Long> images;
    const Ref<Recordset> rows =
        con->Execute(sql("SELECT DISTINCT objectID FROM Comments_T WHERE tabelID = 1 AND (commentString LIKE '",
                         FixSqlString(MovedComment("#%", "#%")), "' OR commentString LIKE '",
                         FixSqlString(MergedComment("#%", "#%")), "')"));
    for (; !rows->Eof(); rows->MoveNext()) images.insert(rows->Fields(0).As<Long>());
    return images;
}

void ChangeRecords(const Options& options, const ChangeOptions& change,
                   const std::function<void(RecordChange&)>& work) {
    const std::string signature = SignatureOf(change);
    const Database database(options);
    std::optional<RecordChange> made;
    RepeatAfterConflicts(database.Con(), [&] {
        WriteTransaction transaction(database.Con());
        made.emplace(database.Con(), signature);
        ThrowTextBoxes([&] { work(*made); });
        if (!change.dryRun) transaction.Commit();
    });
    if (options.json)
        return PrintJson({{"dry_run", change.dryRun}, {"signature", signature}, {"changes", made->Report().Rows()}});
    made->Report().Print(false, "Nothing changes.");
    fmt::print("{}\n", change.dryRun ? "Nothing was changed; leave out --dry-run to do it."
                                     : "Done, and signed " + Printable(signature) + ".");
}

std::string PatientCalled(Long number, const std::string& id) {
    constexpr Long most = 40;
    return Trim(fmt::format("#{} {}", number, Fitting(id, most)));
}

}  // namespace Console
