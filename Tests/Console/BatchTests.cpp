#include "Console/CommandLine/Batch.h"

#include <cmath>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/WorkedExpressionsInternal.h"
#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"
#include "Tests/Support/Process.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Console::Tests {

namespace {

using nlohmann::json;

std::vector<std::string> linesOf(std::string const & text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

std::string utf8(wchar_t const * text) { return Text::toUtf8(text); }

TEST(BatchTests, AnswerHasEveryMemberInOrder) {
    Outcome const outcome =
        runConsole({"batch"}, R"({"id":"a","text":"1' 9\"","context":"cm","display":"in"})"
                              "\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(
        outcome.out,
        R"({"id":"a","tokens":[[1,0,0,""],[11,0,4,"1' 9"],[14,4,5,"foot"],[2,5,5,""]],)"
        R"("parsed":true,"result":"parsedOk","position":0,"message":"Success!",)"
        R"j("evaluated":true,"value":53.340000000000003,"units":"(foot) / (1)",)j"
        R"("formatted":"21.00 in","rebuilt":"1'-9\"","formattedValueOnly":"21.00",)"
        R"("formattedUnitOnly":"in","rebuiltValueOnly":"1'-9\"","readableUnits":"ft",)"
        R"("internalUnits":"cm","rebuiltReadsBack":true,"textToStore":"1'-9\"",)"
        R"("reason":"none","start":0,"end":0,"explanation":"","suggestions":[],"hint":"","corrections":[],"notes":[]})"
        "\n");
}

TEST(BatchTests, TextThatDoesNotParseIsAnswered) {
    Outcome const outcome = runConsole({"batch"}, R"({"id":1,"text":"2kg","context":"cm"})"
                                                  "\n"
                                                  R"({"id":2,"text":"2 $ &"})"
                                                  "\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(
        outcome.out,
        R"({"id":1,"tokens":[[1,0,0,""],[11,0,1,"2"],[14,1,3,"kg"],[2,3,3,""]],"parsed":false,)"
        R"("result":"unitMismatch","position":0,"message":"Units mismatch between expected )"
        R"j((centimeter) / (1) and evaluated (kilogram) / (1)","evaluated":false,"value":null,)j"
        R"("units":"","formatted":"","rebuilt":"","formattedValueOnly":"","formattedUnitOnly":"",)"
        R"("rebuiltValueOnly":"","readableUnits":"","internalUnits":"","rebuiltReadsBack":false,)"
        R"("textToStore":"","reason":"otherThanExpectedUnits","start":0,"end":3,"explanation":)"
        R"j("a result in cm (Length) is expected, but this is in kg (Mass)","suggestions":[],)j"
        R"("hint":"","corrections":[],"notes":[]})"
        "\n"
        R"({"id":2,"tokens":[[1,0,0,""],[11,0,1,"2"],[14,2,3,"$"],[0,4,5,"&"]],"parsed":false,)"
        R"("result":"failedToParse","position":4,"message":"Parse error at character 4",)"
        R"("evaluated":false,"value":null,"units":"","formatted":"","rebuilt":"",)"
        R"("formattedValueOnly":"","formattedUnitOnly":"","rebuiltValueOnly":"",)"
        R"("readableUnits":"","internalUnits":"","rebuiltReadsBack":false,"textToStore":"",)"
        R"("reason":"unusableCharacter","start":4,"end":5,"explanation":"\"&\" has no meaning in )"
        R"(an expression","suggestions":[],"hint":"","corrections":[],"notes":[]})"
        "\n");
}

TEST(BatchTests, TextThatDoesNotEvaluateHasNoValue) {
    json const answer = json::parse(runConsole({"batch"}, "{\"text\":\"1/0\"}").out);
    EXPECT_EQ(answer["parsed"], true);
    EXPECT_EQ(answer["evaluated"], false);
    EXPECT_EQ(answer["value"], nullptr);
    EXPECT_EQ(answer["formatted"], "");
    EXPECT_EQ(answer["rebuilt"], "1 / 0");
}

