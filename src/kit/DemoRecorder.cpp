#include "DemoRecorder.hpp"

#include "AtomicFile.hpp"
#include "Date.hpp"
#include "JsonCoding.hpp"

#include <algorithm>
#include <cmath>
#include <system_error>

namespace vantrel {

namespace {

namespace fs = std::filesystem;
using scrimlet::json::Json;

constexpr int fileVersion = 1;
/// The pixels per point where no screen says.
constexpr double fallbackScale = 2;

Json rows(const std::vector<std::array<double, 3>>& log) {
    Json out = Json::array();
    for (const auto& row : log) {
        out.push_back({row[0], row[1], row[2]});
    }
    return out;
}

Json rect(const Rect& r) {
    return {{"x", r.x}, {"y", r.y}, {"width", r.width}, {"height", r.height}};
}

void write(const fs::path& path, const Json& value) {
    if (!scrimlet::files::writeAtomically(path, scrimlet::json::sortedText(value))) {
        throw DemoFailure::writer("demo: couldn’t write " + path.filename().string());
    }
}

/// The code point that starts at `at`, and where the next one starts. Bytes that are not
/// UTF-8 stand for themselves.
std::pair<char32_t, std::size_t> codePoint(const std::string& text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const int length = lead < 0x80           ? 1
                       : (lead >> 5) == 0x6  ? 2
                       : (lead >> 4) == 0xE  ? 3
                       : (lead >> 3) == 0x1E ? 4
                                             : 1;
    if (at + static_cast<std::size_t>(length) > text.size()) {
        return {lead, at + 1};
    }
    char32_t value = length == 1 ? lead : lead & (0x7F >> length);
    for (int i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[at + static_cast<std::size_t>(i)]);
        if ((next & 0xC0) != 0x80) {
            return {lead, at + 1};
        }
        value = (value << 6) | (next & 0x3F);
    }
    return {value, at + static_cast<std::size_t>(length)};
}

/// Marks that belong to the character before them.
bool extends(char32_t c) {
    return (c >= 0x300 && c <= 0x36F) || (c >= 0x1AB0 && c <= 0x1AFF) ||
           (c >= 0x1DC0 && c <= 0x1DFF) || (c >= 0x20D0 && c <= 0x20FF) ||
           (c >= 0xFE00 && c <= 0xFE0F) || (c >= 0xFE20 && c <= 0xFE2F) || c == 0x200D ||
           (c >= 0x1F3FB && c <= 0x1F3FF) || (c >= 0xE0020 && c <= 0xE007F);
}

} // namespace

std::optional<Rect> DemoAnchors::frame(const std::string& id) const {
    const auto found = frames_.find(id);
    return found == frames_.end() ? std::nullopt : std::optional<Rect>(found->second);
}

Rect DemoAnchors::fromBottomLeft(const Rect& frame, double mainDisplayHeight) {
    return {frame.x, mainDisplayHeight - frame.maxY(), frame.width, frame.height};
}

double DemoRecorder::scaleFor(const Rect& region, const std::vector<DemoScreen>& screens) {
    const auto screen = std::find_if(screens.begin(), screens.end(), [&](const DemoScreen& s) {
        return s.frame.intersects(region);
    });
    const double native = screen == screens.end() ? fallbackScale : screen->backingScale;
    return std::min(native, widestFilm / std::max(region.width, 1.0));
}

Size DemoRecorder::pixelSizeFor(const Rect& region, double scale) {
    const auto even = [scale](double side) { return std::round(scale * side * 0.5) * 2; };
    return {even(region.width), even(region.height)};
}

std::vector<std::uint32_t> DemoRecorder::windowsToFilm(const std::vector<FilmWindow>& onScreen,
                                                       int processId, const Rect& region) {
    std::vector<std::uint32_t> numbers;
    for (const FilmWindow& window : onScreen) {
        if (window.ownerPid == processId && window.bounds.intersects(region)) {
            numbers.push_back(window.number);
        }
    }
    return numbers;
}

double DemoRecorder::ease(double t) {
    if (t < 0.5) {
        return 4 * t * t * t;
    }
    const double rest = 2 - 2 * t;
    return 1 - rest * rest * rest * 0.5;
}

