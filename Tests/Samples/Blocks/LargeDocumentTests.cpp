// Many parts, and assemblies within each other to a great depth, on a small stack.

#include <string>

#include "Tests/Samples/Blocks/BlocksTesting.h"
#include "Tests/Support/SmallStack.h"

namespace Vn::Blocks::Testing {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int c_many = 10'000;
#else
constexpr int c_many = 100'000;
#endif

std::size_t nodesOf(Asset const & asset) {
    std::size_t nodes = 0;
    for (Vrx::Graphics::NodeWalk walk(sceneOf(asset)); walk; walk.next()) ++nodes;
    return nodes;
}

StrongRef<Asset> openedAnew(Asset & asset) {
    Vn::Testing::TemporaryFile const file;
    Status status = DocumentFile::saveAs(asset, file.path());
    EXPECT_TRUE(status) << status.toString();
    StrongRef<Asset> opened;
    status = DocumentFile::load(file.path(), nullptr, opened);
    EXPECT_TRUE(status) << status.toString();
    if (opened) equip(*opened);
    return opened;
}

TEST(LargeDocument, AssembliesMayStandInEachOtherToAnyDepth) {
    Vn::Testing::onSmallStack([] {
        Document document;
        StrongRef<Assembly> const top = document.makeAssembly();
        std::size_t const nodesBefore = nodesOf(*document.asset);
        {
            Transaction transaction(*document.asset, L"deep");
            StrongRef<Assembly> at = top;
            for (int i = 1; i < c_many; ++i) at = Assembly::make(PassiveRef<Entity>(at), L"within");
            StrongRef<Part> const part =
                document.make(EShape::Block, {L"1", L"2", L"3"}, {L"1", L"0", L"0"}, at.get());
            EXPECT_EQ(pathOf(*part).size(), 2U * c_many + 1);
            transaction.commit();
        }
        std::size_t const nodes = nodesBefore + c_many - 1 + 2;
        EXPECT_EQ(nodesOf(*document.asset), nodes);
        EXPECT_DOUBLE_EQ(top->measures().mass.value_or(0), 6 * 0.00785);
        EXPECT_EQ(top->measures().material, findMaterial("steel"));

        StrongRef<Asset> opened = openedAnew(*document.asset);
        ASSERT_TRUE(opened);
        EXPECT_EQ(nodesOf(*opened), nodes);
        opened.reset();

        std::vector<StrongRef<Item>> copies;
        EXPECT_FALSE(duplicate(*top, c_mostCopies, copies)); // too many in all
        ASSERT_TRUE(deleteItem(top));
        EXPECT_EQ(nodesOf(*document.asset), nodesBefore - 1);
        ASSERT_TRUE(document.history().undo());
        EXPECT_EQ(nodesOf(*document.asset), nodes);
        ASSERT_TRUE(document.history().undo());
        EXPECT_EQ(nodesOf(*document.asset), nodesBefore);
    });
}

TEST(LargeDocument, ManyPartsAreMadeCopiedAndDeletedAtOnce) {
    Document document;
    StrongRef<Part> const part = document.makeBlock(L"1");
    std::size_t const nodesBefore = nodesOf(*document.asset);
    std::size_t const meshes = sharedMeshes();
    std::vector<StrongRef<Item>> copies;
    ASSERT_TRUE(duplicate(*part, c_many - 1, copies));
    EXPECT_EQ(nodesOf(*document.asset), nodesBefore + 2 * (c_many - 1));
    EXPECT_EQ(sharedMeshes(), meshes);
    EXPECT_EQ(pathOf(*copies.back()), std::to_wstring(c_many));
    copies.clear();
    StrongRef<Asset> const opened = openedAnew(*document.asset);
    ASSERT_TRUE(opened);
    EXPECT_EQ(nodesOf(*opened), nodesOf(*document.asset));
    ASSERT_TRUE(document.history().undo());
    EXPECT_EQ(nodesOf(*document.asset), nodesBefore);
    ASSERT_TRUE(document.history().redo());
    EXPECT_EQ(nodesOf(*document.asset), nodesBefore + 2 * (c_many - 1));
}

TEST(LargeDocument, ANameMayBeLongAndOfAnyCharacters) {
    Document document;
    StrongRef<Assembly> assembly;
    std::wstring const name(10'000'000, L'\x1b');
    ASSERT_TRUE(assemble(*document.asset, name, {}, assembly));
    StrongRef<Asset> const opened = openedAnew(*document.asset);
    ASSERT_TRUE(opened);
    auto const * const again = query<Assembly>(itemsOf(*opened).front().get());
    EXPECT_TRUE(again->name() == name);
}

} // namespace

} // namespace Vn::Blocks::Testing
