#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/OS.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/XMLUtility.h"
#include "Tests/AddInMgr/AddInsTesting.h"

namespace Vn {

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

using Names = std::vector<std::string>;

class AddInConfigurationTests : public Testing::AddInsTest {
protected:
    // The reason why an add-in is refused, by the name of its file.
    std::string reasonOf(std::string const & name) const {
        for (AddIn const * const addIn : manager().addIns())
            if (addIn->configurationFile().stem() == name) return addIn->status().toString();
        return {};
    }
};

TEST_F(AddInConfigurationTests, ARecordHasWhatTheFileSays) {
    write("Base", "<AddIn identifier='Base' module='First'/>");
    write("All", "<?xml version='1.0'?>\n<!-- a comment -->\n"
                 "<AddIn identifier='All' module='VnAll.10' assetType='Part \xC3\xA4' core='true'>"
                 "<Requires addIn='Base'/></AddIn>");
    Status const status = manager().configure();
    ASSERT_TRUE(status) << status.toString();
    AddIn const * const addIn = manager().addIn("All");
    ASSERT_NE(addIn, nullptr);
    EXPECT_EQ(addIn->identifier(), "All");
    EXPECT_EQ(addIn->module(), L"VnAll.10" + std::wstring(OS::platformModuleExtension()));
    EXPECT_EQ(addIn->assetTypeId(), "Part \xC3\xA4");
    EXPECT_TRUE(addIn->isCoreAddIn());
    EXPECT_EQ(addIn->requiredAddIns(), Names{"Base"});
    EXPECT_EQ(addIn->configurationFile(), configurationFile("All"));
    EXPECT_EQ(addIn->state(), EAddInState::Configured);
    EXPECT_TRUE(addIn->status());
    EXPECT_EQ(addIn->object(), nullptr);

    AddIn const * const base = manager().addIn("Base");
    ASSERT_NE(base, nullptr);
    EXPECT_EQ(base->assetTypeId(), "");
    EXPECT_FALSE(base->isCoreAddIn());
    EXPECT_TRUE(base->requiredAddIns().empty());
}

TEST_F(AddInConfigurationTests, WithoutConfigurationsTheRootIsNamed) {
    Status const status = manager().configure();
    EXPECT_EQ(status.code(), StatusNotFound);
    EXPECT_EQ(PathInfo::fromText(Text::fromUtf8(status.subject())), root() / "Server");
    PathInfo::rootDirectory(PathInfo::toText(root() / "nowhere"));
    EXPECT_EQ(manager().configure().code(), StatusNotFound);
}

TEST_F(AddInConfigurationTests, OnlyXmlFilesInConfigurationFoldersAreRead) {
    offer("First");
    Testing::writeFile(root() / "Server" / "First" / "Other.xml", "no");
    Testing::writeFile(root() / "Server" / "First" / "Configuration" / "ReadMe.txt", "no");
    Testing::writeFile(root() / "Server" / "First" / "Configuration" / "Below" / "X.xml", "no");
    Testing::writeFile(root() / "Server" / "Plain", "no");
    fs::create_directory(root() / "Server" / "First" / "Configuration" / "Folder.xml");
    Status const status = manager().configure();
    EXPECT_TRUE(status) << status.toString();
    EXPECT_EQ(with(EAddInState::Configured), Names{"First"});
    EXPECT_TRUE(with(EAddInState::Refused).empty());
}

TEST_F(AddInConfigurationTests, OneFolderMayHaveSeveralConfigurations) {
    fs::path const folder = root() / "Server" / "Many" / "Configuration";
    Testing::writeFile(folder / "B.XML", "<AddIn identifier='B' module='Second'/>");
    Testing::writeFile(folder / "A.xml", "<AddIn identifier='A' module='First'/>");
    Status const status = manager().configure();
    EXPECT_TRUE(status) << status.toString();
    EXPECT_EQ(with(EAddInState::Configured), (Names{"A", "B"}));
}

// The text of a document in UTF-16 of a byte order.
std::string utf16(std::string const & ascii, bool isBigEndian) {
    std::string bytes = isBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (char const c : ascii) {
        if (isBigEndian) bytes += '\0';
        bytes += c;
        if (!isBigEndian) bytes += '\0';
    }
    return bytes;
}

TEST_F(AddInConfigurationTests, AConfigurationMayBeInUtf16) {
    write("Big", utf16("<AddIn identifier='Big' module='First'/>", true));
    write("Little", utf16("<?xml version='1.0' encoding='UTF-16'?>"
                          "<AddIn identifier='Little' module='Second'/>",
                          false));
    Status const status = manager().configure();
    EXPECT_TRUE(status) << status.toString();
    EXPECT_EQ(with(EAddInState::Configured), (Names{"Big", "Little"}));
}

struct Malformed {
    char const * name;
    std::string content;
    char const * reason; // a part of what the status says
};

std::string join(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (std::string_view const part : parts) text += part;
    return text;
}

std::string entityBomb() {
    std::string text = "<!DOCTYPE AddIn [<!ENTITY a0 'lol'>";
    for (int i = 1; i <= 9; ++i) {
        std::string const before = join({"&a", std::to_string(i - 1), ";"});
        text += join({"<!ENTITY a", std::to_string(i), " '"});
        for (int k = 0; k < 10; ++k) text += before;
        text += "'>";
    }
    return text + "]><AddIn identifier='&a9;' module='M'/>";
}

std::string repeated(std::string const & text, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) result += text;
    return result;
}

