#pragma once

/// Help texts of arguments that many operations have.
namespace OXClass::Help {

inline constexpr const char* Connection = "The open connection to the database.";
inline constexpr const char* IndexOrKey = "The position in the collection, from 1, or the key of the member.";
inline constexpr const char* NewKey = "The key of the new member, which no other member may have; empty for no key.";

}  // namespace OXClass::Help
