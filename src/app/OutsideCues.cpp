// How a show or a switch is driven from outside the dropdown: links in the "scrimlet"
// scheme, the cue notification from another app, and global hotkeys.

#include "StageStore.hpp"

#include "AsciiCase.hpp"

#include <algorithm>
#include <cctype>

namespace scrimlet {

namespace {

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            out.push_back(text[i]);
            continue;
        }
        if (i + 2 >= text.size() || !std::isxdigit(static_cast<unsigned char>(text[i + 1])) ||
            !std::isxdigit(static_cast<unsigned char>(text[i + 2]))) {
            return std::nullopt;
        }
        out.push_back(
            static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16)));
        i += 2;
    }
    return out;
}

struct Link {
    std::string scheme;
    /// The host, then every path component, each decoded and lower-cased, empty ones dropped.
    std::vector<std::string> words;
};

// Reads a URL as far as a link needs: its scheme, its host and its path. Text that is not
// a URL at all (no scheme, blanks, a broken escape) yields nothing.
std::optional<Link> parseLink(std::string_view url) {
    const size_t colon = url.find(':');
    if (colon == std::string_view::npos || colon == 0 ||
        !std::isalpha(static_cast<unsigned char>(url[0]))) {
        return std::nullopt;
    }
    for (const char c : url) {
        if (static_cast<unsigned char>(c) <= 0x20 || c == 0x7F) {
            return std::nullopt;
        }
    }
    Link link;
    link.scheme = lowercased(std::string(url.substr(0, colon)));
    if (!std::all_of(link.scheme.begin(), link.scheme.end(), [](unsigned char c) {
            return std::isalnum(c) || c == '+' || c == '-' || c == '.';
        })) {
        return std::nullopt;
    }
    std::string_view rest = url.substr(colon + 1);
    rest = rest.substr(0, rest.find_first_of("?#"));
    std::string_view host;
    if (rest.substr(0, 2) == "//") {
        rest.remove_prefix(2);
        const size_t slash = rest.find('/');
        host = rest.substr(0, slash);
        rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash);
        if (const size_t at = host.rfind('@'); at != std::string_view::npos) {
            host.remove_prefix(at + 1);
        }
        host = host.substr(0, host.find(':'));
    }
    std::vector<std::string_view> parts = {host};
    while (!rest.empty()) {
        const size_t slash = rest.find('/');
        parts.push_back(rest.substr(0, slash));
        rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash + 1);
    }
    for (const auto part : parts) {
        const auto word = percentDecoded(part);
        if (!word) {
            return std::nullopt;
        }
        if (!word->empty()) {
            link.words.push_back(lowercased(*word));
        }
    }
    return link;
}

} // namespace

void StageStore::handle(const std::string& url) {
    const auto link = parseLink(url);
    if (!link || link->scheme != "scrimlet" || link->words.empty()) {
        return;
    }
    const auto& words = link->words;
    if (words[0] == "switch" && words.size() >= 2) {
        const auto kind = std::find_if(
            switch_kind::allCases.begin(), switch_kind::allCases.end(),
            [&](SwitchKind k) { return lowercased(std::string(rawValue(k))) == words[1]; });
        if (kind != switch_kind::allCases.end()) {
            const std::string what = words.size() >= 3 ? words[2] : "toggle";
            if (what == "on") {
                setSwitch(*kind, true);
            } else if (what == "off") {
                if (board_->isOn(*kind)) {
                    board_->turnOff(*kind);
                }
                refreshAvailability();
                sync();
            } else {
                toggleSwitch(*kind);
            }
            return;
        }
    }
    // Anything else is a verb; "switch" without a known switch falls through on purpose
    // and so toggles the show.
    cue(words[0], "Started from a Shortcut or link");
}

void StageStore::cue(const std::string& verb, const std::string& how) {
    const std::string word = lowercased(verb);
    if (word == "start") {
        if (show_->isDark()) {
            startShow(how);
        } else {
            // The show decides what a start means while it runs or counts down.
            show_->start(how);
        }
    } else if (word == "stop") {
        stopShow();
    } else if (word == "extend") {
        show_->extend(15);
        sync();
    } else if (show_->isDark()) {
        startShow(how);
    } else {
        stopShow();
    }
}

void StageStore::registerHotkeys() {
    if (!isLive() || !platform_) {
        return;
    }
    std::vector<HotkeyEntry> entries;
    if (const auto& hotkey = settings_.stageHotkey) {
        const std::string how = "Started with " + hotkey->display();
        entries.push_back({1, *hotkey, weakly([how](StageStore& s) {
                               if (s.show().isDark()) {
                                   s.startShow(how);
                               } else {
                                   s.stopShow();
                               }
                           })});
    }
    for (size_t i = 0; i < switch_kind::allCases.size(); ++i) {
        const SwitchKind kind = switch_kind::allCases[i];
        if (const auto hotkey = settings_.prefs(kind).hotkey) {
            entries.push_back({static_cast<std::uint32_t>(100 + i), *hotkey,
                               weakly([kind](StageStore& s) { s.toggleSwitch(kind); })});
        }
    }
    const auto failed = platform_->registerHotkeys(std::move(entries));
    if (failed.empty()) {
        hotkeyProblem_.reset();
    } else if (failed.size() == 1) {
        hotkeyProblem_ = "A hotkey is already used by another app.";
    } else {
        hotkeyProblem_ = "Some hotkeys are already used by another app.";
    }
}

} // namespace scrimlet
