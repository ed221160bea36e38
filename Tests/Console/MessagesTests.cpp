// What the console says, and in which language.

#include "Console/Messages.h"

#include <gtest/gtest.h>

#include "Platform/Base/StringTable.h"

namespace Vn::Console::Tests {

namespace {

class MessagesTests : public testing::Test {
protected:
    static void SetUpTestSuite() { StringTable::catalogueDirectory(VN_CATALOGUES); }
    ~MessagesTests() override { StringTable::language(""); }
};

TEST_F(MessagesTests, AMessageIsFilledWithTextsAndNumbers) {
    EXPECT_EQ(message(L"the name of the file is empty"), L"the name of the file is empty");
    EXPECT_EQ(message(L"%2% before %1%", L"a", std::wstring(L"%1%")), L"%1% before a");
    EXPECT_EQ(message(L"%1%, %2%, %3%", 0, -5, 18446744073709551615U),
              L"0, -5, 18446744073709551615");
}

TEST_F(MessagesTests, ANumberChoosesTheMessage) {
    auto const text = [](std::size_t number) {
        return counted(number, tr(L"opened %2% with %1% entity"),
                       tr(L"opened %2% with %1% entities"), L"a.vnd");
    };
    EXPECT_EQ(text(0), L"opened a.vnd with 0 entities");
    EXPECT_EQ(text(1), L"opened a.vnd with 1 entity");
    EXPECT_EQ(text(2), L"opened a.vnd with 2 entities");
    StringTable::language("de");
    EXPECT_EQ(text(1), L"a.vnd mit 1 Entit\u00E4t ge\u00F6ffnet");
    EXPECT_EQ(text(3), L"a.vnd mit 3 Entit\u00E4ten ge\u00F6ffnet");
}

TEST_F(MessagesTests, ALanguageWithoutCatalogueIsEnglish) {
    StringTable::language("eo");
    EXPECT_EQ(message(L"saved %1%", L"a.vnd"), L"saved a.vnd");
}

TEST_F(MessagesTests, AStatusInEnglishIsThatOfThePlatform) {
    for (int code = StatusOk; code <= StatusChanged + 1; ++code) {
        for (char const * const operation : {"", "open the document", "feed the cat"}) {
            for (char const * const subject : {"", "a.vnd"}) {
                for (char const * const cause : {"", "the page count is wrong"}) {
                    Status const status(static_cast<EStatus>(code), operation, subject, cause);
                    EXPECT_EQ(Text::toUtf8(statusText(status)), status.toString());
                }
            }
        }
    }
}

TEST_F(MessagesTests, AStatusIsTranslatedButForItsCause) {
    Status const damaged = Status::corrupt("open the document", "a.vnd", "the page count is wrong");
    StringTable::language("de");
    EXPECT_EQ(statusText(damaged), L"Fehler beim \u00D6ffnen des Dokuments \u201Ea.vnd\u201C: "
                                   L"besch\u00E4digt: the page count is wrong");
    StringTable::language("fr");
    EXPECT_EQ(statusText(damaged),
              L"impossible d\u2019ouvrir le document \u00AB\u00A0a.vnd\u00A0\u00BB\u00A0: "
              L"endommag\u00E9\u00A0: the page count is wrong");
    StringTable::language("ja");
    EXPECT_EQ(statusText(damaged),
              L"\u300Ca.vnd\u300D\uFF1A\u30C9\u30AD\u30E5\u30E1\u30F3\u30C8\u3092\u958B\u3051\u307E"
              L"\u305B\u3093\uFF1A\u7834\u640D\u3057\u3066\u3044\u307E\u3059\uFF1A"
              L"the page count is wrong");
    StringTable::language("de");
    EXPECT_EQ(statusText(Status::failed("feed the cat")),
              L"nicht m\u00F6glich: feed the cat: fehlgeschlagen");
}

} // namespace

} // namespace Vn::Console::Tests
