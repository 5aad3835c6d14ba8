#pragma once

#include "cardlist/cUniCard.h"
#include "console/Database.h"

/// Rows that could not be read completely. An object that was read only in part must not be saved: the members that
/// were not read would replace the stored values.
namespace Console {

/// Returns the column that can't be read and the reason, as lists show them: "Brightness_INT: Invalid use of Null".
std::string DamageOf(const Platform::Error& failure);

/// Loads the images of a card or series that can be read, and skips the others. Shows no text box.
void LoadReadable(const Ref<Connection>& con, OXClass::cUniCard& entry);

/// Returns a line for each part of a loaded card or series that could not be read: "image 5 can't be read: ...".
std::vector<std::string> DamagesOf(const OXClass::cUniCard& entry);

/// Returns such a line for each image of a list that could not be read.
std::vector<std::string> DamagesOf(const OXClass::cImages& images);

/// Returns the reason why a card or series lacks an image that it places: the image's row is missing or can't be read.
std::string WhyNoImage(const OXClass::cUniCard& entry, Platform::Long image);

/// Throws the `UserError` that names a damaged row ("image 5"), its column, and what to do.
[[noreturn]] void RefuseDamaged(const std::string& row, const Platform::Error& failure);

/// Returns what `load` returns. A failure that it raises about a column becomes the `UserError` of `RefuseDamaged`.
template <class Load>
auto WithRowName(const std::string& row, Load load) -> decltype(load()) {
    try {
        return load();
    } catch (const Platform::Error& failure) {
        if (failure.Column.empty()) throw;
        RefuseDamaged(row, failure);
    }
}

/// Throws that `UserError` if a failure ended the reading of the row.
void RequireComplete(const OXClass::Completion& reading, const std::string& row);

/// Throws that `UserError` if a failure ended the last load of the object.
template <class Object>
void RequireComplete(const Object& object, const std::string& row) {
    RequireComplete(object.LoadCompletion(), row);
}

/// Throws that `UserError` if a failure ended the load of an image of the list.
void RequireComplete(const OXClass::cImages& images);

/// A comment of an image, as its row can be read.
struct StoredComment {
    Platform::Long number = 0;
    Platform::Date date;  ///< the zero date where it can't be read
    std::string signature, text;
    std::string damage;  ///< the first column that can't be read, with the reason;
                         ///< empty for a sound row
};

/// Returns the comments of an image, newest first, also those whose rows are damaged.
std::vector<StoredComment> CommentsOf(const Ref<Connection>& con, Platform::Long image);

/// Loads an image without its comments. Throws `UserError` for an unknown image and for one that can't be
/// read whole.
Ref<OXClass::cImage> LoadWholeImage(const Ref<Connection>& con, Platform::Long number);

/// Loads a card with its placed images and their manipulations. Throws `UserError` for an unknown card and if any part
/// of it can't be read.
void LoadWhole(const Ref<Connection>& con, OXClass::cImagecard& card, Platform::Long number);

/// Saves a card with its placed images and their manipulations, inside of the caller's transaction. The documented save
/// ignores a failure to store manipulations; this function throws `UserError` for one, and the caller must not commit.
void SaveWhole(const Ref<Connection>& con, OXClass::cImagecard& card);

}  // namespace Console
