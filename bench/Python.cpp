#include "bench/Python.h"

#include <array>
#include <cstdio>
#include <memory>

namespace Bench {

void BenchPython(Report& report, const std::string& path) {
    if (!report.WantsSome("python-")) return;
    const std::string command =
        "OXCLASS_LIBRARY='" OXCLASS_LIBRARY "' /usr/bin/python3 -B '" OXCLASS_SCRIPT "' '" + path + "'";
    struct Close {
        void operator()(std::FILE* pipe) const { pclose(pipe); }
    };
    const std::unique_ptr<std::FILE, Close> pipe(popen(command.c_str(), "r"));
    Require(pipe != nullptr);
    std::string output;
    std::array<char, 4096> buffer;
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe.get()))
        output.append(buffer.data(), count);
    Require(report.AddJson(output));
}

}  // namespace Bench