std::vector<Malformed> malformed() {
    std::string const begin = "<AddIn identifier='X' module='M'";
    return {
        // What isn't XML.
        {"Empty", "", "empty"},
        {"Blanks", " \n\t ", ""},
        {"Text", "identifier=X", ""},
        {"Binary",
         "\x7F"
         "ELF\x02\x01\x01"s,
         ""},
        {"Nulls", "<AddIn\0/>"s, "null"},
        {"Unclosed", begin + ">", ""},
        {"WrongEnd", begin + "></Addin>", ""},
        {"TwoRoots", begin + "/>" + begin + "/>", ""},
        {"NoQuotes", "<AddIn identifier=X module='M'/>", ""},
        {"SameAttributeTwice", begin + " module='N'/>", ""},
        {"Ampersand", begin + " assetType='a & b'/>", ""},
        {"UnknownEntity", begin + " assetType='&who;'/>", ""},
        {"OddCharacter", begin + " assetType='\x01'/>", ""},
        {"BrokenUtf8", begin + " assetType='\xC3('/>", "encoding"},
        {"UnknownEncoding", join({"<?xml version='1.0' encoding='EBCDIC'?>", begin, "/>"}),
         "encoding"},
        {"WrongEncoding", join({"<?xml version='1.0' encoding='UTF-16'?>", begin, "/>"}),
         "encoding"},
        {"HalfUtf16", utf16(begin + "/>", true) + "x", "encoding"},
        {"Doctype", join({"<!DOCTYPE AddIn>", begin, "/>"}), "DOCTYPE"},
        {"DoctypeOfAFile", join({"<!DOCTYPE AddIn SYSTEM 'file:///etc/passwd'>", begin, "/>"}),
         "DOCTYPE"},
        {"EntityOfAFile",
         "<!DOCTYPE AddIn [<!ENTITY f SYSTEM 'file:///etc/passwd'>]>"
         "<AddIn identifier='X' module='M'>&f;</AddIn>",
         "DOCTYPE"},
        {"EntityBomb", entityBomb(), "DOCTYPE"},
        {"Include",
         "<xi:include xmlns:xi='http://www.w3.org/2001/XInclude' href='file:///etc/passwd'/>", ""},
        // What is too large.
        {"Deep", repeated("<a>", 5000) + repeated("</a>", 5000), "depth"},
        {"Long", begin + "><!--" + std::string(std::size_t{1} << 17, ' ') + "--></AddIn>", ""},
        {"LongName", join({"<", std::string(60'000, 'a'), "/>"}), ""},
        {"ManyAttributes", begin + repeated(" a='1'", 10'000) + "/>", ""},
        // What the schema doesn't know.
        {"OtherRoot", "<Plugin identifier='X' module='M'/>", "Plugin"},
        {"OtherCase", "<addin identifier='X' module='M'/>", "addin"},
        {"OtherNamespace", "<AddIn xmlns='urn:x' identifier='X' module='M'/>", "urn:x"},
        {"UnknownAttribute", begin + " version='2'/>", "version"},
        {"UnknownElement", begin + "><Needs addIn='Y'/></AddIn>", "Needs"},
        {"TextInside", begin + ">First</AddIn>", ""},
        {"InRequires", begin + "><Requires addIn='Y'><Requires addIn='Z'/></Requires></AddIn>", ""},
        {"OwnSchema",
         "<AddIn xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
         "xsi:noNamespaceSchemaLocation='/nowhere.xsd' identifier='X'/>",
         "module"},
        // What an attribute can't be.
        {"NoIdentifier", "<AddIn module='M'/>", "identifier"},
        {"NoModule", "<AddIn identifier='X'/>", "module"},
        {"EmptyIdentifier", "<AddIn identifier='' module='M'/>", "identifier"},
        {"BlankIdentifier", "<AddIn identifier=' X' module='M'/>", "identifier"},
        {"LongIdentifier", join({"<AddIn identifier='", std::string(101, 'X'), "' module='M'/>"}),
         "identifier"},
        {"EmptyModule", "<AddIn identifier='X' module=''/>", "module"},
        {"ModuleAbove", "<AddIn identifier='X' module='../M'/>", "module"},
        {"ModuleBelow", "<AddIn identifier='X' module='a/M'/>", "module"},
        {"ModuleBehindBackslash", "<AddIn identifier='X' module='a\\M'/>", "module"},
        {"ModuleFromTheTop", "<AddIn identifier='X' module='/tmp/M'/>", "module"},
        {"ModuleOfADrive", "<AddIn identifier='X' module='C:M'/>", "module"},
        {"ModuleIsTheFolder", "<AddIn identifier='X' module='.'/>", "module"},
        {"ModuleIsTheFolderAbove", "<AddIn identifier='X' module='..'/>", "module"},
        {"ModuleWithLineBreak", "<AddIn identifier='X' module='M&#10;'/>", "module"},
        {"ModuleWithNoAscii", "<AddIn identifier='X' module='M\xC3\xA4'/>", "module"},
        {"EmptyAssetType", begin + " assetType=''/>", "assetType"},
        {"BlankAssetType", begin + " assetType='  '/>", "assetType"},
        {"CoreIsNoBool", begin + " core='maybe'/>", "core"},
        {"RequiresNothing", begin + "><Requires/></AddIn>", "addIn"},
        {"RequiresEmpty", begin + "><Requires addIn=''/></AddIn>", "addIn"},
        {"RequiresTwice", begin + "><Requires addIn='Y'/><Requires addIn='Y'/></AddIn>", ""},
    };
}

// Each ends in a reason that names the file; the one that is well is taken.
TEST_F(AddInConfigurationTests, AMalformedConfigurationIsRefusedWithItsReason) {
    offer("First");
    std::vector<Malformed> const rows = malformed();
    EXPECT_GE(rows.size(), 40U);
    for (Malformed const & row : rows) write(row.name, row.content);
    Status const status = manager().configure();
    EXPECT_FALSE(status);
    EXPECT_EQ(with(EAddInState::Configured), Names{"First"});
    EXPECT_EQ(with(EAddInState::Refused).size(), rows.size());
    for (Malformed const & row : rows) {
        std::string const reason = reasonOf(row.name);
        EXPECT_NE(reason.find(std::string(row.name) + ".xml"), std::string::npos)
            << row.name << ": " << reason;
        EXPECT_NE(reason.find(row.reason), std::string::npos) << row.name << ": " << reason;
        EXPECT_LT(reason.size(), 1000U) << row.name;
        EXPECT_EQ(reason.find("root:"), std::string::npos) << "another file was read";
    }
    EXPECT_EQ(manager().addIn("X"), nullptr);
    EXPECT_EQ(manager().addIn(""), nullptr);
}

// A file of 100 MB isn't read, whatever it holds.
TEST_F(AddInConfigurationTests, AHugeFileIsRefused) {
    offer("First");
    write("Huge", "<AddIn identifier='X' module='M'/>");
    fs::resize_file(configurationFile("Huge"), 100'000'000);
    std::string const deep = repeated("<a>", 1'000'000);
    write("Deep", deep + repeated("</a>", 1'000'000));
    EXPECT_FALSE(manager().configure());
    EXPECT_EQ(with(EAddInState::Configured), Names{"First"});
    EXPECT_NE(reasonOf("Huge").find("Huge.xml"), std::string::npos) << reasonOf("Huge");
    EXPECT_NE(reasonOf("Deep").find("Deep.xml"), std::string::npos) << reasonOf("Deep");
}

TEST_F(AddInConfigurationTests, TooManyFilesAreRefused) {
    fs::path const folder = root() / "Server" / "Many" / "Configuration";
    for (int i = 0; i <= 1000; ++i) Testing::writeFile(folder / (std::to_string(i) + ".xml"), "");
    EXPECT_EQ(manager().configure().code(), StatusUnsupported);
    EXPECT_TRUE(with(EAddInState::Refused).empty());
}

TEST_F(AddInConfigurationTests, WithoutASoundSchemaNothingIsTaken) {
    offer("First");
    fs::path const schema =
        root() / "Server" / "AddInMgr" / "Configuration" / "Schema" / "AddinSchema.xsd";
    for (char const * const content :
         {"", "<AddIn/>", "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>",
          "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'><xs:element/></xs:schema>",
          "<!DOCTYPE a><xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'/>",
          "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
          "<xs:include schemaLocation='file:///etc/passwd'/></xs:schema>",
          "<xs:schema xmlns:xs='http://www.w3.org/2001/XMLSchema'>"
          "<xs:import namespace='urn:x' schemaLocation='http://localhost/x.xsd'/></xs:schema>"}) {
        Testing::writeFile(schema, content);
        Status const status = manager().configure();
        EXPECT_FALSE(status) << content;
        EXPECT_NE(status.toString().find("AddinSchema.xsd"), std::string::npos)
            << status.toString();
        EXPECT_EQ(with(EAddInState::Refused).size(), 1U) << content;
    }
    fs::remove(schema);
    EXPECT_EQ(manager().configure().code(), StatusNotFound);
    EXPECT_EQ(with(EAddInState::Refused).size(), 1U);
}

TEST_F(AddInConfigurationTests, OfTwoWithOneIdentifierNeitherIsTaken) {
    offer("First");
    write("One", "<AddIn identifier='Twin' module='Second'/>");
    write("Two", "<AddIn identifier='Twin' module='Third'/>");
    offer("User", {"Twin"}, "NoEntry");
    EXPECT_FALSE(manager().configure());
    EXPECT_EQ(with(EAddInState::Configured), Names{"First"});
    EXPECT_NE(reasonOf("One").find("Two.xml' has the same identifier"), std::string::npos)
        << reasonOf("One");
    EXPECT_NE(reasonOf("Two").find("One.xml' has the same identifier"), std::string::npos)
        << reasonOf("Two");
    EXPECT_NE(reasonOf("User").find("requires 'Twin', which is refused"), std::string::npos)
        << reasonOf("User");
}

TEST_F(AddInConfigurationTests, OfTwoWithOneModuleNeitherIsTaken) {
    write("One", "<AddIn identifier='One' module='Second'/>");
    write("Two", "<AddIn identifier='Two' module='second'/>");
    EXPECT_FALSE(manager().configure());
    EXPECT_TRUE(with(EAddInState::Configured).empty());
    EXPECT_NE(reasonOf("One").find("has the same module"), std::string::npos) << reasonOf("One");
}

TEST_F(AddInConfigurationTests, AnIdentifierOfTheApplicationIsTaken) {
    static bool const s_registered =
        manager().registerAddIn(std::make_unique<AddIn>("OfTheApplication", false));
    ASSERT_TRUE(s_registered);
    offer("OfTheApplication", {}, "First");
    offer("Second", {"OfTheApplication"});
    EXPECT_FALSE(manager().configure());
    EXPECT_EQ(with(EAddInState::Configured), Names{"Second"});
    EXPECT_EQ(manager().addIn("OfTheApplication")->state(), EAddInState::Registered);
}

// The order is that of what is required, and of the identifiers beside it.
TEST_F(AddInConfigurationTests, WhatIsRequiredComesFirst) {
    offer("A", {"D", "C"});
    offer("B");
    offer("C", {"D"});
    offer("D");
    offer("e", {}, "First");
    Status const status = manager().configure();
    EXPECT_TRUE(status) << status.toString();
    EXPECT_EQ(with(EAddInState::Configured), (Names{"B", "D", "C", "A", "e"}));
}

TEST_F(AddInConfigurationTests, WhatIsMissingRefusesAllThatRequireIt) {
    offer("A", {"Missing", "D"});
    offer("B", {"A"});
    offer("C", {"B"});
    offer("D");
    Status const status = manager().configure();
    EXPECT_FALSE(status);
    EXPECT_EQ(with(EAddInState::Configured), Names{"D"});
    EXPECT_NE(reasonOf("A").find("requires 'Missing', which isn't there"), std::string::npos);
    EXPECT_NE(reasonOf("B").find("requires 'A', which is refused"), std::string::npos);
    EXPECT_NE(reasonOf("C").find("requires 'B', which is refused"), std::string::npos);
}

TEST_F(AddInConfigurationTests, ACircleIsRefusedWithWhatLeadsIntoIt) {
    offer("A", {"B"});
    offer("B", {"C"});
    offer("C", {"A"});
    offer("Before");
    offer("Into", {"Before", "B"});
    offer("Self", {"Self"});
    offer("With", {"Before"});
    EXPECT_FALSE(manager().configure());
    EXPECT_EQ(with(EAddInState::Configured), (Names{"Before", "With"}));
    EXPECT_NE(reasonOf("A").find("'A' requires 'B' requires 'C' requires 'A'"), std::string::npos)
        << reasonOf("A");
    EXPECT_EQ(reasonOf("B").substr(reasonOf("B").find("'A'")),
              reasonOf("A").substr(reasonOf("A").find("'A'")));
    EXPECT_NE(reasonOf("Into").find("requires 'B', which is refused"), std::string::npos);
    EXPECT_NE(reasonOf("Self").find("'Self' requires 'Self'"), std::string::npos);
}

// 900 add-ins, each of which requires the next one, and the same as a circle.
TEST_F(AddInConfigurationTests, ALongChainIsOrdered) {
    constexpr int c_count = 900;
    auto const name = [](int i) { return join({"N", std::to_string(1000 + i)}); };
    for (int i = 0; i + 1 < c_count; ++i) offer(name(i), {name(i + 1)});
    offer(name(c_count - 1));
    ASSERT_TRUE(manager().configure());
    Names const order = with(EAddInState::Configured);
    ASSERT_EQ(order.size(), static_cast<std::size_t>(c_count));
    EXPECT_EQ(order.front(), name(c_count - 1));
    EXPECT_EQ(order.back(), name(0));

    offer(name(c_count - 1), {name(0)});
    EXPECT_FALSE(manager().configure());
    EXPECT_EQ(with(EAddInState::Refused).size(), static_cast<std::size_t>(c_count));
    EXPECT_LT(reasonOf(name(0)).size(), 1000U);
}

// The first failure that the answer tells is that of a core add-in.
TEST_F(AddInConfigurationTests, ACoreAddInIsToldFirst) {
    offer("A", {"Missing"});
    write("Core", "<AddIn identifier='Core' module='First' core='1'><Requires addIn='Missing'/>"
                  "</AddIn>");
    EXPECT_NE(manager().configure().toString().find("Core.xml"), std::string::npos);
}

TEST(XMLUtilityTests, TheConfigurationOfTheServerIsValid) {
    std::wstring const schema = PathInfo::toText(VN_TEST_SCHEMA);
    std::wstring const configuration = PathInfo::toText(VN_TEST_CONFIGURATION);
    EXPECT_TRUE(XMLUtility::schemaValidator(configuration, schema));
    Status status = XMLUtility::validateBySchema(configuration, schema);
    EXPECT_TRUE(status) << status.toString();
    // Neither is the other.
    EXPECT_FALSE(XMLUtility::schemaValidator(schema, configuration));
    EXPECT_FALSE(XMLUtility::schemaValidator(schema, schema));
    EXPECT_FALSE(XMLUtility::schemaValidator(L"", schema));
    EXPECT_FALSE(XMLUtility::schemaValidator(configuration, L""));
    EXPECT_FALSE(XMLUtility::schemaValidator(configuration + L".none", schema));

    Testing::TemporaryFile const file("<AddIn identifier='X'\n\nmodule='M'\ncore='no'/>");
    EXPECT_FALSE(XMLUtility::schemaValidator(PathInfo::toText(file.path()), schema));
    status = XMLUtility::validateBySchema(PathInfo::toText(file.path()), schema);
    EXPECT_NE(status.toString().find("test.vnd"), std::string::npos) << status.toString();
    EXPECT_NE(status.cause().find("line 4: "), std::string::npos) << status.toString();
    EXPECT_NE(status.cause().find("core"), std::string::npos) << status.toString();
}

} // namespace

} // namespace Vn
