#include "Platform/Base/TextCommandService.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Vn::TextCommand;
using Vn::TextCommandFailure;
using Vn::TextCommandParameters;
using Vn::TextCommandResult;
using Vn::TextCommandService;
using Vn::TextCommandSubjectArea;

// Answers with what it was given: <parameter>... /<flag>...
class Echo : public TextCommand {
public:
    explicit Echo(std::wstring name, std::string alias = {}, bool hidden = false,
                  bool enabled = true)
        : TextCommand(L"Testing", std::move(name), L"Echoes", std::move(alias), hidden, enabled) {}

private:
    TextCommandResult onRun(TextCommandParameters const & parameters) override {
        std::wstring text;
        for (unsigned i = 0; i < parameters.parameters(); ++i)
            text += L"<" + parameters.parameter(i) + L">";
        for (std::wstring const & flag : parameters.flags()) text += L"/" + flag;
        return {0, text};
    }
};

struct Told : std::runtime_error, TextCommandFailure {
    Told() : std::runtime_error("too many"), TextCommandFailure(L"Three is too many") {}
};

class Throw : public TextCommand {
public:
    Throw() : TextCommand(L"Testing", L"Throw", L"Throws") {}

private:
    TextCommandResult onRun(TextCommandParameters const & parameters) override {
        if (parameters.hasFlag(L"nameless")) throw std::runtime_error("");
        if (parameters.hasFlag(L"memory")) throw std::bad_alloc();
        if (parameters.hasFlag(L"told")) throw Told();
        throw std::runtime_error("bad lexical cast");
    }
    std::vector<std::wstring> onComplete(TextCommandParameters const &) override {
        throw std::runtime_error("nothing comes to mind");
    }
};

// Completes what it was given before, and its flags.
class Completes : public TextCommand {
public:
    Completes() : TextCommand(L"Testing", L"Completes", L"Completes", "comp") {}

private:
    TextCommandResult onRun(TextCommandParameters const &) override { return {}; }
    std::vector<std::wstring> onComplete(TextCommandParameters const & before) override {
        std::vector<std::wstring> words = before.flags();
        for (unsigned i = 0; i < before.parameters(); ++i) words.push_back(before.parameter(i));
        words.push_back(L"more");
        return words;
    }
};

class TextCommandServiceTests : public testing::Test {
protected:
    static TextCommandService & service() { return TextCommandService::get(); }
    static TextCommandResult run(std::wstring_view line) { return service().run(line); }

    TextCommandSubjectArea m_area{L"Testing", L"Commands of the tests"};
    TextCommandSubjectArea m_hiddenArea{L"Secret", L"Not shown", true};
    Echo m_echo{L"Echo", "ec"};
    Echo m_lower{L"echo"};
    Echo m_list{L"ListAll"};
    Echo m_hidden{L"Backstage", {}, true};
    Echo m_disabled{L"Disabled", {}, false, false};
    Throw m_throw;
};

TEST(TextCommandParametersTests, ReadsParametersAndFlags) {
    TextCommandParameters const parameters({L"a", L""}, {L"ValueOnly"});
    EXPECT_EQ(parameters.parameters(), 2U);
    EXPECT_EQ(parameters.parameter(0), L"a");
    EXPECT_EQ(parameters.parameter(1), L"");
    EXPECT_EQ(parameters.parameter(2), L"");
    EXPECT_EQ(parameters.parameter(4294967295U), L"");
    EXPECT_TRUE(parameters.hasFlag(L"valueonly"));
    EXPECT_TRUE(parameters.hasFlag(L"VALUEONLY"));
    EXPECT_FALSE(parameters.hasFlag(L"Value"));
    EXPECT_EQ(TextCommandParameters().parameters(), 0U);
}

TEST_F(TextCommandServiceTests, KeepsTheOrderOfRegistration) {
    auto const areas = service().subjectAreas();
    auto const at = std::find(areas.begin(), areas.end(), &m_area);
    ASSERT_NE(at, areas.end());
    EXPECT_EQ(*(at + 1), &m_hiddenArea);
    EXPECT_TRUE((*(at + 1))->hidden());
    EXPECT_EQ(m_area.description(), L"Commands of the tests");
    std::vector<TextCommand *> const expected{&m_echo,   &m_lower,    &m_list,
                                              &m_hidden, &m_disabled, &m_throw};
    EXPECT_EQ(service().commands(L"Testing"), expected);
    EXPECT_EQ(service().commands(L"tESTING"), expected);
    EXPECT_TRUE(service().commands(L"Other").empty());
}

