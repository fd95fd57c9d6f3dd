// The promise "a kill in mid-show is healed at the next launch", proven the way it happens to
// users: the real `scrimlet rehearse` process is killed with SIGKILL at a random moment of
// raising, holding or dropping the curtain, then launched again, and the folder it leaves
// must show the simulated Mac as it was before the show, no journal, no leftover temporary
// file, and a run sheet that tells what happened.
//
//   kill_campaign --scrimlet PATH [--trials N] [--seed N] [--base DIR] [--verbose]
//
// Exit status 0 when every trial was healed, 1 at the first that was not (its folder is kept
// and named), 2 for wrong arguments.

#include "AtomicFile.hpp"
#include "FakeStageSystem.hpp"
#include "JournalStore.hpp"
#include "RunSheetFile.hpp"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <iostream>
#include <map>
#include <optional>
#include <poll.h>
#include <random>
#include <spawn.h>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;
using scrimlet::EffectKind;

// The lines `scrimlet rehearse` begins each phase with.
const std::vector<std::string> phases = {"Raising the curtain.", "Holding.",
                                         "Dropping the curtain."};
const std::vector<std::string> phaseNames = {"raising", "holding", "dropping"};
// No run of the command may take longer than this: beyond it, it hangs.
constexpr auto patience = std::chrono::seconds(60);

struct Failure {
    std::string what;
};

