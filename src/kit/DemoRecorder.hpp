#pragma once

// A product film of the running app, made without a screen-recording permission or a hand
// on the mouse: a script moves a painted cursor, "clicks" and types through the app's own
// views, and the recorder films the app's own windows over a backdrop of its own. Beside the
// film it leaves the cursor's path, the clicks and the captions for a later editing step.
//
// Everything here but the capture, the drawing and the writer, which the platform supplies
// through `DemoCamera`, and the passing of time, which it supplies through `DemoClock`.
// Main thread only: the script's waits keep the run loop turning, so that the frame timer
// keeps firing between its steps.

#include "Geometry.hpp"

#include <array>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vantrel {

using scrimlet::Point;
using scrimlet::Rect;
using scrimlet::Size;

/// Where the app's views say they are, so that a script can point at them by name. Frames
/// are in global screen points, origin at the top left of the main display. Main thread.
class DemoAnchors {
public:
    void set(const std::string& id, const Rect& frame) { frames_[id] = frame; }
    void remove(const std::string& id) { frames_.erase(id); }
    std::optional<Rect> frame(const std::string& id) const;
    const std::map<std::string, Rect>& frames() const { return frames_; }

    /// A frame in the system's window coordinates, whose origin is the bottom left of the
    /// main display with y growing upward, as the anchors keep it.
    static Rect fromBottomLeft(const Rect& frame, double mainDisplayHeight);

private:
    std::map<std::string, Rect> frames_;
};

/// What stops a film.
struct DemoFailure : std::exception {
    enum class Kind { writer, noAnchor, script };

    static DemoFailure writer(std::string message) { return {Kind::writer, std::move(message)}; }
    /// The app did not do what the script showed it doing, so the film would lie.
    static DemoFailure script(std::string message) { return {Kind::script, std::move(message)}; }
    static DemoFailure noAnchor(const std::string& id) {
        return {Kind::noAnchor, "demo: no anchor " + id};
    }
    const char* what() const noexcept override { return message.c_str(); }

    Kind kind = Kind::writer;
    std::string message;

private:
    DemoFailure(Kind k, std::string text)
        : kind(k)
        , message(std::move(text)) {}
};

struct DemoCaption {
    /// Seconds of the film.
    double start = 0;
    double end = 0;
    std::string text;

    bool operator==(const DemoCaption&) const = default;
};

/// One display, as the system reports it.
struct DemoScreen {
    /// Global screen points, origin at the top left of the main display.
    Rect frame;
    /// Pixels per point.
    double backingScale = 1;
};

/// The film's file and format, fixed before the first frame.
struct FilmFormat {
    /// "raw.mov" in the output folder, a QuickTime movie.
    std::filesystem::path file;
    int pixelWidth = 0;
    int pixelHeight = 0;
    /// H.264 at this many bits a second: eight for each pixel.
    double averageBitRate = 0;
    /// At most this many frames between two key frames: one second's worth, so that the
    /// editing step can cut anywhere.
    int maxKeyFrameInterval = 0;
    int fps = 0;

    bool operator==(const FilmFormat&) const = default;
};

/// A window on screen, as the system's window list reports it.
struct FilmWindow {
    std::uint32_t number = 0;
    int ownerPid = 0;
    /// Global screen points, origin at the top left of the main display.
    Rect bounds;

    bool operator==(const FilmWindow&) const = default;
};

/// Everything one frame needs, laid out for the film's pixels (origin at the top left).
struct FilmFrame {
    /// The presentation time, in units of `timescale`.
    std::int64_t time = 0;
    static constexpr std::int32_t timescale = 600;
    /// What to capture: these windows, front to back, in this part of the screen, in points.
    std::vector<std::uint32_t> windows;
    Rect region;
    /// Where the capture is drawn, aspect-fitted and centred in the film.
    Rect imageRect;
    Point cursor;
    /// Pixels per point of the capture, for the size of the cursor.
    double scale = 1;
    /// How far the last click's ring has grown and faded, from 0 to 1, while it is drawn.
    std::optional<double> clickRing;

    /// Where a rectangle of the screen, in global points, lands in the film.
    Rect toFilm(const Rect& global) const {
        return {imageRect.x + (global.x - region.x) * scale,
                imageRect.y + (global.y - region.y) * scale, global.width * scale,
                global.height * scale};
    }

    bool operator==(const FilmFrame&) const = default;
};

/// The platform's part of a film: the writer, the capture of the app's own windows, and the
/// drawing of one frame. Main thread.
class DemoCamera {
public:
    enum class Shot {
        written,
        /// The windows could not be captured: the frame is lost, the film goes on.
        captureFailed,
    };

    virtual ~DemoCamera() = default;

    /// Creates the writer. Throws `DemoFailure::writer` with the writer's own words.
    virtual void open(const FilmFormat& format) = 0;
    /// Whether the writer takes another frame now.
    virtual bool isReady() = 0;
    /// The windows on screen, front to back.
    virtual std::vector<FilmWindow> onScreenWindows() = 0;
    virtual int processId() const = 0;
    /// Captures the frame's windows, draws the frame and appends it.
    virtual Shot shoot(const FilmFrame& frame) = 0;
    /// Marks the input finished and waits until the file is written; the writer's error, if
    /// it had one.
    virtual std::optional<std::string> finish() = 0;
};