TEST_F(TextCommandServiceTests, LeavesWhenDestroyed) {
    {
        TextCommandSubjectArea const area(L"ShortLived", L"");
        Echo const command(L"ShortLived");
        EXPECT_NE(service().find(L"Testing", L"ShortLived"), nullptr);
    }
    EXPECT_EQ(service().find(L"Testing", L"ShortLived"), nullptr);
    for (auto const * area : service().subjectAreas()) EXPECT_NE(area->name(), L"ShortLived");
}

TEST_F(TextCommandServiceTests, FindsExactlyFirstThenFolded) {
    EXPECT_EQ(service().find(L"Testing", L"Echo"), &m_echo);
    EXPECT_EQ(service().find(L"Testing", L"echo"), &m_lower);
    EXPECT_EQ(service().find(L"testing", L"LISTALL"), &m_list);
    EXPECT_EQ(service().find(L"Testing", L"Lists"), nullptr);
    EXPECT_EQ(service().find(L"", L"EC"), &m_echo);
    EXPECT_EQ(service().find(L"", L""), nullptr);
    EXPECT_EQ(service().find(L"Testing", L""), nullptr);
}

TEST_F(TextCommandServiceTests, TakesLinesApart) {
    struct Row {
        wchar_t const * arguments;
        wchar_t const * echoed;
    };
    Row const rows[] = {
        {L"", L""},
        {L"   ", L""},
        {L"a  b\tc ", L"<a><b><c>"},
        {L"\"a b\" c", L"<a b><c>"},
        {L"\"\"", L"<>"},
        {L"\"\" \"\"", L"<><>"},
        // Inch marks, in and out of quotes.
        {L"6\"", L"<6\">"},
        {L"2' 6 3/4\"", L"<2'><6><3/4\">"},
        {L"\"2' 6 3/4\"\"", L"<2' 6 3/4\">"},
        {L"\"2' 6 3/4\"+1 in\" m", L"<2' 6 3/4\"+1 in><m>"},
        {L"\"2' 6 3/4\\\" + 1 in\" m", L"<2' 6 3/4\" + 1 in><m>"},
        {L"\"say \\\"hi\\\"\"", L"<say \"hi\">"},
        {L"a\\b \"c\\d\" \\\"", L"<a\\b><c\\d><\\\">"},
        // Flags.
        {L"/UnitOnly a /v2", L"<a>/UnitOnly/v2"},
        {L"/ /2 a/b /a-b //a", L"</></2><a/b></a-b><//a>"},
        {L"\"/UnitOnly\"", L"</UnitOnly>"},
        {L"/\u00E4", L"</\u00E4>"},
        // Blanks are the system's white space.
        {L"a\u00A0b\u3000c", L"<a><b><c>"},
        {L"\U0001D11E", L"<\U0001D11E>"},
    };
    for (Row const & row : rows) {
        std::wstring const line = std::wstring(L"Testing.Echo ") + row.arguments;
        TextCommandResult const result = run(line);
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.text, row.echoed);
    }
}

TEST_F(TextCommandServiceTests, UnclosedQuoteIsRefused) {
    for (wchar_t const * line : {L"Testing.Echo \"a", L"Testing.Echo \"", L"Testing.Echo \"a\"b",
                                 L"Testing.Echo \"a\\\"", L"\""}) {
        TextCommandResult const result = run(line);
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.text.find(L"quote is not closed"), std::wstring::npos);
    }
}

TEST_F(TextCommandServiceTests, RunsByNameAndAlias) {
    EXPECT_EQ(run(L"  Testing.Echo x ").text, L"<x>");
    EXPECT_EQ(run(L"TESTING.ListAll x").text, L"<x>");
    EXPECT_EQ(run(L"\"Testing.Echo\" x").text, L"<x>");
    EXPECT_EQ(run(L"ec x").text, L"<x>");
    EXPECT_EQ(run(L"Testing.Backstage x").text, L"<x>");
}

