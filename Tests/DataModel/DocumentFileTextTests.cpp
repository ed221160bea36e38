// How texts and JSON are written into documents, and read again.

#include "Platform/DataModel/File/Text.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <type_traits>

#include <gtest/gtest.h>

namespace Vn::Testing {

namespace {

using namespace DataModel;

struct Row {
    std::wstring text;
    std::string stored;
    bool isText;
};

wchar_t unit(std::uint32_t value) { return static_cast<wchar_t>(value); }

std::vector<Row> rows() {
    return {
        {L"", "", true}, {L"plain \x7F\t", "plain \x7F\t", true},
            {L"\u00E4\u07FF\u0800\uFFFF", "\xC3\xA4\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF", true},
            {L"\U0001F600\U0010FFFF", "\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF", true},
            {std::wstring(L"a\0b", 3), std::string("a\0b", 3), false},
            {{unit(0xD800)}, "\xED\xA0\x80", false},
            {{L'a', unit(0xDFFF), L'b'},
             "a\xED\xBF\xBF"
             "b",
             false},
#if WCHAR_MAX > 0xFFFF
            {{unit(0xD83D), unit(0xDE00)}, "\xED\xA0\xBD\xED\xB8\x80", false},
            {{unit(0x110000)}, "\xF4\x90\x80\x80", false},
            {{unit(0x1FFFFF)}, "\xF7\xBF\xBF\xBF", false},
            {{unit(0x200000)}, "\xF8\x88\x80\x80\x80", false},
            {{unit(0x3FFFFFF)}, "\xFB\xBF\xBF\xBF\xBF", false},
            {{unit(0x4000000)}, "\xFC\x84\x80\x80\x80\x80", false},
            {{unit(0x7FFFFFFF)}, "\xFD\xBF\xBF\xBF\xBF\xBF", false},
            {{unit(0x80000000U)}, "\xFE\x82\x80\x80\x80\x80\x80", false},
            {{unit(0xFFFFFFFFU)}, "\xFE\x83\xBF\xBF\xBF\xBF\xBF", false},
#endif
    };
}

} // namespace

TEST(DocumentFileTextTests, WideTextsAreStoredAsTheirBytesAndReadBack) {
    for (Row const & row : rows()) {
        std::string stored;
        EXPECT_EQ(encodeText(row.text, stored), row.isText);
        EXPECT_EQ(stored, row.stored);
        std::wstring text;
        EXPECT_TRUE(row.isText ? decodeText(stored, text) : decodeBytes(stored, text));
        EXPECT_EQ(text, row.text);
        EXPECT_EQ(isText(stored), row.isText);
    }
}

TEST(DocumentFileTextTests, EveryCharacterComesBack) {
    std::string stored;
    std::wstring text;
    for (std::uint32_t value = 0; value < 0x112000; value += value < 0x11000 ? 1 : 61) {
        if (sizeof(wchar_t) == 2 && value > 0xFFFF) break;
        std::wstring const one(1, unit(value));
        bool const good = encodeText(one, stored);
        EXPECT_EQ(good, value != 0 && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF));
        EXPECT_TRUE(good ? decodeText(stored, text) : decodeBytes(stored, text));
        EXPECT_EQ(text, one);
    }
}

TEST(DocumentFileTextTests, WhatIsntWellFormedIsRefused) {
    std::wstring text;
    for (char const * const bytes :
         {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3\x28", "\xE0\x80\x80",
          "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x80\x80\x80", "\xF4\x90\x80\x80",
          "\xF8\x88\x80\x80\x80", "\xFF", "a\xE2\x82"}) {
        EXPECT_FALSE(decodeText(bytes, text)) << bytes;
        EXPECT_FALSE(isText(bytes)) << bytes;
    }
    for (char const * const bytes :
         {"\x80", "\xC0\x80", "\xC3", "\xE0\x80\x80", "\xF8\x80\x80\x80\x80",
          "\xFC\x80\x80\x80\x80\x80", "\xFE\x80\x80\x80\x80\x80\x80",
          "\xFE\x84\x80\x80\x80\x80\x80", "\xFE\x83\xBF", "\xFF"})
        EXPECT_FALSE(decodeBytes(bytes, text)) << bytes;
}

