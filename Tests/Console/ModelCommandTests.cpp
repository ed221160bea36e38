// What a document shows, as a model for other programs.

#include <cerrno>
#include <cmath>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>

#include "Console/Documents/Hosting.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/TextCommands.h"
#include "Platform/Base/OSFiles.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommandService.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/IRenameTarget.h"
#include "Platform/Graphics/SimpleMesh.h"
#include "Platform/Scene/INodeSource.h"
#include "Platform/Scene/NodeChange.h"
#include "Server/CommonData/Managed/CommonBaseEntity.h"
#include "Server/CommonData/Managed/PersistedEntity.h"
#include "Server/CommonData/MassProperties/IMassPropertyCalculator.h"
#include "Server/CommonData/MassProperties/MassProperties.h"
#include "Tests/Console/DocumentFixture.h"

namespace Vn::Console::Tests {

namespace {

using CommonData::IComponentTraversalContext;
using CommonData::MassProperties;
using Json = nlohmann::json;
using Managed::Persisted;
using Vrx::Graphics::ARenderNode;
using Vrx::Graphics::GroupNode;

// A box of 1 cm by 2 cm by 3 cm, or with a corner that is nowhere.
StrongRef<Vrx::Devices::SimpleMesh> box(bool isDamaged) {
    using namespace Vrx::Devices;
    std::vector<float> numbers;
    for (int corner = 0; corner < 8; ++corner)
        for (float const number :
             {corner & 1 ? 1.0F : 0.0F, corner & 2 ? 2.0F : 0.0F, corner & 4 ? 3.0F : 0.0F})
            numbers.push_back(number);
    if (isDamaged) numbers[4] = std::nanf("");
    constexpr std::uint32_t c_indices[] = {0, 2, 1, 1, 2, 3, 4, 5, 6, 5, 7, 6, 0, 1, 4, 1, 5, 4,
                                           2, 6, 3, 3, 6, 7, 0, 4, 2, 2, 4, 6, 1, 3, 5, 3, 7, 5};
    return StrongRef<SimpleMesh>(new SimpleMesh(
        PrimitiveTriangles,
        StrongRef<VertexBuffer>(new VertexBuffer(VertexFormat(), std::move(numbers), UsageStatic,
                                                 AccessReadWrite, StateComplete)),
        StrongRef<IndexBuffer>(new IndexBuffer(c_indices, true)), nullptr));
}

PhysicalMaterial const s_steel(L"steel", 0.00785);

// A red box of steel that has a name and stands at 10 cm.
class Brick : public Persisted<Brick, CommonData::CommonBaseEntity, Scene::INodeSource,
                               DataModel::IRenameTarget, CommonData::IMassPropertyCalculator> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Console::Tests::Brick",
                                                     "D2B0B1D4-7C1A-4B7E-9C4F-5B0A3A5D7E12", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Brick> make(Segment * segment) { return create(segment); }

    ARenderNode * renderNode() const override { return m_rNode.get(); }
    GroupNode * groupNode() const override { return m_rNode.get(); }

    void calculate(MassProperties const * record, double * volume, double * area, double * mass,
                   double * density, IComponentTraversalContext *, bool) override {
        EXPECT_EQ(record, &m_record);
        if (volume) *volume = 6;
        if (area) *area = 22;
        if (mass) *mass = 0.0471;
        if (density) *density = s_steel.density();
    }
    PhysicalMaterial const * commonPhysicalMaterial(IComponentTraversalContext *, bool) override {
        return &s_steel;
    }
    bool isMeasurable() const override { return true; }

    static bool s_isDamaged; // for those that are made from now on

private:
    friend Managed::PersistedAccess;
    explicit Brick(Segment * segment) : Persisted(segment) { begin(); }
    Brick(Segment * segment, unsigned long long id) : Persisted(segment, id) { begin(); }
    void initializeMemberSet(unsigned, MemberSet * set) {
        Managed::addMember(set, "massProperties", m_record, MassProperties::s_metaType());
    }
    bool onCanRename() const override { return true; }
    std::wstring onRenameText() override { return L"Ziegel \u00FC\x01"; }
    void onRename(std::wstring const &) override {}

