// What a document with blocks looks like, beside pictures that people have looked at.
//
// The folder Pictures has one for each name below.  After a change that is meant,
//
//     VN_NEW_PICTURES=DIRECTORY VnBlocksTests --gtest_filter='Pictures.*'
//
// writes those of today to a directory, to be looked at and put in their places.

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <png.h>

#include "Platform/Picture/Picture.h"
#include "Tests/Samples/Blocks/BlocksTesting.h"

namespace Vn::Blocks::Testing {

namespace {

using Vn::Picture::Picture;
using Vn::Picture::PictureOptions;
using Vn::Picture::ShownParts;
using Vn::Picture::View;

// How far two pictures of one size are from each other.
struct Difference {
    double mean = 0;  // of the channels, which go to 255
    double share = 0; // of the pixels, those with a channel that is off by more than 8
};

Difference differenceOf(Picture const & a, Picture const & b) {
    Difference difference;
    double sum = 0;
    std::size_t far = 0;
    for (std::size_t i = 0; i < a.pixels.size(); i += 3) {
        int most = 0;
        for (std::size_t channel = i; channel < i + 3; ++channel) {
            int const off = std::abs(a.pixels[channel] - b.pixels[channel]);
            sum += off;
            most = std::max(most, off);
        }
        far += most > 8 ? 1 : 0;
    }
    auto const channels = static_cast<double>(a.pixels.size());
    difference.mean = sum / channels;
    difference.share = 3 * static_cast<double>(far) / channels;
    return difference;
}

bool looksAlike(Difference const & difference) {
    return difference.mean <= 1 && difference.share <= 0.005;
}

Picture readPicture(std::filesystem::path const & file) {
    Picture picture;
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, file.c_str())) {
        ADD_FAILURE() << file << ": " << image.message;
        return picture;
    }
    image.format = PNG_FORMAT_RGB;
    picture.width = image.width;
    picture.height = image.height;
    picture.pixels.resize(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr))
        ADD_FAILURE() << file << ": " << image.message;
    return picture;
}

// A base with two walls as one assembly; on it a pin of brass with a ball of glass, and a wedge of
// oak that leans on nothing.
struct Rack {
    Rack() {
        StrongRef<Part> const base = document.make(EShape::Block, {L"10", L"6", L"1/2"});
        StrongRef<Part> const left =
            document.make(EShape::Block, {L"1/2", L"6", L"4"}, {L"0", L"0", L"1/2"});
        StrongRef<Part> const right =
            document.make(EShape::Block, {L"1/2", L"6", L"2"}, {L"9 + 1/2", L"0", L"1/2"});
        document.makeAssembly({base, left, right});
        StrongRef<Part> const pin =
            document.make(EShape::Cylinder, {L"1 + 1/4", L"3"}, {L"3", L"3", L"1/2"});
        EXPECT_TRUE(setMaterial(*pin, "brass"));
        StrongRef<Part> const ball =
            document.make(EShape::Sphere, {L"2"}, {L"3", L"3", L"4 + 1/2"});
        EXPECT_TRUE(setMaterial(*ball, "glass"));
        wedge = document.make(EShape::Block, {L"2", L"3", L"1"}, {L"6", L"1", L"1/2"});
        EXPECT_TRUE(setMaterial(*wedge, "oak"));
    }

    // From a direction, with a way that is up.
    Picture draw(TgPoint3d const & from, TgVector3d const & up, bool perspective,
                 bool background) const {
        PictureOptions options;
        options.width = 320;
        options.height = 240;
        options.background = background;
        ShownParts const parts(sceneOf(*document.asset));
        View view;
        view.position = from;
        view.up = up;
        view.width = 0;
        view.height = 0;
        view.perspective = perspective;
        Status status = fit(view, *parts.bounds(), 4.0 / 3, view);
        EXPECT_TRUE(status) << status.toString();
        Picture picture;
        status = Vn::Picture::draw(parts, view, options, picture);
        EXPECT_TRUE(status) << status.toString();
        return picture;
    }

    Document document{L"in"};
    StrongRef<Part> wedge;
};

struct Case {
    char const * name;
    TgPoint3d from;
    TgVector3d up;
    bool perspective;
    bool background;
};

Case const c_cases[] = {
    {"corner", {1, -1, 1}, {0, 0, 1}, true, true},
    {"top", {0, 0, 1}, {0, 1, 0}, false, false},
    {"front", {0, -1, 0}, {0, 0, 1}, false, false},
    {"y-up", {1, 1, 1}, {0, 1, 0}, true, false},
};

Picture drawn(Rack const & rack, Case const & each) {
    return rack.draw(each.from, each.up, each.perspective, each.background);
}

TEST(Pictures, LookAsTheyDid) {
    Rack const rack;
    for (Case const & each : c_cases) {
        Picture const now = drawn(rack, each);
        std::string const name = each.name + std::string(".png");
        if (char const * const directory = std::getenv("VN_NEW_PICTURES")) {
            std::string bytes;
            ASSERT_TRUE(toPng(now, bytes));
            std::ofstream(std::filesystem::path(directory) / name, std::ios::binary) << bytes;
            continue;
        }
        Picture const before = readPicture(std::filesystem::path(VN_PICTURES) / name);
        ASSERT_EQ(now.pixels.size(), before.pixels.size()) << name;
        Difference const difference = differenceOf(now, before);
        EXPECT_TRUE(looksAlike(difference))
            << name << " is off by " << difference.mean << " in the mean, and in "
            << 100 * difference.share << " % of its pixels";
    }
}

TEST(Pictures, OnePartOutOfPlaceByAHundredthIsSeen) {
    // From the top, where nothing hides the part, and it is as long as half of the picture.
    Case const & top = c_cases[1];
    Rack const rack;
    Picture const before = drawn(rack, top);
    // A hundredth of the width of all: a tenth of an inch.
    ASSERT_TRUE(setPlace(*rack.wedge, {L"6 + 1/10", L"1", L"1/2"}, nullptr));
    Difference const difference = differenceOf(drawn(rack, top), before);
    EXPECT_FALSE(looksAlike(difference)) << difference.mean << ' ' << difference.share;
}

TEST(Pictures, AnotherDocumentWithTheSameContentGivesTheSamePixels) {
    Rack const one;
    Rack const other;
    for (Case const & each : c_cases)
        EXPECT_EQ(drawn(one, each).pixels, drawn(other, each).pixels) << each.name;
}

TEST(Pictures, WhatIsUndoneIsNotInThePicture) {
    Rack const rack;
    Picture const before = drawn(rack, c_cases[0]);
    ASSERT_TRUE(deleteItem(rack.wedge));
    EXPECT_NE(drawn(rack, c_cases[0]).pixels, before.pixels);
    ASSERT_TRUE(rack.document.asset->history().undo());
    EXPECT_EQ(drawn(rack, c_cases[0]).pixels, before.pixels);
}

} // namespace

} // namespace Vn::Blocks::Testing
