#pragma once

#include <string>
#include <vector>

namespace vantrel {

/// Runs the system's command-line tools ("/usr/bin/ditto", "/usr/bin/xattr",
/// "/usr/bin/codesign", "/bin/sh"). Any thread; `run` blocks the calling one.
class ToolRunner {
public:
    virtual ~ToolRunner() = default;

    /// Runs the tool to its end and answers its exit status. A tool that cannot be started
    /// answers a non-zero status as well.
    virtual int run(const std::string& path, const std::vector<std::string>& arguments) = 0;

    /// Starts the tool and does not wait: it may outlive this process.
    virtual void launch(const std::string& path, const std::vector<std::string>& arguments) = 0;
};

} // namespace vantrel
