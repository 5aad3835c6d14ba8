#include "cards/CosmeticFile.h"

#include "frame/Class1.h"
#include "frame/StoredName.h"
#include "platform/runtime/Services.h"

namespace OXClass {

using namespace Platform;

CosmeticFile CosmeticFile::Named(const String& parameter) {
    constexpr Long numberWidth = 3;
    return {CLng(Val(Left(parameter, numberWidth))), Mid(parameter, numberWidth + 1)};
}

void CosmeticFile::DeleteIfPresent(const Ref<Connection>& con) const {
    const String file = FileBelow(New<Class1>()->GetRootOnID(con, RootId), StoredName);
    if (!file.empty() && FileExists(file)) DeleteFile(file);
}

}  // namespace OXClass
