// The program as a host: what it loads, and what it does without.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Console/CommandLine/SelfTestCommand.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/Text.h"
#include "Tests/Base/TestOptions.h"
#include "Tests/Support/Process.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Console::Tests {

namespace {

namespace fs = std::filesystem;
using Testing::utf8;

std::string module(std::string const & name) {
    return name + Text::toUtf8(OS::platformModuleExtension());
}

// The columns with one blank between them, however wide they are.
std::string narrow(std::string const & table) {
    std::string result;
    for (char const c : table)
        if (c != ' ' || !result.ends_with(' ')) result += c;
    return result;
}

constexpr char c_server[] = "Server/CommonData/Configuration/VnCommonData10.xml";
constexpr char c_commands[] = "Server/Console/Configuration/VnConsole10.xml";
constexpr char c_schema[] = "Server/AddInMgr/Configuration/Schema/AddinSchema.xsd";
constexpr char c_whatToDo[] = "Install vnconsole again, with all of its files; \"vnconsole "
                              "add-ins\" lists what was found.\n";

void writeFile(fs::path const & file, std::string const & text) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
}

// Exchanges a piece of a file for another, and says whether it was there.
void replaceInFile(fs::path const & file, std::string const & from, std::string const & to) {
    std::string text = Testing::contentOf(file);
    std::size_t at = text.find(from);
    ASSERT_NE(at, text.npos) << from;
    for (; at != text.npos; at = text.find(from, at + to.size())) text.replace(at, from.size(), to);
    writeFile(file, text);
}

// The program in a root directory of its own, with the data of the one that was built.
class AddInsTests : public testing::Test {
protected:
    AddInsTests() {
        fs::path const program = VN_CONSOLE_PROGRAM;
        fs::create_directory(root() / "bin");
        fs::copy_file(program, m_program);
        for (char const * const file : {c_server, c_commands, c_schema}) {
            fs::create_directories((root() / file).parent_path());
            fs::copy_file(program.parent_path().parent_path() / file, root() / file);
        }
#ifdef _WIN32
        // Libraries are looked for beside the program.
        for (auto const & entry : fs::directory_iterator(program.parent_path()))
            if (entry.path().extension() == ".dll")
                fs::copy_file(entry.path(), root() / "bin" / entry.path().filename());
#endif
    }

    fs::path const & root() const { return m_directory.path(); }
    Outcome run(std::vector<std::string> const & arguments) const {
        return runProgram(utf8(m_program), arguments);
    }
    // As the program writes it.
    std::string path(char const * below) const {
        return Text::toUtf8(PathInfo::toText(root())) + '/' + below;
    }
    // What the commands say that can't be had.
    std::string told() const {
        Outcome const outcome = run({"eval", "1"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(outcome.err.ends_with(c_whatToDo)) << outcome.err;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 2) << outcome.err;
        EXPECT_EQ(outcome.err.rfind("vnconsole: ", 0), 0U) << outcome.err;
        return outcome.err.substr(0, outcome.err.find('\n'));
    }
    // The states of all add-ins, in order.  Without commands the reason is told besides.
    std::string states(int status) const {
        Outcome const outcome = run({"add-ins", "--json"});
        EXPECT_EQ(outcome.status, status);
        bool const hasCommands = run({"--version"}).status == 0;
        EXPECT_EQ(outcome.err, hasCommands ? "" : told() + '\n');
        std::string text;
        std::istringstream lines(outcome.out);
        for (std::string line; std::getline(lines, line);) {
            nlohmann::json const object = nlohmann::json::parse(line);
            EXPECT_EQ(object.size(), 5U);
            EXPECT_EQ(object.at("reason").is_null(), object.at("state") == "loaded");
            text +=
                (object.at("identifier").is_null() ? "?"
                                                   : object.at("identifier").get<std::string>()) +
                ' ' + object.at("state").get<std::string>() + '\n';
        }
        return text;
    }

private:
    Testing::TemporaryDirectory const m_directory;
    fs::path const m_program = m_directory.path() / "bin" / fs::path(VN_CONSOLE_PROGRAM).filename();
};

TEST_F(AddInsTests, AddInsAreListedInTheOrderInWhichTheyAreLoaded) {
    Outcome const outcome = run({"add-ins"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(narrow(outcome.out),
              "identifier module asset type state reason\nCommonData " + module("VnCommonData10") +
                  " VantorModel loaded -\nConsole " + module("VnConsole10") + " - loaded -\n");
    EXPECT_EQ(run({"add-ins", "--json"}).out,
              R"({"identifier":"CommonData","module":")" + module("VnCommonData10") +
                  R"(","assetType":"VantorModel","state":"loaded","reason":null})" + '\n' +
                  R"({"identifier":"Console","module":")" + module("VnConsole10") +
                  R"(","assetType":null,"state":"loaded","reason":null})" + '\n');
}

TEST_F(AddInsTests, TheListIsACommandLikeOthers) {
    EXPECT_NE(run({"--help"}).out.find("\n  add-ins "), std::string::npos);
    EXPECT_NE(run({"add-ins", "--help"}).out.find("--json"), std::string::npos);
    EXPECT_EQ(run({"add-ins", "more"}).status, 2);
    EXPECT_EQ(run({"add-ins", "--more"}).status, 2);
}

