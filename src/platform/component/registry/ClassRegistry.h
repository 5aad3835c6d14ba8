#pragma once

#include "platform/runtime/Types.h"

#include <filesystem>
#include <optional>
#include <vector>

/// The registry that finds classes by name: the libraries that were registered for this process, and those that were
/// registered for all programs: in the registry file of the user, on Windows in the registry of the system.
///
/// The file is the one that OXCLASS_REGISTRY names, otherwise `oxclass/classes.json` in the user's data folder. It is
/// written atomically, and processes that change it at the same time wait for each other. On Windows the classes and
/// the type library are entered below HKEY_CLASSES_ROOT, which needs the rights of an administrator. Any thread may
/// call the functions.
namespace Platform::ClassRegistry {

/// A class that can be created by name.
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

/// Returns the path of the registry file. Windows has none.
std::filesystem::path File();

/// Registers a library for all programs, in place of one with the same identifier. While the thread has a
/// `RegisterInProcess`, it is registered for this process only, and a library that is registered already is not
/// replaced. Raises 75 with the reason if the registry can't be read or written, if the file is not a registry file, or
/// if the path of the library is not UTF-8. The file is then unchanged; in the registry of Windows no entry of the
/// library remains.
void Enter(const LibraryRecord& library);

/// Removes a library, and with the last library the file. Does nothing if the library is not registered. On Windows an
/// entry that names another library file stays. Raises as `Enter`.
void Remove(const LibraryRecord& library);

/// Removes from the registry file, as `Remove`, the library that was registered with this path; the file at the path
/// may have been deleted. Returns false if no library has the path. Not on Windows.
bool RemoveFile(const String& path);

/// While an object of this class lives, its thread registers libraries for this process only. Objects may be nested;
/// the thread that created one deletes it.
class RegisterInProcess {
public:
    RegisterInProcess();
    ~RegisterInProcess();
    RegisterInProcess(const RegisterInProcess&) = delete;

private:
    bool before_;
};

/// Returns the class of this name, without regard to case, from the libraries of this process or else from the
/// registry. Raises 75 if the registry can't be read.
std::optional<ClassRecord> Find(const String& name);

/// Returns all classes that `Find` can return: those of this process first. Raises as `Find`.
std::vector<ClassRecord> All();

/// Returns the libraries in the text of a registry file. Raises 75 with a description if it is not the text of a
/// registry file.
std::vector<LibraryRecord> Parse(const String& text);

/// Returns a list of classes as JSON text: an array of objects with the members of `ClassRecord` as "name",
/// "identifier", "library", "threading" and "instancing".
String PrintClasses(const std::vector<ClassRecord>& classes);

/// Returns the text of a registry file with these libraries. `Parse` of the result returns equal records.
String Print(const std::vector<LibraryRecord>& libraries);

}  // namespace Platform::ClassRegistry
