// For the tests of what must not recurse.

#ifndef VN_TESTS_SUPPORT_SMALLSTACK_H
#define VN_TESTS_SUPPORT_SMALLSTACK_H

#include <cstddef>
#include <functional>

#include <gtest/gtest.h>
#include <pthread.h>

namespace Vn::Testing {

// The thread sanitizer keeps what it knows of a thread, some 770 KiB, on the thread's stack.
#ifdef __SANITIZE_THREAD__
inline constexpr std::size_t c_sanitizersOwn = std::size_t{768} << 10;
#else
inline constexpr std::size_t c_sanitizersOwn = 0;
#endif

// Runs `work` on a thread of its own with a stack of 1 MiB.
inline void onSmallStack(std::function<void()> const & work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, (std::size_t{1} << 20) + c_sanitizersOwn), 0);
    pthread_t thread;
    int const made = pthread_create(
        &thread, &attributes,
        [](void * argument) -> void * {
            (*static_cast<std::function<void()> const *>(argument))();
            return nullptr;
        },
        const_cast<std::function<void()> *>(&work));
    pthread_attr_destroy(&attributes);
    ASSERT_EQ(made, 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
}

} // namespace Vn::Testing

#endif
