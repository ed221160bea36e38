#include "Platform/Base/StringTable.h"

#include <clocale>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <locale>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Vn::StringTable;

std::wstring text(std::string_view key, std::wstring_view defaultText) {
    return StringTable::getLocalizedString("VnBaseTests", key, defaultText);
}

// A compiled catalogue, written by hand: a header and one text.
std::string catalogue(std::string const & header) {
    std::string const message("lengthName\4Length");
    std::string const texts[] = {"", message, header, "Long"};
    std::string rows;
    std::string bodies;
    auto const put = [](std::string & to, std::size_t number) {
        auto const value = static_cast<std::uint32_t>(number);
        to.append(reinterpret_cast<char const *>(&value), sizeof value);
    };
    for (std::string const & body : texts) {
        put(rows, body.size());
        put(rows, 28 + 32 + bodies.size());
        bodies += body + '\0';
    }
    std::string file;
    for (std::size_t const number : {0x950412DEU, 0U, 2U, 28U, 44U, 0U, 60U})
        put(file, number);
    return file + rows + bodies;
}

class StringTableTests : public testing::Test {
protected:
    static void SetUpTestSuite() { StringTable::catalogueDirectory(VN_TEST_CATALOGUES); }
    ~StringTableTests() override { StringTable::language(""); }
};

TEST_F(StringTableTests, EnglishIsTheDefaultText) {
    EXPECT_EQ(StringTable::language(), "");
    EXPECT_EQ(text("lengthName", L"Length"), L"Length");
}

TEST_F(StringTableTests, TranslatesByKeyAndText) {
    StringTable::language("de");
    EXPECT_EQ(text("lengthName", L"Length"), L"L\u00E4nge");
    EXPECT_EQ(text("durationName", L"Length"), L"Dauer");
    EXPECT_EQ(text("degreeSign", L"20 \u00B0C"), L"20 Grad Celsius");
}

TEST_F(StringTableTests, WhatIsMissingKeepsTheDefaultText) {
    StringTable::language("de");
    EXPECT_EQ(text("untranslated", L"Width"), L"Width");
    EXPECT_EQ(text("noSuchKey", L"Length"), L"Length");
    EXPECT_EQ(text("lengthName", L"Another wording \U0001D11E"), L"Another wording \U0001D11E");
    EXPECT_EQ(text("lengthName", L""), L"");
    EXPECT_EQ(StringTable::getLocalizedString("NoSuchModule", "lengthName", L"Length"), L"Length");
    EXPECT_EQ(StringTable::getLocalizedString("", "lengthName", L"Length"), L"Length");
    EXPECT_EQ(StringTable::getLocalizedString("../VnBaseTests", "lengthName", L"Length"),
              L"Length");
}

TEST_F(StringTableTests, LanguageTags) {
    struct Row {
        char const * tag;
        char const * language;
        wchar_t const * translated;
    };
    Row const rows[] = {
        {"de", "de", L"L\u00E4nge"},
        {"de_DE", "de_DE", L"L\u00E4nge"},
        {"de-AT", "de_AT", L"L\u00E4nge"},
        {"de_CH.UTF-8", "de_CH", L"L\u00E4nge"},
        {"fr", "fr", L"Length"},
        {"", "", L"Length"},
        {"C", "", L"Length"},
        {"C.UTF-8", "", L"Length"},
        {"POSIX", "", L"Length"},
        {"../de", "", L"Length"},
        {"de\xFF", "", L"Length"},
    };
    for (Row const & row : rows) {
        StringTable::language(row.tag);
        EXPECT_EQ(StringTable::language(), row.language) << row.tag;
        EXPECT_EQ(text("lengthName", L"Length"), row.translated) << row.tag;
    }
}

TEST_F(StringTableTests, GlobalLocalesStayAsTheyAre) {
    std::string const c = std::setlocale(LC_ALL, nullptr);
    std::locale const cpp;
    StringTable::language("de");
    text("lengthName", L"Length");
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), c);
    EXPECT_EQ(std::locale(), cpp);
    EXPECT_EQ(std::locale().name(), "C");
}

TEST_F(StringTableTests, DamagedCatalogueHoldsNoTranslations) {
    auto const directory = std::filesystem::path(testing::TempDir()) / "VnBaseTestsDamaged";
    auto const messages = directory / "xx" / "LC_MESSAGES";
    std::filesystem::create_directories(messages);
    std::string whole;
    {
        std::ifstream file(std::filesystem::path(VN_TEST_CATALOGUES) / "de" / "LC_MESSAGES" /
                               "VnBaseTests.mo",
                           std::ios::binary);
        whole.assign(std::istreambuf_iterator<char>(file), {});
    }
    ASSERT_GT(whole.size(), 100U);
    StringTable::catalogueDirectory(directory.string());
    for (std::size_t length = 0; length < whole.size(); length += 7) {
        std::ofstream(messages / "VnBaseTests.mo", std::ios::binary) << whole.substr(0, length);
        StringTable::language("xx");
        EXPECT_EQ(text("lengthName", L"Length"), L"Length") << length;
    }
    // Every byte wrong in turn: whatever the catalogue then says, it is read without harm.
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string damaged = whole;
        damaged[i] = static_cast<char>(~damaged[i]);
        std::ofstream(messages / "VnBaseTests.mo", std::ios::binary) << damaged;
        StringTable::language("xx");
        text("lengthName", L"Length");
    }
    std::filesystem::remove_all(directory);
}

// The rule for plurals is an expression that is read recursively.
TEST_F(StringTableTests, EndlessPluralRuleIsRefused) {
    auto const directory = std::filesystem::path(testing::TempDir()) / "VnBaseTestsPlural";
    auto const messages = directory / "yy" / "LC_MESSAGES";
    std::filesystem::create_directories(messages);
    StringTable::catalogueDirectory(directory.string());
    std::string const type = "Content-Type: text/plain; charset=UTF-8\n";
    struct Row {
        std::string rule;
        wchar_t const * expected;
    };
    Row const rows[] = {
        {"n != 1;\n", L"Long"},
        {"n != 1", L"Long"},
        {std::string(1'000'000, '(') + ";\n", L"Length"},
        {std::string(1'000'000, '!'), L"Length"},
    };
    for (Row const & row : rows) {
        std::ofstream(messages / "VnBaseTests.mo", std::ios::binary)
            << catalogue(type + "Plural-Forms: nplurals=2; plural=" + row.rule);
        StringTable::language("yy");
        EXPECT_EQ(text("lengthName", L"Length"), row.expected);
    }
    std::filesystem::remove_all(directory);
}

TEST_F(StringTableTests, ThreadsTranslateTogether) {
    StringTable::language("de");
    std::vector<std::jthread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 500; ++i) {
                ASSERT_EQ(text("lengthName", L"Length"), L"L\u00E4nge");
                ASSERT_EQ(text("noSuchKey", L"Length"), L"Length");
            }
        });
}

} // namespace
