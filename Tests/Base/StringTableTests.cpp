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
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Vn::StringTable;

std::wstring text(std::string_view key, std::wstring_view defaultText) {
    return StringTable::getLocalizedString("VnBaseTests", key, defaultText);
}

// A compiled catalogue, written by hand.  The messages must be in order.
using Entries = std::vector<std::pair<std::string, std::string>>;

std::string compiled(Entries const & entries, bool swapped = false, std::uint32_t version = 0) {
    auto const put = [&](std::string & to, std::size_t number) {
        for (unsigned i = 0; i < 4; ++i) {
            unsigned const byte = swapped ? 3 - i : i;
            to += static_cast<char>(number >> (8 * byte) & 0xFF);
        }
    };
    constexpr std::size_t c_header = 28;
    std::size_t const table = 8 * entries.size();
    std::string messages;
    std::string translations;
    std::string bodies;
    auto const add = [&](std::string & rows, std::string const & body) {
        put(rows, body.size());
        put(rows, c_header + 2 * table + bodies.size());
        bodies += body + '\0';
    };
    for (auto const & [message, translation] : entries) {
        add(messages, message);
        add(translations, translation);
    }
    std::string file;
    for (std::size_t const number :
         {std::size_t{0x950412DE}, std::size_t{version}, entries.size(), c_header, c_header + table,
          std::size_t{0}, c_header + 2 * table})
        put(file, number);
    return file + messages + translations + bodies;
}

std::string const c_utf8 = "Content-Type: text/plain; charset=UTF-8\n";

// Catalogues of the language "xx" in a directory of their own, removed with the object.
class Directory {
public:
    explicit Directory(std::string const & name)
        : m_path(std::filesystem::path(testing::TempDir()) / name) {
        std::filesystem::remove_all(m_path);
        StringTable::catalogueDirectory(utf8(m_path));
    }
    ~Directory() { std::filesystem::remove_all(m_path); }
    Directory(Directory const &) = delete;
    Directory & operator=(Directory const &) = delete;

    void write(std::string const & language, std::string const & file) const {
        auto const messages = m_path / language / "LC_MESSAGES";
        std::filesystem::create_directories(messages);
        std::ofstream(messages / "VnBaseTests.mo", std::ios::binary) << file;
    }

    // Chooses the language after its catalogue has been written.
    void use(std::string const & file) const {
        write("xx", file);
        StringTable::language("xx");
    }

private:
    static std::string utf8(std::filesystem::path const & path) {
        std::u8string const text = path.u8string();
        return std::string(text.begin(), text.end());
    }

    std::filesystem::path const m_path;
};

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

TEST_F(StringTableTests, WithoutAKeyTheTextNamesItself) {
    StringTable::language("de");
    EXPECT_EQ(text("", L"no room"), L"kein Platz");
    EXPECT_EQ(text("roomKey", L"no room"), L"no room");
    EXPECT_EQ(text("", L"Length"), L"Length"); // which has contexts
    EXPECT_EQ(text("", L""), L"");             // and not the header of the catalogue
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
        {"DE", "de", L"L\u00E4nge"},
        {"De-at.utf8", "de_AT", L"L\u00E4nge"},
        {"DE_latn@Old", "de_latn@Old", L"L\u00E4nge"},
        {"fr", "fr", L"Length"},
        {"", "", L"Length"},
        {"C", "", L"Length"},
        {"C.UTF-8", "", L"Length"},
        {"POSIX", "", L"Length"},
        {"c", "", L"Length"},
        {"../de", "", L"Length"},
        {"de\xFF", "", L"Length"},
    };
    for (Row const & row : rows) {
        StringTable::language(row.tag);
        EXPECT_EQ(StringTable::language(), row.language) << row.tag;
        EXPECT_EQ(text("lengthName", L"Length"), row.translated) << row.tag;
    }
}

TEST_F(StringTableTests, LanguagesAreThoseWithACatalogue) {
    EXPECT_EQ(StringTable::languages("VnBaseTests"), std::vector<std::string>{"de"});
    EXPECT_EQ(StringTable::languages("NoSuchModule"), std::vector<std::string>{});
    EXPECT_EQ(StringTable::languages("../VnBaseTests"), std::vector<std::string>{});
    for (char const * const tag :
         {"de", "de_AT", "de-CH.UTF-8", "de@old", "DE", "", "C", "en", "en_US", "EN"})
        EXPECT_TRUE(StringTable::hasLanguage("VnBaseTests", tag)) << tag;
    for (char const * const tag : {"fr", "d", "deu", "../de", "de\xFF", ".UTF-8", "_AT"})
        EXPECT_FALSE(StringTable::hasLanguage("VnBaseTests", tag)) << tag;
    EXPECT_FALSE(StringTable::hasLanguage("NoSuchModule", "de"));
}

