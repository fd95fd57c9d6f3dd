#include "SettingsPagesParts.hpp"

#include <cmath>

namespace scrimlet::SettingsPages {

using namespace SettingsParts;

namespace {

using Kind = BackdropStyle::Kind;

/// What a backdrop with too few colours paints the rest with: the dark canvas.
constexpr std::uint32_t paddingColor = 0x15100D;

/// A field of the backdrop style, by its member.
template <class T>
SettingsField<T> styleMember(const char* name, T BackdropStyle::*member) {
    return {std::string("backdropStyle.") + name,
            [member](const StageSettings& s) { return s.backdropStyle.*member; },
            [member](StageSettings& s, const T& value) { s.backdropStyle.*member = value; }};
}

KindPicker kindPicker(const BackdropStyle& style) {
    KindPicker picker;
    for (const Kind kind : backdrop_kind::allCases) {
        if (kind == style.kind) {
            picker.selected = picker.segments.size();
        }
        picker.segments.push_back({kind, std::string(title(kind)), std::string(symbol(kind))});
    }
    const auto field = styleMember("kind", &BackdropStyle::kind);
    picker.field = field.name;
    picker.choose = [field](StageStore& store, size_t index) {
        if (index < backdrop_kind::allCases.size()) {
            field.assign(store, backdrop_kind::allCases[index]);
        }
    };
    return picker;
}

SettingsSection paletteSection(const StageSettings& settings) {
    const BackdropStyle& style = settings.backdropStyle;
    SettingsSection section;
    section.title = "Palette";
    PaletteGrid grid;
    const auto colors = styleMember("colors", &BackdropStyle::colors);
    for (const auto& palette : BackdropStyle::palettes()) {
        PaletteGrid::Swatch swatch;
        swatch.name = std::string(palette.name);
        swatch.colors = palette.colors;
        swatch.chosen = style.colors == palette.colors;
        swatch.accessibilityLabel = "Palette " + swatch.name;
        swatch.choose = [colors, chosen = palette.colors](StageStore& store) {
            colors.assign(store, chosen);
        };
        grid.swatches.push_back(std::move(swatch));
    }
    section.items.push_back(std::move(grid));
    if (style.kind == Kind::gradient) {
        section.items.push_back(
            row("Angle", std::nullopt, std::nullopt,
                slider(styleMember("angle", &BackdropStyle::angle), settings, 0, 360, "Angle")));
    }
    return section;
}

SettingsSection colourSection(const BackdropStyle& style) {
    const size_t inUse = style.kind == Kind::color ? 1 : 2;
    SettingsSection section;
    section.title = inUse == 1 ? "Colour" : "Colours";
    const std::vector<std::string> titles =
        inUse == 1 ? std::vector<std::string>{"Colour"} : std::vector<std::string>{"From", "To"};
    const auto field = styleMember("colors", &BackdropStyle::colors);
    for (size_t i = 0; i < inUse; ++i) {
        ColorWellControl well;
        well.color = i < style.colors.size() ? style.colors[i] : paddingColor;
        well.label = titles[i];
        well.field = field.name + "[" + std::to_string(i) + "]";
        well.set = [field, i](StageStore& store, std::uint32_t color) {
            auto colors = field.read(store.settings());
            if (colors.size() <= i) {
                colors.resize(i + 1, paddingColor);
            }
            colors[i] = color & 0xFFFFFF;
            field.assign(store, colors);
        };
        section.items.push_back(row(titles[i], std::nullopt, std::nullopt, std::move(well)));
    }
    return section;
}

SettingRow darkenRow(const StageSettings& settings) {
    return row("Darken", "So windows stand out.", "circle.lefthalf.filled",
               slider(styleMember("dim", &BackdropStyle::dim), settings, 0, 0.6, "Darken"));
}

std::string fileName(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

SettingsSection pictureSection(const StageSettings& settings) {
    const BackdropStyle& style = settings.backdropStyle;
    SettingsSection section;
    section.title = "Picture";
    const auto field = styleMember("picturePath", &BackdropStyle::picturePath);
    ButtonControl choose;
    choose.button.title = "Choose…";
    choose.button.style = ButtonModel::Style::quiet;
    choose.button.compact = true;
    choose.press = [field](StageStore& store, InterfaceHost& host) {
        std::weak_ptr<StageStore> weak = store.weak_from_this();
        host.chooseImage([field, weak](const std::string& path) {
            if (const auto strong = weak.lock(); strong && !path.empty()) {
                field.assign(*strong, path);
            }
        });
    };
    if (style.picturePath && !style.picturePath->empty()) {
        section.items.push_back(
            row(fileName(*style.picturePath), std::nullopt, "photo", std::move(choose)));
    } else {
        section.items.push_back(row("No picture chosen", "Until you choose one, the mesh is used.",
                                    "photo", std::move(choose)));
    }
    section.items.push_back(darkenRow(settings));
    return section;
}

SettingsSection wallpaperSection(const StageSettings& settings) {
    SettingsSection section;
    section.title = "Wallpaper";
    section.items.push_back(darkenRow(settings));
    section.items.push_back(
        row("Blur", std::nullopt, std::nullopt,
            slider(styleMember("blur", &BackdropStyle::blur), settings, 0, 80, "Blur")));
    return section;
}

} // namespace

SettingsPageModel backdrop(const StageStore& store) {
    const StageSettings& settings = store.settings();
    const BackdropStyle& style = settings.backdropStyle;
    SettingsPageModel page;
    page.tab = SettingsTab::backdrop;
    page.title = "Backdrop";
    page.subtitle = "A clean backdrop just behind the front window, so viewers see your app and "
                    "nothing else. Clicks on it do nothing.";
    page.blocks.push_back(BackdropPreviewBlock{style, "Backdrop preview: " + style.summary()});
    page.blocks.push_back(kindPicker(style));

    switch (style.kind) {
    case Kind::mesh:
        page.blocks.push_back(paletteSection(settings));
        break;
    case Kind::gradient:
        page.blocks.push_back(paletteSection(settings));
        page.blocks.push_back(colourSection(style));
        break;
    case Kind::color:
        page.blocks.push_back(colourSection(style));
        break;
    case Kind::picture:
        page.blocks.push_back(pictureSection(settings));
        break;
    case Kind::wallpaper:
        page.blocks.push_back(wallpaperSection(settings));
        break;
    }

    SettingsSection tryIt;
    tryIt.title = "Try it";
    ToggleControl now;
    now.on = store.board().isOn(SwitchKind::backdrop);
    now.label = "Show the backdrop now";
    now.field = owner(SwitchKind::backdrop);
    now.set = [](StageStore& target, bool on) { target.setSwitch(SwitchKind::backdrop, on); };
    tryIt.items.push_back(
        row("Show the backdrop now", "The same as the Backdrop switch.", std::nullopt, now));
    page.blocks.push_back(std::move(tryIt));

    for (PageBlock& block : page.blocks) {
        if (auto* section = std::get_if<SettingsSection>(&block)) {
            markLastRows(*section);
        }
    }
    return page;
}

} // namespace scrimlet::SettingsPages