std::shared_ptr<DemoRecorder> DemoRecorder::create(fs::path folder, Rect region, int fps,
                                                   const std::vector<DemoScreen>& screens,
                                                   Services services) {
    const double scale = scaleFor(region, screens);
    std::shared_ptr<DemoRecorder> recorder(
        new DemoRecorder(std::move(folder), region, std::max(fps, 1), scale, std::move(services)));
    std::error_code error;
    fs::create_directories(recorder->folder_, error);
    if (error) {
        throw DemoFailure::writer(error.message());
    }
    fs::remove(recorder->format_.file, error);
    recorder->services_.camera->open(recorder->format_);
    return recorder;
}

DemoRecorder::DemoRecorder(fs::path folder, Rect region, int fps, double scale, Services services)
    : folder_(std::move(folder))
    , region_(region)
    , fps_(fps)
    , scale_(scale)
    , services_(std::move(services)) {
    const Size pixels = pixelSizeFor(region, scale);
    format_.file = folder_ / "raw.mov";
    format_.pixelWidth = static_cast<int>(pixels.width);
    format_.pixelHeight = static_cast<int>(pixels.height);
    format_.averageBitRate = pixels.width * pixels.height * 8;
    format_.maxKeyFrameInterval = fps_;
    format_.fps = fps_;
}

void DemoRecorder::start() {
    if (startTime_ || finished_) {
        return;
    }
    startTime_ = services_.clock->now();
    const std::weak_ptr<DemoRecorder> weak = weak_from_this();
    services_.clock->startTimer(1.0 / fps_, [weak] {
        if (const auto self = weak.lock()) {
            self->captureFrame();
        }
    });
    captureFrame();
}

double DemoRecorder::elapsed() const {
    return startTime_ ? services_.clock->now() - *startTime_ : 0;
}

void DemoRecorder::setRegion(const Rect& region) {
    region_ = region;
}

void DemoRecorder::wait(double seconds) {
    if (seconds > 0) {
        services_.clock->wait(seconds);
    }
}

std::pair<Rect, double> DemoRecorder::placement() const {
    const double width = format_.pixelWidth;
    const double height = format_.pixelHeight;
    const double fit =
        std::min(width / std::max(region_.width, 1.0), height / std::max(region_.height, 1.0));
    const Size size{region_.width * fit, region_.height * fit};
    return {Rect{0, 0, width, height}.centered(size), fit};
}

void DemoRecorder::captureFrame() {
    if (!startTime_ || finished_ || !services_.camera->isReady()) {
        return;
    }
    const double now = elapsed();
    // The writer takes only later and later times; two ticks in the same 600th of a second
    // make one frame.
    const auto time = static_cast<std::int64_t>(std::llround(now * FilmFrame::timescale));
    if (lastFrameTime_ && time <= *lastFrameTime_) {
        return;
    }
    DemoCamera& camera = *services_.camera;
    FilmFrame frame;
    frame.windows = windowsToFilm(camera.onScreenWindows(), camera.processId(), region_);
    if (frame.windows.empty()) {
        ++failedCaptures_;
        return;
    }
    const auto [imageRect, fit] = placement();
    frame.time = time;
    frame.region = region_;
    frame.imageRect = imageRect;
    frame.scale = fit;
    frame.cursor = frame.toFilm({cursor_.x, cursor_.y, 0, 0}).origin();
    if (lastClick_ && now - *lastClick_ < clickRingSeconds) {
        frame.clickRing = (now - *lastClick_) / clickRingSeconds;
    }
    switch (camera.shoot(frame)) {
    case DemoCamera::Shot::written:
        lastFrameTime_ = time;
        ++framesWritten_;
        break;
    case DemoCamera::Shot::captureFailed:
        ++failedCaptures_;
        break;
    }
}

void DemoRecorder::caption(const std::string& text) {
    closeCaption();
    openCaption_ = OpenCaption{elapsed(), text};
}

void DemoRecorder::clearCaption() {
    closeCaption();
}

void DemoRecorder::closeCaption() {
    if (!openCaption_) {
        return;
    }
    const double end = elapsed();
    if (end - openCaption_->start > shortestCaption) {
        captions_.push_back({openCaption_->start, end, openCaption_->text});
    }
    openCaption_.reset();
}

