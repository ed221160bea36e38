// One version, in the headers, in the library and in the build.

#include "Platform/Base/Version.h"

#include <string>

#include <gtest/gtest.h>

namespace {

TEST(VersionTests, HeadersLibraryAndBuildAgree) {
    EXPECT_EQ(Vn::libraryVersion(), VN_VERSION);
    EXPECT_EQ(std::string(Vn::libraryVersionText()), VN_BUILD_VERSION);
    EXPECT_EQ(std::to_string(VN_VERSION_MAJOR) + '.' + std::to_string(VN_VERSION_MINOR) + '.' +
                  std::to_string(VN_VERSION_PATCH),
              VN_BUILD_VERSION);
}

TEST(VersionTests, ANewerLibraryServesOlderHeadersOfItsMajorVersion) {
    EXPECT_TRUE(Vn::isCompatible());
    EXPECT_TRUE(Vn::isCompatible(VN_VERSION_MAJOR * 10000));
    EXPECT_FALSE(Vn::isCompatible(VN_VERSION + 1));
    EXPECT_FALSE(Vn::isCompatible((VN_VERSION_MAJOR + 1) * 10000));
    EXPECT_FALSE(Vn::isCompatible(VN_VERSION_MAJOR * 10000 - 1));
    EXPECT_FALSE(Vn::isCompatible(0));
}

} // namespace
