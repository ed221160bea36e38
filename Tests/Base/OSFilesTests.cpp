#include <atomic>
#include <cerrno>
#include <chrono>
#include <fstream>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "Platform/Base/OSFiles.h"
#include "Tests/Base/TestOptions.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::OS {

namespace {

// The call that finds the disk full.
EFileCall s_failing = EFileCall::Open;

// Has one kind of call fail as long as it lives.
class FullDisk {
public:
    explicit FullDisk(EFileCall call) {
        s_failing = call;
        fileCallObserver([](EFileCall each, std::filesystem::path const &) {
            return each == s_failing ? ENOSPC : 0;
        });
    }
    ~FullDisk() { fileCallObserver(nullptr); }
};

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using Testing::contentOf;
using Testing::TemporaryDirectory;

TEST(OSFilesTests, AFileIsReadUpToTheLimit) {
    TemporaryDirectory const directory;
    fs::path const file = directory.path() / "file";
    std::string content;
    EXPECT_EQ(readSmallFile(file, 10, content).code(), StatusNotFound);
    for (std::size_t const size : {0U, 1U, 4096U, 4097U, 100000U}) {
        std::string const text(size, 'x');
        Testing::write(file, text);
        ASSERT_TRUE(readSmallFile(file, size, content).ok());
        EXPECT_EQ(content, text);
        ASSERT_TRUE(readSmallFile(file, size + 1, content).ok());
        if (size == 0) continue;
        content = "kept";
        EXPECT_EQ(readSmallFile(file, size - 1, content).code(), StatusUnsupported);
        EXPECT_EQ(content, "kept");
    }
}

TEST(OSFilesTests, WhatIsNotAFileIsNotRead) {
    TemporaryDirectory const directory;
    std::string content = "kept";
    EXPECT_EQ(readSmallFile(directory.path(), 10, content).code(), StatusInvalidArgument);
#ifndef _WIN32 // pipes and devices have names of their own there
    fs::path const pipe = directory.path() / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(readSmallFile(pipe, 10, content).code(), StatusInvalidArgument);
    EXPECT_EQ(readSmallFile("/dev/zero", 10, content).code(), StatusInvalidArgument);
#endif
    EXPECT_EQ(content, "kept");
}

TEST(OSFilesTests, AFileIsReplacedAndNothingIsLeftBesideIt) {
    TemporaryDirectory const directory;
    fs::path const file = directory.path() / "ä 日本";
    ASSERT_TRUE(replaceSmallFile(file, "one").ok());
    EXPECT_EQ(contentOf(file), "one");
    ASSERT_TRUE(replaceSmallFile(file, std::string(100000, 'y')).ok());
    EXPECT_EQ(contentOf(file), std::string(100000, 'y'));
    // What a killed process left makes way.
    fs::path neighbour = file;
    neighbour += ".saving";
    Testing::write(neighbour, "half");
    ASSERT_TRUE(replaceSmallFile(file, "").ok());
    EXPECT_EQ(contentOf(file), "");
    EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), fs::directory_iterator()), 1);
}

TEST(OSFilesTests, WhatAUserAskedForIsReplacedAndNothingIsLeftBesideIt) {
    TemporaryDirectory const directory;
    fs::path const file = directory.path() / "ä 日本.glb";
    ASSERT_TRUE(replaceFile(file, "one").ok());
    EXPECT_EQ(contentOf(file), "one");
    ASSERT_TRUE(replaceFile(file, std::string(100000, 'y')).ok());
    EXPECT_EQ(contentOf(file), std::string(100000, 'y'));
    EXPECT_EQ(replaceFile(directory.path(), "two").code(), StatusInvalidArgument);
    EXPECT_EQ(replaceFile(directory.path() / "missing" / "file", "two").code(), StatusNotFound);
    EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), fs::directory_iterator()), 1);
}

TEST(OSFilesTests, AFullDiskLeavesWhatAUserHad) {
    TemporaryDirectory const directory;
    fs::path const file = directory.path() / "file";
    Testing::write(file, "old");
    for (EFileCall const call :
         {EFileCall::Create, EFileCall::Write, EFileCall::Flush, EFileCall::Rename}) {
        FullDisk const full(call);
        Status const status = replaceFile(file, "new");
        EXPECT_EQ(status.code(), StatusNoSpace);
        EXPECT_EQ(status.subject(), file.string());
        EXPECT_EQ(contentOf(file), "old");
    }
    {
        // Then the new name may not have reached the disk; either file is whole.
        FullDisk const full(EFileCall::SyncDirectory);
        EXPECT_EQ(replaceFile(file, "new").code(), StatusNoSpace);
    }
    EXPECT_EQ(contentOf(file), "new");
    EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), fs::directory_iterator()), 1);
}

TEST(OSFilesTests, ANewFileTakesNoName) {
    TemporaryDirectory const directory;
    fs::path const file = directory.path() / "file";
    ASSERT_TRUE(makeSmallFile(file, "one").ok());
    EXPECT_EQ(makeSmallFile(file, "two").code(), StatusAlreadyExists);
    EXPECT_EQ(contentOf(file), "one");
}

TEST(OSFilesTests, AReadOnlyFileStays) {
    TemporaryDirectory const directory;
    fs::path const file = directory.path() / "file";
    Testing::write(file, "one");
    fs::permissions(file, fs::perms::owner_read);
    EXPECT_EQ(replaceSmallFile(file, "two").code(), StatusAccessDenied);
    EXPECT_EQ(contentOf(file), "one");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_TRUE(replaceSmallFile(file, "two").ok());
}

