#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace scrimlet::testing {

/// A fresh folder under the system's temporary directory, removed with everything in it
/// when the object goes.
class TempDir {
public:
    TempDir() {
        std::random_device device;
        path_ = std::filesystem::temp_directory_path() /
                ("scrimlet-test-" + std::to_string(device()) + std::to_string(device()));
        std::filesystem::create_directories(path_);
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

} // namespace scrimlet::testing