// What a program needs to ask a person again.
TEST(BatchTests, AFailureTellsWhatToTypeInstead) {
    json const name = json::parse(runConsole({"batch"}, "{\"text\":\"2 + 3 CM\"}").out);
    EXPECT_EQ(name["reason"], "unknownName");
    EXPECT_EQ(name["start"], 6);
    EXPECT_EQ(name["end"], 8);
    EXPECT_EQ(name["suggestions"], json::array({"cm"}));
    json const fraction = json::parse(runConsole({"batch"}, "{\"text\":\"7/2.2\"}").out);
    EXPECT_EQ(fraction["hint"],
              "\"7/2\" was read as a fraction; put the divisor in brackets: 7/(2.2)");
    json const rounded = json::parse(runConsole({"batch"}, "{\"text\":\"1/128 in\"}").out);
    EXPECT_EQ(rounded["rebuiltReadsBack"], false);
    EXPECT_EQ(rounded["textToStore"], "1/128 in");
}

TEST(BatchTests, TokensAreLeftOutOnRequest) {
    std::string const input = "{\"id\":1,\"text\":\"2 in\"}\n{\"id\":2,\"text\":\"bogus\"}\n";
    std::vector<std::string> const with = linesOf(runConsole({"batch"}, input).out);
    std::vector<std::string> const without =
        linesOf(runConsole({"batch", "--no-tokens"}, input).out);
    ASSERT_EQ(with.size(), without.size());
    for (std::size_t i = 0; i < with.size(); ++i) {
        json expected = json::parse(with[i]);
        EXPECT_EQ(expected.erase("tokens"), 1u);
        EXPECT_EQ(json::parse(without[i]), expected);
    }
}

// One shape serves both: what follows the id, or the text, is the same to the last character.
TEST(BatchTests, EvalAnswersInTheSameShape) {
    for (char const * const text : {"2 ft + 1 cm", "bogus", "1/0", "1/128 in", "7/2.2", ""}) {
        std::string const line = json{{"id", 1}, {"text", text}}.dump() + '\n';
        std::string batch = runConsole({"batch"}, line).out;
        std::string eval = runConsole({"eval", "--standard", "--json", text}).out;
        std::string const id = R"({"id":1)";
        std::string const head = R"({"text":)" + json(text).dump();
        ASSERT_TRUE(batch.starts_with(id)) << batch;
        ASSERT_TRUE(eval.starts_with(head)) << eval;
        EXPECT_EQ(eval.substr(head.size()), batch.substr(id.size()));
    }
}

TEST(BatchTests, AnErrorWithoutAnIdTellsTheLine) {
    std::vector<std::string> const lines =
        linesOf(runConsole({"batch"}, "{\"text\":2}\n\n \r\nfoo\n{\"id\":7}\n").out);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], R"({"id":null,"error":"\"text\" must be a text","line":1})");
    EXPECT_EQ(json::parse(lines[1])["line"], 4);
    EXPECT_EQ(lines[2], R"({"id":7,"error":"there is no \"text\""})");
}

TEST(BatchTests, AByteOrderMarkIsPassedOverAndAnotherEncodingRefused) {
    using namespace std::string_literals;
    Outcome const marked = runConsole({"batch"}, "\xEF\xBB\xBF{\"text\":\"2 cm\"}\r\n");
    EXPECT_EQ(marked.status, 0) << marked.out;
    EXPECT_EQ(linesOf(marked.out).size(), 1u);
    Outcome const other = runConsole({"batch"}, "\xFF\xFE{\0}\0\n\0{\0}\0\n\0"s);
    EXPECT_EQ(other.status, 1);
    EXPECT_EQ(
        other.out,
        "{\"id\":null,\"error\":\"the input is in UTF-16; only UTF-8 is read\",\"line\":1}\n");
}