TEST_F(AddInsTests, WithoutTheServersConfigurationEachCommandSaysWhatIsMissing) {
    fs::remove(root() / c_server);
    EXPECT_EQ(told(), "vnconsole: there is no " + path(c_server));
    for (std::vector<std::string> const & arguments :
         std::vector<std::vector<std::string>>{{},
                                               {"--help"},
                                               {"units"},
                                               {"document", "--new", "a.vnd"},
                                               {"self-test"},
                                               {"nothing"}}) {
        Outcome const outcome = run(arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.err, "vnconsole: there is no " + path(c_server) + '\n' + c_whatToDo);
    }
    EXPECT_EQ(states(1), "Console refused\n");
    Outcome const outcome = run({"add-ins"});
    EXPECT_NE(outcome.out.find("requires 'CommonData'"), std::string::npos) << outcome.out;
}

TEST_F(AddInsTests, WithoutTheirOwnConfigurationThereAreNoCommands) {
    fs::remove(root() / c_commands);
    EXPECT_EQ(told(), "vnconsole: there is no " + path(c_commands));
    EXPECT_EQ(states(1), "CommonData loaded\n");
}

TEST_F(AddInsTests, WithoutAnyConfigurationThereIsNothing) {
    fs::remove_all(root() / "Server");
    fs::create_directory(root() / "Server");
    EXPECT_EQ(told(), "vnconsole: there is no " + path(c_server));
    EXPECT_EQ(states(1), "");
    EXPECT_EQ(run({"add-ins"}).out, "identifier  module  asset type  state  reason\n");
}

TEST_F(AddInsTests, ABrokenConfigurationIsTold) {
    struct Row {
        char const * text;
        char const * reason;
    };
    std::string const declaration = "<?xml version=\"1.0\"?>\n";
    Row const rows[] = {
        {"", ""},
        {"AddIn", ""},
        {"<AddIn", ""},
        {"<Add-In identifier='CommonData' module='VnCommonData10'/>", "Add-In"},
        {"<AddIn identifier='CommonData'/>", "module"},
        {"<AddIn identifier='CommonData' module='../VnCommonData10'/>", "module"},
        {"\x1B[31m<AddIn/>", ""},
        {"<!DOCTYPE AddIn [<!ENTITY a 'a'>]><AddIn identifier='&a;' module='a'/>", ""},
    };
    for (Row const & row : rows) {
        writeFile(root() / c_server, row.text);
        std::string const line = told();
        EXPECT_NE(line.find("VnCommonData10.xml"), std::string::npos) << line;
        EXPECT_NE(line.find(row.reason), std::string::npos) << line;
        EXPECT_EQ(line.find('\x1B'), std::string::npos) << line;
        EXPECT_EQ(states(1), "? refused\nConsole refused\n") << row.text;
    }
    // Another identifier: the server is there, but isn't known by its name.
    writeFile(root() / c_server,
              declaration + "<AddIn identifier='Other' module='VnCommonData10'/>");
    EXPECT_NE(told().find("requires 'CommonData', which isn't there"), std::string::npos);
    EXPECT_EQ(states(1), "Other loaded\nConsole refused\n");
}

TEST_F(AddInsTests, AMissingSchemaIsTold) {
    fs::remove(root() / c_schema);
    EXPECT_NE(told().find("AddinSchema.xsd"), std::string::npos) << told();
    EXPECT_EQ(states(1), "? refused\n? refused\n");
}

TEST_F(AddInsTests, AMissingModuleIsTold) {
    replaceInFile(root() / c_server, "\"VnCommonData10\"", "\"VnCommonData11\"");
    EXPECT_NE(told().find(module("VnCommonData11")), std::string::npos) << told();
    EXPECT_EQ(states(1), "CommonData failed\nConsole failed\n");
}

TEST_F(AddInsTests, ThePlatformIsNoModule) {
    // A library that is in the process and offers no add-in.
#ifdef _WIN32
    replaceInFile(root() / c_commands, "\"VnConsole10\"", "\"VnBase10\"");
#else
    replaceInFile(root() / c_commands, "\"VnConsole10\"", "\"libVnBase10\"");
#endif
    EXPECT_NE(told().find("_GetIAddIn"), std::string::npos) << told();
    EXPECT_EQ(states(1), "CommonData loaded\nConsole failed\n");
}