TEST(OSFilesTests, DirectoriesAreMade) {
    TemporaryDirectory const directory;
    fs::path const made = directory.path() / "a" / "b" / "c";
    ASSERT_TRUE(makeDirectories(made).ok());
    EXPECT_TRUE(fs::is_directory(made));
    EXPECT_TRUE(makeDirectories(made).ok());
    EXPECT_TRUE(makeDirectories(made / "").ok());
    fs::path const file = directory.path() / "file";
    Testing::write(file, "");
    EXPECT_FALSE(makeDirectories(file).ok());
    EXPECT_FALSE(makeDirectories(file / "below").ok());
}

#ifndef _WIN32 // permissions and links of POSIX

unsigned modeOf(fs::path const & path) {
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

TEST(OSFilesTests, WhatAUserAskedForIsAsOtherFilesOfTheUser) {
    TemporaryDirectory const directory;
    fs::path const file = directory.path() / "file";
    fs::path const link = directory.path() / "link";
    fs::create_symlink("file", link);
    mode_t const before = umask(022);
    EXPECT_TRUE(replaceFile(link, "one").ok());
    EXPECT_EQ(modeOf(file), 0644U);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(chmod(file.c_str(), 0640), 0);
    EXPECT_TRUE(replaceFile(link, "two").ok());
    EXPECT_EQ(modeOf(file), 0640U);
    EXPECT_EQ(contentOf(file), "two");
    EXPECT_EQ(chmod(file.c_str(), 0440), 0);
    EXPECT_EQ(replaceFile(link, "three").code(), StatusAccessDenied);
    umask(before);
    // A device isn't replaced, whoever asks.
    fs::path const device = directory.path() / "device";
    fs::create_symlink("/dev/full", device);
    EXPECT_EQ(replaceFile(device, "one").code(), StatusInvalidArgument);
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
    EXPECT_EQ(contentOf(file), "two");
}

TEST(OSFilesTests, WhatIsMadeIsTheUsersAlone) {
    TemporaryDirectory const directory;
    mode_t const before = umask(0);
    ASSERT_TRUE(makeDirectories(directory.path() / "a" / "b").ok());
    EXPECT_EQ(modeOf(directory.path() / "a"), 0700U);
    EXPECT_EQ(modeOf(directory.path() / "a" / "b"), 0700U);
    fs::path const file = directory.path() / "file";
    ASSERT_TRUE(replaceSmallFile(file, "one").ok());
    EXPECT_EQ(modeOf(file), 0600U);
    // Permissions that it has stay.
    ASSERT_EQ(chmod(file.c_str(), 0664), 0);
    umask(077);
    ASSERT_TRUE(replaceSmallFile(file, "two").ok());
    EXPECT_EQ(modeOf(file), 0664U);
    umask(before);
}

TEST(OSFilesTests, LinksAreFollowedToTheirEnd) {
    TemporaryDirectory const directory;
    fs::path const & at = directory.path();
    fs::path target;
    ASSERT_TRUE(followLinks(at / "none", target).ok());
    EXPECT_EQ(target, at / "none");
    fs::create_symlink("b", at / "a");
    fs::create_symlink(at / "c", at / "b");
    ASSERT_TRUE(followLinks(at / "a", target).ok());
    EXPECT_EQ(target, at / "c") << "which isn't there";
    fs::create_symlink("circle", at / "circle");
    EXPECT_FALSE(followLinks(at / "circle", target).ok());
}

TEST(OSFilesTests, ALockWhoseFileIsRemovedIsTakenAnew) {
    TemporaryDirectory const directory;
    fs::path const file = directory.path() / "lock";
    FileLock first;
    ASSERT_TRUE(first.take(file, milliseconds(0)).ok());
    first.release();
    fs::remove(file);
    FileLock second;
    ASSERT_TRUE(second.take(file, milliseconds(0)).ok());
    EXPECT_TRUE(fs::exists(file));
}

#endif

TEST(OSFilesTests, ALockKeepsOthersWaiting) {
    TemporaryDirectory const directory;
    fs::path const file = directory.path() / "lock";
    FileLock first;
    ASSERT_TRUE(first.take(file, milliseconds(0)).ok());
    ASSERT_TRUE(fs::exists(file));
    std::thread([&] {
        FileLock second;
        auto const begin = std::chrono::steady_clock::now();
        EXPECT_EQ(second.take(file, milliseconds(50)).code(), StatusBusy);
        EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(50));
    }).join();
    first.release();
    FileLock third;
    EXPECT_TRUE(third.take(file, milliseconds(0)).ok());
    EXPECT_TRUE(fs::exists(file)) << "it stays";
}

TEST(OSFilesTests, ALockGoesFromThreadToThread) {
    TemporaryDirectory const directory;
    fs::path const file = directory.path() / "lock";
    std::atomic<int> inside{0};
    int count = 0; // guarded by the lock
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            for (int j = 0; j < 20; ++j) {
                FileLock lock;
                ASSERT_TRUE(lock.take(file, std::chrono::seconds(60)).ok());
                EXPECT_EQ(++inside, 1);
                ++count;
                --inside;
            }
        });
    }
    for (std::thread & thread : threads) thread.join();
    EXPECT_EQ(count, 160);
}

TEST(OSFilesTests, ALockNeedsItsDirectory) {
    TemporaryDirectory const directory;
    FileLock lock;
    EXPECT_EQ(lock.take(directory.path() / "none" / "lock", milliseconds(0)).code(),
              StatusNotFound);
    EXPECT_TRUE(lock.take(directory.path() / "lock", milliseconds(0)).ok())
        << "a failure leaves nothing locked";
}

} // namespace

} // namespace Vn::OS
