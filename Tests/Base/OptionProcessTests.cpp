// Several programs save their preferences in one file, and some are killed while they do.

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/OSFiles.h"
#include "Tests/Base/TestOptions.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn {

namespace {

namespace fs = std::filesystem;
using namespace Testing;

// An option of the file as the program has it that saves it.
int valueOf(fs::path const & directory, std::string const & group, std::string const & id) {
    class Reader : public OptionGroup {
    public:
        Reader(fs::path const & directory, std::string const & group)
            : OptionGroup(group, L"Reader"), m_rDirectory(directory) {}
        std::wstring onPersistFile(std::vector<std::wstring> &) const override {
            return PathInfo::toText(m_rDirectory / "GlobalOptions.xml");
        }

    private:
        fs::path const & m_rDirectory;
    };
    Reader reader(directory, group);
    Option<int> const option(id, L"", L"", &reader, -1);
    Status status;
    reader.load(status);
    EXPECT_TRUE(status.ok()) << status.toString();
    return option.value();
}

std::string saves() {
#ifdef _WIN32
    return "20"; // Wine takes its time
#else
    return "100";
#endif
}

TEST(OptionProcessTests, EightProcessesSaveAndNothingIsLost) {
    TemporaryDirectory const directory;
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int i = 0; i < 8; ++i) {
        children.push_back(std::make_unique<ChildProcess>(
            VN_OPTIONS_CHILD, std::vector<std::string>{utf8(directory.path()), "TestGroup",
                                                       "Option" + std::to_string(i), saves()}));
    }
    children.push_back(std::make_unique<ChildProcess>(
        VN_OPTIONS_CHILD,
        std::vector<std::string>{utf8(directory.path()), "OtherGroup", "Option0", saves()}));
    for (auto const & child : children) EXPECT_EQ(child->wait(), 0);
    int const last = std::atoi(saves().c_str());
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(valueOf(directory.path(), "TestGroup", "Option" + std::to_string(i)), last) << i;
    EXPECT_EQ(valueOf(directory.path(), "OtherGroup", "Option0"), last);
    EXPECT_FALSE(fs::exists(directory.path() / "GlobalOptions.xml.saving"));
    EXPECT_FALSE(fs::exists(directory.path() / "GlobalOptions.xml.damaged"));
}

TEST(OptionProcessTests, AKillLeavesTheOldFileOrTheNewOne) {
    char const * const wanted = std::getenv("VN_TEST_KILLS");
#ifdef _WIN32
    int const kills = wanted ? std::atoi(wanted) : 10;
#else
    int const kills = wanted ? std::atoi(wanted) : 200;
#endif
    TemporaryDirectory const directory;
    std::mt19937 random(kills > 0 ? static_cast<unsigned>(kills) : 1U);
    int news = 0;
    for (int i = 0; i < kills; ++i) {
        ChildProcess child(VN_OPTIONS_CHILD,
                           {utf8(directory.path()), "TestGroup", "NumberId", "0"});
        std::int32_t saved = 0;
        ASSERT_TRUE(child.read(&saved, sizeof saved));
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 10000));
        ASSERT_TRUE(child.kill()) << "it ended by itself";
        std::int32_t more = 0;
        while (child.read(&more, sizeof more)) saved = more;
        int const found = valueOf(directory.path(), "TestGroup", "NumberId");
        EXPECT_TRUE(found == saved || found == saved + 1) << found << " after " << saved;
        news += found == saved + 1;
        // The lock went with the process.
        if (i % 20 == 0) {
            TestGroup group(directory.path());
            EXPECT_TRUE(group.loaded().ok());
            group.flag.setValueFromString(group.flag.value() ? L"OFF" : L"ON");
            Status const status = group.saved();
            EXPECT_TRUE(status.ok()) << status.toString();
        }
        EXPECT_FALSE(fs::exists(directory.path() / "GlobalOptions.xml.damaged"));
    }
    std::cout << kills << " kills, " << news << " of them between a rename and its report\n";
}

TEST(OptionProcessTests, ASaveWaitsAndThenSaysThatTheFileIsBusy) {
    TemporaryDirectory const directory;
    TestGroup group(directory.path());
    group.number.setValueFromString(L"5");
    OS::FileLock lock;
    ASSERT_TRUE(
        lock.take(directory.path() / "GlobalOptions.xml.lock", std::chrono::seconds(1)).ok());
    auto const begin = std::chrono::steady_clock::now();
    std::thread([&] { EXPECT_EQ(group.saved().code(), StatusBusy); }).join();
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_TRUE(group.number.dirty());
    EXPECT_FALSE(fs::exists(directory.path() / "GlobalOptions.xml"));
    lock.release();
    EXPECT_TRUE(group.saved().ok());
}

TEST(OptionProcessTests, ThreadsSaveGroupsOfTheirOwn) {
    TemporaryDirectory const directory;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&directory, i] {
            TestGroup group(directory.path(), "Group" + std::to_string(i));
            for (int j = 1; j <= 25; ++j) {
                group.number.setValueFromString(std::to_wstring(j));
                Status const status = group.saved();
                EXPECT_TRUE(status.ok()) << status.toString();
            }
        });
    }
    for (std::thread & thread : threads) thread.join();
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(valueOf(directory.path(), "Group" + std::to_string(i), "NumberId"), 25);
}

} // namespace

} // namespace Vn