    void begin() {
        m_record.installOwner(this);
        initializeMemberSetIfNeeded();
        Scene::NodeChange group;
        m_rNode = StrongRef<GroupNode>(group.createGroupNode(this, 1, true, true));
        group.transform(TgMatrix3d::translation({10, 0, 0}));
        Scene::NodeChange shape;
        group.addChild(shape.createLODGeometryNode(nullptr, true));
        shape.geometry(box(s_isDamaged).get(), Vrx::Graphics::LevelAll);
        shape.colorEffect(Color(1, 0, 0), false, 0);
    }

    MassProperties m_record;
    StrongRef<GroupNode> m_rNode;
};

bool Brick::s_isDamaged = false;

class BrickMetaType final : public Managed::PersistedMetaType<Brick> {
} s_brick;

EntityMetaType * Brick::s_metaType() { return &s_brick; }

class ModelCommandTests : public DocumentFixture {
protected:
    void SetUp() override {
        Brick::s_isDamaged = false;
        StrongRef<Asset> asset;
        ASSERT_TRUE(makeDocument(asset));
        Segment * const design = asset->segment(SegmentType::DesignSegment);
        design->addRoot(StrongRef<Brick>(Brick::make(design)), "Brick");
        ASSERT_TRUE(DocumentFile::saveAs(*asset, directory() / "a.vnd"));
        open();
    }
    void TearDown() override { OS::fileCallObserver(nullptr); }

    void open() { ASSERT_TRUE(m_session.open(directory() / "a.vnd")); }
    // What a text command answers.
    TextCommandResult run(std::wstring const & line) { return TextCommandService::get().run(line); }
    Json objectOf(std::string const & name) const {
        std::string const bytes = readFile(name);
        if (!bytes.starts_with("glTF")) return Json::parse(bytes);
        std::size_t length = 0;
        for (unsigned i = 4; i-- > 0;)
            length = length << 8 | static_cast<unsigned char>(bytes.at(12 + i));
        return Json::parse(bytes.substr(20, length));
    }
    std::size_t files() const {
        namespace fs = std::filesystem;
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(directory()), fs::directory_iterator()));
    }

    DocumentSession m_session;
    std::optional<DocumentTextCommands> m_commands{std::in_place, m_session};
};

TEST_F(ModelCommandTests, PartsHaveNamesIdsAndMasses) {
    TextCommandResult const result = run(L"Document.Export a.gltf");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.text, L"exported 1 shape to a.gltf");
    Json const nodes = objectOf("a.gltf")["nodes"];
    ASSERT_EQ(nodes.size(), 3U);
    EXPECT_EQ(nodes[0]["name"], "Document");
    EXPECT_EQ(nodes[1]["name"], "Ziegel \xC3\xBC\x01");
    EXPECT_EQ(nodes[1]["translation"], Json::parse("[10, 0, 0]"));
    EXPECT_EQ(nodes[1]["extras"], Json::parse(R"({
        "entity": 1, "class": "Brick",
        "massProperties": {"volume": 6, "area": 22, "mass": 0.0471, "density": 0.00785,
                           "material": "steel"}})"));
    EXPECT_FALSE(objectOf("a.gltf").contains("cameras"));
}

TEST_F(ModelCommandTests, AnotherProgramReadsBothForms) {
    EXPECT_EQ(run(L"Document.Export a.gltf").status, 0);
    EXPECT_EQ(run(L"Document.Export B.GLB /Views").status, 0);
    if (!*VN_ASSIMP) GTEST_SKIP() << "assimp isn't installed";
    for (char const * const name : {"a.gltf", "B.GLB"}) {
        // By itself it takes places in places in the wrong order; as one mesh it is right.
        Outcome const outcome = runProgram(VN_ASSIMP, {"info", name, "-ptv"});
        EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
        // 10 cm against the look at the front, which becomes the axis of z; see Gltf.h.
        for (char const * const line :
             {"Minimum point      (0.000000 0.000000 0.100000)",
              "Maximum point      (0.020000 0.030000 0.110000)", "Faces:              12"})
            EXPECT_NE(outcome.out.find(line), std::string::npos) << line << '\n' << outcome.out;
    }
}

