// Option files: loading beside the parser's own reading of the file, and saving beside the bare
// calls that put a file in the place of another one.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <libxml/parser.h>
#include <unistd.h>

#include "Platform/Base/PathInfo.h"
#include "Server/CommonData/Units/UnitDisplaySettingsOptionGroup.h"

namespace {

using namespace Vn;
using Group = Units::UnitDisplaySettingsOptionGroup;

std::filesystem::path file() {
    std::vector<std::wstring> others;
    return PathInfo::fromText(Group::get()->onPersistFile(others));
}

// A file with all options, and so many groups of others beside them.
void writeFile(int others) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Options>\n";
    auto const addGroup = [&text](std::string const & id) {
        text += "  <OptionGroup Id=\"" + id + "\">\n";
        for (OptionBase const * const option : Group::get()->options()) {
            bool const isFlag = option->valueType() == OptionBase::DataTypeBool;
            text += "    <Option Id=\"" + option->id() + "\" Value=\"" + (isFlag ? "1" : "4") +
                    "\"/>\n";
        }
        text += "  </OptionGroup>\n";
    };
    for (int i = 0; i < others; ++i) addGroup("Other" + std::to_string(i));
    addGroup(Group::get()->id());
    std::filesystem::create_directories(file().parent_path());
    std::ofstream(file(), std::ios::binary) << text << "</Options>\n";
}

void groups(benchmark::internal::Benchmark * benchmark) {
    benchmark->Arg(0)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
}

void Load(benchmark::State & state) {
    writeFile(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        Status status;
        Group::get()->load(status);
        if (!status) state.SkipWithError(status.toString().c_str());
    }
}
BENCHMARK(Load)->Apply(groups);

void ParserAlone(benchmark::State & state) {
    writeFile(static_cast<int>(state.range(0)));
    std::string const name = file().string();
    for (auto _ : state) {
        xmlDocPtr const document = xmlReadFile(name.c_str(), nullptr, XML_PARSE_NONET);
        if (!document) state.SkipWithError("it isn't read");
        xmlFreeDoc(document);
    }
}
BENCHMARK(ParserAlone)->Apply(groups);

void Save(benchmark::State & state) {
    writeFile(static_cast<int>(state.range(0)));
    Status status;
    Group::get()->load(status);
    OptionBase & option = *Group::get()->options()[1];
    bool isFive = false;
    for (auto _ : state) {
        isFive = !isFive;
        option.setValueFromString(isFive ? L"5" : L"6");
        Group::get()->save(status);
        if (!status) state.SkipWithError(status.toString().c_str());
    }
}
BENCHMARK(Save)->Apply(groups)->UseRealTime();

// With `syncsDirectory`, the new name reaches the disk too, as it does after a save.
void replace(benchmark::State & state, bool syncsDirectory) {
    writeFile(static_cast<int>(state.range(0)));
    std::ifstream in(file(), std::ios::binary);
    std::string const content(std::istreambuf_iterator<char>(in), {});
    std::string const name = file().string();
    std::string const neighbour = name + ".bare";
    std::string const directory = file().parent_path().string();
    for (auto _ : state) {
        int const handle = open(neighbour.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        bool good =
            write(handle, content.data(), content.size()) == static_cast<ssize_t>(content.size()) &&
            fsync(handle) == 0 && close(handle) == 0 &&
            std::rename(neighbour.c_str(), name.c_str()) == 0;
        if (syncsDirectory) {
            int const above = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            good = fsync(above) == 0 && close(above) == 0 && good;
        }
        if (!good) state.SkipWithError("it isn't replaced");
    }
}
void WriteSyncRename(benchmark::State & state) { replace(state, false); }
void WriteSyncRenameSync(benchmark::State & state) { replace(state, true); }
BENCHMARK(WriteSyncRename)->Apply(groups)->UseRealTime();
BENCHMARK(WriteSyncRenameSync)->Apply(groups)->UseRealTime();

} // namespace
