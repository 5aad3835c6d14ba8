#include "bench/ImportFiles.h"

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace Bench {
namespace {

namespace fs = std::filesystem;

constexpr int Files = 2'000, FilesOfSeries = 18, Rows = 700, Columns = 900;

/// The bytes of a DICOM data set, explicit little endian. Elements are appended in the order of their tags.
class DicomBytes {
public:
    void Text(std::uint32_t tag, const char* type, std::string value) {
        if (value.size() % 2) value += type == std::string("UI") ? '\0' : ' ';
        Begin(tag, type);
        Number(value.size(), 2);
        bytes_ += value;
    }
    void Short(std::uint32_t tag, unsigned value) {
        Begin(tag, "US");
        Number(2, 2);
        Number(value, 2);
    }
    void Bytes(std::uint32_t tag, const char* type, const std::string& value) {
        Begin(tag, type);
        Number(0, 2);
        Number(value.size(), 4);
        bytes_ += value;
    }
    const std::string& All() const { return bytes_; }

private:
    void Begin(std::uint32_t tag, const char* type) {
        Number(tag >> 16, 2);
        Number(tag & 0xFFFF, 2);
        bytes_ += type;
    }
    void Number(std::size_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) bytes_ += static_cast<char>(value >> (8 * i) & 0xFF);
    }

    std::string bytes_;
};

/// Returns a film of 0.6 MB: noise, so that no file system can compress it.
std::string Film(int number, const std::string& pixels) {
    const std::string series = std::to_string(number / FilesOfSeries);
    const std::string intraOral = "1.2.840.10008.5.1.4.1.1.1.3", uid = "2.25.3" + std::to_string(number);
    DicomBytes meta, set;
    meta.Bytes(0x00020001, "OB", std::string("\0\1", 2));
    meta.Text(0x00020002, "UI", intraOral);
    meta.Text(0x00020003, "UI", uid);
    meta.Text(0x00020010, "UI", "1.2.840.10008.1.2.1");
    set.Text(0x00080016, "UI", intraOral);
    set.Text(0x00080018, "UI", uid);
    set.Text(0x00080022, "DA", "20260102");
    set.Text(0x00080032, "TM", std::to_string(100000 + number % FilesOfSeries * 100));
    set.Text(0x00080060, "CS", "IO");
    set.Text(0x00100010, "PN", "Ek^Anna");
    set.Text(0x00100020, "LO", "P" + series);
    set.Text(0x0020000D, "UI", "2.25.1" + series);
    set.Text(0x0020000E, "UI", "2.25.2" + series);
    set.Short(0x00280002, 1);
    set.Text(0x00280004, "CS", "MONOCHROME2");
    set.Short(0x00280010, Rows);
    set.Short(0x00280011, Columns);
    set.Short(0x00280100, 8);
    set.Short(0x00280101, 8);
    set.Short(0x00280102, 7);
    set.Short(0x00280103, 0);
    set.Bytes(0x7FE00010, "OB", pixels);
    return std::string(128, '\0') + "DICM" + meta.All() + set.All();
}

void WriteFilms(const fs::path& folder) {
    fs::create_directories(folder);
    std::string pixels(static_cast<std::size_t>(Rows) * Columns, '\0');
    std::uint32_t state = 1;
    for (char& pixel : pixels) {
        state = state * 1664525U + 1013904223U;
        pixel = static_cast<char>(state >> 24);
    }
    for (int i = 0; i < Files; ++i) {
        std::ofstream out(folder / (std::to_string(10'000 + i) + ".dcm"), std::ios::binary);
        out << Film(i, pixels);
        Require(out.flush().good());
    }
}

/// An open file of the system.
class File {
public:
    File(const fs::path& path, int flags) : descriptor_(open(path.c_str(), flags | O_CLOEXEC, 0644)) {
        Require(descriptor_ >= 0);
    }
    ~File() { close(descriptor_); }
    File(const File&) = delete;

    std::size_t Read(std::string& to) const {
        const ssize_t count = read(descriptor_, to.data(), to.size());
        Require(count >= 0);
        return static_cast<std::size_t>(count);
    }
    void Write(const std::string& from, std::size_t size) const {
        Require(write(descriptor_, from.data(), size) == static_cast<ssize_t>(size));
    }
    void Flush() const { Require(fsync(descriptor_) == 0); }

private:
    int descriptor_;
};

/// Copies the files of a folder, each flushed, and flushes the folder.
void CopyFlushed(const fs::path& from, const fs::path& to) {
    fs::create_directories(to);
    std::string buffer(1 << 18, '\0');
    for (const fs::directory_entry& film : fs::directory_iterator(from)) {
        const File source(film.path(), O_RDONLY), target(to / film.path().filename(), O_WRONLY | O_CREAT | O_EXCL);
        while (const std::size_t size = source.Read(buffer)) target.Write(buffer, size);
        target.Flush();
    }
    File(to, O_RDONLY | O_DIRECTORY).Flush();
}

void Run(const std::string& arguments) {
    Require(std::system(("'" OXCLASS "' " + arguments + " >/dev/null 2>&1").c_str()) == 0);
}

}  // namespace

void BenchImport(Report& report, const std::string& folder) {
    const fs::path work = fs::path(folder) / "import", films = work / "films", copy = work / "copy",
                   clinic = work / "clinic";
    const std::string database = "'" + (clinic / "clinic.db").string() + "'";
    fs::remove_all(work);
    report.Compare(
        "import-2000", "import 2,000 films, beside a copy with fsync", "a file", Files, 3,
        [&] { Run("--db " + database + " import '" + films.string() + "'"); }, [&] { CopyFlushed(films, copy); },
        [&] {
            if (!fs::exists(films)) WriteFilms(films);
            fs::remove_all(copy);
            fs::remove_all(clinic);
            fs::create_directories(clinic);
            Run("init " + database);
            sync();  // what was written before must not be waited for by the work that is timed
        });
    fs::remove_all(work);
}

}  // namespace Bench