// A child process with its standard output in a pipe, read line by line.
class Child {
public:
    explicit Child(const std::vector<std::string>& arguments) {
        int ends[2];
        if (::pipe(ends) != 0) {
            throw Failure{"no pipe"};
        }
        std::vector<char*> argv;
        std::vector<std::string> copies = arguments;
        for (auto& argument : copies) {
            argv.push_back(argument.data());
        }
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
        posix_spawn_file_actions_addclose(&actions, ends[0]);
        posix_spawn_file_actions_addclose(&actions, ends[1]);
        const int spawned = posix_spawn(&pid_, argv[0], &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
        fd_ = ends[0];
        if (spawned != 0) {
            ::close(fd_);
            throw Failure{"cannot start " + arguments[0]};
        }
    }
    ~Child() {
        if (pid_ > 0) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
        ::close(fd_);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    // The next whole line, or nothing when `deadline` came first or the output ended.
    std::optional<std::string> line(Clock::time_point deadline) {
        for (;;) {
            if (const size_t end = buffer_.find('\n'); end != std::string::npos) {
                std::string out = buffer_.substr(0, end);
                buffer_.erase(0, end + 1);
                output_ += out + "\n";
                return out;
            }
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
            if (left.count() <= 0 || ended_) {
                return std::nullopt;
            }
            pollfd watched = {fd_, POLLIN, 0};
            const int ready = ::poll(&watched, 1, static_cast<int>(left.count()));
            if (ready > 0) {
                char chunk[4096];
                const ssize_t got = ::read(fd_, chunk, sizeof chunk);
                if (got <= 0) {
                    ended_ = true;
                } else {
                    buffer_.append(chunk, static_cast<size_t>(got));
                }
            } else if (ready < 0 && errno != EINTR) {
                ended_ = true;
            }
        }
    }

    void kill() { ::kill(pid_, SIGKILL); }
    bool ended() const { return ended_; }

    // Waits for the end; the wait status, or nothing when it would not end in time.
    std::optional<int> finish() {
        const auto deadline = Clock::now() + patience;
        while (line(deadline)) {
        }
        int status = 0;
        while (::waitpid(pid_, &status, WNOHANG) == 0) {
            if (Clock::now() > deadline) {
                return std::nullopt;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        pid_ = -1;
        return status;
    }

    const std::string& output() const { return output_; }

private:
    pid_t pid_ = -1;
    int fd_ = -1;
    std::string buffer_;
    std::string output_;
    bool ended_ = false;
};

struct Options {
    std::string scrimlet;
    int trials = 30;
    std::uint64_t seed = std::random_device{}();
    fs::path base;
    bool verbose = false;
};

struct Tally {
    int trials = 0;
    int killedIn[3] = {};
    int ranToTheEnd = 0;
    int recovered = 0;
    int leftovers = 0;
};

std::map<std::string, std::string> macState(const fs::path& dir) {
    auto mac = scrimlet::FakeStageSystem::demo();
    if (const auto text = scrimlet::files::read(dir / "mac.json")) {
        mac->takePersistentState(*text);
    }
    return mac->state(true);
}

std::string describe(const std::map<std::string, std::string>& state) {
    std::string out;
    for (const auto& [key, value] : state) {
        out += "    " + key + " = " + value + "\n";
    }
    return out;
}

bool hasLeftovers(const fs::path& dir) {
    for (const auto& entry : fs::directory_iterator(dir)) {
        const std::string name = entry.path().filename().string();
        if (name.front() == '.' && name.find(".tmp-") != std::string::npos) {
            return true;
        }
    }
    return false;
}

void expect(bool condition, const std::string& what) {
    if (!condition) {
        throw Failure{what};
    }
}

std::string format(double seconds) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", seconds);
    return text;
}

// How long each phase takes with no pause, from complete runs: the kills aim inside it.
std::vector<double> measurePhases(const Options& options) {
    std::vector<double> longest(3, 0.0);
    for (int run = 0; run < 3; ++run) {
        const fs::path dir =
            options.base /
            ("scrimlet-campaign-measure-" + std::to_string(::getpid()) + "-" + std::to_string(run));
        Child child({options.scrimlet, "rehearse", "--dir", dir.string(), "--hold", "0"});
        std::vector<Clock::time_point> marks;
        const auto deadline = Clock::now() + patience;
        while (const auto line = child.line(deadline)) {
            if (line->rfind("Raising", 0) == 0 || line->rfind("Holding", 0) == 0 ||
                line->rfind("Dropping", 0) == 0 || line->rfind("Dark", 0) == 0) {
                marks.push_back(Clock::now());
            }
        }
        child.finish();
        fs::remove_all(dir);
        expect(marks.size() == 4, "a complete rehearsal did not run through:\n" + child.output());
        for (size_t i = 0; i < 3; ++i) {
            longest[i] = std::max(longest[i],
                                  std::chrono::duration<double>(marks[i + 1] - marks[i]).count());
        }
    }
    return longest;
}

void trial(const Options& options, int number, std::mt19937_64& random,
           const std::vector<double>& measured, Tally& tally) {
    const fs::path dir = options.base / ("scrimlet-campaign-" + std::to_string(::getpid()) + "-" +
                                         std::to_string(number));
    fs::remove_all(dir);
    fs::create_directories(dir);
    const auto uniform = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };

    // Now and then a show that runs to its end first, so that the killed one is not the
    // first show of its folder.
    if (random() % 4 == 0) {
        Child earlier({options.scrimlet, "rehearse", "--dir", dir.string(), "--hold", "0"});
        const auto status = earlier.finish();
        expect(status && WIFEXITED(*status) && WEXITSTATUS(*status) == 0,
               "a complete rehearsal failed:\n" + earlier.output());
    }
    const auto before = macState(dir);
    expect(before == scrimlet::FakeStageSystem::demo()->state(true),
           "a complete show did not leave the Mac as it found it:\n" + describe(before));

    const size_t target = random() % 3;
    const double step = random() % 2 == 0 ? 0 : uniform(0, 0.004);
    const double hold = uniform(0.01, 0.3);
    const double window = target == 1 ? hold : measured[target] + 16 * 2 * step;
    const double delay = uniform(0, window * 1.1);

    Child run({options.scrimlet, "rehearse", "--dir", dir.string(), "--hold", format(hold),
               "--step", format(step)});
    std::optional<size_t> phase;
    const auto deadline = Clock::now() + patience;
    std::optional<Clock::time_point> killAt;
    bool killed = false;
    while (!killed) {
        const auto wakeUp = killAt ? std::min(*killAt, deadline) : deadline;
        const auto line = run.line(wakeUp);
        if (line) {
            for (size_t i = 0; i < phases.size(); ++i) {
                if (*line == phases[i]) {
                    phase = i;
                    if (i == target) {
                        killAt = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                                    std::chrono::duration<double>(delay));
                    }
                }
            }
            continue;
        }
        if (killAt && Clock::now() >= *killAt) {
            run.kill();
            killed = true;
        } else if (run.ended() || Clock::now() >= deadline) {
            break;
        }
    }
    const auto status = run.finish();
    expect(status.has_value(), "the rehearsal hung:\n" + run.output());
    const bool endedByKill = WIFSIGNALED(*status) && WTERMSIG(*status) == SIGKILL;
    expect(endedByKill || (WIFEXITED(*status) && WEXITSTATUS(*status) == 0),
           "the rehearsal failed on its own:\n" + run.output());

    // What the dead process left, as the next launch will find it.
    const auto journalText = scrimlet::files::read(dir / "journal.json");
    const auto journal = journalText ? scrimlet::JournalStore::decode(*journalText)
                                     : std::vector<scrimlet::JournalEntry>();
    expect(!journalText || !journal.empty(), "the killed run left a journal that cannot be read");
    const bool lasting = std::any_of(journal.begin(), journal.end(), [](const auto& entry) {
        return scrimlet::outlivesApp(entry.key.kind);
    });
    const size_t sheetsBefore = scrimlet::RunSheetFile::load(dir / "runsheets.json").size();
    const bool leftovers = hasLeftovers(dir);

    Child relaunch({options.scrimlet, "rehearse", "--dir", dir.string(), "--launch-only"});
    const auto relaunched = relaunch.finish();
    expect(relaunched && WIFEXITED(*relaunched) && WEXITSTATUS(*relaunched) == 0,
           "the relaunch failed:\n" + relaunch.output());

    const auto after = macState(dir);
    expect(after == before, "the Mac was not put back. Before the show:\n" + describe(before) +
                                "after the relaunch:\n" + describe(after) + relaunch.output());
    expect(!fs::exists(dir / "journal.json"), "the journal is still there");
    expect(!hasLeftovers(dir), "a temporary file is still there");
    const auto sheets = scrimlet::RunSheetFile::load(dir / "runsheets.json");
    if (lasting) {
        expect(sheets.size() == sheetsBefore + 1, "no run sheet for the healed show");
        const auto& healed = sheets.front();
        expect(healed.how == "Scrimlet quit unexpectedly" &&
                   healed.reason == scrimlet::EndReason::recovered,
               "the newest run sheet does not tell of the healing: " + healed.how);
        for (const auto& record : healed.strike) {
            const auto outcome = record.outcome.kind();
            expect(outcome == scrimlet::CueOutcome::Case::restored ||
                       outcome == scrimlet::CueOutcome::Case::alreadyBack,
                   "healing " + record.title + " gave " + record.outcome.label());
        }
    } else {
        expect(sheets.size() == sheetsBefore, "a run sheet for nothing");
    }

    ++tally.trials;
    if (endedByKill && phase) {
        ++tally.killedIn[*phase];
    } else {
        ++tally.ranToTheEnd;
    }
    tally.recovered += lasting ? 1 : 0;
    tally.leftovers += leftovers ? 1 : 0;
    if (options.verbose) {
        std::cout << "trial " << number << ": "
                  << (endedByKill && phase ? "killed while " + phaseNames[*phase]
                                           : std::string("ran to its end"))
                  << ", " << journal.size() << " journal entries"
                  << (leftovers ? ", a leftover temporary file" : "") << ", healed"
                  << " (aimed " << format(delay) << " s into " << phaseNames[target] << ")\n";
    }
    fs::remove_all(dir);
}

std::optional<Options> parse(int argc, char** argv) {
    Options options;
    std::error_code error;
    // The kill -9 of this campaign is not a power cut: a folder in memory serves as well as
    // the disk, and many times faster, where there is one.
    options.base =
        fs::is_directory("/dev/shm", error) ? fs::path("/dev/shm") : fs::temp_directory_path();
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const bool valued = i + 1 < argc;
        try {
            if (argument == "--scrimlet" && valued) {
                options.scrimlet = argv[++i];
            } else if (argument == "--trials" && valued) {
                options.trials = std::stoi(argv[++i]);
            } else if (argument == "--seed" && valued) {
                options.seed = std::stoull(argv[++i]);
            } else if (argument == "--base" && valued) {
                options.base = argv[++i];
            } else if (argument == "--verbose") {
                options.verbose = true;
            } else {
                return std::nullopt;
            }
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }
    if (options.scrimlet.empty() || options.trials < 1) {
        return std::nullopt;
    }
    return options;
}

} // namespace

