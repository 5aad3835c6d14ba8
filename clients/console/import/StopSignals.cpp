#include "console/import/StopSignals.h"

namespace Console {
namespace {

volatile std::sig_atomic_t requested = 0;

void Request(int signal) {
    if (requested != 0) {  // the second one: end as if there were no handler
        std::signal(signal, SIG_DFL);
        static_cast<void>(std::raise(signal));
    }
    requested = signal;
}

}  // namespace

StopSignals::StopSignals() {
    requested = 0;
    struct sigaction action {};
    action.sa_handler = Request;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < Signals.size(); ++i) {
        sigaction(Signals[i], nullptr, &before_[i]);
        if (before_[i].sa_handler != SIG_IGN) sigaction(Signals[i], &action, nullptr);
    }
}

StopSignals::~StopSignals() {
    for (std::size_t i = 0; i < Signals.size(); ++i) sigaction(Signals[i], &before_[i], nullptr);
}

int StopSignals::Requested() noexcept { return requested; }

}  // namespace Console