TEST(BatchTests, IdIsGivenBackAsTheSameValue) {
    struct Row {
        char const * written;
        char const * answered;
    };
    Row const rows[] = {
        {"null", "null"},
        {"true", "true"},
        {"-7", "-7"},
        {"18446744073709551615", "18446744073709551615"},
        {"1.10", "1.10"},
        {"123456789012345678901234567890", "123456789012345678901234567890"},
        {"-1E+2", "-1E+2"},
        {"0.30000000000000004", "0.30000000000000004"},
        {"\"\\u00e9 \\\" }\"", "\"\u00e9 \\\" }\""},
        {R"([1, {"b": "]", "a\"": [], "c":[[],{}]}])", R"([1,{"b":"]","a\"":[],"c":[[],{}]}])"},
        {"\"\"", "\"\""},
        {"{}", "{}"}};
    std::string input;
    for (Row const & row : rows) {
        std::string const id = row.written;
        input += "{\"x\":{\"id\":5},\"text\":\"2\", \"id\" : " + id + " }\n";
        input += "{\"id\":" + id + ",\"text\":2}\n";
    }
    input += "{\"\\u0069d\":7,\"text\":\"2\"}\n"
             "{\"id\":1,\"text\":\"2\",\"id\":2}\n"
             "{\"text\":\"2\"}\n";
    std::vector<std::string> const lines = linesOf(runConsole({"batch"}, input).out);
    ASSERT_EQ(lines.size(), 2 * std::size(rows) + 3);
    std::size_t i = 0;
    for (Row const & row : rows) {
        std::string const id = row.answered;
        EXPECT_EQ(lines[i++].substr(0, id.size() + 15), "{\"id\":" + id + ",\"tokens\"");
        std::string const line = id == "null" ? ",\"line\":" + std::to_string(i + 1) : "";
        EXPECT_EQ(lines[i++],
                  "{\"id\":" + id + R"(,"error":"\"text\" must be a text")" + line + '}');
    }
    EXPECT_EQ(lines[i++].substr(0, 8), "{\"id\":7,");
    EXPECT_EQ(lines[i++].substr(0, 8), "{\"id\":2,");
    EXPECT_EQ(lines[i++].substr(0, 11), "{\"id\":null,");
}

TEST(BatchTests, ALineThatEndsWithinItsIdHasNone) {
    for (char const * const line : {R"({"id":)", R"({"id":[1,{"a":)", R"({"id":"a)", R"({"id":1)",
                                    R"({"id":1} 2)", R"({"id":1e999,"text":"2"})"}) {
        json const answer = json::parse(runConsole({"batch"}, std::string(line) + '\n').out);
        EXPECT_EQ(answer["id"], nullptr) << line;
        EXPECT_TRUE(answer.contains("error")) << line;
    }
}

TEST(BatchTests, BadLinesAreAnsweredWithoutStopping) {
    struct Row {
        char const * line;
        char const * answer;
    };
    Row const rows[] = {
        {"foo", R"({"id":null,"error":"parse error at line 1, column 2: syntax error while )"
                R"(parsing value - invalid literal; last read: 'fo'","line":1})"},
        {"[1]", R"({"id":null,"error":"a line must be an object","line":4})"},
        {"{\"id\":3}", R"({"id":3,"error":"there is no \"text\""})"},
        {R"({"id":4,"text":null})", R"({"id":4,"error":"\"text\" must be a text"})"},
        {R"({"id":5,"text":"2","context":"bogus"})",
         R"({"id":5,"error":"\"context\": \"bogus\" isn't a unit"})"},
        {R"({"id":6,"text":"2","context":1})", R"({"id":6,"error":"\"context\" must be a text"})"},
        {R"({"id":7,"text":"2","display":"bogus"})",
         R"({"id":7,"error":"\"display\": \"bogus\" isn't a unit"})"},
        {R"({"id":8,"text":"2","settings":[]})",
         R"({"id":8,"error":"\"settings\" must be an object"})"},
        {R"({"id":9,"text":"2","settings":{"precision":2}})",
         R"({"id":9,"error":"\"settings\" has no \"precision\""})"},
        {R"({"id":10,"text":"2","settings":{"generalPrecision":"2"}})",
         R"({"id":10,"error":"\"generalPrecision\" must be a number"})"},
        {R"({"id":11,"text":"2","settings":{"compressUnits":1}})",
         R"({"id":11,"error":"\"compressUnits\" must be true or false"})"},
        {R"({"id":12,"text":"2","settings":{"lengthDisplay":3}})",
         R"({"id":12,"error":"lengthDisplay takes a whole number from 0 to 2"})"},
        {R"({"id":13,"text":"2","settings":{"generalPrecision":2.5}})",
         R"({"id":13,"error":"generalPrecision takes a whole number from -32768 to 32767"})"},
    };
    std::string input;
    for (Row const & row : rows)
        input += row.line + std::string("\n\n{\"id\":\"good\",\"text\":\"2\"}\n");
    Outcome const outcome = runConsole({"batch"}, input);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "");
    std::vector<std::string> const lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), 2 * std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(lines[2 * i], rows[i].answer);
        EXPECT_EQ(lines[2 * i + 1].substr(0, 12), "{\"id\":\"good\"");
    }
}

