#include "Tests/AddInMgr/AddInsTesting.h"

#include <fstream>

#include "Platform/Base/OS.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommandService.h"
#include "Platform/Base/UnitTest.h"
#include "Platform/DataModel/MetaType.h"

namespace Vn::Testing {

namespace fs = std::filesystem;

void writeFile(fs::path const & file, std::string_view content) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
}

AddInsTest::AddInsTest() {
    PathInfo::rootDirectory(PathInfo::toText(root()));
    PathInfo::modulesDirectory(PathInfo::toText(modules()));
    fs::path const schema = root() / "Server" / "AddInMgr" / "Configuration" / "Schema";
    fs::create_directories(schema);
    fs::copy_file(VN_TEST_SCHEMA, schema / "AddinSchema.xsd");
}

AddInsTest::~AddInsTest() {
    Status status = manager().unload();
    EXPECT_TRUE(status) << status.toString();
    TemporaryDirectory const empty;
    PathInfo::rootDirectory(PathInfo::toText(empty.path()));
    status = manager().configure();
    EXPECT_EQ(status.code(), StatusNotFound) << status.toString();
    PathInfo::rootDirectory(L"");
    PathInfo::modulesDirectory(L"");
}

fs::path AddInsTest::configurationFile(std::string const & name) const {
    return root() / "Server" / name / "Configuration" / (name + ".xml");
}

void AddInsTest::write(std::string const & name, std::string_view content) const {
    writeFile(configurationFile(name), content);
}

void AddInsTest::offer(std::string const & name, std::vector<std::string> const & required,
                       std::string const & module) const {
    std::string text = "<AddIn identifier='" + name + "' module='" +
                       (module.empty() ? name : module) + "' assetType='type of " + name + "'>";
    for (std::string const & each : required) text += "<Requires addIn='" + each + "'/>";
    write(name, text + "</AddIn>");
}

std::vector<std::string> AddInsTest::with(EAddInState state) const {
    std::vector<std::string> result;
    for (AddIn const * const addIn : manager().addIns())
        if (addIn->state() == state) result.push_back(addIn->identifier());
    return result;
}

std::vector<std::string> AddInsTest::notes() const {
    std::vector<std::string> result;
    for (auto const & entry : m_log.entries())
        if (entry.kind == RegistrationLog::EKind::Static) result.push_back(entry.name);
    return result;
}

bool AddInsTest::isRegistered(std::string const & name) const {
    bool const hasType = MetaTypeMgr::get()->metaType("Test" + name) != nullptr;
    bool const hasCommand =
        TextCommandService::get().find(L"TestAddIns", Text::widen(name)) != nullptr;
    bool hasCheck = false;
    for (UnitTest const * const test : UnitTest::all())
        hasCheck = hasCheck || (test->group() == "TestAddIns" && test->name() == name);
    EXPECT_EQ(hasType, hasCommand) << name;
    EXPECT_EQ(hasType, hasCheck) << name;
    return hasType;
}

bool AddInsTest::isInProcess(std::string const & name) const {
    return OS::Module::isInProcess(moduleFile(name));
}

fs::path AddInsTest::modules() { return VN_TEST_ADD_INS; }

fs::path AddInsTest::moduleFile(std::string const & name) {
    return modules() / (Text::widen(name) + std::wstring(OS::platformModuleExtension()));
}

} // namespace Vn::Testing
