#pragma once

#include "platform/component/binary/ComponentModel.h"
#include "platform/runtime/Object.h"
#include "platform/runtime/Variant.h"

#include <map>
#include <memory>
#include <optional>
#include <span>

namespace Platform {

/// Calls the members of an object by their names, as a late-bound client does. The object may be one of another
/// component or one of this platform. It is used on the object's thread.
///
/// A failure of a member is raised with the member's number, source and description; a number of the runtime or of the
/// database layer in its short form (3021, not 0x800A0BCD). A member that does not exist raises 438, arguments that
/// don't fit 450, 449, 13 or 6.
class ByName {
public:
    /// An argument of a call. No value: the argument is left out, and later arguments follow.
    using Argument = std::optional<Variant>;

    /// Holds a reference to the object. Raises 91 for null, 438 for an object without `IDispatch`.
    explicit ByName(const Ref<Object>& object);

    /// Returns true if the object has a member of this name. Raises nothing.
    bool Has(const String& member) const;

    /// Returns the dispatch identifier of a member; `otherwise` if the object does not know the name.
    DISPID IdOr(const String& member, DISPID otherwise) const;

    /// Calls an operation or reads a property; returns the result, `Empty` if there is none. The arguments with a bit
    /// in `returned`, the lowest bit for the first one, are passed by reference and receive what the member assigned,
    /// also when it raises: `Empty` as a reference to a variant, another value as a reference to its type.
    Variant Call(const String& member, std::span<Argument> arguments, std::uint32_t returned = 0) const;
    Variant Call(DISPID member, std::span<Argument> arguments, std::uint32_t returned = 0) const;
    Variant Call(const String& member) const { return Call(member, {}); }

    /// Reads a property whose value is an object with a default member, and calls that member with the argument: the
    /// same as `Call` with one argument for most objects, and needed for those whose property takes no argument.
    Variant ItemOf(const String& property, const Variant& index) const;

    /// Assigns a property, an object by reference. `index` is the argument of the property, if it has one.
    void Put(const String& property, const Variant& value, const Argument& index = {}) const;

private:
    struct Releaser {
        void operator()(IDispatch* object) const;
    };

    DISPID IdOf(const String& member) const;
    /// Calls a member and stores its result. Raises what the member raises; returns any other failure.
    HRESULT Invoke(DISPID id, WORD flags, std::span<Argument> arguments, std::uint32_t returned, Variant& result) const;

    std::unique_ptr<IDispatch, Releaser> object_;
    mutable std::map<String, DISPID> ids_;  // of the members that were called before
};

}  // namespace Platform
