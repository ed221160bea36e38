#ifndef VN_PLATFORM_DATAMODEL_WORDBUFFERINTERNAL_H
#define VN_PLATFORM_DATAMODEL_WORDBUFFERINTERNAL_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace Vn::DataModel {

// A stack of words of eight bytes that grows by moving as a whole, so that large ones cost no copy
// where the system can move pages.
class WordBuffer {
public:
    WordBuffer() = default;
    WordBuffer(WordBuffer const &) = delete;
    WordBuffer & operator=(WordBuffer const &) = delete;

    std::size_t size() const noexcept { return m_size; }
    std::size_t capacity() const noexcept { return m_capacity; }
    std::uint64_t * data() noexcept { return m_pWords.get(); }
    std::uint64_t const * data() const noexcept { return m_pWords.get(); }
    std::uint64_t & operator[](std::size_t index) noexcept { return m_pWords.get()[index]; }
    std::uint64_t const & operator[](std::size_t index) const noexcept {
        return m_pWords.get()[index];
    }

    // Room for `words` more, whose address holds until the next call.
    std::uint64_t * append(std::size_t words) {
        if (m_capacity - m_size < words) grow(words);
        std::uint64_t * const place = m_pWords.get() + m_size;
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
        std::size_t capacity = m_capacity ? m_capacity * 2 : 8;
        while (capacity - m_size < words) capacity *= 2;
        return reallocate(capacity);
    }
    // Cuts down to `size`.
    void truncate(std::size_t size) noexcept { m_size = size; }
    // Gives back what isn't used, if that is much.
    void trim() noexcept {
        if (m_capacity - m_size > m_size / 8 + 8) reallocate(m_size);
    }

private:
    struct Free {
        void operator()(std::uint64_t * words) const noexcept { std::free(words); }
    };

    void grow(std::size_t words) {
        if (!reserve(words)) throw std::bad_alloc();
    }
    bool reallocate(std::size_t capacity) noexcept {
        void * const moved =
            std::realloc(m_pWords.get(), (capacity ? capacity : 1) * sizeof(std::uint64_t));
        if (!moved) return false;
        static_cast<void>(m_pWords.release());
        m_pWords.reset(static_cast<std::uint64_t *>(moved));
        m_capacity = capacity;
        return true;
    }

    std::unique_ptr<std::uint64_t, Free> m_pWords;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

} // namespace Vn::DataModel

#endif