TEST(BatchTests, AValueIsNotShownInUnitsOfAnotherDimension) {
    std::vector<std::vector<std::string>> const rows = {
        {"2 cm", "kg"}, {"2 cm", ""}, {"2", "kg"}, {"3 m / s", "s"}};
    std::string input;
    for (auto const & row : rows)
        input += json{{"id", row[0]}, {"text", row[0]}, {"display", row[1]}}.dump() + '\n';
    Outcome const outcome = runConsole({"batch"}, input);
    EXPECT_EQ(outcome.status, 1);
    std::vector<std::string> const lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        // As `eval` answers.
        json const shown =
            json::parse(runConsole({"eval", "--json", rows[i][0], "--display", rows[i][1]}).out);
        EXPECT_EQ(json::parse(lines[i]), (json{{"id", rows[i][0]}, {"error", shown["error"]}}));
    }
    EXPECT_EQ(json::parse(lines[0])["error"],
              "the value is in cm (Length) and can't be shown in kg (Mass)");
}

TEST(BatchTests, ADisplayUnitOfTheSameDimensionIsTaken) {
    std::vector<std::string> const lines =
        linesOf(runConsole({"batch"}, R"({"text":"20 C","display":"K"})"
                                      "\n"
                                      R"({"text":"2","context":"cm","display":"in"})"
                                      "\n"
                                      R"({"text":"1/0","display":"kg"})"
                                      "\n")
                    .out);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(json::parse(lines[0])["formatted"], "293.16 K");
    EXPECT_EQ(json::parse(lines[1])["formatted"], "0.787 in");
    // There is nothing to show.
    EXPECT_EQ(json::parse(lines[2])["evaluated"], false);
}

TEST(BatchTests, BytesThatAreNotUtf8AreABadLine) {
    std::string const null(1, '\0');
    Outcome const outcome =
        runConsole({"batch"}, "{\"text\":\"2\xFF\"}\n{\"text\":\"2" + null + "\"}\n" + null + "\n");
    EXPECT_EQ(outcome.status, 1);
    for (std::string const & line : linesOf(outcome.out))
        EXPECT_TRUE(json::parse(line).contains("error")) << line;
    EXPECT_EQ(linesOf(outcome.out).size(), 3u);
}

TEST(BatchTests, LongErrorsAreClipped) {
    std::string const name(1000000, 'x');
    std::vector<std::string> const lines = linesOf(
        runConsole({"batch"}, "{\"text\":\"2\",\"settings\":{\"" + name + "\":1}}\n" +
                                  "{\"text\":\"2\",\"context\":\"" + name + "\"}\n\"" + name + "\n")
            .out);
    ASSERT_EQ(lines.size(), 3u);
    for (std::string const & line : lines) EXPECT_LT(line.size(), 400u);
}

