#include "Platform/Base/OS.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <typeinfo>

#include <gtest/gtest.h>

#include "Platform/Base/Initializer.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommandService.h"
#include "Platform/Base/UnitTest.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using Vn::OS::Module;

std::filesystem::path const c_module = VN_TEST_MODULE;

TEST(OSTests, ModuleFilesEndInThePlatformsExtension) {
    EXPECT_EQ(c_module.extension().wstring(), Vn::OS::platformModuleExtension());
}

TEST(OSTests, ExecutableDirectoryHoldsThisProgram) {
    std::filesystem::path const directory = Vn::OS::executableDirectory();
    ASSERT_TRUE(directory.is_absolute());
    bool found = false;
    for (auto const & entry : std::filesystem::directory_iterator(directory))
        found = found || entry.path().stem() == "VnBase10Tests";
    EXPECT_TRUE(found) << directory;
}

#ifndef _WIN32 // where Ctrl-C isn't a signal, and needs a console

TEST(OSTests, AnInterruptionIsNotedAndForgotten) {
    EXPECT_FALSE(Vn::OS::wasInterrupted());
    Vn::OS::NotedInterruptions const noted;
    EXPECT_FALSE(Vn::OS::wasInterrupted());
    std::raise(SIGINT);
    EXPECT_TRUE(Vn::OS::wasInterrupted());
    Vn::OS::forgetInterruption();
    EXPECT_FALSE(Vn::OS::wasInterrupted());
}

TEST(OSTests, NotesOfInterruptionsNest) {
    {
        Vn::OS::NotedInterruptions const outer;
        { Vn::OS::NotedInterruptions const inner; }
        std::raise(SIGINT);
        EXPECT_TRUE(Vn::OS::wasInterrupted());
    }
    EXPECT_FALSE(Vn::OS::wasInterrupted());
}

TEST(OSTests, AfterwardsASignalDoesWhatItDidBefore) {
    static volatile std::sig_atomic_t s_count = 0;
    auto * const before = std::signal(SIGINT, [](int) { s_count = s_count + 1; });
    {
        Vn::OS::NotedInterruptions const noted;
        std::raise(SIGINT);
    }
    EXPECT_EQ(s_count, 0);
    std::raise(SIGINT);
    EXPECT_EQ(s_count, 1);
    // A process that ignores it goes on to.
    std::signal(SIGINT, SIG_IGN);
    {
        Vn::OS::NotedInterruptions const noted;
        std::raise(SIGINT);
        EXPECT_FALSE(Vn::OS::wasInterrupted());
    }
    std::signal(SIGINT, before);
}

#endif

TEST(OSTests, ClassNamesReadAsInTheSource) {
    EXPECT_EQ(Vn::OS::className(typeid(Module)), "Vn::OS::Module");
}

// What a module registers is there once it is loaded, and gone once it is unloaded.
TEST(OSTests, LoadedModuleRegistersItself) {
    auto & service = Vn::TextCommandService::get();
    ASSERT_EQ(service.find(L"TestModule", L"Greet"), nullptr);

    Module module;
    Vn::Status const status = module.load(c_module);
    ASSERT_TRUE(status.ok()) << status.toString();
    ASSERT_TRUE(module.isLoaded());
    EXPECT_EQ(service.run(L"TestModule.Greet \"the world\"").text, L"Hello the world");

    auto const initialized = reinterpret_cast<int (*)()>(module.symbol("testModuleInitialized"));
    ASSERT_NE(initialized, nullptr);
    EXPECT_EQ(initialized(), 0);
    Vn::Initializer::runAll();
    EXPECT_EQ(initialized(), 1);
    auto const reports = Vn::UnitTest::run("TestModule");
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_TRUE(reports.front().passed());

    EXPECT_EQ(module.symbol("noSuchName"), nullptr);
    module.unload();
    EXPECT_FALSE(module.isLoaded());
    EXPECT_EQ(service.find(L"TestModule", L"Greet"), nullptr);
    EXPECT_TRUE(Vn::UnitTest::run("TestModule").empty());
}

TEST(OSTests, ModuleUnloadedBeforeItsInitializerRanIsForgotten) {
    {
        Module module;
        ASSERT_TRUE(module.load(c_module).ok());
    }
    Vn::Initializer::runAll();
}

TEST(OSTests, MovedModuleStaysLoaded) {
    Module first;
    ASSERT_TRUE(first.load(c_module).ok());
    Module second(std::move(first));
    EXPECT_NE(second.symbol("testModuleInitialized"), nullptr);
    first = std::move(second);
    EXPECT_NE(first.symbol("testModuleInitialized"), nullptr);
}

TEST(OSTests, ModuleIsLoadedFromADirectoryOfAnyName) {
    Vn::Testing::TemporaryDirectory const directory;
    auto const place = directory.path() / u8"a b \u00E4 \u65E5\u672C";
    std::filesystem::create_directory(place);
    std::filesystem::copy_file(c_module, place / c_module.filename());
    Module module;
    Vn::Status const status = module.load(place / c_module.filename());
    ASSERT_TRUE(status.ok()) << status.toString();
    EXPECT_NE(module.symbol("testModuleInitialized"), nullptr);
    Module none;
    Vn::Status const missing = none.load(place / "none");
    EXPECT_FALSE(missing);
    EXPECT_NE(missing.toString().find("\u00E4 \u65E5\u672C"), std::string::npos)
        << missing.toString();
}

