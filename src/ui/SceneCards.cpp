#include "SceneCards.hpp"

#include <algorithm>
#include <array>

namespace scrimlet {

namespace {

// The keyboard symbol, for platforms without system symbols: a ring of a keyboard around
// three rows of six keys and a space bar, filled by the even-odd rule.
Path keyboardOutline(const Rect& frame) {
    const Rect body = frame.centered({frame.width, frame.width * 0.62});
    const double stroke = body.height * 0.09;
    Path outline = Path::roundedRect(body, body.height * 0.18);
    outline.addRoundedRect(body.insetBy(stroke, stroke), body.height * 0.1);
    const Rect keys = body.insetBy(stroke * 2.2, stroke * 2.2);
    constexpr int columns = 6;
    constexpr int rows = 4;
    constexpr double gapRatio = 0.6;
    const double keyWidth = keys.width / (columns + (columns - 1) * gapRatio);
    const double keyHeight = keys.height / (rows + (rows - 1) * gapRatio);
    const auto key = [&](int column, int row, int span) {
        outline.addRect({keys.x + column * keyWidth * (1 + gapRatio),
                         keys.y + row * keyHeight * (1 + gapRatio),
                         keyWidth * (span + (span - 1) * gapRatio), keyHeight});
    };
    for (int row = 0; row < rows - 1; ++row) {
        for (int column = 0; column < columns; ++column) {
            key(column, row, 1);
        }
    }
    key(1, rows - 1, columns - 2);
    return outline;
}

} // namespace

std::string CountdownCard::accessibilityLabel(long long value) {
    return "Standby, " + std::to_string(value);
}

Animation CountdownCard::valueAnimation(bool reduceMotion) {
    return Motion::forView(Animation::spring(0.5, 0.85, 0), reduceMotion);
}

Point CountdownCard::panelOrigin(const Rect& mainScreen) {
    return {mainScreen.midX() - size.width * 0.5, mainScreen.midY() - size.height * 0.5};
}

namespace {

// The three lines of the card, stacked and centred: "STANDBY", the number, "Scrimlet".
std::array<Rect, 3> countdownLines() {
    const Rect card = Rect::of(CountdownCard::size).centered(CountdownCard::card);
    const std::array<double, 3> heights = {CountdownCard::standbyFont.lineHeight(),
                                           CountdownCard::numberFont.lineHeight(),
                                           Theme::Typo::small.lineHeight()};
    const double total = heights[0] + heights[1] + heights[2] + 2 * CountdownCard::spacing;
    double y = card.midY() - total * 0.5;
    std::array<Rect, 3> lines;
    for (size_t i = 0; i < lines.size(); ++i) {
        lines[i] = {card.x, y, card.width, heights[i]};
        y += heights[i] + CountdownCard::spacing;
    }
    return lines;
}

} // namespace

Rect CountdownCard::numberFrame() {
    return countdownLines()[1];
}

Drawing CountdownCard::background() const {
    Canvas canvas(size);
    const Rect panel = canvas.bounds().centered(card);
    canvas.fill(Path::roundedRect(panel, cornerRadius), Theme::stageBlack.opacity(0.92));
    canvas.stroke(Path::roundedRect(panel.insetBy(0.5, 0.5), cornerRadius - 0.5),
                  Theme::lightFill.opacity(0.35), 1);
    const auto lines = countdownLines();
    canvas.text("STANDBY", standbyFont, Theme::lightGlow.opacity(0.8), lines[0]);
    canvas.text("Scrimlet", Theme::Typo::small, Color::white(0.45), lines[2]);
    return canvas.finish();
}

Drawing CountdownCard::number() const {
    const Rect frame = numberFrame();
    Canvas canvas(frame.size());
    canvas.beginGroup(1, Shadow{Theme::lightFill.opacity(0.8), 24, {0, 0}});
    canvas.text(std::to_string(value), numberFont, Theme::lightGlow, canvas.bounds());
    canvas.endGroup();
    return canvas.finish();
}

Drawing CountdownCard::drawing() const {
    Canvas canvas(size);
    canvas.draw(background(), {0, 0});
    canvas.draw(number(), numberFrame().origin());
    return canvas.finish();
}

LockCard::Layout LockCard::layout(Size screen, const TextMeasurer& measure) const {
    Canvas canvas(screen);
    canvas.fill(canvas.bounds(), Color::black(0.62));
    if (!isMain) {
        return {canvas.finish(), std::nullopt};
    }

    const Font symbolFont = Font::system(symbolSize, FontWeight::light);
    const Font& body = Theme::Typo::body;
    const Size symbol{symbolSize * 1.45, symbolFont.lineHeight()};
    const Size titleSize = measure(title, titleFont);
    const Size messageSize = measure(message, body);
    const Size labelSize = measure(doneTitle, buttonFont);
    const Size button{labelSize.width + 2 * 14, buttonFont.lineHeight() + 2 * 7};
    const double buttonTop = 4;
    const double spacing = Theme::Space::m;
    const double padding = Theme::Space::xxl;

    const double contentWidth =
        std::max({symbol.width, titleSize.width, messageSize.width, button.width});
    const double contentHeight = symbol.height + titleFont.lineHeight() + body.lineHeight() +
                                 buttonTop + button.height + 3 * spacing;
    const Rect card =
        canvas.bounds().centered({contentWidth + 2 * padding, contentHeight + 2 * padding});
    canvas.fill(Path::roundedRect(card, cornerRadius), Theme::stageBlack.opacity(0.9));
    canvas.stroke(Path::roundedRect(card.insetBy(0.5, 0.5), cornerRadius - 0.5),
                  Theme::lightFill.opacity(0.3), 1);

    double y = card.y + padding;
    const auto row = [&](double height) {
        const Rect frame{card.x + padding, y, contentWidth, height};
        y += height + spacing;
        return frame;
    };
    const Rect symbolFrame = row(symbol.height).centered(symbol);
    canvas.symbol({"keyboard", symbolSize, FontWeight::light, Theme::lightGlow, symbolFrame,
                   keyboardOutline(symbolFrame)});
    canvas.text(std::string(title), titleFont, Color::white(), row(titleFont.lineHeight()));
    canvas.text(std::string(message), body, Color::white(0.7), row(body.lineHeight()));
    y += buttonTop;
    const Rect done = row(button.height).centered(button);

    // The primary button: the label on the light, crowned by a faint inner highlight.
    const Path buttonShape = Path::roundedRect(done, Theme::Radius::tile);
    canvas.fill(buttonShape, Theme::lightFill);
    canvas.save();
    canvas.clip(buttonShape);
    canvas.fill(Rect{done.x, done.y, done.width, 1}, Color::white(0.14));
    canvas.restore();
    canvas.text(std::string(doneTitle), buttonFont, Theme::onLight, done);
    return {canvas.finish(), done};
}

} // namespace scrimlet
