#include "Console/Host/Program.h"

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <string>
#include <system_error>
#include <vector>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Host/AddInsCommand.h"
#include "Console/Host/EarlyOptions.h"
#include "Console/Host/ICommandLine.h"
#include "Console/Host/Language.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/AddInMgr/AddIn.h"
#include "Platform/AddInMgr/AddInMgr.h"
#include "Platform/AddInMgr/IAddIn.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

constexpr char c_commands[] = "Console"; // the add-in that has them

// What the program doesn't do without: the configurations below the root directory, in the order in
// which they are needed.
constexpr wchar_t const * c_needed[] = {L"Server/CommonData/Configuration/VnCommonData10.xml",
                                        L"Server/Console/Configuration/VnConsole10.xml"};

// Programs that read answers need them to be the same on every machine, so the environment has no
// say in their language.
bool isForPrograms(EarlyOptions const & options, bool asJson) {
    return options.subcommand == "batch" || asJson;
}

// What depends on the language and on the preferences comes after this.
void prepareProcess(EarlyOptions const & options, bool isForPrograms) {
    std::filesystem::path const program = OS::executableDirectory();
    if (!program.empty()) {
        std::u8string const catalogues = (program.parent_path() / "share" / "locale").u8string();
        StringTable::catalogueDirectory(std::string(catalogues.begin(), catalogues.end()));
    }
    // The data is in the tree that the program is in, or else in the one of its libraries.
    std::error_code ignored;
    if (!std::filesystem::is_directory(
            PathInfo::fromText(PathInfo::rootDirectory(true) + L"Server"), ignored))
        PathInfo::rootDirectory(PathInfo::installedRoot());
    bool const isPreferred = options.language.empty() && !isForPrograms;
    StringTable::language(isPreferred ? preferredLanguage() : options.language);
    PathInfo::optionsDirectory(Text::fromUtf8(options.optionsDirectory));
}

std::wstring textOf(Status const & status) { return statusText(status); }

AddIn * configuredBy(std::filesystem::path const & file) {
    for (AddIn * const addIn : AddInMgr::get()->addIns())
        if (addIn->configurationFile() == file) return addIn;
    return nullptr;
}

// Why there are no commands: the first of what they need that isn't there.  `configured` tells
// whether the configurations as a whole could be read.
std::wstring whatIsMissing(Status const & configured) {
    std::wstring const root = PathInfo::rootDirectory(true);
    for (wchar_t const * const needed : c_needed) {
        std::filesystem::path const file = PathInfo::fromText(root + needed);
        std::error_code ignored;
        if (AddIn const * const addIn = configuredBy(file)) {
            if (Status const status = addIn->status(); !status) return textOf(status);
        } else if (!std::filesystem::exists(file, ignored)) {
            return message(L"there is no %1%", root + needed);
        }
    }
    return AddInMgr::get()->addIns().empty() ? textOf(configured)
                                             : message(L"no add-in \"Console\" has the commands");
}

} // namespace

int runProgram(std::vector<std::string> const & arguments, std::istream & in, std::ostream & out,
               std::ostream & err) {
    EarlyOptions const options = readEarlyOptions(arguments);
    bool const asJson = std::find(arguments.begin(), arguments.end(), "--json") != arguments.end();
    prepareProcess(options, isForPrograms(options, asJson));
    if (std::wstring const why = whyNotLanguage(options.language); !why.empty()) {
        told(why, err);
        return ExitBadUsage;
    }
    AddInMgr & manager = *AddInMgr::get();
    Status const configured = manager.configure();
    // Each record keeps its own reason, and only the commands can't be done without.
    static_cast<void>(manager.load());
    AddIn const * const addIn = manager.addIn(c_commands);
    auto const * const commandLine = addIn ? query<ICommandLine>(addIn->object()) : nullptr;
    bool const listsAddIns = options.subcommand == "add-ins";
    if (!commandLine && listsAddIns) {
        runAddIns(asJson, out);
        return told(printable(whatIsMissing(configured)), err);
    }
    if (!commandLine) {
        told(printable(whatIsMissing(configured)), err);
        err << Text::toUtf8(message(L"Install vnconsole again, with all of its files; "
                                    L"\"vnconsole add-ins\" lists what was found."))
            << '\n';
        return ExitBadInput;
    }
    if (!listsAddIns)
        for (AddIn const * const each : manager.addIns())
            if (Status const status = each->status(); !status) told(status, err);
    return commandLine->run(arguments, in, out, err);
}

} // namespace Vn::Console
