#pragma once

#include "HttpTransport.hpp"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// Where a blocking `HttpTransport::send` meets the system's loading callbacks, which arrive
/// one at a time on a queue of the system's own. The sending thread waits in `wait`; each
/// callback hands its piece straight to the receiver, so a limit the receiver keeps cuts the
/// transfer while it is read, not once it has all arrived. The length a server announces is
/// never consulted: only the bytes that come count.
///
/// Threads: any. The receiver is only ever called with the stream's lock held, so it sees one
/// callback at a time, and never again once it has said stop or `wait` has returned.
class HttpStream {
public:
    explicit HttpStream(HttpTransport::Receiver receiver);

    HttpStream(const HttpStream&) = delete;
    HttpStream& operator=(const HttpStream&) = delete;

    /// The response head. Answers whether the body is wanted; on false the caller cancels the
    /// transfer.
    bool response(int status);
    /// One piece of the body as it arrives. Answers whether more is wanted; on false the
    /// caller cancels the transfer. Pieces the system had already queued before the cancel
    /// took hold are dropped here.
    bool body(std::string_view piece);
    /// The transfer's end, with the system's sentence when it failed. A failure that follows
    /// a stop is the cancel's own doing and is not one.
    void complete(const std::optional<std::string>& failure);

    /// Blocks until the transfer has ended or the receiver has stopped it. Throws `HttpError`
    /// with the system's sentence when it failed on its own.
    void wait();

private:
    /// Whether nothing more reaches the receiver.
    bool finished() const { return stopped_ || completed_; }

    HttpTransport::Receiver receiver_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool stopped_ = false;
    bool completed_ = false;
    std::optional<std::string> failure_;
};

} // namespace vantrel