TEST(DocumentFileTextTests, RealsComeBackToTheBit) {
    std::mt19937_64 random(1);
    std::string json;
    for (int i = 0; i < 20'000; ++i) {
        auto const value = std::bit_cast<double>(random());
        auto const narrow = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        json.clear();
        appendJson(json, value);
        json += ' ';
        appendJson(json, narrow);
        JsonReader reader(json);
        double valueBack = 0;
        float narrowBack = 0;
        ASSERT_TRUE(reader.readReal(valueBack) && reader.skip(' ') && reader.readReal(narrowBack))
            << json;
        EXPECT_TRUE(reader.atEnd());
        if (std::isnan(value)) {
            EXPECT_TRUE(std::isnan(valueBack));
        } else {
            EXPECT_EQ(std::bit_cast<std::uint64_t>(valueBack), std::bit_cast<std::uint64_t>(value));
        }
        if (std::isnan(narrow)) {
            EXPECT_TRUE(std::isnan(narrowBack));
        } else {
            EXPECT_EQ(std::bit_cast<std::uint32_t>(narrowBack),
                      std::bit_cast<std::uint32_t>(narrow));
        }
    }
}

TEST(DocumentFileTextTests, RealsLookLikeReals) {
    struct {
        double m_value;
        char const * m_json;
    } const rows[] = {{0.0, "0.0"},
                      {-0.0, "-0.0"},
                      {1.0, "1.0"},
                      {0.1, "0.1"},
                      {1e22, "1e+22"},
                      {std::numeric_limits<double>::infinity(), "1e999"},
                      {-std::numeric_limits<double>::infinity(), "-1e999"},
                      {std::numeric_limits<double>::quiet_NaN(), "null"}};
    for (auto const & row : rows) {
        std::string json;
        appendJson(json, row.m_value);
        EXPECT_EQ(json, row.m_json);
    }
}

TEST(DocumentFileTextTests, TextsOfEitherFormComeBackFromJson) {
    for (std::string const & stored : {std::string(), std::string("a \"b\" \\ \x01\x1F\x7F/"),
                                       std::string("\xC3\xA4"), std::string("\xFF\0\x80", 3)}) {
        std::string json;
        appendJsonText(json, stored, isText(stored));
        JsonReader reader(json);
        std::string back;
        bool wasText = false;
        EXPECT_TRUE(reader.readText(back, wasText) && reader.atEnd()) << json;
        EXPECT_EQ(back, stored);
        EXPECT_EQ(wasText, isText(stored));
    }
}

TEST(DocumentFileTextTests, EscapesOfOtherProgramsAreRead) {
    std::string text;
    EXPECT_TRUE(JsonReader(R"("\"\\\/\b\f\n\r\t\u00e4\u00E4\ud83d\ude00")").readString(text));
    EXPECT_EQ(text, "\"\\/\b\f\n\r\t\xC3\xA4\xC3\xA4\xF0\x9F\x98\x80");
    for (char const * const json :
         {"", "a", "\"", "\"\\", "\"\\x\"", "\"\\u12\"", "\"\\u123g\"", "\"\\ud800\"",
          "\"\\ud800\\u0041\"", "\"\\udc00\"", "\"\n\"", "\"\xFF\""})
        EXPECT_FALSE(JsonReader(json).readString(text)) << json;
}

TEST(DocumentFileTextTests, WhatIsNoNumberIsRefused) {
    double real = 0;
    long long whole = 0;
    for (char const * const json : {"", "-", "+1", ".5", "inf", "nan", "-inf", "1e400", "x", "--1"})
        EXPECT_FALSE(JsonReader(json).readReal(real)) << json;
    for (char const * const json : {"", "-", "+1", "9223372036854775808", "x", "null"})
        EXPECT_FALSE(JsonReader(json).readInteger(whole)) << json;
}

} // namespace Vn::Testing
