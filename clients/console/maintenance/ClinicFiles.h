#pragma once

#include "console/import/StorageRoot.h"
#include "console/import/WorkerPool.h"

namespace Console {

/// The file of an image, as its row names it.
struct ClinicFile {
    Platform::Long image = 0, root = 0, patient = 0;
    std::string name;    ///< the stored name, "0_\1.2.3.dcm"
    std::string sha256;  ///< the checksum of the row; empty where another program stored the image
};

/// Returns the files of all images that have one, by root and name.
std::vector<ClinicFile> FilesOfClinic(const Ref<Connection>& con);

/// Returns the folders of all roots by their numbers, unchecked.
std::map<Platform::Long, std::filesystem::path> FoldersOfRoots(const Ref<Connection>& con);

/// Names of the checksums that this program stores: 64 hexadecimal digits.
bool IsSha256(const std::string& text);

/// The content of a file, as the check and the backup need it.
struct FileContent {
    std::string sha256;       ///< empty if the file can't be read
    std::string failure;      ///< why it can't be read
    std::string packedImage;  ///< what `Unpacked` reads, of a file that was to be read as a radiograph
};

/// Reads files in worker processes, on all processors.
///
/// `path` returns the path of the file at a position. `take` is called with the content of each file, in the order of
/// the files. With `asImages` the files are also read as radiographs. Shows its progress on standard error.
void ReadFiles(std::size_t count, bool asImages, const char* what, const std::function<std::string(std::size_t)>& path,
               const std::function<void(std::size_t, const FileContent&)>& take);

/// Returns the checksum of a file. Throws `UserError` if it can't be read.
std::string Sha256OfFile(const std::filesystem::path& path);

}  // namespace Console
