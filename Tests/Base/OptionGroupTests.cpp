#include <gtest/gtest.h>

#include "Tests/Base/TestOptions.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn {

namespace {

namespace fs = std::filesystem;
using namespace Testing;
using Told = std::vector<std::string>;

// A directory for option files.
class OptionGroupTests : public testing::Test {
protected:
    fs::path const & at() const { return m_directory.path(); }
    fs::path file() const { return at() / "GlobalOptions.xml"; }
    void given(std::string const & options) const { write(file(), fileWith(options)); }
    bool has(std::string const & text) const {
        return contentOf(file()).find(text) != std::string::npos;
    }
    std::ptrdiff_t files() const {
        return std::distance(fs::directory_iterator(at()), fs::directory_iterator());
    }

    TemporaryDirectory const m_directory;
};

TEST_F(OptionGroupTests, FilesHaveTheirNames) {
    EXPECT_EQ(serverOptionFileName(), L"ServerOptions");
    EXPECT_EQ(globalOptionFileName(), L"GlobalOptions");
}

TEST_F(OptionGroupTests, WithoutAFileTheDefaultsHoldAndNothingIsMade) {
    fs::path const missing = at() / "missing";
    TestGroup group(missing);
    EXPECT_TRUE(group.loaded().ok());
    EXPECT_TRUE(group.loadStatus().ok());
    EXPECT_EQ(group.number.value(), 3);
    EXPECT_FALSE(fs::exists(missing));
    EXPECT_EQ(group.loads, 1);
    EXPECT_EQ(group.told, Told{});
}

TEST_F(OptionGroupTests, ASaveWritesWhatWasChanged) {
    fs::path const made = at() / "a" / "b";
    TestGroup group(made);
    group.number.setValueFromString(L"5");
    EXPECT_TRUE(group.saved().ok());
    EXPECT_FALSE(group.number.dirty());
    EXPECT_EQ(contentOf(made / "GlobalOptions.xml"), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                                     "<Options>\n"
                                                     "  <OptionGroup Id=\"TestGroup\">\n"
                                                     "    <Option Id=\"NumberId\" Value=\"5\"/>\n"
                                                     "  </OptionGroup>\n"
                                                     "</Options>\n");
    TestGroup other(made);
    EXPECT_TRUE(other.loaded().ok());
    EXPECT_EQ(other.number.value(), 5);
    EXPECT_EQ(other.number.savedValue(), 5);
    EXPECT_TRUE(other.flag.value());
}

TEST_F(OptionGroupTests, NothingChangedNothingWritten) {
    TestGroup group(at());
    EXPECT_TRUE(group.saved().ok());
    EXPECT_FALSE(fs::exists(file()));
    given(optionElement("NumberId", "5"));
    std::string const before = contentOf(file());
    auto const time = fs::last_write_time(file());
    EXPECT_TRUE(group.saved().ok());
    EXPECT_EQ(contentOf(file()), before);
    EXPECT_EQ(fs::last_write_time(file()), time);
}

TEST_F(OptionGroupTests, TheOwnFileGoesBeforeTheServersAndThatBeforeTheDefault) {
    write(at() / "ServerOptions.xml",
          fileWith(optionElement("NumberId", "7") + optionElement("RealId", "0.5")));
    given(optionElement("NumberId", "5"));
    TestGroup group(at());
    EXPECT_TRUE(group.loaded().ok());
    EXPECT_EQ(group.number.value(), 5);
    EXPECT_EQ(group.real.value(), 0.5);
    EXPECT_FALSE(group.real.dirty());
    EXPECT_TRUE(group.flag.value());
    // Saving writes the own file only, and there only what was changed.
    group.flag.setValueFromString(L"OFF");
    EXPECT_TRUE(group.saved().ok());
    EXPECT_TRUE(has("\"FlagId\" Value=\"0\""));
    EXPECT_FALSE(has("RealId"));
    // Reset goes to the default, not to the server's value.
    Status status;
    group.reset(status);
    EXPECT_TRUE(status.ok());
    EXPECT_EQ(group.real.value(), 9999.9999);
    EXPECT_TRUE(group.saved().ok());
    EXPECT_TRUE(has("\"RealId\" Value=\"9999.9999\""));
    TestGroup other(at());
    EXPECT_TRUE(other.loaded().ok());
    EXPECT_EQ(other.real.value(), 9999.9999);
}

TEST_F(OptionGroupTests, LoadingForgetsWhatWasNotSaved) {
    given(optionElement("NumberId", "5"));
    TestGroup group(at());
    group.number.setValueFromString(L"8");
    group.real.setValueFromString(L"1");
    group.told.clear();
    EXPECT_TRUE(group.loaded().ok());
    EXPECT_EQ(group.number.value(), 5);
    EXPECT_EQ(group.real.value(), 9999.9999);
    EXPECT_FALSE(group.real.dirty());
    EXPECT_EQ(group.told, Told{});
}

TEST_F(OptionGroupTests, ASaveKeepsAllElse) {
    std::string const text =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!-- mine -->\n"
        "<Options version=\"7\">\n"
        "  <OptionGroup Id=\"Other\">\n"
        "    <Option Id=\"NumberId\" Value=\"1\"/>\n"
        "  </OptionGroup>\n"
        "  <OptionGroup Id=\"TestGroup\" more=\"x\">\n"
        "    <!-- keep --><Option Id=\"Unknown\" Value=\"?\"><deep/></Option>\n"
        "    <Option Value=\"4\" Id=\"NumberId\" note=\"n\"/>\n"
        "    <Option Id=\"RealId\" Value=\"oops\"/>\n"
        "    <Something/>\n"
        "  </OptionGroup>\n"
        "</Options>\n"
        "<!-- end -->\n";
    write(file(), text);
    TestGroup group(at());
    EXPECT_EQ(group.loaded().subject(), "RealId");
    EXPECT_EQ(group.number.value(), 4);
    group.number.setValueFromString(L"6");
    EXPECT_TRUE(group.saved().ok());
    std::string expected = text;
    expected.replace(expected.find("Value=\"4\""), 9, "Value=\"6\"");
    EXPECT_EQ(contentOf(file()), expected);
    // A new option comes to the end of its group.
    group.flag.setValueFromString(L"OFF");
    EXPECT_TRUE(group.saved().ok());
    expected.insert(expected.find("  </OptionGroup>\n</Options>"),
                    "    <Option Id=\"FlagId\" Value=\"0\"/>\n");
    EXPECT_EQ(contentOf(file()), expected);
}

TEST_F(OptionGroupTests, ASaveFollowsWhatOthersHaveWritten) {
    TestGroup one(at());
    TestGroup two(at());
    one.number.setValueFromString(L"5");
    EXPECT_TRUE(one.saved().ok());
    two.flag.setValueFromString(L"OFF");
    two.told.clear();
    EXPECT_TRUE(two.saved().ok());
    EXPECT_EQ(two.number.value(), 5);
    EXPECT_FALSE(two.number.dirty());
    EXPECT_EQ(two.told, Told{});
    EXPECT_EQ(two.loads, 1) << "the group hears of it as of a load";
    EXPECT_TRUE(one.loaded().ok());
    EXPECT_FALSE(one.flag.value());
    // What both changed is as the last wrote it.
    one.number.setValueFromString(L"6");
    two.number.setValueFromString(L"7");
    EXPECT_TRUE(one.saved().ok());
    EXPECT_TRUE(two.saved().ok());
    EXPECT_TRUE(one.saved().ok());
    EXPECT_EQ(one.number.value(), 7);
}

TEST_F(OptionGroupTests, AnOptionThatCannotBeReadKeepsWhatItHadAndIsNamed) {
    given(optionElement("FlagId", "ON") + optionElement("NumberId", "5.0") +
          optionElement("RealId", "0,25"));
    TestGroup group(at());
    group.number.setValueFromString(L"8");
    Status const status = group.loaded();
    EXPECT_EQ(status.code(), StatusCorrupt);
    EXPECT_EQ(status.subject(), "FlagId, NumberId");
    EXPECT_EQ(group.loadStatus().subject(), "FlagId, NumberId");
    EXPECT_TRUE(group.flag.value());
    EXPECT_EQ(group.number.value(), 8);
    EXPECT_EQ(group.real.value(), 0.25) << "the others are read";
}

TEST_F(OptionGroupTests, AnOptionThatCannotBeReadIsReplacedOnceItIsSet) {
    given(optionElement("NumberId", "three"));
    TestGroup group(at());
    EXPECT_FALSE(group.loaded().ok());
    group.flag.setValueFromString(L"OFF");
    EXPECT_TRUE(group.saved().ok());
    EXPECT_TRUE(has("\"three\"")) << "a save of another leaves it";
    EXPECT_FALSE(group.loadStatus().ok());
    group.number.setValueFromString(L"3"); // no change of the value
    EXPECT_FALSE(group.number.dirty());
    EXPECT_TRUE(group.number.needsSaving());
    EXPECT_TRUE(group.saved().ok());
    EXPECT_TRUE(has("\"NumberId\" Value=\"3\""));
    EXPECT_TRUE(group.loadStatus().ok());
    EXPECT_FALSE(group.number.needsSaving());
}

TEST_F(OptionGroupTests, OfAGroupThatIsThereTwiceTheFirstOptionCounts) {
    write(file(), "<Options><OptionGroup Id='TestGroup'>" + optionElement("NumberId", "5") +
                      optionElement("NumberId", "6") +
                      "</OptionGroup><OptionGroup Id='TestGroup'>" +
                      optionElement("NumberId", "7") + optionElement("FlagId", "0") +
                      "</OptionGroup></Options>");
    TestGroup group(at());
    EXPECT_TRUE(group.loaded().ok());
    EXPECT_EQ(group.number.value(), 5);
    EXPECT_FALSE(group.flag.value());
    group.number.setValueFromString(L"8");
    group.flag.setValueFromString(L"ON");
    EXPECT_TRUE(group.saved().ok());
    TestGroup other(at());
    EXPECT_TRUE(other.loaded().ok());
    EXPECT_EQ(other.number.value(), 8);
    EXPECT_TRUE(other.flag.value());
    EXPECT_TRUE(has("\"NumberId\" Value=\"6\"")) << "the others stay";
    EXPECT_TRUE(has("\"NumberId\" Value=\"7\""));
}

TEST_F(OptionGroupTests, Utf16IsReadAndUtf8IsWritten) {
    std::string bytes = "\xFF\xFE";
    for (char const c : "<Options><OptionGroup Id='TestGroup'>" + optionElement("NumberId", "5") +
                            "</OptionGroup></Options>") {
        bytes += c;
        bytes += '\0';
    }
    write(file(), bytes);
    TestGroup group(at());
    EXPECT_TRUE(group.loaded().ok());
    EXPECT_EQ(group.number.value(), 5);
    group.flag.setValueFromString(L"OFF");
    EXPECT_TRUE(group.saved().ok());
    EXPECT_TRUE(has("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
    EXPECT_TRUE(has("\"NumberId\" Value=\"5\""));
}

TEST_F(OptionGroupTests, ADamagedFileGivesDefaultsAndIsKeptByTheFirstSave) {
    write(file(), "<Options><Opt");
    TestGroup group(at());
    Status const status = group.loaded();
    EXPECT_EQ(status.code(), StatusCorrupt);
    EXPECT_EQ(group.loadStatus().code(), StatusCorrupt);
    EXPECT_EQ(group.number.value(), 3);
    EXPECT_EQ(contentOf(file()), "<Options><Opt") << "loading touches nothing";
    EXPECT_EQ(files(), 1);
    group.number.setValueFromString(L"5");
    EXPECT_TRUE(group.saved().ok());
    EXPECT_TRUE(group.loadStatus().ok());
    EXPECT_EQ(contentOf(at() / "GlobalOptions.xml.damaged"), "<Options><Opt");
    EXPECT_TRUE(has("\"NumberId\" Value=\"5\""));
    // The next ones stand beside it.
    for (int i = 2; i < 4; ++i) {
        write(file(), "damage " + std::to_string(i));
        EXPECT_TRUE(group.saved().ok()) << "with nothing changed, too";
        EXPECT_EQ(contentOf(at() / ("GlobalOptions.xml.damaged." + std::to_string(i))),
                  "damage " + std::to_string(i));
        EXPECT_TRUE(group.loaded().ok());
    }
}

TEST_F(OptionGroupTests, AnotherDocumentIsDamage) {
    write(file(), "<html/>");
    TestGroup group(at());
    EXPECT_EQ(group.loaded().code(), StatusCorrupt);
    EXPECT_TRUE(group.saved().ok());
    EXPECT_EQ(contentOf(at() / "GlobalOptions.xml.damaged"), "<html/>");
}

TEST_F(OptionGroupTests, AServerFileThatIsDamagedIsToldAndLeftAlone) {
    write(at() / "ServerOptions.xml", "<");
    given(optionElement("NumberId", "5"));
    TestGroup group(at());
    EXPECT_EQ(group.loaded().code(), StatusCorrupt);
    EXPECT_EQ(group.loadStatus().code(), StatusCorrupt);
    EXPECT_EQ(group.number.value(), 5);
    group.number.setValueFromString(L"6");
    EXPECT_TRUE(group.saved().ok());
    EXPECT_EQ(contentOf(at() / "ServerOptions.xml"), "<");
}

TEST_F(OptionGroupTests, AFileThatCannotBeOpenedIsNotDamage) {
    fs::create_directory(file());
    TestGroup group(at());
    EXPECT_EQ(group.loaded().code(), StatusInvalidArgument);
    group.number.setValueFromString(L"5");
    EXPECT_EQ(group.saved().code(), StatusInvalidArgument);
    EXPECT_TRUE(group.number.dirty());
    EXPECT_TRUE(fs::is_directory(file()));
    EXPECT_FALSE(fs::exists(at() / "GlobalOptions.xml.damaged"));
}

TEST_F(OptionGroupTests, AReadOnlyFileStaysAsItIs) {
    given(optionElement("NumberId", "5"));
    std::string const before = contentOf(file());
    fs::permissions(file(), fs::perms::owner_read);
    TestGroup group(at());
    EXPECT_TRUE(group.loaded().ok());
    group.number.setValueFromString(L"6");
    EXPECT_EQ(group.saved().code(), StatusAccessDenied);
    EXPECT_TRUE(group.number.dirty());
    EXPECT_EQ(contentOf(file()), before);
    fs::permissions(file(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_TRUE(group.saved().ok());
    EXPECT_FALSE(group.number.dirty());
}

#ifndef _WIN32 // links of POSIX

TEST_F(OptionGroupTests, ALinkStaysOne) {
    fs::create_directory(at() / "elsewhere");
    fs::path const target = at() / "elsewhere" / "mine.xml";
    fs::create_symlink("elsewhere/mine.xml", file());
    TestGroup group(at());
    EXPECT_TRUE(group.loaded().ok()) << "what it leads to needn't be there";
    for (wchar_t const * const value : {L"5", L"6"}) {
        group.number.setValueFromString(value);
        EXPECT_TRUE(group.saved().ok());
        EXPECT_TRUE(fs::is_symlink(file()));
        EXPECT_NE(contentOf(target).find("NumberId"), std::string::npos);
    }
    TestGroup other(at());
    EXPECT_TRUE(other.loaded().ok());
    EXPECT_EQ(other.number.value(), 6);
}

#endif

TEST_F(OptionGroupTests, AGroupWithoutAFileIsNotKept) {
    OptionGroup group("Plain", L"Plain");
    Option<int> number("NumberId", L"", L"", &group, 3);
    number.setValueFromString(L"4");
    Status status;
    group.save(status);
    EXPECT_EQ(status.code(), StatusNotFound);
    EXPECT_EQ(number.value(), 4);
    group.load(status);
    EXPECT_TRUE(status.ok());
    EXPECT_EQ(number.value(), 3);
    EXPECT_EQ(group.toolTip(), L"");
    EXPECT_EQ(group.userName(), L"Plain");
}

TEST_F(OptionGroupTests, OptionsMayBeMadeWhenTheyAreNeeded) {
    class LateGroup : public TestGroup {
    public:
        using TestGroup::TestGroup;
        void createOptionsIfNeeded() override {
            if (!m_pLate) m_pLate = std::make_unique<Option<int>>("LateId", L"", L"", this, 1);
        }
        std::unique_ptr<Option<int>> m_pLate;
    };
    given(optionElement("LateId", "9"));
    LateGroup group(at());
    EXPECT_TRUE(group.loaded().ok());
    EXPECT_EQ(group.m_pLate->value(), 9);
}

} // namespace

} // namespace Vn
