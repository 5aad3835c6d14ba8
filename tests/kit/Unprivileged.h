#pragma once

#include <grp.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace TestKit {

/// Runs `work` in a child process without the rights of the superuser, and returns its result. So the permissions of
/// files apply to it, whichever user runs the tests. Other effects of `work` stay in the child process.
template <class Work>
std::string Unprivileged(Work work) {
    constexpr unsigned nobody = 65534;
    int ends[2];
    if (pipe(ends) != 0) return "no pipe";
    const pid_t child = fork();
    if (child == 0) {
        const bool root = geteuid() == 0;
        const bool done = !root || (setgroups(0, nullptr) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0);
        const std::string text = done ? work() : "the rights can't be given up";
        for (std::size_t at = 0; at < text.size();) {
            const ssize_t written = write(ends[1], text.data() + at, text.size() - at);
            if (written <= 0) break;
            at += static_cast<std::size_t>(written);
        }
        _exit(0);
    }
    close(ends[1]);
    std::string text;
    char part[4096];
    for (ssize_t read_ = 0; (read_ = read(ends[0], part, sizeof part)) > 0;)
        text.append(part, static_cast<std::size_t>(read_));
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return text;
}

}  // namespace TestKit