TEST(BatchTests, SettingsComeFromTheFactoryAndTheLine) {
    std::vector<std::string> const lines = linesOf(
        runConsole({"batch"}, R"({"text":"2.5 cm","settings":{"generalPrecision":5,)"
                              R"("hideTrailingZeroes":false}})"
                              "\n"
                              R"({"text":"2.5 cm","settings":{"displayAbbreviated":false}})"
                              "\n"
                              R"({"text":"2.5 cm","settings":{"decimalPointIsFullStop":false}})"
                              "\n"
                              R"({"text":"2.5 in","settings":{"lengthDisplay":1}})"
                              "\n"
                              R"({"text":"2.5 cm","settings":{}})"
                              "\n"
                              R"({"text":"2.5 cm","settings":null})"
                              "\n")
            .out);
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_EQ(json::parse(lines[0])["formatted"], "2.50000 cm");
    EXPECT_EQ(json::parse(lines[1])["formatted"], "2.50 centimeter");
    EXPECT_EQ(json::parse(lines[2])["formatted"], "2,50 cm");
    EXPECT_EQ(json::parse(lines[3])["formatted"], "2 1/2\"");
    EXPECT_EQ(json::parse(lines[4])["formatted"], "2.50 cm");
    EXPECT_EQ(json::parse(lines[5])["formatted"], "2.50 cm");
}

TEST(BatchTests, FileIsReadByName) {
    Testing::TemporaryFile const file("{\"id\":1,\"text\":\"2\"}\r\n{\"id\":2,\"text\":\"3\"}");
    Outcome const outcome = runConsole({"batch", file.text()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(linesOf(outcome.out).size(), 2u);
    std::string const input = "{\"id\":1,\"text\":\"2\"}\n{\"id\":2,\"text\":\"3\"}";
    EXPECT_EQ(runConsole({"batch", "-"}, input).out, outcome.out);
}

TEST(BatchTests, UnreadableFileIsTold) {
    Outcome const missing = runConsole({"batch", "/nowhere/at all.jsonl"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err,
              "vnconsole: can't read /nowhere/at all.jsonl: No such file or directory\n");
    Outcome const directory = runConsole({"batch", "/"});
    EXPECT_EQ(directory.status, 1);
    EXPECT_EQ(directory.err, "vnconsole: can't read /: Is a directory\n");
}

#ifndef _WIN32 // which has no shell with named pipes
// A program at the other end sends a line and waits for its answer.
TEST(BatchTests, EachLineIsAnsweredBeforeTheNextComes) {
    Outcome const outcome = runShell(R"(
        fifo=$(mktemp -u) && mkfifo "$fifo"
        "$VNCONSOLE" batch < "$fifo" | {
            exec 3> "$fifo"
            echo '{"id":1,"text":"2"}' >&3
            read -r first
            echo '{"id":2,"text":"3"}' >&3
            read -r second
            exec 3>&-
            echo "$first" | cut -c1-8
            echo "$second" | cut -c1-8
        }
        rm "$fifo")");
    EXPECT_EQ(outcome.out, "{\"id\":1,\n{\"id\":2,\n");
    EXPECT_EQ(outcome.err, "");
}
#endif

TEST(BatchTests, HugeAndHostileLinesAreAnswered) {
    std::string const brackets(1000000, '(');
    std::string const digits(10000000, '7');
    std::string const name(10000000, 'x');
    std::string input = "{\"id\":1,\"text\":\"" + brackets + "\"}\n";
    input += "{\"id\":2,\"text\":\"" + digits + "\"}\n";
    input += "{\"id\":3,\"text\":\"" + name + "\"}\n";
    input += "{\"id\":4,\"text\":\"a\\u0000b\"}\n";
    input +=
        "{\"id\":" + std::string(1000000, '[') + std::string(1000000, ']') + ",\"text\":\"2\"}\n";
    input += std::string(1000000, '[') + "\n";
    input += "{\"id\":7,\"text\":\"\"}\n";
    input += "{\"id\":8,\"text\":\"2 cm^1000000000\"}\n";
    Outcome const outcome = runConsole({"batch"}, input);
    EXPECT_EQ(outcome.status, 1);
    std::vector<std::string> const lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), 8u);
    auto const holds = [&](std::size_t i, char const * text) {
        EXPECT_NE(lines[i].find(text), std::string::npos) << i;
    };
    holds(0, "\"result\":\"failedToParse\",\"position\":1000,");
    holds(1, "\"parsed\":true,");
    holds(2, "\"result\":\"abruptTermination\"");
    holds(3, "[14,0,3,\"a\\u0000b\"]");
    holds(4, "]]]]]],\"tokens\":[[1,0,0,\"\"],[11,0,1,\"2\"],");
    holds(5, "{\"id\":null,\"error\":\"");
    holds(6, "\"result\":\"expressionIsEmpty\"");
    holds(7, "\"result\":\"failedToParse\",\"position\":4,");
}

json settingsObject(Units::UnitDisplaySettings const & settings) {
    json object = json::object();
    for (Units::UnitDisplaySettingsField const & field : Units::unitDisplaySettingsFields()) {
        double const value = field.get(settings);
        if (field.kind == Units::ESettingsField::Flag)
            object[field.name] = value != 0.0;
        else
            object[field.name] = value;
    }
    return object;
}

TEST(BatchTests, EveryWorkedExpressionIsReproduced) {
    std::string input;
    for (Expressions::WorkedExpression const & row : Expressions::workedExpressions()) {
        json line{{"text", utf8(row.expression)}, {"context", utf8(row.context)}};
        line["display"] = row.displayUnit[0] ? json(utf8(row.displayUnit)) : json();
        input += line.dump() + '\n';
    }
    Outcome const outcome = runConsole({"batch"}, input);
    EXPECT_EQ(outcome.status, 0);
    std::vector<std::string> const lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), 266u);
    ASSERT_EQ(lines.size(), Expressions::workedExpressions().size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        Expressions::WorkedExpression const & row = Expressions::workedExpressions()[i];
        SCOPED_TRACE(utf8(row.expression) + " in " + utf8(row.context));
        json const answer = json::parse(lines[i]);
        EXPECT_EQ(answer["parsed"], row.parsed);
        EXPECT_EQ(answer["evaluated"], row.evaluates);
        if (!row.evaluates) continue;
        EXPECT_LT(std::fabs(answer["value"].get<double>() - row.value), 1e-08);
        if (row.formattedResult[0]) {
            EXPECT_EQ(answer["formatted"], utf8(row.formattedResult));
        }
        if (row.rebuiltExpression[0]) {
            EXPECT_EQ(answer["rebuilt"], utf8(row.rebuiltExpression));
        }
    }
}

