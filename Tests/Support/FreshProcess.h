// Checks that need a process in which nothing has been looked up yet.

#ifndef VN_TESTS_SUPPORT_FRESHPROCESS_H
#define VN_TESTS_SUPPORT_FRESHPROCESS_H

namespace Vn::Units {

// Starts this program anew and runs `check`, which uses the EXPECT_... and ASSERT_... of the test
// framework, in it; what fails there fails the calling test.  To be called once in a test.
void expectInFreshProcess(void (*check)());

} // namespace Vn::Units

#endif
