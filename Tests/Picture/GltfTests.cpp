#include "Platform/Picture/Gltf.h"

#include <cmath>
#include <limits>

#include "Platform/Scene/NodeChange.h"
#include "Tests/Picture/GltfTesting.h"
#include "Tests/Support/SmallStack.h"

namespace Vn::Picture {

namespace {

using namespace Testing;

constexpr float c_nan = std::numeric_limits<float>::quiet_NaN();
constexpr double c_infinity = std::numeric_limits<double>::infinity();

TgMatrix3d scaled(double x, double y, double z) {
    TgMatrix3d map;
    map.entry(0, 0, x);
    map.entry(1, 1, y);
    map.entry(2, 2, z);
    return map;
}

// A source by its name.
class Source : public Scene::INodeSource {
public:
    explicit Source(std::wstring const & name) : m_name(name) {}

    Vrx::Graphics::ARenderNode * renderNode() const override { return m_rGroup.get(); }
    GroupNode * groupNode() const override { return m_rGroup.get(); }
    std::wstring const & name() const { return m_name; }

    // Its group, which is made and put into another.
    GroupNode & standIn(GroupNode & above) {
        Scene::NodeChange change;
        m_rGroup = StrongRef<GroupNode>(change.createGroupNode(this, 1, true, true));
        above.addChild(m_rGroup.get());
        return *m_rGroup;
    }
    // Geometry of its own below that.
    void show(StrongRef<SimpleMesh> const & mesh) {
        Scene::NodeChange change;
        LODGeometryNode * const node = change.createLODGeometryNode(this, true);
        change.geometry(mesh.get(), Vrx::Graphics::LevelAll);
        m_rGroup->addChild(node);
    }

private:
    std::wstring const m_name;
    StrongRef<GroupNode> m_rGroup;
};

// Tells the names of sources, and remembers who was asked for.
class Names : public INodeFacts {
public:
    NodeFacts facts(Scene::INodeSource & source, bool isPart) override {
        std::wstring const & name = dynamic_cast<Source &>(source).name();
        asked.push_back({name, isPart});
        return {name, values, measures};
    }

    std::vector<std::pair<std::wstring, bool>> asked;
    NodeFacts::Values values;
    NodeFacts::Values measures;
};

class GltfTests : public testing::Test {
protected:
    // The box of what is in the file, in metres; it must be read without a complaint.
    BoundingBox boxOfFile(GltfOptions const & options = {}) const {
        Read const read = readByTinyGltf(gltfOf(m_rTop.get(), options).bytes);
        EXPECT_EQ(read.complaints, "");
        EXPECT_TRUE(read.box);
        return read.box.value_or(BoundingBox());
    }
    void expectBox(BoundingBox const & box, TgPoint3d const & low, TgPoint3d const & high) const {
        EXPECT_TRUE(box.low.isEqualTo(low, TgTol(1e-9)))
            << box.low.x << ' ' << box.low.y << ' ' << box.low.z;
        EXPECT_TRUE(box.high.isEqualTo(high, TgTol(1e-9)))
            << box.high.x << ' ' << box.high.y << ' ' << box.high.z;
    }

