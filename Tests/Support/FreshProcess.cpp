#include "Tests/Support/FreshProcess.h"

#include <cstdio>
#include <cstdlib>

#include <gtest/gtest.h>

namespace Vn::Units {

namespace {

// The framework prints nothing in the new process, so the failures are written out here.
[[noreturn]] void runAndExit(void (*check)()) {
    check();
    testing::TestResult const & result =
        *testing::UnitTest::GetInstance()->current_test_info()->result();
    int failures = 0;
    for (int i = 0; i < result.total_part_count(); ++i) {
        testing::TestPartResult const & part = result.GetTestPartResult(i);
        if (!part.failed()) continue;
        ++failures;
        std::fprintf(stderr, "%s:%d: %s\n", part.file_name() ? part.file_name() : "",
                     part.line_number(), part.message());
    }
    std::exit(failures ? 1 : 0);
}

} // namespace

void expectInFreshProcess(void (*check)()) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(runAndExit(check), testing::ExitedWithCode(0), "");
}

} // namespace Vn::Units