TEST_F(TextCommandServiceTests, DisabledCommandRefuses) {
    TextCommandResult const result = run(L"Testing.Disabled");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.text, L"Testing.Disabled is not enabled");
}

TEST_F(TextCommandServiceTests, ExceptionBecomesAFailure) {
    TextCommandResult const result = run(L"Testing.Throw");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.text, L"Testing.Throw failed unexpectedly: bad lexical cast");
    EXPECT_EQ(run(L"Testing.Throw /nameless").text,
              L"Testing.Throw failed unexpectedly: std::runtime_error");
}

TEST_F(TextCommandServiceTests, WantOfMemoryIsSaid) {
    TextCommandResult const result = run(L"Testing.Throw /memory");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.text, L"Memory ran out");
}

TEST_F(TextCommandServiceTests, ExceptionForTheUserIsSaidAsItIs) {
    TextCommandResult const result = run(L"Testing.Throw /told");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.text, L"Three is too many");
}

TEST_F(TextCommandServiceTests, AnswersSayWhatWouldHaveBeenRight) {
    struct Row {
        wchar_t const * line;
        std::vector<wchar_t const *> parts;
    };
    Row const rows[] = {
        {L"", {L"Subject.Name", L"The subject areas are:", L"Testing"}},
        {L" \t", {L"Subject.Name"}},
        {L"\"\"", {L"Subject.Name"}},
        {L"Tsting.Echo", {L"no subject area \"Tsting\"", L"Did you mean Testing?"}},
        {L".Echo", {L"no subject area \"\"", L"The subject areas are:"}},
        {L"Testing.ListAl", {L"no command \"ListAl\"", L"Did you mean Testing.ListAll?"}},
        {L"testing.Nothing", {L"has no command \"Nothing\"", L"Testing.Echo, Testing.echo"}},
        {L"Testing", {L"is a subject area", L"Testing.ListAll"}},
        {L"Testing.", {L"is a subject area", L"Testing.ListAll"}},
        {L"TestingEcho", {L"no command \"TestingEcho\"", L"Did you mean Testing.Echo?"}},
        {L"help", {L"no command \"help\"", L"The subject areas are:"}},
    };
    for (Row const & row : rows) {
        TextCommandResult const result = run(row.line);
        EXPECT_EQ(result.status, 1);
        for (wchar_t const * part : row.parts)
            EXPECT_NE(result.text.find(part), std::wstring::npos)
                << testing::PrintToString(part) << " in " << testing::PrintToString(result.text);
        EXPECT_EQ(result.text.find(L"Backstage"), std::wstring::npos);
        EXPECT_EQ(result.text.find(L"Secret"), std::wstring::npos);
    }
}

TEST_F(TextCommandServiceTests, AreaWithoutCommandsIsSaidToHaveNone) {
    TextCommandSubjectArea const empty(L"Vacant", L"");
    EXPECT_EQ(run(L"Vacant.Any").text, L"The subject area \"Vacant\" has no commands.");
}

TEST_F(TextCommandServiceTests, ACommandTellsWhatMayFollowInItsLine) {
    Completes const completes;
    using Words = std::vector<std::wstring>;
    EXPECT_EQ(service().completions(L"Testing.Completes"), (Words{L"more"}));
    EXPECT_EQ(service().completions(L"testing.completes \"a b\" c /Flag"),
              (Words{L"Flag", L"a b", L"c", L"more"}));
    EXPECT_EQ(service().completions(L"comp x"), (Words{L"x", L"more"}));
    for (wchar_t const * const front :
         {L"", L"Testing.Echo", L"Testing.Throw", L"Testing.Unknown", L"comp \"open"})
        EXPECT_EQ(service().completions(front), Words());
}

TEST_F(TextCommandServiceTests, LongLinesGetShortAnswers) {
    std::wstring const name(2'000'000, L'x');
    EXPECT_LT(run(name).text.size(), 2000U);
    EXPECT_LT(run(L"Testing." + name).text.size(), 2000U);
    EXPECT_LT(run(name + L".x").text.size(), 2000U);
    EXPECT_EQ(run(L"Testing.Echo \"" + std::wstring(2'000'000, L'"') + L"\"").text.size(),
              2'000'002U);
    EXPECT_EQ(run(L"Testing.Echo \"" + std::wstring(2'000'000, L'"')).status, 0);
}

} // namespace
