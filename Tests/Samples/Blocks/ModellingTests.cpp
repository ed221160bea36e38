#include "Samples/Blocks/Modelling.h"

#include <string>

#include "Tests/Samples/Blocks/BlocksTesting.h"

namespace Vn::Blocks::Testing {

namespace {

TEST(Modelling, APartKeepsItsLengthsWhenTheUnitsChange) {
    Document document(L"in");
    StrongRef<Part> const block =
        document.make(EShape::Block, {L"2", L"2*3", L"1/3"}, {L"1", L"0", L"-1"});
    EXPECT_EQ(block->input()->sizes()[0], L"2 in");
    Sizes const sizes = block->sizes();
    EXPECT_DOUBLE_EQ(sizes[0], 5.08);
    document.activate(document.addSystem("metric", L"m"));
    EXPECT_EQ(block->sizes(), sizes);
    Fault fault;
    ASSERT_TRUE(setSize(*block, "height", L"1", &fault));
    EXPECT_DOUBLE_EQ(block->sizes()[0], 5.08);
    EXPECT_DOUBLE_EQ(block->sizes()[2], 100);
    EXPECT_EQ(block->input()->sizes()[0], L"2 in");
    EXPECT_EQ(block->input()->sizes()[2], L"1 m");
}

TEST(Modelling, EachRuleOfTheAdapterShowsSomething) {
    Document document;
    StrongRef<Part> const loose = document.makeBlock(L"1");
    StrongRef<Assembly> const assembly =
        document.makeAssembly({document.make(EShape::Sphere, {L"2"})});
    EXPECT_EQ(
        document.graph(),
        "group in 0 0.5 0\n"
        "  mesh 6 to 8.75 8.2200002670288086 -0.0099999997764825821 in 1 1 1\n"
        "  group\n"
        "    mesh 36 to 1 1 1 in 0.56000000238418579 0.60000002384185791 0.64999997615814209\n"
        "  mesh 108 to 1 1 1 in 0.30000001192092896 0.30000001192092896 0.30000001192092896\n"
        "  group\n"
        "    group\n"
        "      mesh 2880 to 1 1 1 in 0.56000000238418579 0.60000002384185791 "
        "0.64999997615814209\n");
    EXPECT_EQ(document.graphOpenedAnew(), document.graph());
}

TEST(Modelling, WhatIsUndoneIsTakenOutOfTheGraph) {
    Document document;
    std::vector<std::string> graphs{document.graph()};
    StrongRef<Part> block = document.makeBlock(L"1");
    graphs.push_back(document.graph());
    StrongRef<Part> ball = document.make(EShape::Sphere, {L"2"}, {L"3", L"0", L"0"});
    graphs.push_back(document.graph());
    StrongRef<Assembly> assembly = document.makeAssembly({block, ball});
    graphs.push_back(document.graph());
    ASSERT_TRUE(setPlace(*assembly, {L"0", L"0", L"5"}, nullptr));
    graphs.push_back(document.graph());
    ASSERT_TRUE(setSize(*ball, "diameter", L"4", nullptr));
    graphs.push_back(document.graph());
    ASSERT_TRUE(setMaterial(*ball, "oak"));
    graphs.push_back(document.graph());
    ASSERT_TRUE(moveItem(*block, nullptr));
    graphs.push_back(document.graph());
    ASSERT_TRUE(deleteItem(assembly));
    graphs.push_back(document.graph());
    block.reset();
    ball.reset();
    assembly.reset();
    EXPECT_EQ(document.graphOpenedAnew(), graphs.back());
    for (std::size_t i = graphs.size() - 1; i-- > 0;) {
        ASSERT_TRUE(document.history().undo());
        EXPECT_EQ(document.graph(), graphs[i]) << "after undo to " << i;
        EXPECT_EQ(document.graphOpenedAnew(), graphs[i]);
    }
    for (std::size_t i = 1; i < graphs.size(); ++i) {
        ASSERT_TRUE(document.history().redo());
        EXPECT_EQ(document.graph(), graphs[i]) << "after redo to " << i;
    }
}

} // namespace

} // namespace Vn::Blocks::Testing
