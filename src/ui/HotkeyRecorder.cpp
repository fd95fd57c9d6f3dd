#include "HotkeyRecorder.hpp"

#include <array>
#include <utility>

namespace scrimlet::HotkeyRecorder {

namespace {

using KeyNames = std::array<std::pair<std::uint32_t, std::string_view>, 15>;

constexpr KeyNames functionKeys = {{
    {122, "F1"},
    {120, "F2"},
    {99, "F3"},
    {118, "F4"},
    {96, "F5"},
    {97, "F6"},
    {98, "F7"},
    {100, "F8"},
    {101, "F9"},
    {109, "F10"},
    {103, "F11"},
    {111, "F12"},
    {105, "F13"},
    {107, "F14"},
    {113, "F15"},
}};

constexpr std::array<std::pair<std::uint32_t, std::string_view>, 11> specialKeys = {{
    {49, "Space"},
    {36, "↩"},
    {48, "⇥"},
    {123, "←"},
    {124, "→"},
    {125, "↓"},
    {126, "↑"},
    {116, "⇞"},
    {121, "⇟"},
    {115, "↖"},
    {119, "↘"},
}};

/// Reads one UTF-8 sequence at `at`; answers the code point and its length, or nothing for
/// a byte that does not begin a well-formed sequence.
std::optional<std::pair<char32_t, size_t>> decode(std::string_view text, size_t at) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    size_t length = 0;
    char32_t point = 0;
    char32_t least = 0;
    if (lead < 0x80) {
        return std::pair{static_cast<char32_t>(lead), size_t{1}};
    } else if ((lead & 0xE0) == 0xC0) {
        length = 2, point = lead & 0x1F, least = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, point = lead & 0x0F, least = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4, point = lead & 0x07, least = 0x10000;
    } else {
        return std::nullopt;
    }
    if (at + length > text.size()) {
        return std::nullopt;
    }
    for (size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) {
            return std::nullopt;
        }
        point = (point << 6) | (byte(at + i) & 0x3F);
    }
    if (point < least || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) {
        return std::nullopt;
    }
    return std::pair{point, length};
}

void encode(char32_t point, std::string& out) {
    if (point < 0x80) {
        out.push_back(static_cast<char>(point));
    } else if (point < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (point >> 6)));
        out.push_back(static_cast<char>(0x80 | (point & 0x3F)));
    } else if (point < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (point >> 12)));
        out.push_back(static_cast<char>(0x80 | ((point >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (point & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (point >> 18)));
        out.push_back(static_cast<char>(0x80 | ((point >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((point >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (point & 0x3F)));
    }
}

/// In Latin Extended-A the cases alternate in pairs; the runs differ in which of the two
/// comes first.
char32_t upperLatinExtendedA(char32_t c) {
    const bool evenUpper = (c <= 0x137) || (c >= 0x14A && c <= 0x177);
    const bool oddUpper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
    if (evenUpper && c % 2 == 1) {
        return c - 1;
    }
    if (oddUpper && c % 2 == 0) {
        return c - 1;
    }
    return c;
}

char32_t upper(char32_t c) {
    if (c >= U'a' && c <= U'z') {
        return c - 0x20;
    }
    if (c == 0xB5) {
        return 0x39C; // micro sign: the Greek capital mu
    }
    if (c >= 0xE0 && c <= 0xFE && c != 0xF7) {
        return c - 0x20;
    }
    if (c == 0xFF) {
        return 0x178;
    }
    if (c == 0x131) {
        return U'I'; // dotless i
    }
    if (c == 0x17F) {
        return U'S'; // long s
    }
    if (c >= 0x100 && c <= 0x17E) {
        return upperLatinExtendedA(c);
    }
    if (c == 0x3C2) {
        return 0x3A3; // final sigma
    }
    if (c >= 0x3B1 && c <= 0x3CB) {
        return c - 0x20;
    }
    if (c == 0x3AC) {
        return 0x386;
    }
    if (c >= 0x3AD && c <= 0x3AF) {
        return c - 0x25;
    }
    if (c == 0x3CC) {
        return 0x38C;
    }
    if (c == 0x3CD || c == 0x3CE) {
        return c - 0x3F;
    }
    if (c >= 0x430 && c <= 0x44F) {
        return c - 0x20;
    }
    if (c >= 0x450 && c <= 0x45F) {
        return c - 0x50;
    }
    return c;
}

/// Characters that draw nothing in a label: controls, and the private-use block where the
/// system puts the keys without a character (F16 and up, Help, Insert...).
bool isInvisible(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || (c >= 0xF700 && c <= 0xF8FF);
}

} // namespace

std::optional<std::string_view> keyName(std::uint32_t keyCode) {
    for (const auto& [code, name] : functionKeys) {
        if (code == keyCode) {
            return name;
        }
    }
    for (const auto& [code, name] : specialKeys) {
        if (code == keyCode) {
            return name;
        }
    }
    return std::nullopt;
}

std::uint32_t carbonModifiers(std::uint64_t cocoaFlags) {
    std::uint32_t bits = 0;
    if (cocoaFlags & CocoaModifiers::command) {
        bits |= CarbonModifiers::cmdKey;
    }
    if (cocoaFlags & CocoaModifiers::shift) {
        bits |= CarbonModifiers::shiftKey;
    }
    if (cocoaFlags & CocoaModifiers::option) {
        bits |= CarbonModifiers::optionKey;
    }
    if (cocoaFlags & CocoaModifiers::control) {
        bits |= CarbonModifiers::controlKey;
    }
    return bits;
}

std::string uppercased(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t at = 0; at < text.size();) {
        const auto read = decode(text, at);
        if (!read) {
            out.push_back(text[at]);
            ++at;
            continue;
        }
        const auto [point, length] = *read;
        if (point == 0xDF) {
            out += "SS";
        } else {
            encode(upper(point), out);
        }
        at += length;
    }
    return out;
}

std::string keyLabel(const KeyInput& input) {
    if (const auto name = keyName(input.keyCode)) {
        return std::string(*name);
    }
    if (!input.charactersIgnoringModifiers) {
        return {};
    }
    const std::string& characters = *input.charactersIgnoringModifiers;
    for (size_t at = 0; at < characters.size();) {
        const auto read = decode(characters, at);
        if (read && !isInvisible(read->first)) {
            return uppercased(characters);
        }
        at += read ? read->second : 1;
    }
    return {};
}

std::optional<Hotkey> hotkey(const KeyInput& input) {
    std::string key = keyLabel(input);
    if (key.empty()) {
        return std::nullopt;
    }
    return Hotkey{input.keyCode, carbonModifiers(input.modifierFlags), std::move(key)};
}

} // namespace scrimlet::HotkeyRecorder
