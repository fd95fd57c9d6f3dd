#include "BackdropStyle.hpp"

#include "JsonCoding.hpp"

namespace scrimlet {

using json::Json;

namespace {

struct KindRow {
    std::string_view raw;
    std::string_view title;
    std::string_view symbol;
};

constexpr std::array<KindRow, 5> kindRows = {{
    {"color", "Colour", "circle.fill"},
    {"gradient", "Gradient", "circle.lefthalf.filled"},
    {"mesh", "Mesh", "circle.hexagongrid.fill"},
    {"picture", "Picture", "photo"},
    {"wallpaper", "Wallpaper, blurred", "drop.halffull"},
}};

const KindRow& row(BackdropStyle::Kind kind) {
    return kindRows[static_cast<size_t>(kind)];
}

// The file name, as the last component of the path reads; a trailing "/" is no component.
std::string lastPathComponent(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos || path.size() == 1) {
        return path;
    }
    return path.substr(slash + 1);
}

} // namespace

const std::vector<BackdropStyle::Palette>& BackdropStyle::palettes() {
    static const std::vector<Palette> list = {
        {"Footlights", {0x2A1610, 0x7A2E1F, 0xD9893B, 0x3B1F3A}},
        {"Velvet", {0x3A0A14, 0x8E1B2C, 0x5A1030, 0x1E0A10}},
        {"Matinee", {0xF6E7CF, 0xF2B880, 0xE8C9D4, 0xC9D6E8}},
        {"Blackbox", {0x111111, 0x2B2B2E, 0x1B1B1D, 0x3A3A3F}},
        {"Greenroom", {0x0F2A24, 0x2E6B57, 0x8FBF9F, 0x163A33}},
        {"Gel blue", {0x0B1A3A, 0x2546A8, 0x6B8CFF, 0x1A2B5C}},
    };
    return list;
}

const std::vector<std::uint32_t>& BackdropStyle::footlights() {
    return palettes().front().colors;
}

std::string BackdropStyle::summary() const {
    switch (kind) {
    case Kind::wallpaper:
        return std::string(title(kind));
    case Kind::picture:
        // An empty path is no choice either: there would be nothing to name.
        if (!picturePath || picturePath->empty()) {
            return "Picture · none chosen";
        }
        return "Picture · " + lastPathComponent(*picturePath);
    case Kind::color:
    case Kind::gradient:
    case Kind::mesh:
        break;
    }
    for (const Palette& palette : palettes()) {
        if (palette.colors == colors) {
            return std::string(title(kind)) + " · " + std::string(palette.name);
        }
    }
    return std::string(title(kind));
}

std::string_view rawValue(BackdropStyle::Kind kind) {
    return row(kind).raw;
}

std::optional<BackdropStyle::Kind> backdropKindFromRaw(std::string_view raw) {
    for (const auto kind : backdrop_kind::allCases) {
        if (rawValue(kind) == raw) {
            return kind;
        }
    }
    return std::nullopt;
}

std::string_view title(BackdropStyle::Kind kind) {
    return row(kind).title;
}

std::string_view symbol(BackdropStyle::Kind kind) {
    return row(kind).symbol;
}

Json toJson(const BackdropStyle& style) {
    Json out = Json::object();
    out["kind"] = std::string(rawValue(style.kind));
    out["colors"] = style.colors;
    out["angle"] = style.angle;
    if (style.picturePath) {
        out["picturePath"] = *style.picturePath;
    }
    out["blur"] = style.blur;
    out["dim"] = style.dim;
    return out;
}

BackdropStyle backdropStyleFromJson(const Json& value) {
    BackdropStyle style;
    const auto kind = backdropKindFromRaw(json::decodeString(json::field(value, "kind")));
    if (!kind) {
        throw json::DecodeError("unknown backdrop kind");
    }
    style.kind = *kind;
    const Json& colors = json::field(value, "colors");
    if (!colors.is_array()) {
        throw json::DecodeError("expected an array of colours");
    }
    style.colors.clear();
    for (const Json& color : colors) {
        style.colors.push_back(json::decodeUInt32(color));
    }
    style.angle = json::decodeDouble(json::field(value, "angle"));
    if (const Json* path = json::optionalField(value, "picturePath")) {
        style.picturePath = json::decodeString(*path);
    }
    style.blur = json::decodeDouble(json::field(value, "blur"));
    style.dim = json::decodeDouble(json::field(value, "dim"));
    return style;
}

} // namespace scrimlet
