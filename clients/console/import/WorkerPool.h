#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Console {

/// What one request may cost a worker process.
struct WorkerLimits {
    double seconds = 30;
    std::size_t megabytes = 1024;  ///< resident memory beyond that of the program
};

/// Answers requests in worker processes, so that input that crashes, hangs or fills the memory ends a worker
/// and not the program.
///
/// Answers come in the order of the requests. A worker that dies or exceeds a limit fails the one request
/// that it worked on; another worker takes its place. The workers end with the pool, and when the program is
/// killed. They start by `fork`: make and use the pool on the main thread of a program without other
/// threads.
class WorkerPool {
public:
    /// Turns a request into an answer, in a worker. It must not throw, and must use nothing of the program
    /// that has a state outside of memory: open databases, files that are written.
    using Work = std::function<std::string(const std::string& request)>;

    /// One answer. `failure` is empty, or says in one clause why there is none; `outOfTime` is then true for
    /// a request that took too long.
    struct Answer {
        std::string request;
        std::string bytes;
        std::string failure;
        bool outOfTime = false;
    };

    WorkerPool(Work work, unsigned workers, WorkerLimits limits = {});
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;

    /// Adds a request.
    void Submit(std::string request);

    /// How many requests have no answer that `Next` has returned.
    std::size_t Waiting() const noexcept { return submitted_ - returned_; }

    /// Waits for the answer to the oldest request that has none yet, and returns it; there must be one.
    /// Returns null as soon as `stop` is true, which is asked after each signal that the program gets. Throws
    /// `std::system_error` when no worker can be started.
    std::optional<Answer> Next(const std::function<bool()>& stop);

private:
    struct Request {
        std::size_t number;
        std::string text;
    };
    struct Worker {
        int process = 0;
        int socket = -1;
        std::deque<Request> given;  ///< the first is being worked on
    };

    void Start(Worker& worker);
    void Give(Worker& worker);
    void Collect();
    void Receive(Worker& worker);
    void Bury(Worker& worker);

    Work work_;
    WorkerLimits limits_;
    std::vector<Worker> workers_;
    std::deque<Request> queue_;
    std::map<std::size_t, Answer> answers_;
    std::size_t submitted_ = 0, returned_ = 0;
};

}  // namespace Console
