// Whether documents can be saved where a test runs.

#ifndef VN_TESTS_DATAMODEL_DOCUMENTENGINE_H
#define VN_TESTS_DATAMODEL_DOCUMENTENGINE_H

#include <string>

#include <gtest/gtest.h>

#ifdef _WIN32
#include "Platform/Base/OS.h"
#endif

namespace Vn::Testing {

// Why they can't; empty if they can.  The database engine is a part of Windows, but not of each.
inline std::string whyNoFiles() {
#ifdef _WIN32
    OS::Module engine;
    if (Status const status = engine.loadFromSystem("winsqlite3.dll"); !status)
        return status.toString();
#endif
    return {};
}

// Tests that need a file: skipped where there can't be one.
class FileTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (std::string const why = whyNoFiles(); !why.empty()) GTEST_SKIP() << why;
    }
};

} // namespace Vn::Testing

#endif
