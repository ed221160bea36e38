// What the documents show is what the product does, to the letter.

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <sstream>
#include <string_view>

#include <gtest/gtest.h>

#include "Console/Texts.h"
#include "Platform/Base/Initializer.h"
#include "Platform/Base/Limits.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/Functions.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Limits.h"
#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"
#include "Server/CommonData/Units/UnitDisplaySettingsOptionGroup.h"
#include "Tests/Docs/Examples.h"
#include "Tests/Support/Process.h"

namespace Vn::Docs::Tests {

namespace {

using namespace Expressions;
using Units::UnitContext;
using Units::UnitDisplaySettings;

constexpr char c_language[] = "Docs/expression-language.md";

std::string where(Place const & place) { return place.document + ":" + std::to_string(place.line); }

std::optional<std::string> cell(Row const & row, char const * head) {
    auto const found = row.cells.find(head);
    if (found == row.cells.end()) return std::nullopt;
    return found->second;
}

// An empty cell expects nothing, `""` a result without units.
UnitContext contextOf(std::string const & text) {
    if (text.empty()) return UnitContext();
    return UnitContext(text == "\"\"" ? std::wstring() : Text::fromUtf8(text));
}

// "name = value, name = value"
UnitDisplaySettings settingsOf(std::string const & text) {
    UnitDisplaySettings settings = UnitDisplaySettings::standard();
    std::istringstream words(text);
    std::string name;
    std::string equals;
    std::string value;
    while (words >> name >> equals >> value) {
        if (value.back() == ',') value.pop_back();
        Units::UnitDisplaySettingsField const * const field =
            Units::findUnitDisplaySettingsField(name);
        EXPECT_TRUE(field) << name;
        EXPECT_EQ(equals, "=");
        if (!field) continue;
        double const number = value == "true" ? 1.0 : value == "false" ? 0.0 : std::stod(value);
        EXPECT_TRUE(Units::setUnitDisplaySettingsField(*field, settings, number));
    }
    EXPECT_TRUE(words.eof());
    return settings;
}

// What a column says of an expression; null for a column of remarks.
using Answer = std::string (*)(Expression const &, Row const &);

Answer answerFor(std::string_view head) {
    static constexpr std::pair<std::string_view, Answer> c_answers[] = {
        {"Shown",
         [](Expression const & expression, Row const & row) {
             auto const display = cell(row, "Display");
             std::wstring const shown = expression.formatted(
                 Units::ValueAndUnit, settingsOf(cell(row, "Settings").value_or("")),
                 display ? contextOf(*display) : expression.context());
             return expression.value() ? Text::toUtf8(shown) : std::string("no value");
         }},
        {"Rebuilt", [](Expression const & expression,
                       Row const &) { return Text::toUtf8(expression.rebuilt()); }},
        {"Stored", [](Expression const & expression,
                      Row const &) { return Text::toUtf8(expression.textToStore()); }},
        {"Internal",
         [](Expression const & expression, Row const &) {
             std::optional<double> const value = expression.value();
             return value ? Text::toUtf8(Console::shortestNumber(*value)) : std::string("no value");
         }},
        {"Outcome", [](Expression const & expression,
                       Row const &) { return Text::toUtf8(expression.result().toString()); }},
    };
    for (auto const & [name, answer] : c_answers)
        if (name == head) return answer;
    return nullptr;
}

class DocumentsTests : public testing::Test {
protected:
    static void SetUpTestSuite() { Initializer::runAll(); }

