#pragma once

#include "platform/runtime/Types.h"

#include <filesystem>
#include <optional>
#include <vector>

/// Where classes are found by name: the libraries that this process took in, and the registry file of the
/// user.
///
/// The file is the one that OXCLASS_REGISTRY names, else `oxclass/classes.json` in the user's data folder. It
/// is written whole or not at all, and processes that change it at the same time wait for each other. Any
/// thread may call.
namespace Platform::ClassRegistry {

/// A class that can be made by name.
struct ClassRecord {
    String Name;        ///< "OXClass.cPatient"
    String Identifier;  ///< "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx"
    String Library;     ///< the library file's path
    String Threading;   ///< the threading model, "Apartment"
    String Instancing;  ///< "multi-use" or "global"

    friend bool operator==(const ClassRecord&, const ClassRecord&) = default;
};

/// A library and its classes.
struct LibraryRecord {
    String Name;
    String Identifier;
    String Version;
    std::uint32_t Locale = 0;
    String HelpText;
    std::vector<ClassRecord> Classes;

    friend bool operator==(const LibraryRecord&, const LibraryRecord&) = default;
};

/// The registry file's path.
std::filesystem::path File();

/// Enters a library into the file, in place of what stands there under its identifier. On a thread that has
/// an `RegisterInProcess`, only this process learns of it, and a library that it knows already stays. Raises 75
/// with the reason where the file can't be read or written, or is no registry file, or where the library's
/// path is no UTF-8; the file stays as it was.
void Enter(const LibraryRecord& library);

/// Removes a library, and the file with the last one. Without such a library nothing happens. Raises as
/// `Enter`.
void Remove(const String& identifier);

/// Removes what was entered from a library file of this path, which may be gone, as `Remove`. False if there
/// was nothing.
bool RemoveFile(const String& path);

/// As long as it lives, libraries that its thread enters are entered for this process alone.
class RegisterInProcess {
public:
    RegisterInProcess();
    ~RegisterInProcess();
    RegisterInProcess(const RegisterInProcess&) = delete;

private:
    bool before_;
};

/// The class of this name, without regard to case: of the libraries that this process took in, else of the
/// file. A file that can't be read raises 75.
std::optional<ClassRecord> Find(const String& name);

/// All classes that `Find` knows.
std::vector<ClassRecord> All();

/// The libraries of a registry file's text. Raises 75 with a description for a text that is none.
std::vector<LibraryRecord> Parse(const String& text);

/// A list of classes as JSON text.
String PrintClasses(const std::vector<ClassRecord>& classes);

/// The text of a registry file.
String Print(const std::vector<LibraryRecord>& libraries);

}  // namespace Platform::ClassRegistry
