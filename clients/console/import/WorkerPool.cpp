#include "console/import/WorkerPool.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <fmt/format.h>
#include <fstream>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace Console {
namespace {

/// The exit codes of a worker that has exceeded a limit or crashed.
enum ExitCode { OutOfTime = 71, OutOfMemory = 72, Crashed = 73 };

constexpr std::size_t RequestsAhead = 8;  // each worker has its next requests at hand

// ---- messages: a length and the bytes ---------------------------------------------------------------

bool ReadAll(int socket, void* to, std::size_t size) {
    auto* at = static_cast<char*>(to);
    while (size > 0) {
        const auto count = read(socket, at, size);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        at += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

bool WriteAll(int socket, const void* from, std::size_t size) {
    const auto* at = static_cast<const char*>(from);
    while (size > 0) {
        const auto count = send(socket, at, size, MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        at += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

bool SendMessage(int socket, const std::string& bytes) {
    const auto size = static_cast<std::uint32_t>(bytes.size());
    return WriteAll(socket, &size, sizeof size) && WriteAll(socket, bytes.data(), bytes.size());
}

bool ReceiveMessage(int socket, std::string& bytes) {
    std::uint32_t size = 0;
    if (!ReadAll(socket, &size, sizeof size)) return false;
    bytes.resize(size);
    return ReadAll(socket, bytes.data(), size);
}

// ---- inside of a worker -----------------------------------------------------------------------------

std::size_t ResidentMegabytes() {
    std::ifstream in("/proc/self/statm");
    std::size_t all = 0, resident = 0;
    in >> all >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

/// Ends the process when a request exceeds a limit. It runs on a thread of its own: the signal of a timer would
/// interrupt system calls, and libraries report an interrupted call as a network failure.
class Watch {
public:
    explicit Watch(const WorkerLimits& limits) : limits_(limits), megabytesAtStart_(ResidentMegabytes()) {
        std::thread([this] { Run(); }).detach();
    }
    void Begin() { started_ = Now(); }
    void End() { started_ = 0; }

private:
    static double Now() {
        return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
    }
    [[noreturn]] void Run() const {
        for (;;) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            const double started = started_;
            if (started == 0) continue;
            if (Now() - started > limits_.seconds) _exit(OutOfTime);
            if (ResidentMegabytes() > megabytesAtStart_ + limits_.megabytes) _exit(OutOfMemory);
        }
    }

    WorkerLimits limits_;
    std::size_t megabytesAtStart_;
    std::atomic<double> started_{0};  // 0 between requests
};

void Handle(int signal, void (*handler)(int), int flags) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaction(signal, &action, nullptr);
}

/// Gives the crash handlers a stack of their own: the most frequent crash is a stack overflow.
void CatchCrashes() {
    static char stack[64 * 1024];
    stack_t alternate{};
    alternate.ss_sp = stack;
    alternate.ss_size = sizeof stack;
    sigaltstack(&alternate, nullptr);
    for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT})
        Handle(
            signal, [](int) { _exit(Crashed); }, SA_ONSTACK);
}

/// Makes the worker end with the program, even if the program is killed. Only the program handles requests to stop.
void BelongToProgram(int program, int socket) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != program) _exit(0);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) Handle(signal, SIG_IGN, 0);
    constexpr int kept = 3;  // standard input, output and error stay; locks and databases must not
    if (socket != kept) {
        dup2(socket, kept);
        fcntl(kept, F_SETFD, FD_CLOEXEC);
    }
    close_range(kept + 1, ~0U, 0);
}

[[noreturn]] void Serve(const WorkerPool::Work& work, const WorkerLimits& limits) {
    constexpr int socket = 3;
    CatchCrashes();
    static Watch watch(limits);  // its thread runs to the end of the process
    std::string request;
    while (ReceiveMessage(socket, request)) {
        watch.Begin();
        const std::string answer = work(request);
        watch.End();
        if (!SendMessage(socket, answer)) break;
    }
    _exit(0);
}

