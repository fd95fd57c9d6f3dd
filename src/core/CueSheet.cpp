#include "CueSheet.hpp"

#include <algorithm>
#include <cstdint>

namespace scrimlet::CueSheet {

NameOrder nameOrder = portableNameOrder;

namespace {

// Base letters of the lower-case Latin-1 letters U+00E0 to U+00FF. A digit stands for a
// letter that sorts as two ("æ" as "ae"), "{" for thorn, which sorts after "z", and "-" for
// the division sign, which is no letter.
constexpr std::string_view latin1Letters = "aaaaaa1ceeeeiiiidnooooo-ouuuuy{y";
// Base letters of Latin Extended-A, U+0100 to U+017F.
constexpr std::string_view latinExtendedALetters =
    "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiii22jjkkkllllllllllnnnnnnnnn"
    "oooooo33rrrrrrssssssssttttttuuuuuuuuuuuuwwyyyzzzzzzs";
static_assert(latin1Letters.size() == 32);
static_assert(latinExtendedALetters.size() == 128);

// Collation weights of one string: the primary list decides (base letters), the secondary
// list breaks ties (accents).
struct Weights {
    std::vector<std::uint32_t> primary;
    std::vector<std::uint32_t> secondary;
};

constexpr std::uint32_t punctuationBase = 0x100;
constexpr std::uint32_t digitBase = 0x1000;
constexpr std::uint32_t letterBase = 0x2000;
constexpr std::uint32_t otherBase = 0x10000;
// A byte that is not part of valid UTF-8 keeps its own place, after every code point.
constexpr std::uint32_t invalidByte = 0x110000;

std::uint32_t nextCodePoint(std::string_view text, size_t& i) {
    const auto lead = static_cast<unsigned char>(text[i]);
    size_t length = 0;
    std::uint32_t cp = 0;
    if (lead < 0x80) {
        ++i;
        return lead;
    } else if ((lead & 0xE0) == 0xC0) {
        length = 2;
        cp = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3;
        cp = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4;
        cp = lead & 0x07;
    }
    if (length == 0 || i + length > text.size()) {
        ++i;
        return invalidByte + lead;
    }
    for (size_t k = 1; k < length; ++k) {
        const auto next = static_cast<unsigned char>(text[i + k]);
        if ((next & 0xC0) != 0x80) {
            ++i;
            return invalidByte + lead;
        }
        cp = (cp << 6) | (next & 0x3F);
    }
    constexpr std::uint32_t shortest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (cp < shortest[length] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        ++i;
        return invalidByte + lead;
    }
    i += length;
    return cp;
}

std::uint32_t foldCase(std::uint32_t cp) {
    const bool even = cp % 2 == 0;
    if ((cp >= 'A' && cp <= 'Z') || (cp >= 0xC0 && cp <= 0xDE && cp != 0xD7)) {
        return cp + 0x20;
    }
    if ((cp >= 0x100 && cp <= 0x137 && even) || (cp >= 0x14A && cp <= 0x177 && even) ||
        (cp >= 0x139 && cp <= 0x148 && !even) || (cp >= 0x179 && cp <= 0x17E && !even)) {
        return cp + 1;
    }
    if (cp == 0x178) {
        return 0xFF;
    }
    if ((cp >= 0x391 && cp <= 0x3A9 && cp != 0x3A2) || (cp >= 0x410 && cp <= 0x42F)) {
        return cp + 0x20;
    }
    if (cp >= 0x400 && cp <= 0x40F) {
        return cp + 0x50;
    }
    return cp;
}

// The base letters of a lower-case Latin letter, or empty when it is none. Every base is
// a character from "a" to "{", so that its distance from "a" orders it.
std::string_view baseLetters(std::uint32_t cp) {
    static constexpr std::string_view alphabet = "abcdefghijklmnopqrstuvwxyz";
    std::string_view base;
    if (cp >= 'a' && cp <= 'z') {
        return alphabet.substr(cp - 'a', 1);
    } else if (cp == 0xDF) {
        return "ss";
    } else if (cp >= 0xE0 && cp <= 0xFF) {
        base = latin1Letters.substr(cp - 0xE0, 1);
    } else if (cp >= 0x100 && cp <= 0x17F) {
        base = latinExtendedALetters.substr(cp - 0x100, 1);
    } else {
        return {};
    }
    switch (base.front()) {
    case '-':
        return {};
    case '1':
        return "ae";
    case '2':
        return "ij";
    case '3':
        return "oe";
    default:
        return base;
    }
}

// Spaces, marks and symbols of ASCII and Latin-1, and general punctuation (dashes, curly
// quotes), once letters and digits have been taken out.
bool isPunctuation(std::uint32_t cp) {
    return cp <= 0xBF || cp == 0xD7 || cp == 0xF7 || (cp >= 0x2000 && cp <= 0x206F);
}

Weights weights(std::string_view text) {
    Weights out;
    out.primary.reserve(text.size());
    out.secondary.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        const std::uint32_t cp = foldCase(nextCodePoint(text, i));
        if (cp >= 0x300 && cp <= 0x36F) {
            // A combining accent changes nothing but the tie-break.
            out.secondary.push_back(cp);
            continue;
        }
        if (const std::string_view letters = baseLetters(cp); !letters.empty()) {
            for (const char letter : letters) {
                out.primary.push_back(letterBase + static_cast<std::uint32_t>(letter - 'a'));
                out.secondary.push_back(cp);
            }
            continue;
        }
        if (cp >= '0' && cp <= '9') {
            out.primary.push_back(digitBase + (cp - '0'));
        } else if (isPunctuation(cp)) {
            out.primary.push_back(punctuationBase + cp);
        } else {
            out.primary.push_back(otherBase + cp);
        }
        out.secondary.push_back(cp);
    }
    return out;
}

std::vector<Cue> single(EffectKind kind, JournalValue value) {
    return {Cue{EffectKey(kind), std::move(value)}};
}

} // namespace

