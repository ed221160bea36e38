// The render graph of a document at the console.

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "Console/CommandLine/SceneCommand.h"
#include "Console/Documents/Hosting.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/Graphics/SimpleMesh.h"
#include "Platform/Scene/INodeSource.h"
#include "Platform/Scene/NodeChange.h"
#include "Server/CommonData/Managed/CommonBaseEntity.h"
#include "Server/CommonData/Managed/PersistedEntity.h"
#include "Tests/Base/TestOptions.h"
#include "Tests/Support/Process.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Console::Tests {

namespace {

using Managed::Persisted;
using Vrx::Graphics::ARenderNode;
using Vrx::Graphics::GroupNode;

StrongRef<Vrx::Devices::SimpleMesh> triangle(float size) {
    using namespace Vrx::Devices;
    std::vector<float> const numbers = {0, 0, 0, size, 0, 0, 0, size, 0};
    constexpr std::uint32_t c_indices[] = {0, 1, 2};
    return StrongRef<SimpleMesh>(
        new SimpleMesh(PrimitiveTriangles,
                       StrongRef<VertexBuffer>(new VertexBuffer(
                           VertexFormat(), numbers, UsageStatic, AccessReadWrite, StateComplete)),
                       StrongRef<IndexBuffer>(new IndexBuffer(c_indices, true)), nullptr));
}

// A group without a color, with a part that is finer near by, and a hidden one.
class Lamp : public Persisted<Lamp, CommonData::CommonBaseEntity, Scene::INodeSource> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Console::Tests::Lamp",
                                                     "D2B0B1D4-7C1A-4B7E-9C4F-5B0A3A5D7E11", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Lamp> make(Segment * segment) { return create(segment); }

    ARenderNode * renderNode() const override { return m_rNode.get(); }
    GroupNode * groupNode() const override { return m_rNode.get(); }

private:
    friend Managed::PersistedAccess;
    explicit Lamp(Segment * segment) : Persisted(segment) { begin(); }
    Lamp(Segment * segment, unsigned long long id) : Persisted(segment, id) { begin(); }
    void initializeMemberSet(unsigned, MemberSet *) {}

    void begin() {
        initializeMemberSetIfNeeded();
        Scene::NodeChange group;
        m_rNode = StrongRef<GroupNode>(group.createGroupNode(this, 1, true, true));
        Scene::NodeChange shade;
        group.addChild(shade.createLODGeometryNode(nullptr, true));
        shade.geometry(triangle(0.1F).get(), 1);
        shade.geometry(triangle(std::numeric_limits<float>::infinity()).get(), 6);
        shade.colorEffect(Color(1, 0.1F, 0, 0.5F), false, 0);
        Scene::NodeChange foot;
        group.addChild(foot.createLODGeometryNode(nullptr, false));
    }

    StrongRef<GroupNode> m_rNode;
};

class LampMetaType final : public Managed::PersistedMetaType<Lamp> {
} s_lamp;

EntityMetaType * Lamp::s_metaType() { return &s_lamp; }

class SceneCommandTests : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(runConsole({"document", "--new", file(), "make", ",", "add", "0", "3"}).status,
                  0);
    }
    std::string file() const { return m_file.text(); }

    Testing::TemporaryFile const m_file;
};

TEST_F(SceneCommandTests, ADocumentWithoutNodesOfItsOwnShowsItsBackground) {
    Outcome const outcome = runConsole({"scene", file()});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(
        outcome.out,
        "node        entity  color      shows in   levels   vertices  triangles  bounds in cm\n"
        "group       -       0 0.5 0 1  0 0.5 0 1\n"
        "  geometry  -       1 1 1 1    1 1 1 1    0 1 2 3  4         2          "
        "(-8.75, -8.22, -0.01) to (8.75, 8.22, -0.01)\n");
}

