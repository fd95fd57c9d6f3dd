#include "HttpStream.hpp"

#include <utility>

namespace vantrel {

HttpStream::HttpStream(HttpTransport::Receiver receiver)
    : receiver_(std::move(receiver)) {}

bool HttpStream::response(int status) {
    std::lock_guard lock(mutex_);
    if (finished()) {
        return false;
    }
    if (!receiver_.status(status)) {
        stopped_ = true;
        changed_.notify_all();
    }
    return !stopped_;
}

bool HttpStream::body(std::string_view piece) {
    std::lock_guard lock(mutex_);
    if (finished()) {
        return false;
    }
    if (!piece.empty() && !receiver_.body(piece)) {
        stopped_ = true;
        changed_.notify_all();
    }
    return !stopped_;
}

void HttpStream::complete(const std::optional<std::string>& failure) {
    std::lock_guard lock(mutex_);
    if (finished()) {
        return;
    }
    completed_ = true;
    failure_ = failure;
    changed_.notify_all();
}

void HttpStream::wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return finished(); });
    if (!stopped_ && failure_) {
        throw HttpError(*failure_);
    }
}

} // namespace vantrel
