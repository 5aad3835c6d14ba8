#include "frame/Class1.h"

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
    static const Interface& self = InterfaceOf<Class1>({
        Property<&Class1::ActiveRootID>("ActiveRootID"),
        Operation<&Class1::GetRoots>("GetRoots", {"Con"}),
        Operation<&Class1::GetSubFolder>("GetSubFolder", {"PatID"}),
        Operation<&Class1::SaveGLSetting>("SaveGLSetting", {"Con", "GLId", "sSetting", "bReplace"}),
        Operation<&Class1::GetGLSetting>("GetGLSetting", {"Con", "GLId", "sFirstSetting", Optional("cAllGLs")}),
        Operation<&Class1::GetRootOnID>("GetRootOnID", {"Con", "RootId"}),
        Operation<&Class1::GetCachedRootOnID>("GetCachedRootOnID", {"Con", "RootId", "bFlushCache"}),
        Operation<&Class1::GetInstanceUID>("GetInstanceUID", {"Con"}),
    });
    return self;
}

}  // namespace OXClass
