// A root directory with configurations of the tests' own, for the one manager of the process.

#ifndef VN_TESTS_ADDINMGR_ADDINSTESTING_H
#define VN_TESTS_ADDINMGR_ADDINSTESTING_H

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/AddInMgr/AddInMgr.h"
#include "Platform/Base/RegistrationLog.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Testing {

// A test with a root directory that has the schema and no configuration.  Modules come from the
// directory of the tests' own.  Afterwards nothing is loaded and no record is left.
class AddInsTest : public testing::Test {
protected:
    AddInsTest();
    ~AddInsTest() override;

    AddInMgr & manager() const { return *AddInMgr::get(); }

    std::filesystem::path const & root() const { return m_root.path(); }
    // Where the configuration of an add-in stands: Server/NAME/Configuration/NAME.xml.
    std::filesystem::path configurationFile(std::string const & name) const;
    // Writes that file.
    void write(std::string const & name, std::string_view content) const;
    // Writes a configuration of the add-in NAME with the module NAME.
    void offer(std::string const & name, std::vector<std::string> const & required = {},
               std::string const & module = {}) const;

    // The identifiers of the records with a state, in order.
    std::vector<std::string> with(EAddInState state) const;
    // What the add-ins noted so far.
    std::vector<std::string> notes() const;

    // Whether what the module of an add-in registers is there, and whether the system has it.
    bool isRegistered(std::string const & name) const;
    bool isInProcess(std::string const & name) const;
    // The directory of the modules, and one of them.
    static std::filesystem::path modules();
    static std::filesystem::path moduleFile(std::string const & name);

    RegistrationLog const m_log;

private:
    TemporaryDirectory const m_root;
};

// Writes a file, its directories too.
void writeFile(std::filesystem::path const & file, std::string_view content);

} // namespace Vn::Testing

#endif