void DemoRecorder::note(std::vector<std::array<double, 3>>& log) const {
    log.push_back({elapsed(), cursor_.x, cursor_.y});
}

void DemoRecorder::move(Point to, double duration) {
    const Point from = cursor_;
    const int steps = static_cast<int>(std::lround(std::max(duration, 0.0) * fps_));
    if (steps == 0) {
        cursor_ = to;
        note(cursorLog_);
        return;
    }
    // A row at each frame time, from where the cursor was to where it goes, so that the log
    // and the film agree on where it was when.
    for (int step = 0; step <= steps; ++step) {
        if (step > 0) {
            wait(duration / steps);
        }
        const double e = ease(static_cast<double>(step) / steps);
        cursor_ = {from.x + (to.x - from.x) * e, from.y + (to.y - from.y) * e};
        note(cursorLog_);
    }
}

void DemoRecorder::moveToAnchor(const std::string& id, double duration) {
    const auto frame = services_.anchors ? services_.anchors->frame(id) : std::nullopt;
    if (!frame) {
        throw DemoFailure::noAnchor(id);
    }
    move(frame->center(), duration);
}

void DemoRecorder::click(const std::string& anchor, double duration,
                         const std::function<void()>& action) {
    moveToAnchor(anchor, duration);
    lastClick_ = elapsed();
    note(clicks_);
    if (action) {
        action();
    }
}

void DemoRecorder::click(Point at, double duration, const std::function<void()>& action) {
    move(at, duration);
    lastClick_ = elapsed();
    note(clicks_);
    if (action) {
        action();
    }
}

void DemoRecorder::type(const std::string& text,
                        const std::function<void(const std::string&)>& into, double perCharacter) {
    for (const std::string& prefix : typedPrefixes(text)) {
        into(prefix);
        wait(perCharacter);
    }
}

fs::path DemoRecorder::finish(const std::string& name) {
    if (finished_) {
        throw DemoFailure::writer("demo: the film is already finished");
    }
    closeCaption();
    const double duration = elapsed();
    services_.clock->stopTimer();
    finished_ = true;
    if (const auto failure = services_.camera->finish()) {
        throw DemoFailure::writer(*failure);
    }
    if (framesWritten_ == 0) {
        throw DemoFailure::writer("No frames were captured (" + std::to_string(failedCaptures_) +
                                  " failed). Is the window on screen inside the region?");
    }
    writeFiles(name, duration);
    return folder_;
}

void DemoRecorder::writeFiles(const std::string& name, double duration) const {
    write(folder_ / "events.json", {{"version", fileVersion},
                                    {"duration", duration},
                                    {"cursor", rows(cursorLog_)},
                                    {"clicks", rows(clicks_)}});
    Json captions = Json::array();
    for (const DemoCaption& caption : captions_) {
        captions.push_back(
            {{"start", caption.start}, {"end", caption.end}, {"text", caption.text}});
    }
    write(folder_ / "captions.json", captions);
    write(folder_ / "project.json",
          {{"version", fileVersion},
           {"name", name},
           {"created", scrimlet::Date{services_.clock->wallNow()}.iso8601()},
           {"duration", duration},
           {"width", format_.pixelWidth},
           {"height", format_.pixelHeight},
           {"hasCamera", false},
           {"cameraOffset", 0},
           {"hasAudio", false},
           {"settings", {{"fps", fps_}, {"scale", scale_}, {"region", rect(region_)}}}});
}

std::vector<std::string> typedPrefixes(const std::string& text) {
    std::vector<std::string> prefixes;
    std::size_t at = 0;
    bool joined = false;
    while (at < text.size()) {
        const auto [c, next] = codePoint(text, at);
        // A mark, or whatever a joiner glues on, grows the last character instead.
        if (!prefixes.empty() && (extends(c) || joined)) {
            prefixes.back() = text.substr(0, next);
        } else {
            prefixes.push_back(text.substr(0, next));
        }
        joined = c == 0x200D;
        at = next;
    }
    return prefixes;
}

} // namespace vantrel
