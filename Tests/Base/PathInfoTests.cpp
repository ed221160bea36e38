#include <cstdlib>
#include <optional>

#include <gtest/gtest.h>

#include "Platform/Base/OS.h"
#include "Platform/Base/OSFiles.h"
#include "Platform/Base/PathInfo.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn {

namespace {

namespace fs = std::filesystem;

// What the host set is put back.
class PathInfoTests : public testing::Test {
protected:
    PathInfoTests() : m_before(PathInfo::optionsDirectory(false)) {
        PathInfo::optionsDirectory(L"");
    }
    ~PathInfoTests() override {
        PathInfo::optionsDirectory(m_before);
        PathInfo::rootDirectory(L"");
        PathInfo::modulesDirectory(L"");
    }

private:
    std::wstring const m_before;
};

TEST_F(PathInfoTests, TheHostSetsTheDirectories) {
    Testing::TemporaryDirectory const directory;
    std::wstring const text = PathInfo::toText(directory.path());
    PathInfo::optionsDirectory(text);
    EXPECT_EQ(PathInfo::optionsDirectory(false), text);
    EXPECT_EQ(PathInfo::optionsDirectory(true), text + L"/");
    PathInfo::rootDirectory(text + L"/");
    EXPECT_EQ(PathInfo::rootDirectory(false), text);
    EXPECT_EQ(PathInfo::rootDirectory(true), text + L"/");
    EXPECT_TRUE(fs::is_empty(directory.path())); // nothing is made
}

TEST_F(PathInfoTests, ARelativeDirectoryStaysWhereItIs) {
    PathInfo::optionsDirectory(L"below");
    EXPECT_EQ(PathInfo::fromText(PathInfo::optionsDirectory(false)), fs::current_path() / "below");
}

TEST_F(PathInfoTests, TheRootIsAboveTheProgram) {
    EXPECT_EQ(PathInfo::fromText(PathInfo::rootDirectory(false)),
              OS::executableDirectory().parent_path());
    std::wstring const text = PathInfo::rootDirectory(true);
    EXPECT_EQ(text.back(), L'/');
    EXPECT_NE(text[text.size() - 2], L'/');
}

TEST_F(PathInfoTests, ModulesStandBesideTheLibraries) {
    EXPECT_EQ(PathInfo::fromText(PathInfo::modulesDirectory(false)), OS::libraryDirectory());
    Testing::TemporaryDirectory const directory;
    std::wstring const text = PathInfo::toText(directory.path());
    PathInfo::modulesDirectory(text);
    EXPECT_EQ(PathInfo::modulesDirectory(true), text + L"/");
    PathInfo::modulesDirectory(static_cast<wchar_t const *>(nullptr));
    EXPECT_EQ(PathInfo::fromText(PathInfo::modulesDirectory(false)), OS::libraryDirectory());
}

// In the build tree the root is the same from the program and from the libraries.
TEST_F(PathInfoTests, TheInstalledRootIsFoundFromTheLibraries) {
    EXPECT_EQ(fs::canonical(PathInfo::fromText(PathInfo::installedRoot())),
              fs::canonical(PathInfo::fromText(PathInfo::rootDirectory(false))));
}

TEST_F(PathInfoTests, AnyPathHasAText) {
    for (wchar_t const * const text : {L"", L"/", L"/a b/ä/日本", L"plain"})
        EXPECT_EQ(PathInfo::toText(PathInfo::fromText(text)), text);
#ifndef _WIN32 // whose paths are characters
    for (char const * const bytes : {"/a\xFF/b", "/\xC3", "\x80\xE4\xB8", "/ok/\xE6\x97\xA5"})
        EXPECT_EQ(PathInfo::fromText(PathInfo::toText(fs::path(bytes))).native(), bytes);
#endif
}

#ifdef _WIN32

TEST_F(PathInfoTests, OptionsAreInTheRoamingData) {
    fs::path const directory = PathInfo::fromText(PathInfo::optionsDirectory(false));
    EXPECT_EQ(directory.filename(), "VnCommonData10");
    EXPECT_TRUE(fs::is_directory(directory.parent_path()));
    EXPECT_EQ(directory.parent_path().filename(), "Roaming");
}

#else

// Variables of the environment for one test.
class Environment {
public:
    Environment(char const * name, char const * value) : m_name(name) {
        if (char const * const before = std::getenv(name)) m_before = before;
        if (value)
            ::setenv(name, value, 1);
        else
            ::unsetenv(name);
    }
    ~Environment() {
        if (m_before)
            ::setenv(m_name, m_before->c_str(), 1);
        else
            ::unsetenv(m_name);
    }

private:
    char const * const m_name;
    std::optional<std::string> m_before;
};

TEST_F(PathInfoTests, OptionsAreInTheDirectoryForPreferences) {
    struct Row {
        char const * preferences;
        char const * home;
        wchar_t const * directory;
    };
    constexpr Row c_rows[] = {
        {"/set", "/home", L"/set/VnCommonData10"},
        {"/set/", "/home", L"/set/VnCommonData10"},
        {"relative", "/home", L"/home/.config/VnCommonData10"},
        {"", "/home", L"/home/.config/VnCommonData10"},
        {nullptr, "/home", L"/home/.config/VnCommonData10"},
    };
    for (Row const & row : c_rows) {
        Environment const preferences("XDG_CONFIG_HOME", row.preferences);
        Environment const home("HOME", row.home);
        EXPECT_EQ(PathInfo::optionsDirectory(false), row.directory);
    }
}

TEST_F(PathInfoTests, WithoutAHomeTheUserDatabaseKnows) {
    Environment const preferences("XDG_CONFIG_HOME", nullptr);
    for (char const * const value : {static_cast<char const *>(nullptr), "", "relative"}) {
        Environment const home("HOME", value);
        fs::path const directory = OS::preferencesDirectory();
        EXPECT_TRUE(directory.empty() || directory.is_absolute());
        EXPECT_TRUE(directory.empty() || directory.filename() == ".config");
    }
}

#endif

} // namespace

} // namespace Vn
