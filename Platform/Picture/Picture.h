// Pictures of models, drawn by software: the same bytes on every run, with any number of threads.

#ifndef VN_PLATFORM_PICTURE_PICTURE_H
#define VN_PLATFORM_PICTURE_PICTURE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Platform/Base/Status.h"
#include "Platform/Picture/Export.h"
#include "Platform/Picture/ShownParts.h"
#include "Platform/Picture/View.h"

namespace Vn::Picture {

// What a picture is to be like.
struct PictureOptions {
    // The most pixels along a side, and in all.
    static constexpr unsigned c_maxSide = 8192;
    static constexpr std::size_t c_maxPixels = std::size_t{32} << 20;

    unsigned width = 1024;      // in pixels
    unsigned height = 768;      // likewise
    bool background = true;     // the background of the document is drawn too
    Color backdrop{1, 1, 1, 1}; // where there is nothing; opaque
    bool edges = true;          // edges of the model are drawn as dark lines
};

// Rows of pixels from the top, three bytes each: red, green and blue in sRGB.
struct Picture {
    unsigned width = 0;               // in pixels
    unsigned height = 0;              // likewise
    std::vector<std::uint8_t> pixels; // as many bytes as three times the product of these
};

// Whether a picture may be as large, before anything is done for it: an invalid argument for a size
// of 0 and for one above the limits.
[[nodiscard]] VN_PICTURE_API Status checkSize(PictureOptions const & options);

// Draws what is shown: flat faces in the light of a lamp at the camera, four samples to a pixel.
// Colors of parts are sRGB; what isn't opaque is drawn after the rest, the farthest first.
//
// Refused as an invalid argument: what checkSize refuses, before memory is taken, and a view that
// makeFrame refuses.  Unsupported where the library that draws isn't installed, and on
// Windows.  `picture` is changed only by success.  One thread draws at a time; others wait.  The
// OpenGL context of the thread is another after it.  Throws std::bad_alloc if there is no memory.
[[nodiscard]] VN_PICTURE_API Status draw(ShownParts const & parts, View const & view,
                                         PictureOptions const & options, Picture & picture);

// The picture as a PNG file: sRGB, without a time or a name of the program.
[[nodiscard]] VN_PICTURE_API Status toPng(Picture const & picture, std::string & bytes);

} // namespace Vn::Picture

#endif
