#include "Sets.h"

#include <dcmtk/config/osconfig.h>
#include <dcmtk/oflog/oflog.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <string_view>

namespace {

constexpr std::string_view Usage =
    "Usage: samples DIR\n"
    "\n"
    "Draws radiographs of made-up patients and writes them as DICOM files to sub-folders of DIR, one a set.\n"
    "DIR is created when it does not exist; files of the same names are replaced. Every run writes the same\n"
    "files. Takes about half a minute and 70 MB.\n"
    "\n"
    "  fmx18, fmx20            full mouth series of 18 and 20 films\n"
    "  bitewings2, bitewings4  bitewing series\n"
    "  panoramic               both jaws from ear to ear\n"
    "  ceph-lateral, -frontal  the head from the side and from the front\n"
    "  awkward                 old codes, missing values, names of many scripts, broken files\n"
    "\n"
    "Example: samples ~/radiographs\n"
    "\n"
    "Exit code: 0 all written, 1 a file could not be written, 2 wrong arguments\n";

/// Writes under a temporary name and renames, so that a file exists whole or not at all. It is not flushed to the disk:
/// a lost sample can be made again.
void WriteWhole(const Samples::SampleFile& sample, const std::filesystem::path& path) {
    std::filesystem::create_directories(path.parent_path());
    std::filesystem::path temporary = path;
    temporary += ".part";
    try {
        sample.write(temporary);
        std::filesystem::rename(temporary, path);
    } catch (...) {
        std::error_code ignored;
        std::filesystem::remove(temporary, ignored);
        throw;
    }
}

int WriteAll(const std::filesystem::path& folder) {
    const auto samples = Samples::AllSamples();
    std::size_t number = 0;
    for (const Samples::SampleFile& sample : samples) {
        const std::filesystem::path path = folder / sample.path;
        std::cout << "[" << ++number << "/" << samples.size() << "] " << sample.path << std::endl;
        try {
            WriteWhole(sample, path);
        } catch (const std::exception& error) {
            std::cerr << "samples: " << path.string() << ": " << error.what() << "\n";
            return 1;
        }
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view argument = argc == 2 ? argv[1] : "";
    if (argument == "--help" || argument == "-h") {
        std::cout << Usage;
        return 0;
    }
    if (argument.empty() || argument.starts_with("-")) {
        std::cerr << "samples: name one folder to write to\n\n" << Usage;
        return 2;
    }
    OFLog::configure(OFLogger::OFF_LOG_LEVEL);
    return WriteAll(argument);
}
