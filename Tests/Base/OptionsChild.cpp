// Another program that saves preferences, for the tests of what several programs do to one file.
//
//   VnOptionsChild DIRECTORY GROUP OPTION COUNT
//
// It gives the option the values from 1 to COUNT and saves each; 0 saves until it is killed, and
// tells each value by four bytes on its output once it is saved.

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "Platform/Base/OS.h"
#include "Platform/Base/Text.h"
#include "Tests/Base/TestOptions.h"

namespace {

using namespace Vn;

// A group with that one option.
class ChildGroup : public OptionGroup {
public:
    ChildGroup(std::filesystem::path directory, std::string const & id, std::string const & option)
        : OptionGroup(id, L"Child"), m_directory(std::move(directory)),
          number(option, L"Number", L"", this, 0) {}

    std::wstring onPersistFile(std::vector<std::wstring> &) const override {
        return PathInfo::toText(m_directory / "GlobalOptions.xml");
    }

private:
    std::filesystem::path const m_directory;

public:
    Option<int> number;
};

} // namespace

int main(int count, char ** values) {
    OS::Utf8Streams const streams; // which hold bytes as they are
    std::vector<std::string> const arguments = OS::arguments(count, values);
    if (arguments.size() != 4) return 2;
    ChildGroup group(PathInfo::fromText(Text::fromUtf8(arguments[0])), arguments[1], arguments[2]);
    int const last = std::stoi(arguments[3]);
    for (std::int32_t i = 1; last == 0 || i <= last; ++i) {
        group.number.setValueFromString(std::to_wstring(i));
        Status status;
        do { // others may save for longer than a save waits, on a disk that is slow
            status = Status::success();
            group.save(status);
        } while (status.code() == StatusBusy);
        if (!status) {
            std::fprintf(stderr, "%s\n", status.toString().c_str());
            return 1;
        }
        if (last == 0 && (std::fwrite(&i, sizeof i, 1, stdout) != 1 || std::fflush(stdout) != 0))
            return 3;
    }
    return 0;
}
