// Memory for many small things that end together: the tokens of a text, the nodes of a tree.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_ARENAINTERNAL_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_ARENAINTERNAL_H

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

#include "Server/CommonData/Expressions/BlockPoolInternal.h"

namespace Vn::Expressions {

// Gives out pieces of blocks that double in size up to that of the pool.  Nothing is given back
// before the end, and no destructor runs, so only objects that need none may live here.
class Arena {
public:
    // `buffer`, not owned, is used before the first block.
    Arena(void * buffer, std::size_t size)
        : m_pNext(static_cast<std::byte *>(buffer)), m_left(size), m_blockSize(c_firstBlock) {}
    Arena(Arena const &) = delete;
    Arena & operator=(Arena const &) = delete;

    ~Arena() {
        while (m_pBlocks) {
            Block * const block = m_pBlocks;
            m_pBlocks = block->next;
            if (block->pooled)
                BlockPool::give(block);
            else
                std::free(block);
        }
    }

    // Throws std::bad_alloc where there is no memory.
    void * allocate(std::size_t size) {
        size = (size + c_alignment - 1) & ~(c_alignment - 1);
        if (size > m_left) addBlock(size);
        void * const memory = m_pNext;
        m_pNext += size;
        m_left -= size;
        return memory;
    }

    template <class T, class... Arguments>
    T * make(Arguments &&... arguments) {
        static_assert(std::is_trivially_destructible_v<T> && alignof(T) <= c_alignment);
        return ::new (allocate(sizeof(T))) T(std::forward<Arguments>(arguments)...);
    }

private:
    struct alignas(16) Block {
        Block * next;
        bool pooled;
    };

    static constexpr std::size_t c_alignment = 8;
    static constexpr std::size_t c_firstBlock = 2048;

    void addBlock(std::size_t atLeast) {
        std::size_t const size = std::max(atLeast + sizeof(Block), m_blockSize);
        bool const pooled = size == BlockPool::c_blockSize;
        auto * const block = static_cast<Block *>(pooled ? BlockPool::take() : std::malloc(size));
        if (!block) throw std::bad_alloc();
        block->next = m_pBlocks;
        block->pooled = pooled;
        m_pBlocks = block;
        m_pNext = reinterpret_cast<std::byte *>(block + 1);
        m_left = size - sizeof(Block);
        m_blockSize = std::min(m_blockSize * 2, BlockPool::c_blockSize);
    }

    std::byte * m_pNext;
    std::size_t m_left;
    std::size_t m_blockSize;
    Block * m_pBlocks = nullptr;
};

} // namespace Vn::Expressions

#endif
