#include "Harness.hpp"

#include <ctime>

extern char** environ;

namespace scrimlet::Harness {

namespace {

std::optional<std::string> value(const Environment& environment, const std::string& key) {
    const auto found = environment.find(key);
    if (found == environment.end()) {
        return std::nullopt;
    }
    return found->second;
}

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

} // namespace

const Environment& env() {
    static const Environment cached = [] {
        Environment out;
        for (char** entry = environ; entry && *entry; ++entry) {
            const std::string item(*entry);
            const auto equals = item.find('=');
            if (equals != std::string::npos) {
                out.emplace(item.substr(0, equals), item.substr(equals + 1));
            }
        }
        return out;
    }();
    return cached;
}

bool isTestRun(const Environment& environment) {
    if (environment.count("SCRIMLET_SNAPSHOT_DIR") || selfTestDir(environment) ||
        environment.count("SCRIMLET_DEMO_DIR")) {
        return true;
    }
    for (const auto& [key, ignored] : environment) {
        if (!startsWith(key, "SCRIMLET_")) {
            continue;
        }
        for (const char* word : {"SELFTEST", "SNAPSHOT", "FLOWTEST", "UITEST", "DEMO"}) {
            if (key.find(word) != std::string::npos) {
                return true;
            }
        }
    }
    return environment.count("XCTestConfigurationFilePath") > 0;
}

bool isTestRun() {
    return isTestRun(env());
}

std::optional<std::string> snapshotDir(const Environment& environment) {
    return value(environment, "SCRIMLET_SNAPSHOT_DIR");
}

std::optional<std::string> snapshotDir() {
    return snapshotDir(env());
}

std::optional<std::string> selfTestDir(const Environment& environment) {
    return value(environment, "SCRIMLET_SELFTEST");
}

std::optional<std::string> selfTestDir() {
    return selfTestDir(env());
}

std::optional<std::string> demoDir(const Environment& environment) {
    return value(environment, "SCRIMLET_DEMO_DIR");
}

std::optional<std::string> demoDir() {
    return demoDir(env());
}

Date demoNow() {
    std::tm local{};
    local.tm_year = 2026 - 1900;
    local.tm_mon = 9;
    local.tm_mday = 28;
    local.tm_hour = 15;
    local.tm_min = 42;
    local.tm_isdst = -1;
    const std::time_t t = std::mktime(&local);
    if (t == static_cast<std::time_t>(-1)) {
        return Date::now();
    }
    return Date{static_cast<double>(t)};
}

} // namespace scrimlet::Harness