    StrongRef<GroupNode> const m_rTop = GroupNode::make();
    StrongRef<SimpleMesh> const m_rBox = boxOf(1, 2, 3);
};

TEST_F(GltfTests, ADocumentInCentimetresWithZUpIsAModelInMetresWithYUp) {
    addPart(*m_rTop, m_rBox, Color(1, 0, 0), TgMatrix3d::translation({10, 0, 0}));
    // Who looks at the front looks against the axis of x, which becomes that of z; what is at the
    // right there lies along the axis of y, which becomes that of x.
    expectBox(boxOfFile(), {0, 0, 0.10}, {0.02, 0.03, 0.11});
    Json const file = jsonOf(m_rTop.get());
    EXPECT_EQ(file["asset"], Json({{"version", "2.0"}}));
    EXPECT_EQ(file["scene"], 0);
    EXPECT_EQ(file["scenes"], Json::parse(R"([{"nodes":[0]}])"));
    EXPECT_EQ(file["nodes"], Json::parse(R"([
        {"name": "Document", "children": [1],
         "matrix": [0, 0, 0.01, 0, 0.01, 0, 0, 0, 0, 0.01, 0, 0, 0, 0, 0, 1]},
        {"translation": [10, 0, 0], "children": [2]},
        {"mesh": 0}])"));
}

TEST_F(GltfTests, AxesAreThoseOfTheDocument) {
    addPart(*m_rTop, m_rBox, Color());
    GltfOptions options;
    options.up = {0, 5, 0};
    options.front = {0, 0, -0.5};
    expectBox(boxOfFile(options), {0, 0, 0}, {0.01, 0.02, 0.03});
    // The front is looked at along the axis of y.
    options.up = {0, 0, 1};
    options.front = {0, 1, 0};
    expectBox(boxOfFile(options), {0, 0, -0.02}, {0.01, 0.03, 0});
    // What is up goes first.
    options.front = {0, 1, 7};
    expectBox(boxOfFile(options), {0, 0, -0.02}, {0.01, 0.03, 0});
}

TEST_F(GltfTests, AxesThatAreNoneAreReplacedAsInViews) {
    addPart(*m_rTop, m_rBox, Color());
    struct Row {
        TgVector3d up;
        TgVector3d front;
        TgPoint3d high; // in the file: which axis of the document is which there
    };
    double const nan = std::numeric_limits<double>::quiet_NaN();
    for (auto const & [up, front, high] :
         {Row{{0, 0, 0}, {0, -1, 0}, {0, 0.03, 0.02}},
          Row{{nan, 0, 1}, {0, -1, 0}, {0, 0.03, 0.02}},
          Row{{0, c_infinity, 0}, {0, -1, 0}, {0, 0.03, 0.02}},
          // The model faces the axis of y if z is up, and that of z otherwise.
          Row{{0, 0, 1}, {0, 0, 1}, {0, 0.03, 0.02}}, Row{{0, 0, 1}, {0, 0, 0}, {0, 0.03, 0.02}},
          Row{{0, 0, 1}, {nan, 0, 0}, {0, 0.03, 0.02}},
          Row{{0, 1, 0}, {0, -1, 0}, {0.01, 0.02, 0.03}},
          Row{{1, 0, 0}, {c_infinity, 0, 0}, {0, 0.01, 0.03}}}) {
        GltfOptions options;
        options.up = up;
        options.front = front;
        TgPoint3d const found = boxOfFile(options).high;
        EXPECT_TRUE(found.isEqualTo(high)) << found.x << ' ' << found.y << ' ' << found.z;
    }
}

TEST_F(GltfTests, BothFormsHaveTheSameModelAndTheSameBytesAgain) {
    addPart(*m_rTop, m_rBox, Color(1, 0, 0));
    addPart(*m_rTop, boxOf(3, 1, 1), Color(0, 1, 0, 0.5F));
    GltfOptions text;
    text.binary = false;
    std::string const asText = gltfOf(m_rTop.get(), text).bytes;
    std::string const asBinary = gltfOf(m_rTop.get()).bytes;
    EXPECT_EQ(gltfOf(m_rTop.get(), text).bytes, asText);
    EXPECT_EQ(gltfOf(m_rTop.get()).bytes, asBinary);
    Json one = objectOf(asText);
    Json other = objectOf(asBinary);
    EXPECT_EQ(one["buffers"][0].erase("uri"), 1U);
    EXPECT_EQ(one, other);
    EXPECT_EQ(asBinary.size() % 4, 0U);
    for (std::string const & bytes : {asText, asBinary}) {
        Read const read = readByTinyGltf(bytes);
        EXPECT_EQ(read.complaints, "");
        EXPECT_EQ(read.triangles, 24U);
        ASSERT_TRUE(read.box);
        expectBox(*read.box, {0, 0, 0}, {0.02, 0.03, 0.03});
    }
}

TEST_F(GltfTests, NothingIsARootAlone) {
    addPart(*m_rTop, nullptr, Color());
    m_rTop->firstChild()->visible(false);
    for (GroupNode * const top : {static_cast<GroupNode *>(nullptr), m_rTop.get()}) {
        GltfModel const model = gltfOf(top);
        EXPECT_EQ(readByTinyGltf(model.bytes).complaints, "");
        EXPECT_EQ(objectOf(model.bytes), Json::parse(R"({
            "asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
            "nodes": [{"name": "Document",
                       "matrix": [0, 0, 0.01, 0, 0.01, 0, 0, 0, 0, 0.01, 0, 0, 0, 0, 0, 1]}]})"));
        EXPECT_EQ(model.parts, 0U);
        EXPECT_EQ(model.leftOut, 0U);
    }
}

TEST_F(GltfTests, WhatPicturesLeaveOutIsLeftOut) {
    StrongRef<LODGeometryNode> const ground = LODGeometryNode::make();
    ground->geometry(boxOf(100, 100, 100).get(), Vrx::Graphics::LevelAll);
    m_rTop->addChild(ground.get());
    addPart(*m_rTop, boxOf(50, 50, 50), Color())->visible(false);
    StrongRef<GroupNode> const screen = GroupNode::make(Vrx::Scene::WorldScreen);
    addPart(*screen, boxOf(50, 50, 50), Color());
    m_rTop->addChild(screen.get());
    LODGeometryNode * const part = addPart(*m_rTop, m_rBox, Color());
    part->geometry(boxOf(9, 9, 9).get(), Vrx::Graphics::LevelCoarse); // which is coarser
    expectBox(boxOfFile(), {0, 0, 0}, {0.02, 0.03, 0.01});
    GltfModel const model = gltfOf(m_rTop.get());
    EXPECT_EQ(model.parts, 1U);
    EXPECT_EQ(model.meshes, 1U);
    EXPECT_EQ(model.leftOut, 0U);
}

TEST_F(GltfTests, EqualPartsAreOneMesh) {
    for (int i = 0; i < 1000; ++i) {
        TgMatrix3d const place = TgMatrix3d::translation({10.0 * i, 0, 0});
        addPart(*m_rTop, i % 2 ? m_rBox : boxOf(1, 2, 3), Color(1, 0, 0), place);
    }
    GltfModel const model = gltfOf(m_rTop.get());
    EXPECT_EQ(model.parts, 1000U);
    EXPECT_EQ(model.meshes, 1U);
    Json file = objectOf(model.bytes);
    EXPECT_EQ(file["meshes"].size(), 1U);
    EXPECT_EQ(file["materials"].size(), 1U);
    EXPECT_EQ(file["buffers"][0]["byteLength"], 8 * 12 + 36 * 2);
    // In another color the numbers are the same ones.
    addPart(*m_rTop, m_rBox, Color(0, 1, 0));
    file = jsonOf(m_rTop.get());
    ASSERT_EQ(file["meshes"].size(), 2U);
    EXPECT_EQ(file["meshes"][0]["primitives"][0]["attributes"],
              file["meshes"][1]["primitives"][0]["attributes"]);
    EXPECT_EQ(file["accessors"].size(), 2U);
    EXPECT_EQ(readByTinyGltf(gltfOf(m_rTop.get()).bytes).triangles, 1001U * 12);
}

TEST_F(GltfTests, ColorsAreLinearAndBlendedIfTheyArentOpaque) {
    addPart(*m_rTop, m_rBox, Color(1, 0.5F, 0.02F));
    addPart(*m_rTop, m_rBox, Color(0, 0, 1, 0.25F));
    addPart(*m_rTop, m_rBox, Color(c_nan, 7, -1, c_nan));
    Json const materials = jsonOf(m_rTop.get())["materials"];
    ASSERT_EQ(materials.size(), 3U);
    EXPECT_EQ(materials[0]["name"], "#FF8005");
    EXPECT_EQ(materials[0]["doubleSided"], true);
    EXPECT_FALSE(materials[0].contains("alphaMode"));
    Json const & factor = materials[0]["pbrMetallicRoughness"]["baseColorFactor"];
    EXPECT_EQ(factor[0], 1);
    EXPECT_NEAR(factor[1].get<double>(), 0.21404114, 1e-7);
    EXPECT_NEAR(factor[2].get<double>(), 0.00154799, 1e-7);
    EXPECT_EQ(factor[3], 1);
    EXPECT_EQ(materials[1]["alphaMode"], "BLEND");
    EXPECT_EQ(materials[1]["pbrMetallicRoughness"]["baseColorFactor"], Json::parse("[0,0,1,0.25]"));
    EXPECT_EQ(materials[2]["name"], "#80FF00") << "grey for what is NaN";
    EXPECT_FALSE(materials[2].contains("alphaMode"));
}

TEST_F(GltfTests, NodesBelowTheRootKeepTheirNumbers) {
    TgMatrix3d const turned = TgMatrix3d::rotation(0.3, {1, 2, 3}, {4, 5, 6}) * scaled(2, 3, 4);
    addPart(*m_rTop, m_rBox, Color(), turned);
    addPart(*m_rTop, m_rBox, Color());
    Json const nodes = jsonOf(m_rTop.get())["nodes"];
    ASSERT_EQ(nodes.size(), 5U);
    for (unsigned i = 0; i < 16; ++i)
        EXPECT_EQ(nodes[1]["matrix"][i], turned.entry(i % 4, i / 4)) << "to the last bit";
    EXPECT_EQ(nodes[3], Json::parse(R"({"children": [4]})"));
}

// The box around the model under a map, and without the file.
TEST_F(GltfTests, MapsThatGltfDoesntHaveAreTwoNodes) {
    TgMatrix3d sheared;
    sheared.entry(0, 1, 0.7);
    sheared.entry(1, 2, -0.3);
    TgMatrix3d flat = TgMatrix3d::rotation(1, {1, 1, 0});
    for (unsigned row = 0; row < 3; ++row) flat.entry(row, 2, flat.entry(row, 0));
    TgMatrix3d const maps[] = {sheared,
                               TgMatrix3d::rotation(0.4, {3, 1, 2}) * scaled(1, 5, 2) *
                                   TgMatrix3d::rotation(1.4, {0, 1, 2}, {7, 8, 9}),
                               sheared * scaled(-1, 1, 1),
                               scaled(-1, 1, 1) * sheared,
                               flat,
                               scaled(1, 0, 1),
                               scaled(0, 0, 0),
                               scaled(1e-12, 1, 1e12),
                               TgMatrix3d::translation({1, 2, 3}) * sheared *
                                   scaled(1e-9, 1e-9, 1e-9)};
    for (TgMatrix3d const & map : maps) {
        StrongRef<GroupNode> const top = GroupNode::make();
        addPart(*top, m_rBox, Color(), map);
        GltfOptions options; // by which only the unit changes
        options.up = {0, 1, 0};
        options.front = {0, 0, -1};
        Read const read = readByTinyGltf(gltfOf(top.get(), options).bytes);
        EXPECT_EQ(read.complaints, "");
        BoundingBox const expected = boxOf(1, 2, 3)->bounds()->transformed(map);
        ASSERT_TRUE(read.box);
        double const size = expected.low.distanceTo(expected.high);
        for (auto const & [found, wanted] :
             {std::pair(read.box->low, expected.low), std::pair(read.box->high, expected.high)})
            EXPECT_LE(TgPoint3d(found.x * 100, found.y * 100, found.z * 100).distanceTo(wanted),
                      1e-12 * (size + 10));
    }
}

TEST_F(GltfTests, WhatIsntFiniteIsLeftOutAndCounted) {
    TgMatrix3d broken;
    broken.entry(0, 0, c_infinity);
    addPart(*m_rTop, m_rBox, Color(), broken);
    TgMatrix3d projective;
    projective.entry(3, 0, 1);
    addPart(*m_rTop, m_rBox, Color(), projective);
    addPart(*m_rTop, m_rBox, Color(), scaled(1e300, 1, 1));
    addPart(*m_rTop, boxOf(1e30F, 1, 1), Color(), scaled(1e30, 1, 1)); // each could be
    addPart(*m_rTop, meshOf({0, 0, 0, 1, 0, 0, c_nan, 1, 0}, {0, 1, 2}), Color());
    addPart(*m_rTop, meshOf({0, 0, 0, 1, 0, 0, 0, 1, 0}, {0, 1, 7}), Color());
    addPart(*m_rTop, m_rBox, Color());
    GltfModel const model = gltfOf(m_rTop.get());
    EXPECT_EQ(model.leftOut, 6U);
    EXPECT_EQ(model.parts, 1U);
    EXPECT_EQ(model.bytes.find("null"), std::string::npos);
    expectBox(boxOfFile(), {0, 0, 0}, {0.02, 0.03, 0.01});
}

TEST_F(GltfTests, OnlyVerticesOfTrianglesAreKept) {
    addPart(*m_rTop, meshOf({c_nan, 0, 0, 9, 9, 9, 0, 0, 0, 1, 0, 0, 0, 1, 0}, {4, 3, 2, 2, 3, 99}),
            Color());
    Read const read = readByTinyGltf(gltfOf(m_rTop.get()).bytes);
    EXPECT_EQ(read.positions, (std::vector<std::array<float, 3>>{{0, 1, 0}, {1, 0, 0}, {0, 0, 0}}));
    EXPECT_EQ(read.triangles, 1U);
}

StrongRef<SimpleMesh> withNormals(std::vector<float> numbers, int type,
                                  std::vector<std::uint32_t> const & indices) {
    using namespace Vrx::Devices;
    return StrongRef<SimpleMesh>(new SimpleMesh(
        type,
        StrongRef<VertexBuffer>(new VertexBuffer(VertexFormat(true, 0), std::move(numbers),
                                                 UsageStatic, AccessReadWrite, StateComplete)),
        StrongRef<IndexBuffer>(new IndexBuffer(indices, false)), nullptr));
}

TEST_F(GltfTests, NormalsAreOfLengthOneOrNotThere) {
    std::vector<float> numbers = {0, 0, 0, 0, 0, 7, 1, 0, 0, 3, 0, 4, 0, 1, 0, 0, 0, 1e-30F};
    addPart(*m_rTop, withNormals(numbers, Vrx::Devices::PrimitiveTriangles, {0, 1, 2}), Color());
    EXPECT_EQ(readByTinyGltf(gltfOf(m_rTop.get()).bytes).normals,
              (std::vector<std::array<float, 3>>{{0, 0, 1}, {0.6F, 0, 0.8F}, {0, 0, 1}}));
    for (float const bad : {0.0F, c_nan}) {
        numbers[5] = bad;
        StrongRef<GroupNode> const top = GroupNode::make();
        addPart(*top, withNormals(numbers, Vrx::Devices::PrimitiveTriangles, {0, 1, 2}), Color());
        Read const read = readByTinyGltf(gltfOf(top.get()).bytes);
        EXPECT_TRUE(read.normals.empty());
        EXPECT_EQ(read.triangles, 1U);
    }
}

TEST_F(GltfTests, StripsAreTriangles) {
    std::vector<float> const numbers = {0, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0, 1,
                                        0, 1, 0, 0, 0, 1, 1, 1, 0, 0, 0, 1};
    addPart(*m_rTop, withNormals(numbers, Vrx::Devices::PrimitiveTriangleStrip, {0, 1, 2, 3}),
            Color());
    addPart(*m_rTop, withNormals(numbers, Vrx::Devices::PrimitiveLines, {0, 1}), Color());
    GltfModel const model = gltfOf(m_rTop.get());
    EXPECT_EQ(model.parts, 1U);
    EXPECT_EQ(readByTinyGltf(model.bytes).triangles, 2U);
}

TEST_F(GltfTests, ManyVerticesHaveWideIndices) {
    for (std::size_t const count : {65532U, 65535U, 65538U}) {
        std::vector<float> positions;
        std::vector<std::uint32_t> indices;
        for (std::uint32_t i = 0; i < count; ++i) {
            for (float const number : {static_cast<float>(i % 3), static_cast<float>(i), 1.0F})
                positions.push_back(number);
            indices.push_back(i);
        }
        StrongRef<GroupNode> const top = GroupNode::make();
        addPart(*top, meshOf(positions, indices), Color());
        std::string const bytes = gltfOf(top.get()).bytes;
        EXPECT_EQ(objectOf(bytes)["accessors"][1]["componentType"], count < 65535 ? 5123 : 5125);
        EXPECT_EQ(readByTinyGltf(bytes).box->high.x, (static_cast<double>(count) - 1) * 0.01);
    }
}

// --- Names and facts ----------------------------------------------------------------------------

TEST_F(GltfTests, NodesHaveTheNamesAndFactsOfTheirSources) {
    Source assembly(L"Desk");
    Source part(L"Leg");
    Source other(L"Foot");
    part.standIn(assembly.standIn(*m_rTop));
    part.show(m_rBox);
    other.standIn(*part.groupNode());
    Names names;
    names.values = {{"entity", std::uint64_t{12}}, {"class", L"Block"}};
    names.measures = {{"volume", 6.5}, {"mass", c_infinity}};
    GltfOptions options;
    options.facts = &names;
    Json const nodes = jsonOf(m_rTop.get(), options)["nodes"];
    EXPECT_EQ(names.asked, (std::vector<std::pair<std::wstring, bool>>{
                               {L"Desk", false}, {L"Leg", false}, {L"Foot", true}}));
    ASSERT_EQ(nodes.size(), 5U);
    EXPECT_EQ(nodes[2]["name"], "Leg");
    EXPECT_EQ(nodes[2]["extras"], Json::parse(R"({"entity": 12, "class": "Block",
                                                  "massProperties": {"volume": 6.5}})"));
    EXPECT_EQ(nodes[3], Json::parse(R"({"mesh": 0})")) << "of the same source";
    EXPECT_EQ(nodes[4]["name"], "Foot");
}

TEST_F(GltfTests, NamesAreUtf8WhateverTheyWere) {
    std::wstring odd = L"a\x01\"\\\n\x7F\u00E9\u2028";
    odd += static_cast<wchar_t>(0xD800); // half of a character
    odd += L'b';
    Source part(odd);
    part.standIn(*m_rTop);
    Names names;
    GltfOptions options;
    options.facts = &names;
    std::string const bytes = gltfOf(m_rTop.get(), options).bytes;
    EXPECT_EQ(readByTinyGltf(bytes).complaints, "");
    EXPECT_EQ(objectOf(bytes)["nodes"][1]["name"], "a\x01\"\\\n\x7F\xC3\xA9\xE2\x80\xA8\xEF\xBF\xBD"
                                                   "b");
}

TEST_F(GltfTests, ANameOfTenMegabytesIsKept) {
    Source part(std::wstring(10'000'000, L'\x01'));
    part.standIn(*m_rTop);
    part.show(m_rBox);
    Names names;
    GltfOptions options;
    options.facts = &names;
    std::string const bytes = gltfOf(m_rTop.get(), options).bytes;
    EXPECT_GT(bytes.size(), 60'000'000U) << "six characters each";
    EXPECT_EQ(objectOf(bytes)["nodes"][1]["name"].get<std::string>().size(), 10'000'000U);
}

// --- Views --------------------------------------------------------------------------------------

TEST_F(GltfTests, ViewsAreCameras) {
    addPart(*m_rTop, m_rBox, Color());
    GltfOptions options;
    View flat;
    flat.position = {50, 0, 0};
    flat.width = 8;
    flat.height = 4;
    View deep = flat;
    deep.perspective = true;
    options.views = {{L"FRONT", flat}, {L"Near by", deep}};
    std::string const bytes = gltfOf(m_rTop.get(), options).bytes;
    EXPECT_EQ(readByTinyGltf(bytes).complaints, "");
    Json const file = objectOf(bytes);
    Json const & cameras = file["cameras"];
    ASSERT_EQ(cameras.size(), 2U);
    EXPECT_EQ(cameras[0]["name"], "FRONT");
    EXPECT_EQ(cameras[0]["type"], "orthographic");
    Json const & lens = cameras[0]["orthographic"];
    EXPECT_DOUBLE_EQ(lens["xmag"].get<double>(), 0.04);
    EXPECT_DOUBLE_EQ(lens["ymag"].get<double>(), 0.02);
    EXPECT_NEAR(lens["znear"].get<double>(), 0.49, 1e-3);
    EXPECT_GE(lens["zfar"].get<double>(), 0.50);
    EXPECT_EQ(cameras[1]["type"], "perspective");
    EXPECT_DOUBLE_EQ(cameras[1]["perspective"]["yfov"].get<double>(), 2 * std::atan(2.0 / 50));
    EXPECT_DOUBLE_EQ(cameras[1]["perspective"]["aspectRatio"].get<double>(), 2);
    // The node is placed in cm, and the scale of the root is undone.
    Json const & node = file["nodes"][3];
    EXPECT_EQ(node["name"], "FRONT");
    EXPECT_EQ(node["camera"], 0);
    EXPECT_EQ(node["matrix"], Json::parse("[0,100,0,0, 0,0,100,0, 100,0,0,0, 50,0,0,1]"));
    EXPECT_EQ(file["nodes"][0]["children"], Json::parse("[1,3,4]"));
}

TEST_F(GltfTests, ViewsThatShowNothingAreLeftOutAndCounted) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    GltfOptions options;
    for (int i = 0; i < 7; ++i) {
        View view;
        view.position = {i == 0 ? nan : 5, 0, 0};
        if (i == 1) view.position = view.target;
        if (i == 2) view.width = 0;
        if (i == 3) view.height = c_infinity;
        if (i == 4) view.width = 1e300;
        if (i == 5) view.position.x = 1e200;
        options.views.push_back({std::to_wstring(i), view});
    }
    GltfModel const model = gltfOf(m_rTop.get(), options);
    EXPECT_EQ(model.badViews, 6U);
    Json const file = objectOf(model.bytes);
    ASSERT_EQ(file["cameras"].size(), 1U);
    EXPECT_EQ(file["cameras"][0]["name"], "6");
    EXPECT_EQ(file["nodes"][1]["camera"], 0);
    EXPECT_EQ(model.bytes.find("null"), std::string::npos);
}

TEST_F(GltfTests, CamerasSeeBetweenTwoDistancesAboveZero) {
    addPart(*m_rTop, boxOf(1000, 1000, 1000), Color());
    for (bool const perspective : {false, true}) {
        View within; // the model
        within.position = {500, 500, 500};
        within.target = {501, 500, 500};
        View away = within; // from the model
        away.position = {1e5, 0, 0};
        away.target = {1e5 + 1, 0, 0};
        for (View view : {within, away}) {
            view.perspective = perspective;
            GltfOptions options;
            options.views = {{L"", view}};
            Json const camera = jsonOf(m_rTop.get(), options)["cameras"][0];
            EXPECT_FALSE(camera.contains("name"));
            Json const & lens = camera[camera["type"].get<std::string>()];
            EXPECT_GT(lens["znear"].get<double>(), 0);
            EXPECT_GT(lens["zfar"].get<double>(), lens["znear"].get<double>());
        }
    }
}

// --- Sizes --------------------------------------------------------------------------------------

TEST_F(GltfTests, AHundredThousandEqualPartsAreOneMesh) {
    for (int i = 0; i < 100'000; ++i)
        addPart(*m_rTop, m_rBox, Color(1, 0, 0), TgMatrix3d::translation({2.0 * i, 0, 0}));
    GltfModel const model = gltfOf(m_rTop.get());
    EXPECT_EQ(model.parts, 100'000U);
    EXPECT_EQ(model.meshes, 1U);
    Read const read = readByTinyGltf(model.bytes);
    EXPECT_EQ(read.complaints, "");
    EXPECT_EQ(read.meshes, 1U);
    EXPECT_EQ(read.nodes, 200'001U);
    EXPECT_EQ(read.triangles, 1'200'000U);
    EXPECT_LT(model.bytes.size(), 10'000'000U);
}

TEST_F(GltfTests, AnyDepthFitsASmallStack) {
    constexpr std::size_t c_depth = 100'000;
    std::vector<Source> sources(c_depth, Source(L"Assembly"));
    GroupNode * group = m_rTop.get();
    for (Source & source : sources) {
        group = &source.standIn(*group);
        group->transform(
            std::make_unique<TgMatrix3d const>(TgMatrix3d::translation({0.001, 0, 0})));
    }
    sources.back().show(m_rBox);
    Names names;
    GltfOptions options;
    options.facts = &names;
    GltfModel model;
    Vn::Testing::onSmallStack([&] { model = gltfOf(m_rTop.get(), options); });
    ASSERT_EQ(names.asked.size(), c_depth);
    EXPECT_FALSE(names.asked.front().second);
    EXPECT_TRUE(names.asked.back().second);
    Read const read = readByTinyGltf(model.bytes);
    EXPECT_EQ(read.complaints, "");
    ASSERT_TRUE(read.box);
    EXPECT_NEAR(read.box->high.z, 1.01, 1e-6) << "a hundred thousand steps of 1e-5 m, and the box";
}

TEST_F(GltfTests, MoreThanTheLimitIsRefused) {
    for (int i = 0; i < 100; ++i)
        addPart(*m_rTop, boxOf(1, 2, 3.0F + static_cast<float>(i)), Color());
    for (bool const binary : {false, true}) {
        GltfOptions options;
        options.binary = binary;
        GltfModel model = gltfOf(m_rTop.get(), options);
        std::uint64_t const size = model.bytes.size();
        options.mostBytes = size;
        EXPECT_EQ(gltfOf(m_rTop.get(), options).bytes.size(), size);
        for (std::uint64_t const most : {size - 1, size / 2, size / 10, std::uint64_t{0}}) {
            options.mostBytes = most;
            model.bytes = "kept";
            Status const status = makeGltf(m_rTop.get(), options, model);
            EXPECT_EQ(status.code(), StatusUnsupported);
            EXPECT_EQ(status.cause(), "it would have more than " + std::to_string(most) + " bytes");
            EXPECT_EQ(model.bytes, "kept");
        }
    }
}

TEST_F(GltfTests, FactsThatThrowEndTheWork) {
    struct Refused {};
    struct Refusing : INodeFacts {
        NodeFacts facts(Scene::INodeSource &, bool) override { throw Refused(); }
    } refusing;
    Source part(L"Leg");
    part.standIn(*m_rTop);
    GltfOptions options;
    options.facts = &refusing;
    GltfModel model;
    EXPECT_THROW(static_cast<void>(makeGltf(m_rTop.get(), options, model)), Refused);
    EXPECT_EQ(model.bytes, "");
}

} // namespace

} // namespace Vn::Picture
