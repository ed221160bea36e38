#include "Console/Documents/OutputFile.h"

#include "Tests/Base/TestOptions.h"
#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

class OutputFileTests : public DocumentFixture {
protected:
    void SetUp() override { Testing::write(directory() / "a.vnd", "a document"); }

    std::wstring why(std::wstring const & name) const {
        return whyNoOutput(name, {L".gltf", L".glb"}, directory() / "a.vnd");
    }
};

TEST_F(OutputFileTests, TheExtensionSaysWhatIsWritten) {
    EXPECT_EQ(why(L"a.glb"), L"");
    EXPECT_EQ(why(L"A.GLTF"), L"");
    EXPECT_EQ(why(L"a.png"), L"\"a.png\" doesn't end with .gltf or .glb");
    EXPECT_EQ(why(L".glb"), L"\".glb\" doesn't end with .gltf or .glb");
    EXPECT_EQ(why(L""), L"the name of the file is empty");
    EXPECT_EQ(why(std::wstring(L"a\0.glb", 6)), L"\"a\u2400.glb\" isn't a file name");
}

TEST_F(OutputFileTests, TheDocumentIsntReplaced) {
    EXPECT_NE(whyNoOutput(L"./a.vnd", {L".vnd"}, directory() / "a.vnd"), L"");
    EXPECT_NE(whyNoOutput(L"new.vnd", {L".vnd"}, "../" / directory().filename() / "new.vnd"), L"")
        << "one that isn't there yet";
    EXPECT_EQ(whyNoOutput(L"b.vnd", {L".vnd"}, directory() / "a.vnd"), L"");
#ifndef _WIN32 // where links are for administrators
    std::filesystem::create_symlink("a.vnd", directory() / "link.glb");
    EXPECT_EQ(why(L"link.glb"), L"\"link.glb\" is the document itself");
#endif
}

TEST_F(OutputFileTests, AFileIsWrittenWhollyOrNotAtAll) {
    EXPECT_EQ(writeOutput(L"a.glb", "one"), L"");
    EXPECT_EQ(readFile("a.glb"), "one");
    EXPECT_NE(writeOutput(L"missing/a.glb", "two").find(L"cannot write the file"),
              std::wstring::npos);
    std::filesystem::create_directory(directory() / "b.glb");
    EXPECT_NE(writeOutput(L"b.glb", "two"), L"");
    EXPECT_EQ(readFile("a.glb"), "one");
}

} // namespace

} // namespace Vn::Console::Tests