std::weak_ordering portableNameOrder(std::string_view a, std::string_view b) {
    const Weights left = weights(a);
    const Weights right = weights(b);
    if (const auto primary = left.primary <=> right.primary; primary != 0) {
        return primary;
    }
    return left.secondary <=> right.secondary;
}

std::vector<Cue> hideApps(StageSystem& system, const std::set<std::string>& keep) {
    std::vector<AppInfo> apps = system.runningApps();
    std::erase_if(apps, [&](const AppInfo& app) {
        return !app.isRegular || app.isHidden || keep.contains(app.bundleID);
    });
    const NameOrder order = nameOrder ? nameOrder : NameOrder(portableNameOrder);
    std::stable_sort(apps.begin(), apps.end(),
                     [&](const AppInfo& a, const AppInfo& b) { return order(a.name, b.name) < 0; });
    std::vector<Cue> out;
    out.reserve(apps.size());
    for (const AppInfo& app : apps) {
        out.push_back(Cue{EffectKey::app(app), JournalValue::boolean(true)});
    }
    return out;
}

std::vector<Cue> cues(const StagePlan& plan, StageSystem& system,
                      const std::set<std::string>& keep) {
    std::vector<Cue> out;
    const auto add = [&](bool on, EffectKind kind, JournalValue value) {
        if (on) {
            out.push_back(Cue{EffectKey(kind), std::move(value)});
        }
    };
    const JournalValue on = JournalValue::boolean(true);
    add(plan.hideDesktopIcons, EffectKind::desktopIcons, on);
    if (plan.hideOtherApps) {
        for (Cue& cue : hideApps(system, keep)) {
            out.push_back(std::move(cue));
        }
    }
    add(plan.backdrop, EffectKind::backdrop, on);
    add(plan.tidyMenuBar, EffectKind::menuBarTidy, on);
    add(plan.hideDock, EffectKind::dockAutohide, on);
    add(plan.darkMode, EffectKind::darkMode, on);
    add(plan.muteAlerts, EffectKind::alertVolume, JournalValue::number(0));
    add(plan.doNotDisturb, EffectKind::doNotDisturb, on);
    add(plan.keepAwake, EffectKind::keepAwake, on);
    // A size the main display does not offer simply drops out; the show tells the user.
    if (plan.resolution) {
        if (const auto display = system.mainDisplay()) {
            if (auto value = system.displayModeValue(*plan.resolution, *display)) {
                out.push_back(Cue{EffectKey(EffectKind::displayMode, std::to_string(*display)),
                                  std::move(*value)});
            }
        }
    }
    return out;
}

std::vector<Cue> cues(SwitchKind kind, StageSystem& system, const std::set<std::string>& keep) {
    const JournalValue on = JournalValue::boolean(true);
    switch (kind) {
    case SwitchKind::hideOtherApps:
        return hideApps(system, keep);
    case SwitchKind::muteAlerts:
        return single(EffectKind::alertVolume, JournalValue::number(0));
    case SwitchKind::muteMic:
        if (auto device = system.defaultInputDevice()) {
            return {Cue{EffectKey(EffectKind::micMute, std::move(*device)), on}};
        }
        return {};
    case SwitchKind::screenSaver:
        return {};
    default:
        return single(*CueSheet::kind(kind), on);
    }
}

std::optional<EffectKind> kind(SwitchKind kind) {
    switch (kind) {
    case SwitchKind::hideDesktopIcons:
        return EffectKind::desktopIcons;
    case SwitchKind::hideDock:
        return EffectKind::dockAutohide;
    case SwitchKind::hideOtherApps:
        return EffectKind::appHidden;
    case SwitchKind::tidyMenuBar:
        return EffectKind::menuBarTidy;
    case SwitchKind::backdrop:
        return EffectKind::backdrop;
    case SwitchKind::darkMode:
        return EffectKind::darkMode;
    case SwitchKind::doNotDisturb:
        return EffectKind::doNotDisturb;
    case SwitchKind::keepAwake:
        return EffectKind::keepAwake;
    case SwitchKind::muteAlerts:
        return EffectKind::alertVolume;
    case SwitchKind::muteMic:
        return EffectKind::micMute;
    case SwitchKind::spotlight:
        return EffectKind::spotlight;
    case SwitchKind::lockKeyboard:
        return EffectKind::keyboardLock;
    case SwitchKind::screenSaver:
        return std::nullopt;
    }
    return std::nullopt;
}

} // namespace scrimlet::CueSheet