/// Time as a film sees it. Main thread.
class DemoClock {
public:
    virtual ~DemoClock() = default;

    /// Seconds on a clock that runs on while the Mac sleeps.
    virtual double now() const = 0;
    /// Seconds since 1970.
    virtual double wallNow() const = 0;
    /// Lets `seconds` pass while the run loop, and so the frame timer, keeps turning.
    virtual void wait(double seconds) = 0;
    /// Calls `tick` every `interval` seconds until `stopTimer`, also while a menu is open.
    virtual void startTimer(double interval, std::function<void()> tick) = 0;
    virtual void stopTimer() = 0;
};

class DemoRecorder : public std::enable_shared_from_this<DemoRecorder> {
public:
    struct Services {
        std::shared_ptr<DemoClock> clock;
        std::shared_ptr<DemoCamera> camera;
        std::shared_ptr<const DemoAnchors> anchors;
    };

    /// A click's ring is drawn for this long.
    static constexpr double clickRingSeconds = 0.45;
    /// A caption that stood no longer than this is a slip of the script, and is dropped.
    static constexpr double shortestCaption = 0.2;
    /// No film is wider than this many pixels.
    static constexpr double widestFilm = 2560;

    /// Makes the folder, removes an old "raw.mov" and opens the writer. Throws
    /// `DemoFailure::writer` when the writer cannot be made.
    static std::shared_ptr<DemoRecorder> create(std::filesystem::path folder, Rect region, int fps,
                                                const std::vector<DemoScreen>& screens,
                                                Services services);

    /// Pixels per point: that of the first screen the region meets, 2 when it meets none,
    /// and never so many that the film grows wider than `widestFilm`.
    static double scaleFor(const Rect& region, const std::vector<DemoScreen>& screens);
    /// Each side scaled and rounded to an even number, as the encoder wants it.
    static Size pixelSizeFor(const Rect& region, double scale);
    /// What a frame films: this process's own windows that reach into the region, and
    /// nothing else of the desktop.
    static std::vector<std::uint32_t> windowsToFilm(const std::vector<FilmWindow>& onScreen,
                                                    int processId, const Rect& region);
    /// The cubic ease in and out of every move.
    static double ease(double t);

    /// Starts the frame timer and takes the first frame at once.
    void start();
    /// Seconds since `start`.
    double elapsed() const;
    /// Films another part of the screen from now on, fitted into the same frame.
    void setRegion(const Rect& region);
    void wait(double seconds);

    /// Closes any open caption and opens one from now.
    void caption(const std::string& text);
    void clearCaption();

    void move(Point to, double duration);
    /// Moves to the centre of an anchor. Throws `DemoFailure::noAnchor` for one no view has
    /// reported.
    void moveToAnchor(const std::string& id, double duration);
    /// Moves there, notes the click, then lets `action` do what the click would. No real
    /// mouse event is ever sent.
    void click(const std::string& anchor, double duration, const std::function<void()>& action);
    void click(Point at, double duration, const std::function<void()>& action);
    /// Hands `into` each longer beginning of `text`, one character more each time, with
    /// `perCharacter` seconds between them.
    void type(const std::string& text, const std::function<void(const std::string&)>& into,
              double perCharacter);

    /// Ends the film and writes "events.json", "captions.json" and "project.json" beside
    /// "raw.mov"; answers the folder. Throws `DemoFailure::writer` when the writer failed or
    /// not one frame was captured. After this the recorder is spent.
    std::filesystem::path finish(const std::string& name);

    /// One tick of the frame timer.
    void captureFrame();

    Point cursor() const { return cursor_; }
    const std::vector<std::array<double, 3>>& cursorLog() const { return cursorLog_; }
    const std::vector<std::array<double, 3>>& clicks() const { return clicks_; }
    const std::vector<DemoCaption>& captions() const { return captions_; }
    int framesWritten() const { return framesWritten_; }
    int failedCaptures() const { return failedCaptures_; }
    const FilmFormat& format() const { return format_; }
    double scale() const { return scale_; }
    /// Where the capture of `region` lands in the film, and how many film pixels a point of
    /// it takes.
    std::pair<Rect, double> placement() const;

private:
    DemoRecorder(std::filesystem::path folder, Rect region, int fps, double scale,
                 Services services);

    void closeCaption();
    void note(std::vector<std::array<double, 3>>& log) const;
    void writeFiles(const std::string& name, double duration) const;

    const std::filesystem::path folder_;
    Rect region_;
    const int fps_;
    const double scale_;
    const Services services_;
    FilmFormat format_;
    std::optional<double> startTime_;
    bool finished_ = false;
    std::optional<std::int64_t> lastFrameTime_;
    int failedCaptures_ = 0;
    int framesWritten_ = 0;
    Point cursor_;
    std::vector<std::array<double, 3>> cursorLog_;
    std::vector<std::array<double, 3>> clicks_;
    std::vector<DemoCaption> captions_;
    struct OpenCaption {
        double start;
        std::string text;
    };
    std::optional<OpenCaption> openCaption_;
    std::optional<double> lastClick_;
};

/// The text's beginnings one character longer each time, a character being what the user
/// sees as one: a letter with its combining marks, or an emoji with its modifiers and joined
/// parts.
std::vector<std::string> typedPrefixes(const std::string& text);

} // namespace vantrel
