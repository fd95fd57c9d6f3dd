#include "AppPaths.hpp"

namespace scrimlet::AppPaths {

namespace {

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
    return support(Harness::env());
}

} // namespace scrimlet::AppPaths
