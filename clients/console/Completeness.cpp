#include "console/Completeness.h"
#include "frame/Statement.h"

#include <fmt/format.h>

namespace Console {

using namespace OXClass;

namespace {

std::string LineOn(const std::string& row, const Error& failure) {
    return fmt::format("{} can't be read: {}", row, DamageOf(failure));
}

StoredComment CommentOf(const Ref<Recordset>& row) {
    StoredComment comment;
    comment.number = row->Fields("CommentID").As<Long>();
    const auto read = [&](const char* column, auto& member) {
        try {
            member = ValueOf<std::remove_reference_t<decltype(member)>>(row, column);
        } catch (const Error& failure) {
            if (comment.damage.empty()) comment.damage = DamageOf(failure);
        }
    };
    read("dates", comment.date);
    read("signature", comment.signature);
    read("commentString", comment.text);
    return comment;
}

}  // namespace

std::vector<StoredComment> CommentsOf(const Ref<Connection>& con, Long image) {
    std::vector<StoredComment> comments;
    const Ref<Recordset> rows = con->Execute(sql("SELECT * FROM Comments_T WHERE tabelID = 1 AND objectID = ", image,
                                                 " ORDER BY dates DESC, CommentID DESC"));
    for (; !rows->Eof(); rows->MoveNext()) comments.push_back(CommentOf(rows));
    return comments;
}

void LoadReadable(const Ref<Connection>& con, cUniCard& entry) {
    WithoutTextBoxes([&] { entry.LoadReadable(con); });
}

std::vector<std::string> DamagesOf(const cImages& images) {
    std::vector<std::string> lines;
    for (const UnreadRow& row : images.Unread()) lines.push_back(LineOn(fmt::format("image {}", row.ID), row.Failure));
    return lines;
}

std::vector<std::string> DamagesOf(const cUniCard& entry) {
    std::vector<std::string> lines = DamagesOf(*entry.colImages);
    const cImagecard& card = *entry.Imagecard;
    if (!card.LoadCompletion().Complete())
        lines.push_back(LineOn(fmt::format("a placed image of IC{}, and those behind it,", card.ICID),
                               card.LoadCompletion().Failure()));
    for (const auto& placed : Each<cImagecardAttribute>(*card.ImagecardAttributes))
        if (!placed.LoadCompletion().Complete())
            lines.push_back(
                LineOn(fmt::format("a manipulation of placed image {}", placed.ID), placed.LoadCompletion().Failure()));
    return lines;
}

std::string WhyNoImage(const cUniCard& entry, Long image) {
    for (const UnreadRow& row : entry.colImages->Unread())
        if (row.ID == image) return "its row can't be read: " + DamageOf(row.Failure);
    return "the image is not in the database";
}

std::string DamageOf(const Error& failure) {
    return failure.Column.empty() ? failure.Description : failure.Column + ": " + failure.Description;
}

void RefuseDamaged(const std::string& row, const Error& failure) {
    if (failure.Column.empty())
        throw UserError(fmt::format("{} can't be read whole, and nothing was changed: {}", row, failure.Description));
    throw UserError(
        fmt::format("{} can't be read whole, and nothing was changed: correct "
                    "its column {} in the database ({})",
                    row, failure.Column, failure.Description));
}

void RequireComplete(const Completion& reading, const std::string& row) {
    if (!reading.Complete()) RefuseDamaged(row, reading.Failure());
}

void RequireComplete(const cImages& images) {
    if (images.Unread().empty()) return;
    const UnreadRow& first = images.Unread().front();
    RefuseDamaged(fmt::format("image {}", first.ID), first.Failure);
}

Ref<cImage> LoadWholeImage(const Ref<Connection>& con, Long number) {
    const std::string name = fmt::format("image {}", number);
    Ref<cImage> image = New<cImage>();
    bool found = false;
    WithRowName(name, [&] { found = image->GetImage(con, number); });
    RequireComplete(*image, name);
    if (!found) throw UserError(fmt::format("there is no {}; see: oxclass images", name));
    return image;
}

void LoadWhole(const Ref<Connection>& con, cImagecard& card, Long number) {
    const std::string name = fmt::format("card IC{}", number);
    WithRowName(name, [&] { WithoutTextBoxes([&] { card.GetImageCard(con, number); }); });
    RequireComplete(card, "a placed image of " + name);
    if (number == 0 || card.ICID == 0)
        throw UserError(fmt::format("there is no image {}; see: oxclass cards PATIENT", name));
    for (const auto& placed : Each<cImagecardAttribute>(*card.ImagecardAttributes))
        RequireComplete(placed, fmt::format("a manipulation of placed image {} of {}", placed.ID, name));
}

void SaveWhole(const Ref<Connection>& con, cImagecard& card) {
    card.Save(con);
    for (const auto& placed : Each<cImagecardAttribute>(*card.ImagecardAttributes))
        if (!placed.SaveCompletion().Complete())
            throw UserError(
                fmt::format("the manipulations of placed image {} of card IC{} can't be stored, "
                            "and nothing "
                            "was changed: {}",
                            placed.ID, card.ICID, placed.SaveCompletion().Failure().Description));
}

}  // namespace Console
