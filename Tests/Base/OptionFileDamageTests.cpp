// Option files that nobody would write: none of them does harm.

#include <string>

#include <gtest/gtest.h>

#include "Tests/Base/TestOptions.h"
#include "Tests/Support/SmallStack.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn {

namespace {

namespace fs = std::filesystem;
using namespace Testing;

class OptionFileDamageTests : public testing::Test {
protected:
    fs::path file() const { return m_directory.path() / "GlobalOptions.xml"; }
    fs::path kept() const { return m_directory.path() / "GlobalOptions.xml.damaged"; }

    // Loads a file, then saves a change of one option.
    void loadAndSave(std::string const & bytes, EStatus expected) const {
        fs::remove(kept());
        write(file(), bytes);
        TestGroup group(m_directory.path());
        EXPECT_EQ(group.loaded().code(), expected);
        ASSERT_EQ(contentOf(file()), bytes) << "loading touches nothing";
        group.real.setValueFromString(L"0.5");
        Status const saved = group.saved();
        ASSERT_TRUE(saved.ok()) << saved.toString();
        bool const isDamage = expected == StatusCorrupt && group.number.value() == 3;
        EXPECT_EQ(fs::exists(kept()), isDamage);
        if (isDamage) {
            EXPECT_EQ(contentOf(kept()), bytes);
        }
        TestGroup again(m_directory.path());
        EXPECT_TRUE(again.loaded().ok());
        EXPECT_EQ(again.real.value(), 0.5);
    }

