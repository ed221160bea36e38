// The file system refuses: the old file stays, and what was changed still waits to be saved.

#include <cerrno>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/OSFiles.h"
#include "Tests/Base/TestOptions.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn {

namespace {

namespace fs = std::filesystem;
using namespace Testing;
using OS::EFileCall;

// What the observer does, which has no object of its own.
struct Plan {
    unsigned calls = 0;
    unsigned failAt = 0; // from 1; 0 never
    bool forGood = false;
    int error = EIO;
    std::vector<EFileCall> seen;
    EFileCall removeAt = EFileCall::Open; // the directory vanishes in front of that call
    fs::path toRemove;                    // empty for none
};
Plan s_plan;

int observe(EFileCall call, fs::path const &) {
    s_plan.seen.push_back(call);
    if (!s_plan.toRemove.empty() && call == s_plan.removeAt) fs::remove_all(s_plan.toRemove);
    ++s_plan.calls;
    bool const fails = s_plan.failAt != 0 && (s_plan.calls == s_plan.failAt ||
                                              (s_plan.forGood && s_plan.calls > s_plan.failAt));
    return fails ? s_plan.error : 0;
}

class OptionFileFaultTests : public testing::Test {
protected:
    OptionFileFaultTests() {
        s_plan = Plan();
        OS::fileCallObserver(&observe);
    }
    ~OptionFileFaultTests() override { OS::fileCallObserver(nullptr); }

    fs::path at() const { return m_directory.path() / "options"; }
    fs::path file() const { return at() / "GlobalOptions.xml"; }

    TemporaryDirectory const m_directory;
    Status m_status;
};

TEST_F(OptionFileFaultTests, ASaveAsksTheSystemInThisOrder) {
    TestGroup group(at());
    group.number.setValueFromString(L"5");
    EXPECT_TRUE(group.saved().ok());
    EXPECT_EQ(s_plan.seen,
              (std::vector<EFileCall>{EFileCall::MakeDirectory, EFileCall::SyncDirectory,
                                      EFileCall::OpenLock, EFileCall::Lock, EFileCall::Open,
                                      EFileCall::Create, EFileCall::Write, EFileCall::Flush,
                                      EFileCall::Rename, EFileCall::SyncDirectory}));
    s_plan.seen.clear();
    EXPECT_TRUE(group.loaded().ok());
    EXPECT_EQ(s_plan.seen,
              (std::vector<EFileCall>{EFileCall::Open, EFileCall::Read, EFileCall::Open}));
}

// Each call fails once, and then from that one on all of them, until a save gets through.
TEST_F(OptionFileFaultTests, WhicheverCallFailsNothingIsLost) {
    struct Start {
        char const * name;
        std::string content; // of the file; none without
    };
    Start const c_starts[] = {
        {"no directory", ""},
        {"a file", fileWith(optionElement("FlagId", "0"))},
        {"a damaged file", "<damaged"},
    };
    for (Start const & start : c_starts) {
        for (bool const forGood : {false, true}) {
            for (int const error : {EIO, ENOSPC, EACCES, EROFS}) {
                unsigned failures = 0;
                for (unsigned call = 1;; ++call) {
                    SCOPED_TRACE(std::string(start.name) + ", call " + std::to_string(call));
                    fs::remove_all(at());
                    if (!start.content.empty()) {
                        fs::create_directory(at());
                        write(file(), start.content);
                    }
                    TestGroup group(at());
                    group.load(m_status);
                    group.number.setValueFromString(L"5");
                    s_plan = Plan();
                    s_plan.failAt = call;
                    s_plan.forGood = forGood;
                    s_plan.error = error;
                    Status const status = group.saved();
                    bool const wasReached = s_plan.calls >= call;
                    s_plan = Plan();
                    EXPECT_EQ(status.ok(), !wasReached);
                    EXPECT_EQ(group.number.dirty(), wasReached);
                    EXPECT_EQ(group.number.value(), 5);
                    EXPECT_FALSE(fs::exists(at() / "GlobalOptions.xml.saving"));
                    std::string const content = contentOf(file());
                    bool const isOld = content == start.content;
                    bool const isNew = content.find("\"NumberId\" Value=\"5\"") != content.npos;
                    EXPECT_TRUE(isOld || isNew) << content;
                    if (!wasReached) {
                        EXPECT_TRUE(isNew);
                        break;
                    }
                    ++failures;
                    EXPECT_NE(status.toString(), "");
                    // Once the trouble is over, the next save does it.
                    EXPECT_TRUE(group.saved().ok());
                    EXPECT_FALSE(group.number.dirty());
                    TestGroup again(at());
                    EXPECT_TRUE(again.loaded().ok());
                    EXPECT_EQ(again.number.value(), 5);
                    if (start.content.starts_with("<damaged")) {
                        EXPECT_EQ(contentOf(at() / "GlobalOptions.xml.damaged"), start.content);
                    } else if (!start.content.empty()) {
                        EXPECT_FALSE(again.flag.value());
                    }
                }
                EXPECT_GE(failures, 9U);
            }
        }
    }
}

TEST_F(OptionFileFaultTests, WhicheverCallOfALoadFailsTheDefaultsHold) {
    fs::create_directory(at());
    write(file(), fileWith(optionElement("NumberId", "5")));
    for (unsigned call = 1; call <= 2; ++call) {
        s_plan = Plan();
        s_plan.failAt = call;
        TestGroup group(at());
        Status const status = group.loaded();
        EXPECT_EQ(status.code(), StatusIO);
        EXPECT_EQ(group.number.value(), 3);
        s_plan = Plan();
        EXPECT_TRUE(group.loaded().ok());
        EXPECT_EQ(group.number.value(), 5);
    }
}

TEST_F(OptionFileFaultTests, ADirectoryThatVanishesIsAFailureThatTheNextSaveMends) {
    for (EFileCall const call :
         {EFileCall::OpenLock, EFileCall::Lock, EFileCall::Open, EFileCall::Create,
          EFileCall::Write, EFileCall::Flush, EFileCall::Rename, EFileCall::SyncDirectory}) {
#ifdef _WIN32
        // What has an open file in it can't be removed there.
        if (call != EFileCall::OpenLock) continue;
#endif
        fs::create_directories(at());
        TestGroup group(at());
        group.number.setValueFromString(L"5");
        s_plan = Plan();
        s_plan.removeAt = call;
        s_plan.toRemove = at();
        Status const status = group.saved();
        s_plan = Plan();
        if (call != EFileCall::Lock) { // where the lock is then taken anew
            EXPECT_FALSE(status.ok()) << static_cast<int>(call);
        }
        EXPECT_EQ(group.number.dirty(), !status.ok());
        EXPECT_TRUE(group.saved().ok());
        group.number.setValueFromString(L"6");
        EXPECT_TRUE(group.saved().ok());
        TestGroup again(at());
        EXPECT_TRUE(again.loaded().ok());
        EXPECT_EQ(again.number.value(), 6);
    }
}

} // namespace

} // namespace Vn
