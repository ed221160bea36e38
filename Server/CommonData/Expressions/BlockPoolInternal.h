// Big blocks of memory for big trees.
//
// A tree of a million terms takes a hundred megabytes and gives them back a moment later.  To fetch
// that from the system anew each time costs more than the work itself, so blocks that were given
// back are kept for the next tree: the first few as they are, the others with their pages offered
// to the system, which takes them when it needs memory.  Beyond a ceiling they are released.
//
// Any thread may take and give.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_BLOCKPOOLINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_BLOCKPOOLINTERNAL_H

#include <cstddef>

namespace Vn::Expressions::BlockPool {

inline constexpr std::size_t c_blockSize = std::size_t{256} * 1024;
// Blocks kept as they are: 4 MiB.
inline constexpr std::size_t c_keptWhole = 16;
// Blocks kept at all: 256 MiB of addresses.
inline constexpr std::size_t c_kept = 1024;

// A block of c_blockSize bytes, on a page boundary; throws std::bad_alloc if there is none.
void * take();
// Gives it back.
void give(void * memory) noexcept;

} // namespace Vn::Expressions::BlockPool

#endif