TEST(OSTests, TheProcessTellsWhichModulesItHas) {
    EXPECT_FALSE(Module::isInProcess(c_module));
    Module first;
    ASSERT_TRUE(first.load(c_module).ok());
    EXPECT_TRUE(Module::isInProcess(c_module));
    {
        Module second;
        ASSERT_TRUE(second.load(c_module).ok());
        first.unload();
        EXPECT_TRUE(Module::isInProcess(c_module));
    }
    EXPECT_FALSE(Module::isInProcess(c_module));
    EXPECT_FALSE(Module::isInProcess(""));
    EXPECT_FALSE(Module::isInProcess("noSuchModule"));
}

TEST(OSTests, TheLibrariesStandInOneDirectory) {
    std::filesystem::path const directory = Vn::OS::libraryDirectory();
    ASSERT_TRUE(directory.is_absolute());
    EXPECT_EQ(directory, std::filesystem::canonical(c_module).parent_path());
}

// What was copied by half would be mapped to the end.
TEST(OSTests, AModuleThatIsCutOffIsNotLoaded) {
    Vn::Testing::TemporaryDirectory const directory;
    auto const file = directory.path() / c_module.filename();
    auto const size = std::filesystem::file_size(c_module);
    for (auto const part : {size - size / 4, size / 2, size / 8, std::uintmax_t{600},
                            std::uintmax_t{100}, std::uintmax_t{63}, std::uintmax_t{1}}) {
        std::filesystem::remove(file);
        std::filesystem::copy_file(c_module, file);
        std::filesystem::resize_file(file, part);
        Module module;
        // Some of the end isn't needed.
        Vn::Status const status = module.load(file);
        if (part < size / 2) {
            EXPECT_FALSE(status) << part;
        }
        EXPECT_EQ(module.isLoaded(), status.ok()) << part;
    }
}

TEST(OSTests, LibrariesOfTheSystemAreFoundByTheirNames) {
#ifdef _WIN32
    constexpr char c_name[] = "kernel32.dll";
    constexpr char c_symbol[] = "GetTickCount";
#else
    constexpr char c_name[] = "libm.so.6";
    constexpr char c_symbol[] = "cos";
#endif
    Module module;
    ASSERT_TRUE(module.loadLibrary(c_name));
    EXPECT_NE(module.symbol(c_symbol), nullptr);
    EXPECT_EQ(module.loadLibrary("no-such-library.so").code(), Vn::StatusNotFound);
    EXPECT_FALSE(module.isLoaded());
    for (char const * const bad :
         {"", "./libm.so.6", "/lib/libm.so.6", "..\\kernel32.dll", "C:x.dll"})
        EXPECT_EQ(module.loadLibrary(bad).code(), Vn::StatusInvalidArgument) << bad;
}

TEST(OSTests, MissingModuleIsNotFound) {
    Module module;
    Vn::Status const status = module.load(c_module.parent_path() / "noSuchModule.so");
    EXPECT_EQ(status.code(), Vn::StatusNotFound);
    EXPECT_NE(status.toString().find("noSuchModule"), std::string::npos);
    EXPECT_FALSE(module.isLoaded());
    EXPECT_EQ(module.symbol("testModuleInitialized"), nullptr);
}

TEST(OSTests, FileThatIsNoModuleFailsWithTheSystemsReason) {
    auto const file = std::filesystem::path(testing::TempDir()) / "VnBase10TestsNoModule.so";
    std::ofstream(file) << "not a module";
    Module module;
    Vn::Status const status = module.load(file);
    EXPECT_EQ(status.code(), Vn::StatusFailed);
    EXPECT_FALSE(status.cause().empty());
    std::filesystem::remove(file);
}

TEST(OSTests, RenamedFileTakesThePlaceOfAnother) {
    std::filesystem::path const directory = testing::TempDir();
    auto const from = directory / "VnBase10TestsFrom";
    auto const to = directory / "VnBase10TestsTo";
    std::ofstream(from) << "new";
    std::ofstream(to) << "old";
    Vn::Status status = Vn::OS::renameFile(from, to);
    EXPECT_TRUE(status) << status.toString();
    EXPECT_FALSE(std::filesystem::exists(from));
    std::string content;
    std::ifstream(to) >> content;
    EXPECT_EQ(content, "new");
    status = Vn::OS::syncDirectory(directory);
    EXPECT_TRUE(status) << status.toString();

    status = Vn::OS::renameFile(from, to);
    EXPECT_FALSE(status);
    EXPECT_NE(status.toString().find("VnBase10TestsFrom"), std::string::npos);
    std::filesystem::remove(to);
}

TEST(OSTests, ClassNamesAreReadableFromWhatATypeSays) {
    EXPECT_EQ(Vn::OS::className(typeid(Module).name()), "Vn::OS::Module");
    EXPECT_EQ(Vn::OS::className("no name of a type"), "no name of a type");
}

TEST(OSTests, TextsOfErrorsAreUtf8OnOneLine) {
    auto const textOf = [](int error) {
        return Vn::OS::errorText(std::error_code(error, std::system_category()));
    };
    for (int const error : {2, 3, 5, 13, 123456789}) {
        std::string const text = textOf(error);
        std::wstring decoded;
        EXPECT_FALSE(text.empty()) << error;
        EXPECT_TRUE(Vn::Text::fromUtf8(text, decoded)) << error;
        EXPECT_EQ(text.find_first_of("\r\n"), text.npos) << text;
    }
    EXPECT_NE(textOf(2), textOf(5));
    std::error_code const missing = std::make_error_code(std::errc::no_such_file_or_directory);
    EXPECT_EQ(Vn::OS::errorText(missing), missing.message());
}

} // namespace