TEST_F(ModelCommandTests, ViewsAreThoseThatPicturesShow) {
    run(L"newview Side position (1 m, 0, 0) target (0, 0, 0)");
    EXPECT_EQ(run(L"Document.Export a.glb /Views").text, L"exported 1 shape to a.glb");
    Json const file = objectOf("a.glb");
    std::vector<std::string> names;
    for (Json const & camera : file["cameras"]) names.push_back(camera["name"]);
    EXPECT_EQ(names, (std::vector<std::string>{"TOP", "FRONT", "RIGHT", "HOME", "Side"}));
    // What is built in shows all there is, and looks down the axis of y until it is synchronized.
    Json const & top = file["cameras"][0]["perspective"];
    Json const & place = file["nodes"][3]["matrix"];
    EXPECT_EQ(file["nodes"][3]["name"], "TOP");
    double const distance = place[13].get<double>() - 1; // from the middle of the brick
    EXPECT_GT(2 * std::tan(top["yfov"].get<double>() / 2) * distance, 3);
    EXPECT_EQ(file["nodes"][7]["matrix"][12], 100);
}

TEST_F(ModelCommandTests, TheAxesOfTheDocumentCount) {
    run(L"setting sceneUp (0, 1, 0)");
    run(L"setting sceneFront (0, 0, -1)");
    EXPECT_EQ(run(L"Document.Export a.glb").status, 0);
    EXPECT_EQ(objectOf("a.glb")["nodes"][0]["matrix"],
              Json::parse("[0.01,0,0,0, 0,0.01,0,0, 0,0,0.01,0, 0,0,0,1]"));
}

TEST_F(ModelCommandTests, WhatIsLeftOutIsTold) {
    run(L"newview Nowhere position (0, 0, 0) target (0, 0, 0)");
    ASSERT_TRUE(m_session.save());
    Brick::s_isDamaged = true;
    open();
    EXPECT_EQ(run(L"Document.Export a.glb /Views").text,
              L"exported 0 shapes to a.glb\n"
              L"left out: 1 shape with numbers that are too large or not finite\n"
              L"left out: 1 view that shows nothing");
}

// The call that finds the disk full.
OS::EFileCall s_failing = OS::EFileCall::Open;

TEST_F(ModelCommandTests, AFullDiskLeavesTheOldModel) {
    ASSERT_EQ(run(L"Document.Export a.glb").status, 0);
    std::string const before = readFile("a.glb");
    run(L"setting sceneUp (0, 1, 0)");
    for (OS::EFileCall const call : {OS::EFileCall::Create, OS::EFileCall::Write,
                                     OS::EFileCall::Flush, OS::EFileCall::Rename}) {
        s_failing = call;
        OS::fileCallObserver([](OS::EFileCall each, std::filesystem::path const &) {
            return each == s_failing ? ENOSPC : 0;
        });
        for (wchar_t const * const name : {L"a.glb", L"new.gltf"}) {
            TextCommandResult const result = run(std::wstring(L"Document.Export ") + name);
            EXPECT_EQ(result.status, 1);
            EXPECT_NE(result.text.find(L"cannot export: cannot"), std::wstring::npos);
            EXPECT_NE(result.text.find(L"No space left"), std::wstring::npos)
                << Text::toUtf8(result.text);
        }
        OS::fileCallObserver(nullptr);
        EXPECT_TRUE(readFile("a.glb") == before);
        EXPECT_EQ(files(), 2U) << "nothing is left beside the document and the model";
    }
    EXPECT_EQ(run(L"Document.Export a.glb").status, 0);
    EXPECT_FALSE(readFile("a.glb") == before);
}

// --- The program -------------------------------------------------------------------------------

class ExportCallTests : public DocumentFixture {
protected:
    void SetUp() override { ASSERT_EQ(document("--new make").status, 0); }
};

