// What a shell offers in a call of the console.

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/Support/Process.h"

namespace Vn::Console::Tests {

namespace {

using Words = std::vector<std::string>;

Words linesOf(std::string const & text) {
    std::istringstream stream(text);
    Words lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// What the program answers for a call whose last word was begun.
Words offered(Words words) {
    words.insert(words.begin(), {"shell-completion", "--"});
    Outcome const outcome = runConsole(words);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    return linesOf(outcome.out);
}

bool offers(Words const & words, std::string const & word) {
    Words const all = offered(words);
    return std::find(all.begin(), all.end(), word) != all.end();
}

TEST(ShellCompletionTests, WordsAreOfferedWhereTheyCanStand) {
    struct Row {
        Words words;
        Words offered;
    };
    Words const files{":files"};
    Row const rows[] = {
        {{"ba"}, {"batch"}},
        {{"un"}, {"units"}},
        {{"--lan"}, {"--language"}},
        {{"--language", "d"}, {"de"}},
        {{"--language=f"}, {"--language=fr"}},
        {{"--language", "de", "eva"}, {"eval"}},
        {{"eval", "--dis"}, {"--display"}},
        {{"eval", "--no"}, {"--no-tokens"}},
        {{"eval", "--unit", "nautical"}, {"nauticalMile"}},
        {{"eval", "-u", "nautical"}, {"nauticalMile"}},
        {{"eval", "--unit=nautical"}, {"--unit=nauticalMile"}},
        {{"eval", "--kind", "Leng"}, {"Length"}},
        {{"eval", "--set", "len"}, {"lengthDisplay="}},
        {{"eval", "--set=len"}, {"--set=lengthDisplay="}},
        {{"eval", "--set", "lengthDisplay="},
         {"lengthDisplay=0", "lengthDisplay=1", "lengthDisplay=2"}},
        {{"eval", "--set=compressUnits=t"}, {"--set=compressUnits=true"}},
        {{"eval", "--set", "generalPrecision="}, {}}, // a number
        {{"eval", "--set", "nothing="}, {}},
        {{"eval", "--document", "a"}, files},
        {{"eval", "--document=a"}, files},
        {{"eval", "--precision", "1"}, {}},
        {{"eval", "--json", "--disp"}, {"--display"}},
        {{"eval", "--json=", ""}, {}},
        {{"eval", "--", "--dis"}, {}},
        {{"eval", "2 in", ""}, {}},
        {{"batch", ""}, files},
        {{"batch", "a.jsonl", ""}, {}},
        {{"document", "a"}, files},
        {{"document", "a.vnd", "und"}, {"undo"}},
        {{"document", "--new", "a.vnd", "make,", "tre"}, {"tree"}},
        {{"mass", "--override", "m"}, {"mass="}},
        {{"options", "re"}, {"reset"}},
        {{"options", "set", "generalP"}, {"generalPrecision"}},
        {{"options", "set", "generalPrecision", ""}, {}},
        {{"options", "set", "compressUnits", ""}, {"false", "true"}},
        {{"options", "get", "compressUnits", ""}, {}},
        {{"options", "set", "specifiedB"}, {}}, // no preference
        {{"options", "path", ""}, {}},
        {{"--", "ev"}, {}},
        {{"shell-c"}, {}},
        {{"nothing", "el"}, {}},
    };
    for (Row const & row : rows) {
        std::string shown;
        for (std::string const & word : row.words) shown += word + '|';
        EXPECT_EQ(offered(row.words), row.offered) << shown;
    }
    EXPECT_TRUE(offers({"command", "Uni"}, "Units.List"));
    EXPECT_TRUE(offers({"self-test", ""}, "SmokeTest"));
    EXPECT_TRUE(offers({"units", "Len"}, "Length"));
}

// Nothing that people are told of is missing.
TEST(ShellCompletionTests, EverySubcommandAndOptionIsOffered) {
    Words const all = offered({""});
    EXPECT_GE(all.size(), 10u);
    unsigned told = 0;
    for (std::string const & name : all) {
        Words const options = offered({name, "--"});
        for (std::string const & line : linesOf(runConsole({name, "--help"}).out)) {
            if (!line.starts_with("  -")) continue;
            std::size_t const begin = line.find("--");
            std::string const option = line.substr(begin, line.find(' ', begin) - begin);
            EXPECT_NE(std::find(options.begin(), options.end(), option), options.end())
                << name << ' ' << option;
            ++told;
        }
    }
    EXPECT_GT(told, 30u);
    EXPECT_EQ(runConsole({"--help"}).out.find("shell-completion"), std::string::npos);
}

TEST(ShellCompletionTests, AnyWordsAreTaken) {
    for (Words const & words :
         {Words{}, Words{""}, Words{"--"}, Words{"-"}, Words{"="}, Words{"eval", "--=", ""},
          Words{"[", "++", "x"}, Words{std::string(20000, 'x')}})
        offered(words);
}

TEST(ShellCompletionTests, PreferencesAreOfferedAndAllOfThem) {
    Words names;
    for (std::string const & line : linesOf(runConsole({"options", "list"}).out)) {
        std::istringstream words(line.substr(2));
        words >> names.emplace_back();
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names.size(), 15u);
    EXPECT_EQ(offered({"options", "set", ""}), names);
    EXPECT_EQ(offered({"options", "reset", ""}), names);
}

#ifndef _WIN32 // which has none of these shells
// What bash offers for words as it parts them.
std::string inBash(std::string const & words, int begun) {
    // By lines of its input, so that words have quotes of any kind.
    Outcome const outcome =
        runShell("bash -s \"$VNCONSOLE\"", "source \"" VN_SHELL_COMPLETION "/vnconsole.bash\"\n"
                                           "COMP_WORDS=(" +
                                               words + ")\nCOMP_CWORD=" + std::to_string(begun) +
                                               "\n_vnconsole \"$1\"\necho \"${COMPREPLY[*]}\"\n");
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
}

TEST(ShellCompletionTests, BashAsksTheProgram) {
    EXPECT_EQ(inBash("vnconsole ba", 1), "batch\n");
    EXPECT_EQ(inBash("vnconsole eval --unit nautical", 3), "nauticalMile\n");
    EXPECT_EQ(inBash("vnconsole eval --unit = nautical", 4), "nauticalMile\n");
    EXPECT_EQ(inBash("vnconsole eval --language = \"\"", 4), "de en fr ja\n");
    EXPECT_EQ(inBash("vnconsole eval --set len", 3), "lengthDisplay=\n");
    EXPECT_EQ(inBash("vnconsole batch \"\"", 2), "\n"); // files, which bash knows
    EXPECT_EQ(inBash("vnconsole nothing x", 2), "\n");
    // After each "=" of several.
    EXPECT_EQ(inBash("vnconsole eval --set = len", 4), "lengthDisplay=\n");
    EXPECT_EQ(inBash("vnconsole eval --set = lengthDisplay =", 5), "0 1 2\n");
    EXPECT_EQ(inBash("vnconsole eval --set lengthDisplay = 2", 5), "2\n");
    EXPECT_EQ(inBash("vnconsole eval --set generalPrecision =", 4), "\n"); // nothing to add
}

// The words stand here as bash has them, with their quotes.
TEST(ShellCompletionTests, BashCompletesWithinQuotes) {
    EXPECT_EQ(inBash(R"(vnconsole eval --unit '"nautical')", 3), "nauticalMile\n");
    EXPECT_EQ(inBash(R"(vnconsole eval --unit "'nautical")", 3), "nauticalMile\n");
    EXPECT_EQ(inBash(R"(vnconsole eval --unit = '"nautical')", 4), "nauticalMile\n");
    EXPECT_EQ(inBash(R"(vnconsole eval '"--unit=nautical')", 2), "--unit=nauticalMile\n");
    EXPECT_EQ(inBash(R"(vnconsole "'ba")", 1), "batch\n");
    EXPECT_EQ(inBash(R"(vnconsole 'e"val"' --unit 'n\autical')", 3), "nauticalMile\n");
    EXPECT_EQ(inBash(R"(vnconsole '"document"' '"a b.vnd"' und)", 3), "undo\n");
    EXPECT_EQ(inBash(R"(vnconsole batch '"a b')", 2), "\n"); // files, which bash knows
}

TEST(ShellCompletionTests, ZshAsksTheProgram) {
    if (runShell("command -v zsh").status != 0) GTEST_SKIP() << "there is no zsh here";
    auto const inZsh = [](std::string const & words, int begun) {
        return runShell("zsh -f -c 'compadd() { print -r -- \"$@\" }; _files() { print files }; "
                        "compset() { print -r -- \"$@\" }; words=(\"$VNCONSOLE\" " +
                        words + "); CURRENT=" + std::to_string(begun) +
                        "; PREFIX=${words[CURRENT]#\\\"}; source \"" VN_SHELL_COMPLETION
                        "/_vnconsole\"'")
            .out;
    };
    EXPECT_EQ(inZsh("ba", 2), "-S  --\n-- batch\n");
    EXPECT_EQ(inZsh("eval --set len", 4), "-S  -- lengthDisplay=\n--\n");
    EXPECT_EQ(inZsh("eval --document=x", 3), "-P *=\nfiles\n");
    EXPECT_EQ(inZsh("batch \"\"", 3), "files\n");
    // Within a quote that isn't closed, which stands in front of the prefix.
    EXPECT_EQ(inZsh("eval --unit \\\"nautical", 4), "-S  --\n-- nauticalMile\n");
    EXPECT_EQ(inZsh("\\\"eval\\\" --unit nautical", 4), "-S  --\n-- nauticalMile\n");
}
#endif

} // namespace

} // namespace Vn::Console::Tests
