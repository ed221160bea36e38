#include "Platform/Graphics/VertexBuffer.h"

#include <array>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Graphics/VertexBufferBuilder.h"

namespace Vrx::Devices {

namespace {

using Vn::StrongRef;

using Pair = std::array<float, 2>;
using Triple = std::array<float, 3>;

TEST(VertexFormatTests, NumbersStandInTheOrderOfPositionNormalAndTextures) {
    struct Row {
        bool normal;
        int sets;
        std::size_t numbers;
        int kept;
    };
    for (Row const & row : {Row{false, 0, 3, 0}, Row{true, 0, 6, 0}, Row{false, 1, 5, 1},
                            Row{true, 1, 8, 1}, Row{true, 8, 22, 8}, Row{true, 9, 22, 8},
                            Row{false, -1, 3, 0}, Row{false, 2'000'000'000, 19, 8}}) {
        VertexFormat const format(row.normal, row.sets);
        EXPECT_EQ(format.numbers(), row.numbers);
        EXPECT_EQ(format.textureSets(), row.kept);
        EXPECT_EQ(format.hasNormal(), row.normal);
    }
    EXPECT_EQ(VertexFormat(true, 2).textureOffset(1), 8U);
    EXPECT_EQ(VertexFormat(false, 2).textureOffset(0), 3U);
}

TEST(VertexBufferTests, ABufferTellsItsFormatAndItsNumbers) {
    VertexBufferBuilder builder(2, VertexFormat(true, 1));
    EXPECT_TRUE(builder.AddPosition(-8.75F, -8.22F, -0.01F));
    EXPECT_TRUE(builder.Normal(0, 0, 1));
    EXPECT_TRUE(builder.TexCoord2D(0, 0, 1));
    EXPECT_TRUE(builder.AddPosition(1, 2, 3));
    EXPECT_TRUE(builder.TexCoord2D(0, 0.25F, 0.5F));
    StrongRef<VertexBuffer> const buffer = builder.ToVertexBuffer(nullptr, 0, 3, 2);
    EXPECT_EQ(buffer->format(), VertexFormat(true, 1));
    EXPECT_EQ(buffer->usage(), UsageStatic);
    EXPECT_EQ(buffer->access(), AccessReadWrite);
    EXPECT_EQ(buffer->state(), StateComplete);
    ASSERT_EQ(buffer->vertices(), 2U);
    EXPECT_EQ(buffer->position(0), (Triple{-8.75F, -8.22F, -0.01F}));
    EXPECT_EQ(buffer->normal(0), (Triple{0, 0, 1}));
    EXPECT_EQ(buffer->texCoord(0, 0), (Pair{0, 1}));
    EXPECT_EQ(buffer->position(1), (Triple{1, 2, 3}));
    EXPECT_EQ(buffer->normal(1), Triple{});
    EXPECT_EQ(buffer->texCoord(1, 0), (Pair{0.25F, 0.5F}));
    EXPECT_EQ(
        std::vector<float>(buffer->numbers().begin(), buffer->numbers().end()),
        (std::vector<float>{-8.75F, -8.22F, -0.01F, 0, 0, 1, 0, 1, 1, 2, 3, 0, 0, 0, 0.25F, 0.5F}));
}

TEST(VertexBufferTests, WhatAVertexDoesNotHaveIsZero) {
    VertexBuffer const buffer(VertexFormat(false, 0), {1, 2, 3, 4}, 0, 3, 2);
    EXPECT_EQ(buffer.vertices(), 1U); // and one number too many
    EXPECT_EQ(buffer.position(0), (Triple{1, 2, 3}));
    EXPECT_EQ(buffer.position(1), Triple{});
    EXPECT_EQ(buffer.normal(0), Triple{});
    EXPECT_EQ(buffer.texCoord(0, 0), Pair{});
    EXPECT_EQ(buffer.texCoord(0, -1), Pair{});
}

TEST(VertexBufferBuilderTests, WhatHasNoPlaceIsRefused) {
    VertexBufferBuilder builder(1, VertexFormat(false, 1));
    EXPECT_FALSE(builder.TexCoord2D(0, 1, 1)); // there is no vertex yet
    EXPECT_TRUE(builder.AddPosition(1, 2, 3));
    EXPECT_FALSE(builder.Normal(0, 0, 1));
    EXPECT_FALSE(builder.TexCoord2D(1, 1, 1));
    EXPECT_FALSE(builder.TexCoord2D(-1, 1, 1));
    EXPECT_FALSE(builder.AddPosition(7, 7, 7));
    EXPECT_TRUE(builder.TexCoord2D(0, 4, 5)); // still of the only vertex
    StrongRef<VertexBuffer> const buffer = builder.ToVertexBuffer(nullptr, 0, 3, 2);
    EXPECT_EQ(buffer->position(0), (Triple{1, 2, 3}));
    EXPECT_EQ(buffer->texCoord(0, 0), (Pair{4, 5}));
}

TEST(VertexBufferBuilderTests, TheBufferHasAsManyVerticesAsWereAskedFor) {
    VertexBufferBuilder builder(3, VertexFormat());
    builder.AddPosition(1, 2, 3);
    StrongRef<VertexBuffer> const buffer = builder.ToVertexBuffer(nullptr, 0, 3, 2);
    EXPECT_EQ(buffer->vertices(), 3U);
    EXPECT_EQ(buffer->position(2), Triple{});
    EXPECT_FALSE(builder.AddPosition(1, 2, 3)); // it is left without
    EXPECT_FALSE(VertexBufferBuilder(-5, VertexFormat()).AddPosition(1, 2, 3));
}

TEST(VertexBufferBuilderTests, OddNumbersAreKept) {
    VertexBufferBuilder builder(1, VertexFormat());
    builder.AddPosition(std::numeric_limits<float>::quiet_NaN(),
                        -std::numeric_limits<float>::infinity(), -0.0F);
    auto const [x, y, z] = builder.ToVertexBuffer(nullptr, 0, 3, 2)->position(0);
    EXPECT_TRUE(std::isnan(x));
    EXPECT_EQ(y, -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::signbit(z));
}

TEST(VertexBufferTests, NumbersThatNobodyNamedAreKept) {
    VertexBuffer const buffer(VertexFormat(), {}, 77, -1, 1'000'000);
    EXPECT_EQ(buffer.usage(), 77);
    EXPECT_EQ(buffer.access(), -1);
    EXPECT_EQ(buffer.state(), 1'000'000);
}

} // namespace

} // namespace Vrx::Devices
