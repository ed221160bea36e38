// A group of preferences for tests.

#ifndef VN_TESTS_BASE_TESTOPTIONS_H
#define VN_TESTS_BASE_TESTOPTIONS_H

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "Platform/Base/Option.h"
#include "Platform/Base/OptionGroup.h"
#include "Platform/Base/PathInfo.h"
#include "Tests/Support/FileContent.h"

namespace Vn::Testing {

// Three options in the files of a directory.  It notes who was told of what.
class TestGroup : public OptionGroup {
public:
    explicit TestGroup(std::filesystem::path directory, std::string const & id = "TestGroup")
        : OptionGroup(id, L"Test", L"A group for tests"), m_directory(std::move(directory)),
          flag("FlagId", L"Flag", L"", this, true), number("NumberId", L"Number", L"", this, 3),
          real("RealId", L"Real", L"", this, 9999.9999) {
        postLoadOperation([this] { ++loads; });
    }

    void onOptionChanged(OptionBase * option) override {
        OptionGroup::onOptionChanged(option);
        told.push_back(option->id());
    }
    void onChoiceChanged(OptionBase * option, std::wstring value) override {
        chosen.push_back(option->id() + ' ' + std::string(value.begin(), value.end()));
    }
    std::wstring onPersistFile(std::vector<std::wstring> & otherFiles) const override {
        otherFiles.push_back(PathInfo::toText(serverFile()));
        return PathInfo::toText(file());
    }

    std::filesystem::path file() const { return m_directory / "GlobalOptions.xml"; }
    std::filesystem::path serverFile() const { return m_directory / "ServerOptions.xml"; }

    // The statuses of an operation.
    Status loaded() {
        Status status;
        load(status);
        return status;
    }
    Status saved() {
        Status status;
        save(status);
        return status;
    }

    using OptionGroup::makeSubGroup;

private:
    std::filesystem::path const m_directory;

public:
    std::vector<std::string> told;
    std::vector<std::string> chosen;
    int loads = 0;
    Option<bool> flag;
    Option<int> number;
    Option<double> real;
};

inline void write(std::filesystem::path const & file, std::string const & content) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
}

// A file with the options of the group "TestGroup", each as "<Option Id=... Value=.../>".
inline std::string fileWith(std::string const & options) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Options>\n  <OptionGroup "
           "Id=\"TestGroup\">" +
           options + "</OptionGroup>\n</Options>\n";
}

inline std::string optionElement(std::string const & id, std::string const & value) {
    return "<Option Id=\"" + id + "\" Value=\"" + value + "\"/>";
}

} // namespace Vn::Testing

#endif
