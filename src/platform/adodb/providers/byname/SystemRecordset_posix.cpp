#include "platform/adodb/providers/byname/SystemRecordset.h"

namespace ADODB {

Platform::Ref<Platform::Object> NewSystemRecordset(const Platform::Ref<Platform::Object>&) { return nullptr; }

}  // namespace ADODB