TEST_F(ExportCallTests, OptionsSayWhatIsWritten) {
    Outcome const outcome = document("export --views -o a.glb");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "exported 0 shapes to a.glb\n");
    EXPECT_EQ(document("-o b.glb --views export").status, 0);
    EXPECT_EQ(document("export --output=c.glb /Views").status, 0);
    EXPECT_EQ(document("export d.glb /Views").status, 0);
    EXPECT_EQ(document("export -o e.gltf").status, 0);
    std::string const first = readFile("a.glb");
    EXPECT_NE(first.find("\"name\":\"HOME\""), std::string::npos);
    for (char const * const name : {"b.glb", "c.glb", "d.glb"})
        EXPECT_TRUE(readFile(name) == first) << name << ": the same bytes in every process";
    EXPECT_EQ(readFile("e.gltf").find("HOME"), std::string::npos);
}

TEST_F(ExportCallTests, TheBytesDontDependOnTheLanguage) {
    ASSERT_EQ(document("export --views -o a.glb").status, 0);
    Outcome const outcome = document("export --views -o b.glb --language ja");
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_TRUE(readFile("a.glb") == readFile("b.glb"));
}

TEST_F(ExportCallTests, WhatIsChangedBeforeIsInTheModel) {
    EXPECT_EQ(run("newview Side, export a.glb /Views, undo").status, 0);
    EXPECT_NE(readFile("a.glb").find("\"name\":\"Side\""), std::string::npos);
}

TEST_F(ExportCallTests, WhatCantBeWrittenIsRefused) {
    std::string const before = readFile("a.vnd");
    struct Row {
        char const * commands;
        int status;
        char const * error;
    };
    for (auto const & [commands, status, error] :
         {Row{"export", 1, "cannot export: more is needed: Document.Export <File> [/Views]\n"},
          Row{"export -o a.png", 1, "cannot export: \"a.png\" doesn't end with .gltf or .glb\n"},
          Row{"export -o a.vnd", 1, "cannot export: \"a.vnd\" doesn't end with .gltf or .glb\n"},
          Row{"export a.glb -o b.glb", 1,
              "cannot export: \"a.glb\" is too much: Document.Export <File> [/Views]\n"},
          Row{"tree -o a.glb", 2, "vnconsole: --output goes with the command picture or export\n"},
          Row{"--views", 2, "vnconsole: --views goes with the command export\n"},
          Row{"export , export -o a.glb", 2,
              "vnconsole: --output is for one command, and there are several\n"}}) {
        Outcome const outcome = document(commands);
        EXPECT_EQ(outcome.status, status) << commands;
        EXPECT_EQ(outcome.out, "") << commands;
        EXPECT_EQ(outcome.err, error);
    }
    EXPECT_NE(document("export -o missing/a.glb").err.find("cannot write the file"),
              std::string::npos);
    EXPECT_EQ(document("--new export -o b.glb", "b.glb").status, 2)
        << "a document that isn't there yet";
    EXPECT_FALSE(std::filesystem::exists("b.glb"));
    EXPECT_TRUE(readFile("a.vnd") == before);
}

#ifndef _WIN32 // which has no such limit, links for everybody or devices of these names

TEST_F(ExportCallTests, ADiskThatIsFullOrADeviceIsTold) {
    ASSERT_EQ(document("export -o a.glb").status, 0);
    std::string const before = readFile("a.glb");
#ifndef __SANITIZE_THREAD__ // whose own start writes a file
    Outcome const limited =
        runShell("ulimit -f 0; \"$VNCONSOLE\" document a.vnd export --views -o a.glb");
    EXPECT_EQ(limited.status, 1);
    EXPECT_NE(limited.err.find("cannot export: "), std::string::npos) << limited.err;
#endif
    std::filesystem::create_symlink("/dev/full", "full.glb");
    Outcome const device = document("export -o full.glb");
    EXPECT_EQ(device.status, 1);
    EXPECT_NE(device.err.find("it isn't a file"), std::string::npos) << device.err;
    std::filesystem::create_symlink("a.vnd", "link.glb");
    EXPECT_NE(document("export -o link.glb").status, 0);
    EXPECT_TRUE(readFile("a.glb") == before);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator("."), {}), 4);
    // The message itself finds no room.
    EXPECT_NE(runShell("\"$VNCONSOLE\" document a.vnd export -o b.glb >/dev/full").status, 0);
}

#endif

} // namespace

} // namespace Vn::Console::Tests