int main(int argc, char** argv) {
    const auto options = parse(argc, argv);
    if (!options) {
        std::cerr << "usage: kill_campaign --scrimlet PATH [--trials N] [--seed N] [--base DIR] "
                     "[--verbose]\n";
        return 2;
    }
    std::cout << "kill campaign: " << options->trials << " trials, seed " << options->seed
              << ", folders in " << options->base.string() << std::endl;
    std::mt19937_64 random(options->seed);
    Tally tally;
    const auto started = Clock::now();
    int number = 0;
    try {
        const auto measured = measurePhases(*options);
        for (number = 1; number <= options->trials; ++number) {
            trial(*options, number, random, measured, tally);
        }
    } catch (const Failure& failure) {
        std::cout << "trial " << number << " was not healed: " << failure.what << "\nIts folder: "
                  << (options->base / ("scrimlet-campaign-" + std::to_string(::getpid()) + "-" +
                                       std::to_string(number)))
                         .string()
                  << "\nReplay with --seed " << options->seed << std::endl;
        return 1;
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - started).count();
    std::cout << tally.trials << " trials in " << format(seconds) << " s, every one healed. Killed "
              << "while raising " << tally.killedIn[0] << ", holding " << tally.killedIn[1]
              << ", dropping " << tally.killedIn[2] << "; ran to the end " << tally.ranToTheEnd
              << ". A lasting change was on record in " << tally.recovered
              << " (each told by a recovered run sheet); a save cut short left a temporary file in "
              << tally.leftovers << "." << std::endl;
    return 0;
}
