#include "frame/Class1.h"

#include "frame/Help.h"
#include "frame/Reading.h"
#include "platform/component/dispatch/InterfaceTable.h"

namespace OXClass {

using namespace Platform;

Variant Class1::GetRoots(Ref<Connection> Con) {
    if (!Con) return {};
    const Ref<Recordset> rs = OpenClient(Con, "SELECT * FROM Root_T ORDER BY RootID;", ADODB::adCmdUnspecified);
    const Long count = rs->RecordCount();
    if (count == 0) Raise(err::OutOfBounds);
    std::vector<String> roots(static_cast<std::size_t>(count));
    for (Integer next = 1; !rs->Eof(); rs->MoveNext()) {
        const ADODB::Field status = rs->Fields("Status");
        if (!status.IsNull() && status.As<double>() != 0) {
            roots[0] = Required<String>(rs, "RootDirectory");
            ActiveRootID = Required<Long>(rs, "RootID");
        } else {
            if (next >= count) Raise(err::OutOfBounds);
            roots[static_cast<std::size_t>(next)] = Required<String>(rs, "RootDirectory");
            next = CInt(Long{next} + 1);
        }
    }
    return roots;
}

String Class1::GetSubFolder(Long PatID) {
    constexpr Long patientsAFolder = 500;
    Long n = patientsAFolder;
    while (PatID >= n)
        if (__builtin_add_overflow(n, patientsAFolder, &n)) Raise(err::Overflow);
    return CStr(n - patientsAFolder) + "_";
}

void Class1::SaveGLSetting(Ref<Connection> Con, const gGlobalListIDs& GLId, const String& sSetting,
                           const bool& bReplace) {
    const Ref<cGlobalList> setting = New<cGlobalList>();
    setting->ListText = sSetting;
    setting->ListID = GLId;
    if (bReplace) {
        const Ref<cGlobalLists> earlier = New<cGlobalLists>();
        earlier->GetAllGLs(Con, GLId);
        earlier->DeleteAll(Con);
    }
    setting->Save(Con);
}

bool Class1::GetGLSetting(Ref<Connection> Con, const gGlobalListIDs& GLId, String& sFirstSetting,
                          Ref<cGlobalLists>& cAllGLs) {
    const Ref<cGlobalLists> list = New<cGlobalLists>();
    list->GetAllGLs(Con, GLId);
    cAllGLs = list;
    if (list->Count() < 1) {
        sFirstSetting = GLId == gglID_DicomRootUID ? "1.2.840.990731.3.6" : "";
        return false;
    }
    sFirstSetting = list->Item(1)->ListText;
    return true;
}

String Class1::GetRootOnID(Ref<Connection> Con, const Long& RootId) {
    if (!Con) return {};
    const Ref<Recordset> rs = OpenClient(Con,
                                         RootId != 0 ? sql("SELECT * FROM Root_T WHERE RootID=", RootId, ";")
                                                     : sql("SELECT * FROM Root_T WHERE Status <> 0;"),
                                         ADODB::adCmdUnspecified);
    if (rs->Eof()) return {};
    const String directory = Required<String>(rs, "RootDirectory");
    if (RootId < 0) Raise(err::OutOfBounds);
    return roots_[RootId] = directory;
}

String Class1::GetCachedRootOnID(Ref<Connection> Con, const Long& RootId, const bool& bFlushCache) {
    if (bFlushCache) roots_.clear();
    if (RootId < 0) Raise(err::OutOfBounds);
    const auto cached = roots_.find(RootId);
    if (cached != roots_.end() && !cached->second.empty()) return cached->second;
    return GetRootOnID(Con, RootId);
}

String Class1::GetInstanceUID(Ref<Connection> Con) {
    if (sDicomRootUID.empty()) {
        Ref<cGlobalLists> list;
        GetGLSetting(Con, gglID_DicomRootUID, sDicomRootUID, list);
    }
    return MakeUIDSuffix();
}

const Interface& Class1::Describe() const {
    static const Interface& self = InterfaceOf<Class1>(
        "The general services: storage roots, sub-folders of patients, settings and DICOM UIDs.",
        {
            Property<&Class1::ActiveRootID>("ActiveRootID",
                                            "The number of the active storage root; 0 until GetRoots has read it."),
            Operation<&Class1::GetRoots>(
                "GetRoots", "Returns the directories of all storage roots as an array of texts, the active root first.",
                {{"Con", Help::Connection}}),
            Operation<&Class1::GetSubFolder>(
                "GetSubFolder",
                "Returns a patient's sub-folder of a storage root: 0_ for keys up to 499, 500_ up to 999.",
                {{"PatID", "The key of the patient, cPatient.ID; a negative one returns 0_."}}),
            Operation<&Class1::SaveGLSetting>(
                "SaveGLSetting", "Stores a setting as a new row of a list.",
                {{"Con", Help::Connection},
                 {"GLId", "The number of the list."},
                 {"sSetting", "The text of the setting."},
                 {"bReplace", "True deletes the earlier rows of the list first; false keeps them."}}),
            Operation<&Class1::GetGLSetting>(
                "GetGLSetting", "Reads the first text of a list; returns false if the list is empty.",
                {{"Con", Help::Connection},
                 {"GLId", "The number of the list."},
                 {"sFirstSetting",
                  "Receives the text; for an empty list the default DICOM root UID or the empty text."},
                 Optional("cAllGLs", "Receives a new cGlobalLists with all rows of the list.")}),
            Operation<&Class1::GetRootOnID>(
                "GetRootOnID", "Returns a storage root's directory from the database; the empty text if there is none.",
                {{"Con", Help::Connection}, {"RootId", "The number of the storage root; 0 for the active one."}}),
            Operation<&Class1::GetCachedRootOnID>(
                "GetCachedRootOnID",
                "Returns a storage root's directory from this object's cache, or reads it from the database.",
                {{"Con", "The open connection to the database; not used if the cache has the directory."},
                 {"RootId", "The number of the storage root; 0 for the active one."},
                 {"bFlushCache", "True empties the cache first, so that a change in the database is seen."}}),
            Operation<&Class1::GetInstanceUID>(
                "GetInstanceUID",
                "Returns a new DICOM UID of at most 64 characters; it begins with the root UID setting.",
                {{"Con", "The open connection to the database; not used once the thread has read the root UID."}}),
        });
    return self;
}

}  // namespace OXClass