TEST(BatchTests, EveryWorkedDisplayIsReproduced) {
    Units::UnitDisplaySettings settings = Expressions::nonStandardSettings();
    std::vector<Expressions::WorkedDisplay const *> rows;
    std::string input;
    for (Expressions::WorkedDisplay const & row : Expressions::workedDisplays()) {
        if (Expressions::applyControlRow(row, settings)) continue;
        rows.push_back(&row);
        json line{{"text", utf8(row.expression)}, {"context", utf8(row.context)}};
        input += line.dump() + '\n';
        line["settings"] = settingsObject(settings);
        input += line.dump() + '\n';
    }
    EXPECT_EQ(Expressions::workedDisplays().size() - rows.size(), 3u);
    Outcome const outcome = runConsole({"batch"}, input);
    EXPECT_EQ(outcome.status, 0);
    std::vector<std::string> const lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), 2 * rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE(utf8(rows[i]->expression) + " in " + utf8(rows[i]->context));
        json const standard = json::parse(lines[2 * i]);
        json const changed = json::parse(lines[2 * i + 1]);
        EXPECT_LT(std::fabs(standard["value"].get<double>() - rows[i]->value), 1e-08);
        auto const same = [](json const & got, wchar_t const * wanted) {
            if (wanted[0]) {
                EXPECT_EQ(got, utf8(wanted));
            }
        };
        same(standard["formatted"], rows[i]->formattedResultStandard);
        same(standard["rebuilt"], rows[i]->rebuiltExpressionStandard);
        same(changed["formatted"], rows[i]->formattedResultNonStandard);
        same(changed["rebuilt"], rows[i]->rebuiltExpressionNonStandard);
    }
}

} // namespace

} // namespace Vn::Console::Tests