    TemporaryDirectory const m_directory;
};

TEST_F(OptionFileDamageTests, AFileCutAtAnyByteIsDamageUntilItIsWhole) {
    std::string const text = fileWith("\n    " + optionElement("NumberId", "5") + "\n  ");
    std::size_t const whole = text.rfind('>') + 1;
    for (std::size_t size = 0; size <= text.size(); ++size) {
        SCOPED_TRACE(size);
        fs::remove(kept());
        write(file(), text.substr(0, size));
        TestGroup group(m_directory.path());
        EXPECT_EQ(group.loaded().code(), size < whole ? StatusCorrupt : StatusOk);
        EXPECT_EQ(group.number.value(), size < whole ? 3 : 5);
        group.flag.setValueFromString(L"OFF");
        ASSERT_TRUE(group.saved().ok());
        EXPECT_EQ(fs::exists(kept()), size < whole);
        TestGroup again(m_directory.path());
        EXPECT_TRUE(again.loaded().ok());
        EXPECT_FALSE(again.flag.value());
    }
}

TEST_F(OptionFileDamageTests, AFileOfAHundredMegabytesIsRefusedAndStays) {
    write(file(), fileWith(optionElement("NumberId", "5")));
    fs::resize_file(file(), 100 << 20);
    TestGroup group(m_directory.path());
    EXPECT_EQ(group.loaded().code(), StatusUnsupported);
    EXPECT_EQ(group.number.value(), 3);
    group.number.setValueFromString(L"6");
    EXPECT_EQ(group.saved().code(), StatusUnsupported);
    EXPECT_TRUE(group.number.dirty());
    EXPECT_EQ(fs::file_size(file()), 100U << 20);
    EXPECT_FALSE(fs::exists(kept()));
}

TEST_F(OptionFileDamageTests, SixteenMegabytesAreReadAndNotExceeded) {
    std::string const head = "<Options><!--";
    std::string const tail = "--></Options>";
    constexpr std::size_t c_limit = std::size_t{16} << 20;
    // One text may have 10 MB, so two share the place.
    std::string const middle = "--><!--";
    std::size_t const half = (c_limit - head.size() - middle.size() - tail.size()) / 2;
    std::string text = head + std::string(half, 'x') + middle;
    text += std::string(c_limit - text.size() - tail.size(), 'y') + tail;
    ASSERT_EQ(text.size(), c_limit);
    write(file(), text);
    TestGroup group(m_directory.path());
    EXPECT_TRUE(group.loaded().ok());
    group.number.setValueFromString(L"6");
    EXPECT_EQ(group.saved().code(), StatusUnsupported) << "it would be too long to be read";
    EXPECT_EQ(fs::file_size(file()), c_limit);
    write(file(), text + ' ');
    EXPECT_EQ(group.loaded().code(), StatusUnsupported);
}

TEST_F(OptionFileDamageTests, DepthCostsNoStack) {
    std::string text = "<Options>";
    for (int i = 0; i < 1000000; ++i) text += "<a>";
    onSmallStack([&] { loadAndSave(text, StatusCorrupt); });
    text = "<Options>";
    for (int i = 0; i < 200; ++i) text += "<a>";
    for (int i = 0; i < 200; ++i) text += "</a>";
    onSmallStack([&] {
        write(file(), text + "</Options>");
        TestGroup group(m_directory.path());
        EXPECT_TRUE(group.loaded().ok());
        group.number.setValueFromString(L"6");
        EXPECT_TRUE(group.saved().ok());
    });
}

TEST_F(OptionFileDamageTests, EntitiesAreNotExpanded) {
    std::string laughs = "<!DOCTYPE Options [<!ENTITY a0 'ha'>";
    for (int i = 1; i < 10; ++i) {
        laughs += "<!ENTITY a" + std::to_string(i) + " '";
        for (int j = 0; j < 10; ++j) laughs += "&a" + std::to_string(i - 1) + ";";
        laughs += "'>";
    }
    loadAndSave(laughs + "]>" + fileWith("&a9;").substr(39), StatusCorrupt);
    loadAndSave(laughs + "]><Options><OptionGroup Id='&a9;'/></Options>", StatusCorrupt);
    // Nor is another file read.
    fs::path const secret = m_directory.path() / "secret";
    write(secret, "7");
    loadAndSave("<!DOCTYPE Options [<!ENTITY x SYSTEM '" + utf8(secret) +
                    "'>]><Options>"
                    "<OptionGroup Id='TestGroup'><Option Id='NumberId' Value='&x;'/></OptionGroup>"
                    "</Options>",
                StatusCorrupt);
}

TEST_F(OptionFileDamageTests, ATextOfTenMegabytes) {
    std::string const digits(10 << 20, '1');
    loadAndSave(fileWith(optionElement("NumberId", digits)), StatusCorrupt);
    // One that the parser takes isn't a number.
    std::string const fewer(4000000, '1');
    write(file(), fileWith(optionElement("NumberId", fewer) + optionElement("RealId", fewer)));
    TestGroup group(m_directory.path());
    Status const status = group.loaded();
    EXPECT_EQ(status.subject(), "NumberId, RealId");
    EXPECT_LT(status.cause().size(), 200U);
    EXPECT_EQ(group.number.value(), 3);
}

TEST_F(OptionFileDamageTests, BytesOfAnyKind) {
    for (std::string const & bytes :
         {std::string(), std::string("\0", 1), std::string(1000, '\0'), std::string("\xFF\xFE"),
          std::string("\xEF\xBB\xBF"), std::string("PK\3\4"), std::string(1000, '<'),
          std::string("<Options>\xC3</Options>"), std::string("<Options a='&#0;'/>"),
          std::string("<Options>&#x1;</Options>"), std::string("<?xml version='9'?>"),
          std::string("<a:Options/>") + '\1'})
        loadAndSave(bytes, StatusCorrupt);
}

TEST_F(OptionFileDamageTests, ManyOptionsOfThisGroup) {
    std::string options;
    for (int i = 0; i < 100000; ++i) options += optionElement("Unknown" + std::to_string(i), "1");
    for (int i = 0; i < 100000; ++i) options += optionElement("NumberId", "5");
    write(file(), fileWith(options));
    TestGroup group(m_directory.path());
    EXPECT_TRUE(group.loaded().ok());
    EXPECT_EQ(group.number.value(), 5);
    group.flag.setValueFromString(L"OFF");
    EXPECT_TRUE(group.saved().ok());
    std::string const content = contentOf(file());
    EXPECT_NE(content.find("\"Unknown99999\""), std::string::npos);
}

TEST_F(OptionFileDamageTests, AThousandDamagedCopiesAreEnough) {
    write(file(), "damage");
    for (int i = 1; i <= 1000; ++i)
        write(kept().string() + (i == 1 ? std::string() : '.' + std::to_string(i)), "");
    TestGroup group(m_directory.path());
    group.flag.setValueFromString(L"OFF");
    EXPECT_EQ(group.saved().code(), StatusAlreadyExists);
    EXPECT_EQ(contentOf(file()), "damage");
}

} // namespace

} // namespace Vn
