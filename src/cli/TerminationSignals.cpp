#include "TerminationSignals.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <system_error>
#include <unistd.h>

namespace scrimlet {

namespace {

constexpr int handled[3] = {SIGTERM, SIGINT, SIGHUP};

// The pipe's write end as the handler sees it; -1 while no instance lives.
volatile sig_atomic_t pipeForHandler = -1;

extern "C" void onTerminationSignal(int signal) {
    const int savedErrno = errno;
    const auto byte = static_cast<unsigned char>(signal);
    // The write end never blocks: when the pipe is full, a signal is already waiting there.
    [[maybe_unused]] const ssize_t written = ::write(pipeForHandler, &byte, 1);
    errno = savedErrno;
}

void setFlags(int fd) {
    if (::fcntl(fd, F_SETFD, FD_CLOEXEC) == -1 ||
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK) == -1) {
        throw std::system_error(errno, std::generic_category(), "signal pipe");
    }
}

} // namespace

TerminationSignals::TerminationSignals() {
    if (pipeForHandler != -1) {
        throw std::logic_error("termination signals are handled already");
    }
    int ends[2];
    if (::pipe(ends) == -1) {
        throw std::system_error(errno, std::generic_category(), "signal pipe");
    }
    readEnd_ = ends[0];
    writeEnd_ = ends[1];
    try {
        setFlags(readEnd_);
        setFlags(writeEnd_);
    } catch (...) {
        ::close(readEnd_);
        ::close(writeEnd_);
        throw;
    }
    pipeForHandler = writeEnd_;

    struct sigaction action = {};
    action.sa_handler = onTerminationSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (size_t i = 0; i < 3; ++i) {
        ::sigaction(handled[i], &action, &previous_[i]);
    }
}

TerminationSignals::~TerminationSignals() {
    for (size_t i = 0; i < 3; ++i) {
        ::sigaction(handled[i], &previous_[i], nullptr);
    }
    pipeForHandler = -1;
    ::close(readEnd_);
    ::close(writeEnd_);
}

std::optional<int> TerminationSignals::wait(double seconds) {
    if (received_) {
        return received_;
    }
    using Clock = std::chrono::steady_clock;
    const double bounded = std::isfinite(seconds) ? std::clamp(seconds, 0.0, 86400.0 * 365) : 0.0;
    const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                             std::chrono::duration<double>(bounded));
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        pollfd watched = {readEnd_, POLLIN, 0};
        const int ready =
            ::poll(&watched, 1, static_cast<int>(std::clamp<long long>(left.count(), 0, 1 << 30)));
        if (ready > 0) {
            unsigned char byte = 0;
            if (::read(readEnd_, &byte, 1) == 1) {
                received_ = byte;
                return received_;
            }
        } else if (ready < 0 && errno != EINTR) {
            return std::nullopt;
        }
        if (Clock::now() >= deadline) {
            return std::nullopt;
        }
    }
}

} // namespace scrimlet
