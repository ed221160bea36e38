// What the program reads of its arguments before it loads the commands that understand them.

#include <gtest/gtest.h>
#include <optional>
#include <random>

#include "Console/CommandLine/CommandLine.h"
#include "Console/Host/EarlyOptions.h"

namespace Vn::Console::Tests {

namespace {

using Arguments = std::vector<std::string>;

TEST(EarlyOptionsTests, OptionsAreReadWhereverTheyStand) {
    struct Row {
        Arguments arguments;
        char const * optionsDirectory;
        char const * language;
        char const * subcommand;
    };
    Row const rows[] = {
        {{}, "", "", ""},
        {{"--options", "a"}, "a", "", ""},
        {{"--options=a"}, "a", "", ""},
        {{"--options", "a", "eval", "1"}, "a", "", "eval"},
        {{"eval", "--options", "a", "1"}, "a", "", "eval"},
        {{"eval", "1", "--options=a"}, "a", "", "eval"},
        {{"--language", "de", "eval", "--options=a", "1"}, "a", "de", "eval"},
        {{"--options=a=b", "tour"}, "a=b", "", "tour"},
        {{"--options", "a b", "tour"}, "a b", "", "tour"},
        {{"--options", "--", "tour"}, "--", "", "tour"},
        {{"--options=", "a", "tour"}, "a", "", "tour"},
        {{"--options", "", "tour"}, "", "", "tour"},
        {{"--options", "[a", "tour"}, "[a", "", "tour"},
        {{"--options=[a]", "tour"}, "[a]", "", "tour"},
        {{"--options", "++", "tour"}, "++", "", "tour"},
        // Not the options, but texts, or the values of others.
        {{"eval", "--", "--options", "a"}, "", "", "eval"},
        {{"eval", "--", "--options=a"}, "", "", "eval"},
        {{"eval", "--unit", "--options", "1"}, "", "", "eval"},
        {{"eval", "-u", "--options=a", "1"}, "", "", "eval"},
        {{"eval", "-u=", "--options=a", "1"}, "a", "", "eval"},
        {{"eval", "-ucm", "--options=a", "1"}, "a", "", "eval"},
        {{"eval", "--unit=cm", "--options=a", "1"}, "a", "", "eval"},
        {{"eval", "--unit", "--", "--options=a", "1"}, "a", "", "eval"},
        {{"eval", "-options", "a"}, "", "", "eval"},
        {{"eval", "/options:a"}, "", "", "eval"},
        {{"/options:a", "/language:de"}, "", "", "/options:a"},
    };
    for (Row const & row : rows) {
        std::string line;
        for (std::string const & argument : row.arguments) line += argument + ' ';
        EarlyOptions const options = readEarlyOptions(row.arguments);
        EXPECT_EQ(options.optionsDirectory, row.optionsDirectory) << line;
        EXPECT_EQ(options.language, row.language) << line;
        EXPECT_EQ(options.subcommand, row.subcommand) << line;
        // What the command line makes of it, if it takes it.
        std::optional<EarlyOptions> const understood = understoodOptions(row.arguments);
        if (understood) {
            EXPECT_TRUE(*understood == options) << line;
        }
    }
}

TEST(EarlyOptionsTests, TheCommandLineUnderstandsTheSame) {
    char const * const words[] = {
        "--options",
        "--options=x",
        "--options=",
        "--language",
        "--language=de",
        "--unit",
        "--unit=cm",
        "--unit=",
        "-u",
        "-ucm",
        "-u=",
        "--display",
        "-d",
        "-dcm",
        "--document",
        "--system",
        "--kind",
        "--id",
        "--standard",
        "--json",
        "--density",
        "--density=1",
        "--material",
        "--override",
        "--override=mass=1",
        "--new",
        "--options=a=b",
        "[a]",
        "[",
        "++",
        "1",
        "-1",
        "a",
        "",
        "/options:x",
        "x y",
    };
    char const * const subcommands[] = {"eval",  "mass",    "document", "units",
                                        "batch", "add-ins", "self-test"};
    std::mt19937 random(7);
    auto const below = [&](std::size_t end) { return random() % end; };
    std::size_t taken = 0;
    for (int round = 0; round < 20000; ++round) {
        Arguments arguments;
        std::string line;
        std::size_t const count = below(8);
        std::size_t const at = below(3);
        for (std::size_t i = 0; i < count; ++i) {
            arguments.emplace_back(i == at ? subcommands[below(std::size(subcommands))]
                                           : words[below(std::size(words))]);
            line += arguments.back() + ' ';
        }
        std::optional<EarlyOptions> const understood = understoodOptions(arguments);
        if (!understood) continue;
        ++taken;
        EXPECT_TRUE(*understood == readEarlyOptions(arguments)) << line;
    }
    EXPECT_GT(taken, 500U);
}

} // namespace

} // namespace Vn::Console::Tests
