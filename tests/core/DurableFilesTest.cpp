// The file helpers under what a real disk and a real user can do: a power cut right after a
// save or a delete, and a path that names a pipe, a device, a folder or a huge file.

#include "AtomicFile.hpp"
#include "JournalStore.hpp"

#include "TempDir.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#ifdef __linux__
namespace {

// Every flush made while a test listens, by the path of what was flushed.
bool listening = false;
std::vector<std::filesystem::path> flushed;

} // namespace

// Stands in for the C library's fsync in this test program, which links the core statically:
// it notes what is flushed, then flushes it for real.
extern "C" int fsync(int fd) {
    if (listening) {
        char target[4096] = {};
        const std::string link = "/proc/self/fd/" + std::to_string(fd);
        if (::readlink(link.c_str(), target, sizeof target - 1) > 0) {
            flushed.emplace_back(target);
        }
    }
    return static_cast<int>(::syscall(SYS_fsync, fd));
}
#endif

namespace scrimlet {
namespace {

using testing::TempDir;

#ifdef __linux__
std::vector<std::filesystem::path> flushesOf(const std::function<void()>& action) {
    flushed.clear();
    listening = true;
    action();
    listening = false;
    return flushed;
}

bool contains(const std::vector<std::filesystem::path>& paths, const std::filesystem::path& path) {
    return std::find(paths.begin(), paths.end(), path) != paths.end();
}
#endif

TEST(DurableFiles, NewFoldersAndDeletionsReachTheDiskWithTheirParents) {
#ifndef __linux__
    GTEST_SKIP() << "flushes are observed through Linux's /proc";
#else
    TempDir temp;
    const auto root = std::filesystem::canonical(temp.path());
    const auto support = root / "Application Support" / "Scrimlet";
    const auto file = support / "journal.json";
    JournalEntry entry(EffectKey(EffectKind::darkMode), JournalValue::boolean(false),
                       JournalValue::boolean(true), {"stage"}, EntryState::applied, true,
                       Date{1'790'000'000});
    JournalStore store(file);

    // The first save makes two folders: each must be flushed into its parent, or a power
    // cut can take the folder, and the journal in it, away again.
    const auto saved = flushesOf([&] { store.save({entry}); });
    EXPECT_TRUE(contains(saved, root)) << "the new folder is not flushed into its parent";
    EXPECT_TRUE(contains(saved, root / "Application Support"));
    EXPECT_TRUE(contains(saved, support)) << "the rename is not flushed";
    ASSERT_TRUE(std::filesystem::exists(file));

    // Healed: the journal goes, and its going must reach the disk, or a power cut brings a
    // journal that was healed already back for a second, wrong healing.
    const auto removed = flushesOf([&] { store.save({}); });
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(removed, std::vector<std::filesystem::path>{support})
        << "the deletion is not flushed";
    EXPECT_TRUE(flushesOf([&] { store.save({}); }).empty())
        << "nothing to delete, nothing to flush";
#endif
}

TEST(DurableFiles, OnlyRegularFilesOfAReasonableSizeAreRead) {
    TempDir temp;
    using files::Refusal;
    const auto refusal = [](const std::filesystem::path& path) {
        const auto reading = files::readChecked(path);
        EXPECT_EQ(reading.text.has_value(), !reading.refusal.has_value()) << path;
        return reading.refusal;
    };

    // A pipe with no writer would block a plain read for ever.
    const auto pipe = temp / "journal.json";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(refusal(pipe), Refusal::notRegular);
    EXPECT_FALSE(JournalStore(pipe).load().size());
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(5));

    // A device that never ends, a folder, nothing at all.
    EXPECT_EQ(refusal("/dev/zero"), Refusal::notRegular);
    EXPECT_EQ(refusal(temp.path()), Refusal::folder);
    EXPECT_EQ(refusal(temp / "missing.json"), Refusal::missing);
    EXPECT_EQ(refusal(temp / "missing" / "journal.json"), Refusal::missing);

    // Right at the limit it is read; one byte more and it is not, whatever it holds.
    const auto big = temp / "runsheets.json";
    files::writeAtomically(big, "");
    std::filesystem::resize_file(big, files::readLimit);
    const auto whole = files::readChecked(big);
    ASSERT_TRUE(whole.text);
    EXPECT_EQ(whole.text->size(), files::readLimit);
    std::filesystem::resize_file(big, 50'000'000);
    const auto tooLarge = files::readChecked(big);
    EXPECT_EQ(tooLarge.refusal, Refusal::tooLarge);
    EXPECT_EQ(tooLarge.size, 50'000'000u);
    EXPECT_FALSE(files::read(big));

    // A file the user may not read (root may read anything, so only others can check).
    const auto locked = temp / "settings.json";
    files::writeAtomically(locked, "{}");
    std::filesystem::permissions(locked, std::filesystem::perms::none);
    if (::geteuid() != 0) {
        const auto reading = files::readChecked(locked);
        EXPECT_EQ(reading.refusal, Refusal::unreadable);
        EXPECT_EQ(reading.error, std::errc::permission_denied);
    }
    EXPECT_EQ(files::read(temp / "nothing"), std::nullopt);
}

} // namespace
} // namespace scrimlet
