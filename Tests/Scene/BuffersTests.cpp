#include "Platform/Scene/Buffers.h"

#include <climits>

#include <gtest/gtest.h>

namespace Vn::Scene {

namespace {

TEST(BuffersTests, AFormatHasWhatIsAskedFor) {
    EXPECT_EQ(makeVertexFormat(true, 1), Vrx::Devices::VertexFormat(true, 1));
    EXPECT_EQ(makeVertexFormat(false, 0).numbers(), 3U);
}

TEST(BuffersTests, IndicesAreCopied) {
    int indices[] = {0, 1, 2, 2, 3, 0};
    StrongRef<Vrx::Devices::IndexBuffer> const buffer = BuildIndexBuffer(indices, 6, true);
    indices[1] = 7;
    ASSERT_EQ(buffer->indices(), 6U);
    EXPECT_EQ(buffer->index(1), 1U);
    EXPECT_EQ(buffer->index(4), 3U);
    EXPECT_EQ(buffer->bytesPerIndex(), 2U);
    EXPECT_EQ(BuildIndexBuffer(indices, 6, false)->bytesPerIndex(), 4U);
    int const large[] = {INT_MAX};
    EXPECT_EQ(BuildIndexBuffer(large, 1, true)->index(0), 2'147'483'647U);
}

TEST(BuffersTests, BadIndicesGiveNoBuffer) {
    int const indices[] = {0, -1};
    EXPECT_EQ(BuildIndexBuffer(indices, 2, true), nullptr);
    EXPECT_EQ(BuildIndexBuffer(indices, -1, true), nullptr);
    EXPECT_EQ(BuildIndexBuffer(nullptr, 1, true), nullptr);
    EXPECT_EQ(BuildIndexBuffer(indices, 1, true)->indices(), 1U);
    EXPECT_EQ(BuildIndexBuffer(nullptr, 0, true)->indices(), 0U);
}

} // namespace

} // namespace Vn::Scene
