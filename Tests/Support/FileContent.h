// What a file holds.

#ifndef VN_TESTS_SUPPORT_FILECONTENT_H
#define VN_TESTS_SUPPORT_FILECONTENT_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace Vn::Testing {

// All bytes of a file; none if it can't be read.
inline std::string contentOf(std::filesystem::path const & file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

} // namespace Vn::Testing

#endif