    std::vector<Document> const m_documents = readDocuments();
};

TEST_F(DocumentsTests, EveryRowHolds) {
    std::size_t checks = 0;
    for (Document const & document : m_documents) {
        for (Row const & row : document.rows) {
            SCOPED_TRACE(where(row.place));
            Expression const expression(Text::fromUtf8(*cell(row, "Expression")),
                                        contextOf(cell(row, "Context").value_or("")));
            if (!cell(row, "Outcome")) {
                EXPECT_TRUE(expression) << Text::toUtf8(expression.result().toString());
            }
            std::size_t answers = 0;
            for (auto const & [head, expected] : row.cells) {
                Answer const answer = answerFor(head);
                if (!answer || (expected.empty() && !expression)) continue;
                ++answers;
                EXPECT_EQ(answer(expression, row), expected) << head;
            }
            EXPECT_GT(answers, 0u) << "the row claims nothing";
            checks += answers;
            if (auto const instead = cell(row, "Write instead"); instead && !instead->empty()) {
                EXPECT_TRUE(Expression(Text::fromUtf8(*instead), expression.context())) << *instead;
            }
        }
    }
    EXPECT_GT(checks, 200u) << "the documents have lost their examples";
}

#ifndef _WIN32 // the sessions are lines of a shell
TEST_F(DocumentsTests, EverySessionPrintsWhatItShows) {
    std::size_t sessions = 0;
    for (Document const & document : m_documents) {
        for (Session const & session : document.sessions) {
            SCOPED_TRACE(where(session.place) + ": " + session.command);
            std::string command = session.command;
            // The script builds the console and hands its arguments on.
            for (std::size_t at; (at = command.find("./run.sh")) != std::string::npos;)
                command.replace(at, std::string_view("./run.sh").size(), "vnconsole");
            Console::Tests::Outcome const outcome = Console::Tests::runShell(
                "vnconsole() { \"$VNCONSOLE\" \"$@\"; }; { " + command + "\n} 2>&1");
            EXPECT_EQ(outcome.out, session.output);
            ++sessions;
        }
    }
    EXPECT_GE(sessions, 10u) << "the documents have lost their sessions";
}
#endif

TEST_F(DocumentsTests, EveryBlockIsOfAKindThatIsTested) {
    constexpr std::array<std::string_view, 4> c_kinds{"console", "cpp", "output", "ebnf"};
    // Statements and queries with their rows, which the tests of the document file run.
    constexpr std::array<std::string_view, 2> c_databaseKinds{"sql", "text"};
    // Files, which the tests of the installed package build and run.
    constexpr std::array<std::string_view, 3> c_packageGuides{"Docs/blocks.md", "Docs/embedding.md",
                                                              "Docs/hosting.md"};
    std::set<std::string> programs;
    for (Document const & document : m_documents) {
        bool const isFormat = document.name == "Docs/document-format.md";
        for (Block const & block : document.blocks) {
            if (std::find(c_packageGuides.begin(), c_packageGuides.end(), document.name) !=
                    c_packageGuides.end() &&
                block.language.find(' ') != std::string::npos)
                continue;
            // A second word names the block to those who run it.
            std::string const kind = block.language.substr(0, block.language.find(' '));
            bool const isKnown =
                isFormat
                    ? std::find(c_databaseKinds.begin(), c_databaseKinds.end(), kind) !=
                          c_databaseKinds.end()
                    : std::find(c_kinds.begin(), c_kinds.end(), block.language) != c_kinds.end();
            EXPECT_TRUE(isKnown) << where(block.place) << ": " << block.language;
            if (block.language == "cpp") programs.insert(document.name);
        }
    }
    EXPECT_EQ(programs, (std::set<std::string>{"Docs/entity-class.md", "README.md"}));
}

// The build makes VnReadmeExample of the block.
TEST_F(DocumentsTests, TheProgramOfTheReadmePrintsWhatItShows) {
    std::string expected;
    for (Block const & block : readDocument("README.md").blocks) {
        if (block.language != "output") continue;
        for (std::string const & line : block.lines) expected += line + '\n';
    }
    Console::Tests::Outcome const outcome = Console::Tests::runProgram(VN_README_EXAMPLE, {});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_FALSE(expected.empty());
    std::string out = outcome.out;
#ifdef _WIN32
    std::erase(out, '\r'); // it writes lines as the system ends them
#endif
    EXPECT_EQ(out, expected);
}

// "internal units (cm, kg, ...)", which may go over the end of a line.
TEST_F(DocumentsTests, TheInternalUnitsCanBeTyped) {
    for (char const * const document : {"README.md", c_language}) {
        std::string text = readFile(document);
        std::replace(text.begin(), text.end(), '\n', ' ');
        std::size_t const begin = text.find("(cm, kg, ");
        ASSERT_NE(begin, std::string::npos) << document;
        std::istringstream units(text.substr(begin + 1, text.find(')', begin) - begin - 1));
        std::size_t count = 0;
        for (std::string unit; std::getline(units >> std::ws, unit, ',');) {
            ++count;
            Expression const one(L"1 " + Text::fromUtf8(unit));
            EXPECT_TRUE(one) << document << ": " << unit;
            EXPECT_EQ(one.value(), 1.0) << document << ": " << unit;
        }
        EXPECT_EQ(count, 9u) << document;
    }
}

TEST_F(DocumentsTests, TheReadmeIsOnePage) {
    std::string const text = readFile("README.md");
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 100);
}

TEST_F(DocumentsTests, TheUnitsAreCurrent) {
    Console::Tests::Outcome const outcome = Console::Tests::runProgram(VN_UNITS_DOCUMENT, {});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, readFile("Docs/units.md"))
        << "build the target units-document to write it anew";
}

