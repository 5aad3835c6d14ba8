#pragma once

#include "frame/modGeneral.h"

namespace OXClass {

/// The kind of a manipulation, column ImageManipulation_T.Type.
///
/// The library treats two of them specially: it deletes the file of a `ManCosmetic` that is no longer used,
/// and never stores an `UndoStop`. It stores all others for the clients, which define their meaning and that of both
/// parameters; it applies none of them to an image. A member, a row and a COM client may hold any other number, which
/// is loaded and stored unchanged. The numbers are stored in databases and must not change.
enum ManipulationType : Long {
    /// `StringParameter` names a file in image storage. A save deletes the file of the last stored cosmetic unless the
    /// last new cosmetic has the same text. The comparison is case-sensitive and ignores only blanks around the stored
    /// text. A failure of the save keeps the file, and so does the
    /// deletion of the placed image.
    ManCosmetic = 1,
    // The library stores the following kinds without an action of its own. The text of none of them is the name of a
    // file that a save deletes.
    Manbrightness = 2,
    ManContrast = 3,
    ManInvert = 4,
    ManColorize = 5,
    /// `oxclass` stores the angle in `LongParameter`, in degrees clockwise. Neither a load nor a save changes
    /// `cImagecardAttribute::IAMirrRotStatus` because of it.
    ManRotate = 6,
    /// `oxclass` stores 1 in `LongParameter` for a mirroring from left to right.
    ManMirror = 7,
    ManSharpen = 8,
    ManBitmap = 9,
    ManPosResize = 10,
    /// A mark of the client's among the manipulations. A save skips it and assigns it no sequence number, so that the
    /// numbers of the others have no gap. Manipulations that are all of this kind leave no stored row.
    UndoStop = 11,
    // Kinds that are stored as those before `UndoStop`.
    ManLeftFocus = 12,
    ManGotfocus = 13,
    ManICResize = 14,
    /// Stored as any other kind. A save deletes no row and no file because of it.
    Delete = 15,
    ManAttCorr = 16,
    ManMedian = 17,
    ManEmboss = 18,
    ManEdgeEnhance = 19,
    ManAnnBurn = 20,
    ManEnhanceFilter = 21,
    ManCrop = 22
};

/// One recorded manipulation of a placed image: a row of ImageManipulation_T.
///
/// The object only holds its values: no member raises or uses the database. `cImagecardAttribute` holds the
/// manipulations of a placed image in their order, and loads and stores them:
///
/// - `LoadImageManipulations` creates one object for each row, in the order of the column SequenceNo. It ends at the
///   first row with a null in a column that it reads, or with a number beyond 32 bits; it returns false then, and the
///   objects of the earlier rows remain.
/// - `SaveManipulations` deletes all stored rows of the placed image and inserts one row for each object, numbered from
///   1. It raises nothing: a row that can't be stored ends it, and the rows after that one are not stored.
///
/// A change of an object is therefore stored with the next save of its placed image, not before. An object belongs to
/// the thread that created it.
class cImageManipulation final : public Object {
public:
    static constexpr const char* ClassName = "cImageManipulation";
    /// `Global<cImageManipulation>()` returns the instance that all callers on a thread share.
    static constexpr bool IsGlobal = true;

    /// The key of the row, which a load sets; 0 in a new object. A save ignores it and doesn't change it, because each
    /// save writes new rows: after a save it is the key of a row that no longer exists.
    Long ImageManipulationID = 0;
    /// The kind; 0 in a new object, which is stored as it is. Column Type.
    OXClass::ManipulationType ManipulationType{};
    /// A number of the client's, such as an angle; 0 in a new object. Column LongParameter.
    Long LongParameter = 0;
    /// A text of the client's; empty in a new object. Column StringParameter. A load removes the blanks at both ends; a
    /// save stores them.
    ///
    /// A save splices the text into its statement without escaping. Two single quotes in a row are stored as one. A run
    /// of quotes of odd length ends the save without an error: the manipulations before this one are stored, this one
    /// and those after it are lost. Backslashes and characters of any script are stored unchanged.
    ///
    /// For a cosmetic, the first three characters contain the number of the storage root, and the rest is the name of
    /// the file below that root, with folders separated by "\". The number 0, or a text without a number there, is the
    /// active root. A name that leads out of the root is never deleted.
    String StringParameter;

    // ---- held for the client, neither read nor written ---------------------------------------------

    Long UndoImageHandle = 0;  ///< a number for the client's undo
    Long IAID = 0;             ///< the key of the placed image, if the client sets it; a save doesn't use it

    /// Returns the interface table: the six members above, each readable and writable by name. A value that can't be
    /// converted to a member's type raises as `To`; the member is unchanged then.
    const Interface& Describe() const override;
};

}  // namespace OXClass

/// The names and numbers of `ManipulationType`, for the type library and for the enumeration of the Python client, in
/// the order of their numbers. Constant data: any thread may read it.
template <>
struct Platform::EnumerationOf<OXClass::ManipulationType> {
    static constexpr const char* Name = "ManipulationType";
    static constexpr EnumerationValue Values[] = {
        {"ManCosmetic", OXClass::ManCosmetic},
        {"Manbrightness", OXClass::Manbrightness},
        {"ManContrast", OXClass::ManContrast},
        {"ManInvert", OXClass::ManInvert},
        {"ManColorize", OXClass::ManColorize},
        {"ManRotate", OXClass::ManRotate},
        {"ManMirror", OXClass::ManMirror},
        {"ManSharpen", OXClass::ManSharpen},
        {"ManBitmap", OXClass::ManBitmap},
        {"ManPosResize", OXClass::ManPosResize},
        {"UndoStop", OXClass::UndoStop},
        {"ManLeftFocus", OXClass::ManLeftFocus},
        {"ManGotfocus", OXClass::ManGotfocus},
        {"ManICResize", OXClass::ManICResize},
        {"Delete", OXClass::Delete},
        {"ManAttCorr", OXClass::ManAttCorr},
        {"ManMedian", OXClass::ManMedian},
        {"ManEmboss", OXClass::ManEmboss},
        {"ManEdgeEnhance", OXClass::ManEdgeEnhance},
        {"ManAnnBurn", OXClass::ManAnnBurn},
        {"ManEnhanceFilter", OXClass::ManEnhanceFilter},
        {"ManCrop", OXClass::ManCrop},
    };
};
