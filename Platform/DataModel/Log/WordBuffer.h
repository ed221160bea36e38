#ifndef VN_PLATFORM_DATAMODEL_LOG_WORDBUFFER_H
#define VN_PLATFORM_DATAMODEL_LOG_WORDBUFFER_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace Vn::DataModel {

// A stack of words of eight bytes.  A few stand in the object itself; more grow by moving as a
// whole, so that large ones cost no copy where the system can move pages.
class WordBuffer {
public:
    // Room that is kept for later use; larger room is given back.
    static constexpr std::size_t c_spareBytes = 65536;

    WordBuffer() noexcept = default;
    ~WordBuffer() {
        if (m_pWords != m_few) std::free(m_pWords);
    }
    WordBuffer(WordBuffer const &) = delete;
    WordBuffer & operator=(WordBuffer const &) = delete;

    // The words on the stack, and those that there is room for.
    std::size_t size() const noexcept { return m_size; }
    std::size_t capacity() const noexcept { return m_capacity; }
    // The bytes beside the object.
    std::size_t heapBytes() const noexcept { return m_pWords == m_few ? 0 : m_capacity * 8; }
    std::uint64_t * data() noexcept { return m_pWords; }
    std::uint64_t const * data() const noexcept { return m_pWords; }
    std::uint64_t & operator[](std::size_t index) noexcept { return m_pWords[index]; }
    std::uint64_t const & operator[](std::size_t index) const noexcept { return m_pWords[index]; }

    // Room for `words` more, whose address holds until the next call.
    std::uint64_t * append(std::size_t words) {
        if (!reserve(words)) throw std::bad_alloc();
        std::uint64_t * const place = m_pWords + m_size;
        m_size += words;
        return place;
    }
    void push(std::uint64_t word) { *append(1) = word; }
    void push(std::uint64_t const * words, std::size_t count) {
        if (count) std::memcpy(append(count), words, count * sizeof(std::uint64_t));
    }
    // Makes room for `words` more; false if there is no memory.
    bool reserve(std::size_t words) noexcept {
        if (m_capacity - m_size >= words) return true;
        std::size_t capacity = m_capacity * 2;
        while (capacity - m_size < words) capacity *= 2;
        return reallocate(capacity);
    }
    // Cuts down to `size`.
    void truncate(std::size_t size) noexcept { m_size = size; }
    // Gives back what isn't used, if that is much.  Few words go back into the object, and their
    // room becomes that of `spare`, which must be empty or null, unless it is too large for that.
    void trim(WordBuffer * spare = nullptr) noexcept {
        if (m_pWords == m_few) return;
        if (m_size <= c_few) {
            std::memcpy(m_few, m_pWords, m_size * sizeof(std::uint64_t));
            std::uint64_t * const room = std::exchange(m_pWords, m_few);
            if (spare && spare->m_pWords == spare->m_few &&
                m_capacity * sizeof(*room) <= c_spareBytes) {
                spare->m_pWords = room;
                spare->m_capacity = m_capacity;
            } else
                std::free(room);
            m_capacity = c_few;
        } else if (m_capacity - m_size > m_size / 8 + c_few)
            reallocate(m_size);
    }
    // Exchanges the words of two buffers.
    void swap(WordBuffer & other) noexcept {
        std::swap(m_few, other.m_few);
        bool const here = m_pWords == m_few;
        bool const there = other.m_pWords == other.m_few;
        std::uint64_t * const words = m_pWords;
        m_pWords = there ? m_few : other.m_pWords;
        other.m_pWords = here ? other.m_few : words;
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
    }

private:
    // What the record of one number that changed takes.
    static constexpr std::size_t c_few = 6;

    bool reallocate(std::size_t capacity) noexcept {
        bool const isFew = m_pWords == m_few;
        std::size_t const bytes = (capacity ? capacity : 1) * sizeof(std::uint64_t);
        void * const moved = isFew ? std::malloc(bytes) : std::realloc(m_pWords, bytes);
        if (!moved) return false;
        if (isFew) std::memcpy(moved, m_few, m_size * sizeof(std::uint64_t));
        m_pWords = static_cast<std::uint64_t *>(moved);
        m_capacity = capacity;
        return true;
    }

    std::uint64_t m_few[c_few];       // not set before they are used
    std::uint64_t * m_pWords = m_few; // these, or an allocation that the buffer owns
    std::size_t m_size = 0;
    std::size_t m_capacity = c_few;
};

} // namespace Vn::DataModel

#endif
