// Where virtual operations stand, for tests of an order that other modules rely on.

#ifndef VN_TESTS_SUPPORT_VIRTUALPLACE_H
#define VN_TESTS_SUPPORT_VIRTUALPLACE_H

#include <bit>
#include <cstddef>
#include <cstdint>

namespace Vn::Testing {

// The place of an operation in the table of its class, given as a pointer to a virtual member.
template <class Operation>
std::size_t placeOf(Operation operation) {
    // What such a pointer holds is 1 more than the place in bytes.
    static_assert(sizeof(operation) == 2 * sizeof(std::uintptr_t));
    struct Words {
        std::uintptr_t place;
        std::uintptr_t adjustment;
    };
    return (std::bit_cast<Words>(operation).place - 1) / sizeof(void *);
}

} // namespace Vn::Testing

#endif
