#include "AppPaths.hpp"

#include <optional>

namespace scrimlet::AppPaths {

namespace {

std::optional<std::filesystem::path>& applicationSupport() {
    static std::optional<std::filesystem::path> folder;
    return folder;
}

std::filesystem::path home(const Harness::Environment& environment) {
    const auto found = environment.find("HOME");
    if (found != environment.end() && !found->second.empty()) {
        return found->second;
    }
    // A process without a home has nowhere better to keep its files.
    return std::filesystem::temp_directory_path();
}

} // namespace

std::filesystem::path support(const Harness::Environment& environment) {
#ifdef __APPLE__
    return home(environment) / "Library" / "Application Support" / "Scrimlet";
#else
    const auto xdg = environment.find("XDG_DATA_HOME");
    // A relative XDG path is invalid by the XDG rules and is ignored.
    if (xdg != environment.end() && std::filesystem::path(xdg->second).is_absolute()) {
        return std::filesystem::path(xdg->second) / "Scrimlet";
    }
    return home(environment) / ".local" / "share" / "Scrimlet";
#endif
}

std::filesystem::path support() {
    if (const auto& folder = applicationSupport()) {
        return *folder / "Scrimlet";
    }
    return support(Harness::env());
}

void setApplicationSupport(std::filesystem::path folder) {
    if (!folder.empty()) {
        applicationSupport() = std::move(folder);
    }
}

} // namespace scrimlet::AppPaths