TEST_F(DocumentsTests, TheGuideNamesEveryWordOfTheLanguage) {
    std::string const text = readFile(c_language);
    for (int number = e_PI_CONSTANT; number < c_tokens; ++number) {
        auto const token = static_cast<EToken>(number);
        bool const function = functionOfToken(token).has_value();
        std::string const word = Text::toUtf8(Tokens::get()->getString(token));
        if (word.empty() || (token > e_ATTO_ABBR && !function)) continue;
        EXPECT_NE(text.find('`' + word + (function ? "(" : "`")), std::string::npos) << word;
    }
}

TEST_F(DocumentsTests, TheGuideNamesEverySettingAndItsDefault) {
    std::string const text = readFile(c_language);
    for (Units::UnitDisplaySettingsField const & field : Units::unitDisplaySettingsFields()) {
        double const value = field.get(UnitDisplaySettings::standard());
        std::string const shown = field.kind == Units::ESettingsField::Flag
                                      ? (value != 0.0 ? "true" : "false")
                                      : Text::toUtf8(Console::shortestNumber(value));
        EXPECT_NE(text.find("| `" + std::string(field.name) + "` | `" + shown + "` |"),
                  std::string::npos)
            << field.name << ' ' << shown;
    }
}

// The table of the options, as the library has them.
std::string tableOfPreferences() {
    std::string table = "| Field | Id | Default | Under | Choices |\n|---|---|---|---|---|\n";
    auto const code = [](std::wstring const & text) { return '`' + Text::toUtf8(text) + '`'; };
    for (OptionBase const * const option :
         Units::UnitDisplaySettingsOptionGroup::get()->options()) {
        OptionBase const * const under = option->subGroup();
        std::string choices;
        for (OptionBase::Choice const & choice : option->choices()) {
            choices += (choices.empty() ? "" : ", ") + code(choice.value);
            if (choice.text != choice.value) choices += ' ' + Text::toUtf8(choice.text);
        }
        table += std::string("| `") + Units::UnitDisplaySettingsOptionGroup::fieldName(*option) +
                 "` | `" + option->id() + "` | " + code(option->toString()) + " | " +
                 (under ? Text::toUtf8(under->userName()) : "") +
                 (option->advanced() ? " (advanced)" : "") + " | " + choices + " |\n";
    }
    return table;
}

TEST_F(DocumentsTests, TheTableOfPreferencesIsCurrent) {
    std::string const table = tableOfPreferences();
    EXPECT_NE(readFile("Docs/preferences.md").find('\n' + table + '\n'), std::string::npos)
        << "it should be\n"
        << table;
}

TEST_F(DocumentsTests, TheGuideToPreferencesNamesTheFilesAndTheLimits) {
    std::string const text = readFile("Docs/preferences.md");
    EXPECT_EQ(Limits::c_optionFile, std::size_t{16} << 20);
    EXPECT_EQ(Limits::c_optionLock, std::chrono::seconds(5));
    for (std::wstring const & name : {serverOptionFileName(), globalOptionFileName()})
        EXPECT_NE(text.find('`' + Text::toUtf8(name) + ".xml`"), std::string::npos);
    for (char const * const words : {"16 MiB", "five seconds"})
        EXPECT_NE(text.find(words), std::string::npos) << words;
}

TEST_F(DocumentsTests, TheGuideNamesTheLimits) {
    std::string const text = readFile(c_language);
    EXPECT_EQ(Limits::c_nestingLevels, 1000u);
    EXPECT_EQ(Limits::c_unitFactors, 4096u);
    EXPECT_EQ(Limits::c_printedField, 511u);
    for (char const * const limit : {"1,000 levels", "4,096 factors", "511 characters"})
        EXPECT_NE(text.find(limit), std::string::npos) << limit;
}

} // namespace

} // namespace Vn::Docs::Tests
