#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Console {

/// The limits of a worker process for one request.
struct WorkerLimits {
    double seconds = 30;
    std::size_t megabytes = 1024;  ///< resident memory beyond that of the program
};

/// Answers requests in worker processes, so that input that crashes, hangs or fills the memory ends a worker
/// and not the program.
///
/// Answers are returned in the order of the requests. If a worker crashes or exceeds a limit, only its current request
/// fails, and another worker replaces it. The workers end with the pool, and when the program is killed. They are
/// started by `fork`: a program must create and use the pool on its main thread and must have no other threads.
class WorkerPool {
public:
    /// Turns a request into an answer, in a worker. It must not throw, and must use nothing of the program
    /// that has a state outside of memory: open databases, files that are written.
    using Work = std::function<std::string(const std::string& request)>;

    /// One answer. `failure` is empty, or one clause about the reason of a failure; `outOfTime` is then true for a
    /// request that took too long.
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

    /// Returns the number of requests whose answers `Next` has not yet returned.
    std::size_t Waiting() const noexcept { return submitted_ - returned_; }

    /// Waits for the answer to the oldest request without one, and returns it; such a request must exist. Calls `stop`
    /// after each signal that the program receives, and returns `std::nullopt` as soon as it returns true. Throws
    /// `std::system_error` if a worker can't be started.
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
