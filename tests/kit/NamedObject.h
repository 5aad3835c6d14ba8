#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Variant.h"

#include <functional>
#include <map>

namespace TestKit {

using namespace Platform;

/// A call of a member: its arguments, and whether it assigns the last one.
struct NamedCall {
    std::vector<Variant> arguments;
    bool isPut = false;
};

/// The members of an object by their names. A member may raise an `Error`.
using NamedMembers = std::map<String, std::function<Variant(NamedCall& call)>>;

/// Returns an object of another component whose members are called by name and by no other way.
Ref<Object> NamedObject(NamedMembers members);

}  // namespace TestKit