TEST_F(StringTableTests, EditionsAreToldApart) {
    unsigned const english = StringTable::edition();
    StringTable::language("de");
    unsigned const german = StringTable::edition();
    EXPECT_NE(german, english);
    StringTable::language("de_AT");
    EXPECT_NE(StringTable::edition(), german);
    StringTable::language("de.UTF-8");
    EXPECT_EQ(StringTable::edition(), german);
    StringTable::language("C");
    EXPECT_EQ(StringTable::edition(), english);
    // Texts may come from there.
    StringTable::catalogueDirectory("no-such-directory");
    EXPECT_NE(StringTable::edition(), english);
    EXPECT_NE(StringTable::edition(), german);
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
    Directory const directory("VnBaseTestsDamaged");
    std::string whole;
    {
        std::ifstream file(std::filesystem::path(VN_TEST_CATALOGUES) / "de" / "LC_MESSAGES" /
                               "VnBaseTests.mo",
                           std::ios::binary);
        whole.assign(std::istreambuf_iterator<char>(file), {});
    }
    ASSERT_GT(whole.size(), 100U);
    for (std::size_t length = 0; length < whole.size(); length += 7) {
        directory.use(whole.substr(0, length));
        EXPECT_EQ(text("lengthName", L"Length"), L"Length") << length;
    }
    // Every byte wrong in turn: whatever the catalogue then says, it is read without harm.
    for (std::size_t i = 0; i < whole.size(); ++i) {
        std::string damaged = whole;
        damaged[i] = static_cast<char>(~damaged[i]);
        directory.use(damaged);
        text("lengthName", L"Length");
    }
    directory.use(whole);
    EXPECT_EQ(text("lengthName", L"Length"), L"L\u00E4nge");
}

// Numbers that lead out of the file, or to a text without its end.
TEST_F(StringTableTests, CatalogueThatLiesAboutItselfIsRefused) {
    Directory const directory("VnBaseTestsLying");
    std::string const whole = compiled({{"", c_utf8}, {"lengthName\4Length", "Long"}});
    directory.use(whole);
    ASSERT_EQ(text("lengthName", L"Length"), L"Long");
    struct Row {
        std::size_t at; // of a number of 32 bits
        std::uint32_t number;
    };
    Row const rows[] = {
        {0, 0x950412DF}, // the magic number
        {4, 0x00020000}, // a major version that isn't known
        {8, 0},          // no messages, not even the header
        {8, 3},          // more messages than rows
        {8, 0xFFFFFFFF},
        {12, 0xFFFFFFF8},
        {12, static_cast<std::uint32_t>(whole.size())},
        {16, 0xFFFFFFF8},
        {16, static_cast<std::uint32_t>(whole.size() - 4)},
        {36, 0xFFFFFFFF}, // the length of a message
        {36, 16},         // one less than it is
        {40, 0xFFFFFFFF}, // where it starts
        {52, 0xFFFFFFFF},
        {52, 3},
        {56, 0xFFFFFFFF},
        {56, static_cast<std::uint32_t>(whole.size())},
    };
    for (Row const & row : rows) {
        std::string lying = whole;
        for (unsigned i = 0; i < 4; ++i)
            lying[row.at + i] = static_cast<char>(row.number >> (8 * i) & 0xFF);
        directory.use(lying);
        EXPECT_EQ(text("lengthName", L"Length"), L"Length") << row.at << ' ' << row.number;
    }
}

TEST_F(StringTableTests, CataloguesOfEitherByteOrderAndMinorVersion) {
    Directory const directory("VnBaseTestsOrder");
    Entries const entries{{"", c_utf8}, {"lengthName\4Length", "Long"}};
    for (bool const swapped : {false, true}) {
        for (std::uint32_t const version : {0U, 1U, 0x10000U, 0x10001U}) {
            directory.use(compiled(entries, swapped, version));
            EXPECT_EQ(text("lengthName", L"Length"), L"Long") << swapped << ' ' << version;
        }
    }
}

