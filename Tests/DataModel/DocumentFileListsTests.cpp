// How lists are cut into rows, and which rows are written when a list has changed.

#include "Platform/DataModel/File/Lists.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "Platform/DataModel/File/Circles.h"
#include "Platform/DataModel/Limits.h"

namespace Vn::Testing {

namespace {

using namespace DataModel;

std::vector<std::string> cut(std::vector<int> const & list) {
    ChunkCutter cutter;
    for (int const element : list) {
        cutter.beginElement() += std::to_string(element);
        cutter.endElement();
    }
    return cutter.chunks();
}

std::string joined(std::vector<std::string> const & chunks) {
    std::string all;
    for (std::string const & chunk : chunks) {
        if (!all.empty()) all += ',';
        all.append(chunk, 1, chunk.size() - 2);
    }
    return all;
}

std::vector<int> numbers(int count) {
    std::vector<int> list;
    for (int i = 0; i < count; ++i) list.push_back(i);
    return list;
}

// Carries the changes out as the rows of a table.
std::vector<StoredChunk> apply(std::vector<StoredChunk> const & stored,
                               std::vector<std::string> const & chunks,
                               ChunkChanges const & changes) {
    std::map<long long, std::string> rows;
    for (StoredChunk const & row : stored) rows[row.number] = row.items;
    for (long long const number : changes.erased) EXPECT_EQ(rows.erase(number), 1U);
    for (auto const & row : changes.updated) {
        EXPECT_TRUE(rows.contains(row.number));
        rows[row.number] = chunks[row.chunk];
    }
    for (auto const & row : changes.inserted)
        EXPECT_TRUE(rows.emplace(row.number, chunks[row.chunk]).second);
    std::vector<StoredChunk> result;
    for (auto const & [number, items] : rows) {
        EXPECT_GT(number, -Limits::c_chunkNumber);
        EXPECT_LT(number, Limits::c_chunkNumber);
        result.push_back({number, items});
    }
    return result;
}

std::size_t written(ChunkChanges const & changes) {
    return changes.erased.size() + changes.updated.size() + changes.inserted.size();
}

std::vector<StoredChunk> replaced(std::vector<StoredChunk> const & stored,
                                  std::vector<std::string> const & chunks, std::size_t & rows) {
    ChunkChanges const changes = compareChunks(stored, chunks);
    rows = written(changes);
    std::vector<StoredChunk> const result = apply(stored, chunks, changes);
    EXPECT_EQ(result.size(), chunks.size());
    for (std::size_t i = 0; i < std::min(result.size(), chunks.size()); ++i)
        EXPECT_EQ(result[i].items, chunks[i]);
    return result;
}

} // namespace

TEST(DocumentFileListsTests, AChunkHasAtMost512Elements) {
    for (auto const & chunk : cut(numbers(100'000)))
        EXPECT_LE(std::count(chunk.begin(), chunk.end(), ','), 511);
    auto const same = cut(std::vector<int>(5'000, 7)); // whose elements all have one hash
    for (auto const & chunk : same) EXPECT_LE(std::count(chunk.begin(), chunk.end(), ','), 511);
    EXPECT_EQ(cut({}).size(), 0U);
    EXPECT_EQ(cut({1}), std::vector<std::string>{"[1]"});
    EXPECT_LT(cut(numbers(100'000)).size(), 1'000U);
}

TEST(DocumentFileListsTests, LargeElementsMakeShortChunks) {
    ChunkCutter cutter;
    for (int i = 0; i < 10; ++i) {
        cutter.beginElement() += std::string(40'000, 'x');
        cutter.endElement();
    }
    EXPECT_EQ(cutter.chunks().size(), 5U);
}

TEST(DocumentFileListsTests, OneChangeAnywhereWritesFewRows) {
    std::vector<int> const list = numbers(50'000);
    std::size_t rows = 0;
    std::vector<StoredChunk> const stored = replaced({}, cut(list), rows);
    EXPECT_EQ(rows, stored.size());
    replaced(stored, cut(list), rows);
    EXPECT_EQ(rows, 0U);
    for (std::ptrdiff_t const place : {0, 1, 777, 25'000, 49'999}) {
        SCOPED_TRACE(place);
        std::vector<int> changed = list;
        changed.insert(changed.begin() + place, -1);
        replaced(stored, cut(changed), rows);
        EXPECT_LE(rows, 5U);
        changed = list;
        changed.erase(changed.begin() + place);
        replaced(stored, cut(changed), rows);
        EXPECT_LE(rows, 5U);
    }
    std::vector<int> twice = list; // two changes far apart, and what is between them stays
    twice.erase(twice.begin() + 100);
    twice.insert(twice.begin() + 40'000, -1);
    replaced(stored, cut(twice), rows);
    EXPECT_LE(rows, 10U);
    std::vector<int> moved = list; // a stretch of a thousand moved to the front
    std::rotate(moved.begin(), moved.begin() + 30'000, moved.begin() + 31'000);
    replaced(stored, cut(moved), rows);
    EXPECT_LE(rows, 30U);
}

TEST(DocumentFileListsTests, ThousandsOfInsertionsAtOnePlaceFindRoom) {
    std::vector<int> list = numbers(20'000);
    std::size_t rows = 0;
    std::vector<StoredChunk> stored = replaced({}, cut(list), rows);
    std::mt19937 random(1);
    std::size_t most = 0;
    for (int i = 0; i < 4'000; ++i) {
        // Right after what came before, and now and then in front of all.
        list.insert(list.begin() + (i % 5 ? 10'000 + i : 0), static_cast<int>(random()));
        stored = replaced(stored, cut(list), rows);
        if (rows < 50) most = std::max(most, rows);
        if (::testing::Test::HasFailure()) return;
    }
    EXPECT_LE(most, 8U);
}

TEST(DocumentFileListsTests, RandomChangesGiveTheNewList) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        // With many equal chunks, too.
        std::vector<int> list;
        for (unsigned i = 0; i < 6'000; ++i)
            list.push_back(seed % 2 ? static_cast<int>(i % 512) : static_cast<int>(random() % 9));
        std::size_t rows = 0;
        std::vector<StoredChunk> stored = replaced({}, cut(list), rows);
        for (int round = 0; round < 5; ++round) {
            auto const place = static_cast<std::ptrdiff_t>(random() % (list.size() + 1));
            auto const count = static_cast<std::ptrdiff_t>(random() % 1'500);
            if (random() % 2)
                list.erase(list.begin() + place,
                           list.begin() + std::min(place + count, std::ssize(list)));
            else {
                std::vector<int> const more(list.begin(),
                                            list.begin() + std::min(count, std::ssize(list)));
                list.insert(list.begin() + place, more.begin(), more.end());
            }
            stored = replaced(stored, cut(list), rows);
            std::vector<std::string> items;
            for (StoredChunk const & row : stored) items.push_back(row.items);
            EXPECT_EQ(joined(items), joined(cut(list)));
        }
    }
}

TEST(DocumentFileListsTests, RowsOfAForeignFileAreNumberedAnewWhereThereIsNoRoom) {
    std::vector<StoredChunk> const stored = {{-Limits::c_chunkNumber + 1, "[1]"},
                                             {5, "[2]"},
                                             {6, "[3]"},
                                             {Limits::c_chunkNumber - 1, "[4]"}};
    std::size_t rows = 0;
    replaced(stored, {"[0]", "[9]", "[1]", "[2]", "[7]", "[3]", "[4]", "[8]"}, rows);
    replaced(stored, {"[1]", "[2]", "[7]", "[3]", "[4]"}, rows);
    replaced(stored, {"[0]", "[1]", "[2]", "[3]", "[4]"}, rows);
    replaced(stored, {"[1]", "[2]", "[3]", "[4]", "[5]"}, rows);
    replaced(stored, {}, rows);
    EXPECT_EQ(rows, 4U);
}

TEST(DocumentFileListsTests, ACircleIsFoundWhereThereIsOne) {
    using Pairs = std::vector<std::pair<unsigned long long, unsigned long long>>;
    EXPECT_EQ(idOnCircle({}), 0U);
    EXPECT_EQ(idOnCircle({{1, 2}, {2, 3}, {1, 3}, {1, 3}}), 0U);
    EXPECT_EQ(idOnCircle({{4, 4}}), 4U);
    // What leads to the circle and what it leads to isn't on it.
    std::set<unsigned long long> const circle{3, 4, 5};
    EXPECT_TRUE(
        circle.contains(idOnCircle({{1, 2}, {2, 3}, {3, 4}, {4, 5}, {5, 3}, {5, 6}, {6, 7}})));
    Pairs chain;
    for (unsigned long long i = 1; i < 200'000; ++i) chain.emplace_back(i, i + 1);
    EXPECT_EQ(idOnCircle(chain), 0U);
    chain.emplace_back(200'000, 100'000);
    EXPECT_GE(idOnCircle(chain), 100'000U);
}

} // namespace Vn::Testing