TEST_F(AddInsTests, AnotherAddInMayFail) {
    writeFile(root() / "Server/Other/Configuration/Other.xml",
              "<AddIn identifier='Other' module='NotThere'/>");
    Outcome const outcome = run({"eval", "1 in", "--unit", "in"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.out.find("formatted  1.00 in\n"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.err.find(module("NotThere")), std::string::npos) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    EXPECT_EQ(states(1), "CommonData loaded\nConsole loaded\nOther failed\n");
}

TEST_F(AddInsTests, ADocumentNeedsTheAssetTypeOfTheServer) {
    replaceInFile(root() / c_server, "assetType=\"VantorModel\"", "");
    EXPECT_EQ(run({"eval", "1"}).status, 0);
    fs::path const file = root() / "a.vnd";
    Outcome const outcome = run({"document", "--new", utf8(file), "new"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.err.find("names no asset type"), std::string::npos) << outcome.err;
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(AddInsTests, TheAssetTypeIsNotWrittenToTheFile) {
    fs::path const file = root() / "a.vnd";
    EXPECT_EQ(run({"document", "--new", utf8(file), "make"}).status, 0);
    EXPECT_EQ(Testing::contentOf(file).find("VantorModel"), std::string::npos);
    replaceInFile(root() / c_server, "VantorModel", "OtherModel");
    Outcome const outcome = run({"document", utf8(file), "tree"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(AddInsTests, PreferencesAreThoseOfTheOptionsWhereverTheyStand) {
    fs::path const directory = root() / "preferences";
    ASSERT_EQ(run({"--options", utf8(directory), "options", "set", "generalPrecision", "5"}).status,
              0);
    auto const formatted = [&](std::vector<std::string> arguments) {
        Outcome const outcome = run(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.err;
        std::size_t const begin = outcome.out.find("formatted  ");
        return begin == std::string::npos
                   ? outcome.out
                   : outcome.out.substr(begin + 11, outcome.out.find('\n', begin) - begin - 11);
    };
    std::string const option = "--options=" + utf8(directory);
    EXPECT_EQ(formatted({"eval", "1/3"}), "0.333");
    EXPECT_EQ(formatted({"--options", utf8(directory), "eval", "1/3"}), "0.33333");
    EXPECT_EQ(formatted({"eval", "--options", utf8(directory), "1/3"}), "0.33333");
    EXPECT_EQ(formatted({option, "eval", "1/3"}), "0.33333");
    EXPECT_EQ(formatted({"eval", "1/3", option}), "0.33333");
    EXPECT_EQ(formatted({"eval", option, "--", "1/3"}), "0.33333");
    EXPECT_EQ(formatted({"eval", option, "--standard", "1/3"}), "0.333");
    // After "--" they are texts.
    Outcome const texts = run({"eval", "--json", "--", "1/3", "--options", utf8(directory)});
    EXPECT_EQ(texts.status, 1);
    EXPECT_NE(texts.out.find("\"formatted\":\"0.333\""), std::string::npos) << texts.out;
    EXPECT_NE(texts.out.find("\"text\":\"--options\""), std::string::npos) << texts.out;
    // Where the command line would take it for an option all the same, nothing is done.
    Outcome const doubtful = run({"self-test", "SmokeTest", "--", option});
    EXPECT_EQ(doubtful.status, 2);
    EXPECT_EQ(doubtful.out, "");
}

// Windows' shell doesn't limit the memory of a process, and sanitizers need more than there is.
#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

TEST_F(AddInsTests, WithoutMemoryForTheAddInsTheProgramSaysSo) {
    unsigned refused = 0;
    bool isGood = false;
    for (int limit = 20'000; limit <= 200'000 && !isGood; limit += limit < 80'000 ? 500 : 20'000) {
        Outcome const outcome =
            runShell("ulimit -v " + std::to_string(limit) + "; \"$VNCONSOLE\" eval 1");
        // At first there is no memory for the program itself, which doesn't begin then.
        if (refused == 0 && outcome.status > 125) continue;
        isGood = outcome.status == 0;
        if (isGood) continue;
        ++refused;
        EXPECT_EQ(outcome.status, 1) << limit << ": " << outcome.err;
        EXPECT_EQ(outcome.err.rfind("vnconsole: ", 0), 0U) << limit << ": " << outcome.err;
        EXPECT_EQ(outcome.out, "") << limit;
    }
    if (refused == 0 || !isGood) GTEST_SKIP() << "memory can't be limited here";
}

#endif

TEST_F(AddInsTests, SelfChecksOfTheServerPassAndNoticeARenamedElement) {
    Outcome const good = run({"self-test", "VantorCore"});
    EXPECT_EQ(good.status, 0) << good.out << good.err;
    EXPECT_NE(good.out.find("VantorCore vnCommonDataAddInConfigureUnitTests: passed, 1 assertion"),
              std::string::npos)
        << good.out;
    replaceInFile(root() / c_server, "<AddIn ", "<AddOn ");
    EXPECT_EQ(run({"self-test", "VantorCore"}).status, 1);
}

// The same within a process that has loaded the server already.
TEST_F(AddInsTests, TheSelfCheckItselfNoticesARenamedElement) {
    std::wstring const before = PathInfo::rootDirectory(false);
    PathInfo::rootDirectory(PathInfo::toText(root()));
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(runSelfTest("VantorCore", out, err), 0) << out.str();
    replaceInFile(root() / c_server, "<AddIn ", "<AddOn ");
    EXPECT_EQ(runSelfTest("VantorCore", out, err), 1);
    EXPECT_NE(out.str().find("XMLUtility::schemaValidator(addInConfigure, addInSchema)"),
              std::string::npos)
        << out.str();
    PathInfo::rootDirectory(before);
}

} // namespace

} // namespace Vn::Console::Tests
