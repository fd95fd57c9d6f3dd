#include "HttpStream.hpp"
#include "UpdaterWorld.hpp"

#include <thread>

namespace vantrel {
namespace {

/// The system's URL loading as the macOS transport meets it: the response and the body's
/// pieces arrive on a queue of its own while `send` waits, a cancel takes hold only after the
/// pieces already queued, and a cancelled transfer still ends with a failure of its own.
struct PlayedSession : HttpTransport {
    int status = 200;
    /// What the server sends, whatever length it announced: that is never consulted.
    std::string body;
    std::size_t piece = 4096;
    /// Pieces that still arrive after a cancel.
    int queuedAfterCancel = 2;
    /// How the transfer ends when it is not cancelled.
    std::optional<std::string> ending;

    /// Bytes taken off the network.
    std::size_t read = 0;
    int piecesAfterCancel = 0;

    void send(const Request&, const Receiver& receiver) override {
        read = 0;
        piecesAfterCancel = 0;
        HttpStream stream(receiver);
        std::thread queue([&] {
            if (!stream.response(status)) {
                stream.complete("cancelled");
                return;
            }
            int cancelledAgo = -1;
            for (std::size_t at = 0; at < body.size() && cancelledAgo < queuedAfterCancel;
                 at += piece) {
                const std::string_view next = std::string_view(body).substr(at, piece);
                read += next.size();
                if (cancelledAgo >= 0) {
                    ++cancelledAgo;
                    piecesAfterCancel += stream.body(next) ? 1 : 0;
                } else if (!stream.body(next)) {
                    cancelledAgo = 0;
                }
            }
            stream.complete(cancelledAgo >= 0 ? std::optional<std::string>("cancelled") : ending);
        });
        try {
            stream.wait();
        } catch (const HttpError&) {
            queue.join();
            throw;
        }
        queue.join();
    }
};

class HttpStreamTest : public ::testing::Test, protected UpdaterWorld {
protected:
    std::shared_ptr<PlayedSession> session = std::make_shared<PlayedSession>();
    std::shared_ptr<Updater> updater =
        Updater::create(bundle, caches, {14, 4, 1}, {host, session, tools, defaults, files});
    std::vector<double> fractions;

    std::string fetch(std::int64_t expected) {
        return updater->fetch(archiveURL, expected, [this](double f) { fractions.push_back(f); });
    }
    std::string fetchFailure(std::int64_t expected) {
        try {
            fetch(expected);
        } catch (const std::exception& error) {
            return error.what();
        }
        return "no failure";
    }
};

TEST_F(HttpStreamTest, TheArchiveIsCutWhileItIsReadNotAfter) {
    constexpr std::int64_t length = 100'000;
    // A server that sends far more than the feed's length: the stream stops at the piece
    // that holds byte `length` + 1, with most of a megabyte still to come, and what the
    // system had queued before the cancel took hold never reaches the updater.
    for (const std::size_t piece : {std::size_t{1}, std::size_t{4096}, std::size_t{65536}}) {
        session->piece = piece;
        session->body = std::string(length + (1 << 20), 'z');
        EXPECT_EQ(fetchFailure(length), "The download was larger than expected.") << piece;
        EXPECT_LE(session->read, length + 1 + piece * 3) << piece;
        EXPECT_EQ(session->piecesAfterCancel, 0);
    }

    // An honest stream ends at 1, after whole percents.
    session->body = std::string(length, 'a');
    fractions.clear();
    EXPECT_EQ(fetch(length).size(), static_cast<std::size_t>(length));
    EXPECT_EQ(fractions.back(), 1);
    EXPECT_LE(fractions.size(), 101u);

    // One byte over, in the last piece of a body that is otherwise right.
    session->body += "!";
    EXPECT_EQ(fetchFailure(length), "The download was larger than expected.");
}

TEST_F(HttpStreamTest, FailuresOfTheTransferAreTheSystemsAndTheServersOwn) {
    // A server that announced more than it sends: the connection drops, and the system says
    // so in its own words.
    session->body = std::string(3000, 'a');
    session->ending = "The network connection was lost.";
    EXPECT_EQ(fetchFailure(5000), "The network connection was lost.");

    // Refused at the head: no body is read at all.
    session->status = 404;
    session->ending.reset();
    EXPECT_EQ(fetchFailure(3000), "The update file couldn’t be downloaded.");
    EXPECT_EQ(session->read, 0u);

    // Through a whole download, as the user reads it: a time-out, then a body that ends
    // cleanly but short of the feed's length.
    session->status = 200;
    const UpdateFeed feed = publish("1.1");
    session->body = fakes::Archive{}.bytes();
    session->ending = "The request timed out.";
    updater->download(feed);
    EXPECT_EQ(updater->phase(), (Updater::Phase{Updater::Phase::Failed{
                                    "The update couldn’t be downloaded. The request timed out."}}));
    session->body.pop_back();
    session->ending.reset();
    updater->download(feed);
    EXPECT_EQ(updater->phase(), (Updater::Phase{Updater::Phase::Failed{
                                    "The update couldn’t be downloaded. The download was "
                                    "incomplete."}}));
    EXPECT_FALSE(std::filesystem::exists(caches));
}

TEST(HttpStream, AStopHoldsAgainstLateCallbacks) {
    int pieces = 0;
    HttpStream stream({[](int) { return true; }, [&](std::string_view) { return ++pieces < 2; }});
    EXPECT_TRUE(stream.response(200));
    EXPECT_TRUE(stream.body("a"));
    EXPECT_FALSE(stream.body("b"));
    EXPECT_FALSE(stream.body("c"));
    EXPECT_FALSE(stream.response(200));
    stream.complete("cancelled");
    EXPECT_NO_THROW(stream.wait());
    EXPECT_EQ(pieces, 2);
}

} // namespace
} // namespace vantrel