TEST_F(SceneCommandTests, JsonHasAllNumbers) {
    Outcome const outcome = runConsole({"scene", "--json", file()});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    std::istringstream lines(outcome.out);
    std::string root;
    std::string background;
    std::string more;
    std::getline(lines, root);
    std::getline(lines, background);
    EXPECT_FALSE(std::getline(lines, more)) << more;
    EXPECT_EQ(root, R"({"depth":0,"type":"group","visible":true,"entity":null,)"
                    R"("color":[0.0,0.5,0.0,1.0],"effectiveColor":[0.0,0.5,0.0,1.0]})");
    nlohmann::json const node = nlohmann::json::parse(background);
    EXPECT_EQ(node.at("depth"), 1);
    EXPECT_EQ(node.at("type"), "geometry");
    EXPECT_EQ(node.at("color"), nlohmann::json::parse("[1,1,1,1]"));
    ASSERT_EQ(node.at("meshes").size(), 1U);
    nlohmann::json const & mesh = node.at("meshes")[0];
    EXPECT_EQ(mesh.at("levels"), nlohmann::json::parse("[0,1,2,3]"));
    EXPECT_EQ(mesh.at("primitiveType"), 4);
    EXPECT_EQ(mesh.at("indices"), nlohmann::json::parse("[0,1,2,2,3,0]"));
    EXPECT_EQ(mesh.at("bounds"), nlohmann::json::parse("[[-8.75,-8.22,-0.01],[8.75,8.22,-0.01]]"));
    EXPECT_EQ(mesh.at("vertices"), nlohmann::json::parse(R"([
        {"position": [-8.75, -8.22, -0.01], "normal": [0, 0, 1], "texCoords": [[0, 1]]},
        {"position": [8.75, -8.22, -0.01], "normal": [0, 0, 1], "texCoords": [[1, 1]]},
        {"position": [8.75, 8.22, -0.01], "normal": [0, 0, 1], "texCoords": [[1, 0]]},
        {"position": [-8.75, 8.22, -0.01], "normal": [0, 0, 1], "texCoords": [[0, 0]]}])"));
}

TEST_F(SceneCommandTests, NodesOfEntitiesComeAfterTheBackground) {
    StrongRef<Asset> asset;
    ASSERT_TRUE(makeDocument(asset));
    Segment * const design = asset->segment(SegmentType::DesignSegment);
    StrongRef<Lamp> const lamp = Lamp::make(design);
    design->addRoot(lamp, "Lamp");
    ASSERT_TRUE(DocumentFile::saveAs(*asset, m_file.path()));
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(runScene(Text::fromUtf8(file()), false, out, err), 0);
    EXPECT_EQ(err.str(), "");
    std::string const text = out.str();
    EXPECT_EQ(
        text.substr(text.find("  group")),
        "  group               #1      -            0 0.5 0 1\n"
        "    geometry          -       1 0.1 0 0.5  1 0.1 0 0.5  0        3         1          "
        "(0, 0, 0) to (0.1, 0.1, 0)\n"
        "                                                        1 2      3         1          "
        "(0, 0, 0) to (0, 0, 0)\n"
        "    geometry, hidden  -       -            0 0.5 0 1\n");
    out.str({});
    EXPECT_EQ(runScene(Text::fromUtf8(file()), true, out, err), 0);
    EXPECT_NE(out.str().find("\"levels\":[1,2],\"primitiveType\":4,\"triangles\":1,\"bounds\":"
                             "[[0.0,0.0,0.0],[0.0,0.0,0.0]],\"vertices\":[{\"position\":"
                             "[0.0,0.0,0.0],\"texCoords\":[]},{\"position\":[null,0.0,0.0]"),
              std::string::npos)
        << out.str();
}

TEST_F(SceneCommandTests, TheFileStaysAsItIs) {
    namespace fs = std::filesystem;
    std::string const before = Testing::contentOf(m_file.path());
    auto const time = fs::last_write_time(m_file.path());
    for (char const * const command : {"scene", "document"})
        EXPECT_EQ(runConsole({command, file()}).status, 0) << command;
    EXPECT_EQ(runConsole({"eval", "1 in", "--document", file()}).status, 0);
    EXPECT_TRUE(Testing::contentOf(m_file.path()) == before);
    EXPECT_EQ(fs::last_write_time(m_file.path()), time);
    EXPECT_EQ(std::distance(fs::directory_iterator(m_file.path().parent_path()), {}), 1)
        << "nothing is left beside it";
}

TEST_F(SceneCommandTests, AFileThatCantBeOpenedIsTold) {
    Outcome const missing = runConsole({"scene", file() + ".not"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_NE(missing.err.find("cannot open the document"), std::string::npos) << missing.err;
    std::ofstream(m_file.path()) << "no document";
    Outcome const damaged = runConsole({"scene", "--json", file()});
    EXPECT_EQ(damaged.status, 1);
    EXPECT_EQ(damaged.out, "");
    EXPECT_NE(damaged.err.find("cannot open the document"), std::string::npos) << damaged.err;
    EXPECT_EQ(runConsole({"scene"}).status, 2);
}

} // namespace

} // namespace Vn::Console::Tests
