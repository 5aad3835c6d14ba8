#include "platform/runtime/AtomicFile.h"

#include "platform/runtime/WindowsApi.h"

#include <algorithm>
#include <string>
#include <utility>

namespace Platform {

namespace fs = std::filesystem;

class AtomicFile::System {
public:
    explicit System(fs::path file)
        : file_(std::move(file)),
          part_(file_.wstring() + L"." + std::to_wstring(GetCurrentProcessId())),
          out_(CreateFileW(part_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)),
          good_(out_ != INVALID_HANDLE_VALUE) {}

    ~System() {
        const DWORD reason = GetLastError();
        if (out_ != INVALID_HANDLE_VALUE) {
            CloseHandle(out_);
            DeleteFileW(part_.c_str());
        }
        SetLastError(reason);
    }
    System(const System&) = delete;

    bool Write(std::string_view text) {
        constexpr std::size_t most = 1 << 20;
        for (; good_ && !text.empty(); text.remove_prefix(std::min(text.size(), most))) {
            const auto size = static_cast<DWORD>(std::min(text.size(), most));
            DWORD written = 0;
            good_ = WriteFile(out_, text.data(), size, &written, nullptr) && written == size;
        }
        return good_;
    }

    bool Commit() {
        good_ = good_ && FlushFileBuffers(out_);
        if (!good_) return false;
        CloseHandle(out_);
        out_ = INVALID_HANDLE_VALUE;
        good_ = MoveFileExW(part_.c_str(), file_.wstring().c_str(), MOVEFILE_REPLACE_EXISTING);
        if (!good_) {
            const DWORD reason = GetLastError();
            DeleteFileW(part_.c_str());
            SetLastError(reason);
        }
        return good_;
    }

private:
    fs::path file_;
    std::wstring part_;
    HANDLE out_;
    bool good_;
};

AtomicFile::AtomicFile(fs::path file) : system_(std::make_unique<System>(std::move(file))) {}
AtomicFile::~AtomicFile() = default;
bool AtomicFile::Write(std::string_view text) { return system_->Write(text); }
bool AtomicFile::Commit() { return system_->Commit(); }

}  // namespace Platform