std::string ReasonOf(int status, const WorkerLimits& limits) {
    if (WIFEXITED(status) && WEXITSTATUS(status) == OutOfTime)
        return fmt::format("reading it takes longer than {:g} seconds", limits.seconds);
    if (WIFEXITED(status) && WEXITSTATUS(status) == OutOfMemory)
        return fmt::format("reading it takes more than {} megabytes of memory", limits.megabytes);
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) return "the system ended the process that read it";
    return "it is damaged, or nested too deeply: the process that read it crashed";
}

}  // namespace

WorkerPool::WorkerPool(Work work, unsigned workers, WorkerLimits limits)
    : work_(std::move(work)), limits_(limits), workers_(std::max(workers, 1U)) {}

WorkerPool::~WorkerPool() {
    for (Worker& worker : workers_) {
        if (worker.process == 0) continue;
        close(worker.socket);
        kill(worker.process, SIGKILL);
        waitpid(worker.process, nullptr, 0);
    }
}

void WorkerPool::Submit(std::string request) { queue_.push_back({submitted_++, std::move(request)}); }

std::optional<WorkerPool::Answer> WorkerPool::Next(const std::function<bool()>& stop) {
    while (!answers_.contains(returned_)) {
        if (stop()) return std::nullopt;
        for (Worker& worker : workers_) Give(worker);
        Collect();
    }
    Answer answer = std::move(answers_.at(returned_));
    answers_.erase(returned_++);
    return answer;
}

void WorkerPool::Start(Worker& worker) {
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0)
        throw std::system_error(errno, std::generic_category(), "no process can be started to read files");
    const int program = getpid();
    const int process = fork();
    if (process < 0) {
        close(sockets[0]);
        close(sockets[1]);
        throw std::system_error(errno, std::generic_category(), "no process can be started to read files");
    }
    if (process == 0) {
        BelongToProgram(program, sockets[1]);
        Serve(work_, limits_);
    }
    close(sockets[1]);
    worker = {process, sockets[0], {}};
}

void WorkerPool::Give(Worker& worker) {
    while (!queue_.empty() && worker.given.size() < RequestsAhead) {
        if (worker.process == 0) Start(worker);
        if (!SendMessage(worker.socket, queue_.front().text)) return;  // it has died; `Collect` sees it
        worker.given.push_back(std::move(queue_.front()));
        queue_.pop_front();
    }
}

/// Waits until a worker that has requests answers or dies.
void WorkerPool::Collect() {
    std::vector<pollfd> sockets;
    std::vector<Worker*> busy;
    for (Worker& worker : workers_) {
        if (worker.process == 0) continue;
        sockets.push_back({worker.socket, POLLIN, 0});
        busy.push_back(&worker);
    }
    if (poll(sockets.data(), sockets.size(), -1) < 0 && errno != EINTR)
        throw std::system_error(errno, std::generic_category(), "the processes that read files are lost");
    for (std::size_t i = 0; i < sockets.size(); ++i)
        if (sockets[i].revents != 0) Receive(*busy[i]);
}

void WorkerPool::Receive(Worker& worker) {
    std::string bytes;
    if (!ReceiveMessage(worker.socket, bytes)) return Bury(worker);
    Request& request = worker.given.front();
    answers_[request.number] = {std::move(request.text), std::move(bytes), {}, false};
    worker.given.pop_front();
}

/// Fails the request on which a worker died, and puts its other requests back.
void WorkerPool::Bury(Worker& worker) {
    int status = 0;
    waitpid(worker.process, &status, 0);
    close(worker.socket);
    if (!worker.given.empty()) {
        Request& culprit = worker.given.front();
        answers_[culprit.number] = {std::move(culprit.text),
                                    {},
                                    ReasonOf(status, limits_),
                                    WIFEXITED(status) && WEXITSTATUS(status) == OutOfTime};
        worker.given.pop_front();
        queue_.insert(queue_.begin(), std::make_move_iterator(worker.given.begin()),
                      std::make_move_iterator(worker.given.end()));
    }
    worker = {};
}

}  // namespace Console
