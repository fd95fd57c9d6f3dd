#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantrel {

/// A transfer that failed on its own: no connection, a time-out, a stream broken off. The
/// text is the system's sentence for it.
struct HttpError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// One GET over the network. The macOS shell implements it with the system's URL loading;
/// tests play a server. Called only from a background thread: it blocks until the transfer
/// ends.
class HttpTransport {
public:
    struct Request {
        std::string url;
        std::vector<std::pair<std::string, std::string>> headers;
        /// Zero leaves the system's time-out.
        double timeoutSeconds = 0;
        /// Skip every local cache and ask the server itself.
        bool ignoreLocalCache = false;
    };

    /// Sees the response as it arrives: the status once, then the body in pieces. Either
    /// answering false ends the transfer at once, and nothing more is delivered.
    struct Receiver {
        std::function<bool(int status)> status;
        std::function<bool(std::string_view piece)> body;
    };

    virtual ~HttpTransport() = default;

    /// Runs the request to its end. Throws `HttpError` when the transfer fails; a transfer
    /// stopped by the receiver just returns.
    virtual void send(const Request& request, const Receiver& receiver) = 0;
};

} // namespace vantrel
