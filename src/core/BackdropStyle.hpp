#pragma once

#include <nlohmann/json_fwd.hpp>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace scrimlet {

/// The look of the backdrop behind the front window. A plain value.
struct BackdropStyle {
    enum class Kind { color, gradient, mesh, picture, wallpaper };

    /// A named set of four colours that the settings offer.
    struct Palette {
        std::string_view name;
        std::vector<std::uint32_t> colors;
    };

    Kind kind = Kind::mesh;
    /// Colours as 0xRRGGBB.
    std::vector<std::uint32_t> colors = footlights();
    /// Gradient angle in degrees.
    double angle = 135;
    /// The file of a `picture` backdrop.
    std::optional<std::string> picturePath;
    /// Blur of a picture or of the wallpaper.
    double blur = 40;
    /// Darkening laid over the image.
    double dim = 0.15;

    /// Footlights, Velvet, Matinee, Blackbox, Greenroom, Gel blue, in this order.
    static const std::vector<Palette>& palettes();
    /// The colours of the first palette, the default.
    static const std::vector<std::uint32_t>& footlights();

    /// The one line the settings show: "Mesh · Footlights", "Picture · beach.jpg",
    /// "Wallpaper, blurred", or a colour kind's title alone when no palette matches.
    std::string summary() const;

    friend bool operator==(const BackdropStyle&, const BackdropStyle&) = default;
};

namespace backdrop_kind {
inline constexpr std::array<BackdropStyle::Kind, 5> allCases = {
    BackdropStyle::Kind::color, BackdropStyle::Kind::gradient, BackdropStyle::Kind::mesh,
    BackdropStyle::Kind::picture, BackdropStyle::Kind::wallpaper};
} // namespace backdrop_kind

std::string_view rawValue(BackdropStyle::Kind kind);
std::optional<BackdropStyle::Kind> backdropKindFromRaw(std::string_view raw);
/// "Colour", "Gradient", "Mesh", "Picture", "Wallpaper, blurred".
std::string_view title(BackdropStyle::Kind kind);
/// An SF Symbols name.
std::string_view symbol(BackdropStyle::Kind kind);

/// `picturePath` is left out when absent.
nlohmann::ordered_json toJson(const BackdropStyle& style);
/// Strict: all keys but `picturePath` are required.
BackdropStyle backdropStyleFromJson(const nlohmann::ordered_json& value);

} // namespace scrimlet