TEST_F(StringTableTests, EncodingMustBeUtf8) {
    Directory const directory("VnBaseTestsEncoding");
    struct Row {
        char const * header;
        wchar_t const * expected;
    };
    Row const rows[] = {
        {"Content-Type: text/plain; charset=UTF-8\n", L"Long"},
        {"Language: xx\nContent-Type: text/plain; charset=utf-8", L"Long"},
        {"Content-Type: text/plain; charset=ISO-8859-1\n", L"Length"},
        {"Content-Type: text/plain; charset=UTF-80\n", L"Length"},
        {"Content-Type: text/plain; charset=", L"Length"},
        {"", L"Length"},
    };
    for (Row const & row : rows) {
        directory.use(compiled({{"", row.header}, {"lengthName\4Length", "Long"}}));
        EXPECT_EQ(text("lengthName", L"Length"), row.expected) << row.header;
    }
    directory.use(compiled({{"lengthName\4Length", "Long"}}));
    EXPECT_EQ(text("lengthName", L"Length"), L"Length");
    // What isn't well-formed after all is as good as missing.
    directory.use(compiled({{"", c_utf8}, {"lengthName\4Length", "L\xE4nge"}}));
    EXPECT_EQ(text("lengthName", L"Length"), L"Length");
}

TEST_F(StringTableTests, EveryMessageIsFound) {
    Directory const directory("VnBaseTestsMany");
    for (std::size_t count = 1; count <= 20; ++count) {
        Entries entries{{"", c_utf8}};
        for (std::size_t i = 0; i < count; ++i) {
            std::string const letter(1, static_cast<char>('a' + 2 * static_cast<int>(i % 10)));
            entries.emplace_back(std::string(i / 10, 'z') + letter + "\4x", "found " + letter);
        }
        directory.use(compiled(entries));
        for (std::size_t i = 0; i < 2 * count; ++i) {
            std::size_t const entry = i / 2;
            std::string const letter(
                1, static_cast<char>('a' + 2 * static_cast<int>(entry % 10) + (i % 2 ? 1 : 0)));
            std::string const key = std::string(entry / 10, 'z') + letter;
            std::wstring const expected =
                i % 2 ? L"x" : L"found " + std::wstring(letter.begin(), letter.end());
            EXPECT_EQ(text(key, L"x"), expected) << key << " of " << count;
        }
    }
}

TEST_F(StringTableTests, TextsBeyondAscii) {
    Directory const directory("VnBaseTestsWide");
    directory.use(compiled({{"", c_utf8},
                            {"clef\4\xF0\x9D\x84\x9E", "\xF0\x9D\x84\x9F!"},
                            {"sign\4\xC2\xB0", "\xE2\x84\x83"}}));
    EXPECT_EQ(text("clef", L"\U0001D11E"), L"\U0001D11F!");
    EXPECT_EQ(text("sign", L"\u00B0"), L"\u2103");
}

TEST_F(StringTableTests, OfPluralFormsTheFirstIsTaken) {
    using namespace std::string_literals;
    Directory const directory("VnBaseTestsPlural");
    directory.use(compiled({{"", c_utf8 + "Plural-Forms: nplurals=2; plural=n != 1;\n"},
                            {"count\4unit\0units"s, "Einheit\0Einheiten"s}}));
    EXPECT_EQ(text("count", L"unit"), L"Einheit");
    EXPECT_EQ(text("count", L"units"), L"units");
}

TEST_F(StringTableTests, EmptyTranslationIsNone) {
    Directory const directory("VnBaseTestsEmpty");
    directory.use(compiled({{"", c_utf8}, {"lengthName\4Length", ""}}));
    EXPECT_EQ(text("lengthName", L"Length"), L"Length");
}

TEST_F(StringTableTests, NearestLanguageIsTaken) {
    Directory const directory("VnBaseTestsNearest");
    for (char const * const language : {"xx", "xx_AA", "xx@old", "xx_AA@old"})
        directory.write(language, compiled({{"", c_utf8}, {"lengthName\4Length", language}}));
    directory.write("xx_DD", "damaged");
    struct Row {
        char const * tag;
        wchar_t const * found;
    };
    Row const rows[] = {
        {"xx", L"xx"},
        {"xx_AA", L"xx_AA"},
        {"xx-AA.UTF-8", L"xx_AA"},
        {"xx_BB", L"xx"},
        {"xx@old", L"xx@old"},
        {"xx_BB@old", L"xx@old"},
        {"xx@new", L"xx"},
        {"xx_AA@old", L"xx_AA@old"},
        {"xx_AA@new", L"xx_AA"},
        {"xx_DD", L"xx"},
        {"x", L"Length"},
        {"@old", L"Length"},
        {"_AA", L"Length"},
    };
    for (Row const & row : rows) {
        StringTable::language(row.tag);
        EXPECT_EQ(text("lengthName", L"Length"), row.found) << row.tag;
    }
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
