#pragma once

// The pieces the settings pages are built from: fields of the settings, and controls bound
// to them. Shared by the page builders only.

#include "CueSheet.hpp"
#include "SettingsModel.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace scrimlet::SettingsParts {

/// Marks the section's last row, which has no hairline under it.
void markLastRows(SettingsSection& section);

SettingsField<bool> planFlag(const char* name, bool StagePlan::*member);
SettingsField<bool> flag(const char* name, bool StageSettings::*member);
SettingsField<bool> detectionFlag(const char* name, bool DetectionOptions::*member);
SettingsField<std::vector<std::string>> keepVisibleField();
SettingsField<std::vector<std::string>> startWhenOpenField();

ToggleControl toggle(const SettingsField<bool>& field, const StageSettings& settings,
                     std::string label);
SliderControl slider(const SettingsField<double>& field, const StageSettings& settings,
                     double minimum, double maximum, std::string label);
/// A pop-up over a number of minutes or none: `noneTitle` first, then each value.
MenuControl minutesMenu(const SettingsField<std::optional<std::int64_t>>& field,
                        const StageSettings& settings, const std::string& noneTitle,
                        std::vector<std::int64_t> values,
                        const std::function<std::string(std::int64_t)>& titleOf, std::string label);
SettingRow row(std::string title, std::optional<std::string> detail = std::nullopt,
               std::optional<std::string> symbol = std::nullopt, RowControl control = {});
/// A small quiet button that performs an action.
ButtonControl button(std::string title, UiAction action);
/// A small quiet button that edits the settings.
ButtonControl editButton(std::string title, std::function<void(StageStore&)> edit);
TextBlock paragraphs(std::vector<std::string> texts, AdaptiveColor color = Theme::ink2);

/// The running ordinary apps not in `listed` and not this program, by name.
std::vector<AppInfo> otherRunningApps(const StageStore& store,
                                      const std::vector<std::string>& listed);
/// Adds an app to a list of bundle identifiers, once.
std::function<void(StageStore&)> addTo(const SettingsField<std::vector<std::string>>& field,
                                       std::string bundleID);
std::function<void(StageStore&)> removeFrom(const SettingsField<std::vector<std::string>>& field,
                                            std::string bundleID);

} // namespace scrimlet::SettingsParts
