#ifndef VN_PLATFORM_DATAMODEL_ENTITYTABLEINTERNAL_H
#define VN_PLATFORM_DATAMODEL_ENTITYTABLEINTERNAL_H

#include <array>
#include <cstddef>
#include <map>
#include <memory>
#include <vector>

namespace Vn {
class Entity;
}

namespace Vn::DataModel {

// The living entities of a document by id.  Ids come one after the other, so that they are places
// in chunks of a directory; the few beyond its reach, which only a foreign file can bring, stand in
// a map.
class EntityTable {
public:
    Entity * find(unsigned long long id) const noexcept {
        if (id < c_reach) {
            std::size_t const chunk = static_cast<std::size_t>(id / c_chunk);
            return chunk < m_chunks.size() && m_chunks[chunk]
                       ? (*m_chunks[chunk])[static_cast<std::size_t>(id % c_chunk)]
                       : nullptr;
        }
        auto const i = m_far.find(id);
        return i == m_far.end() ? nullptr : i->second;
    }

    // The id must be free.
    void add(unsigned long long id, Entity * entity) {
        place(id) = entity;
        ++m_count;
    }

    void remove(unsigned long long id) noexcept {
        if (id < c_reach)
            (*m_chunks[static_cast<std::size_t>(id / c_chunk)])[static_cast<std::size_t>(
                id % c_chunk)] = nullptr;
        else
            m_far.erase(id);
        --m_count;
    }

    std::size_t size() const noexcept { return m_count; }

    // Calls `visit` with each entity in the order of ids.  Any may leave meanwhile.
    template <class Visit>
    void forEach(Visit && visit) const {
        for (std::size_t c = 0; c < m_chunks.size(); ++c)
            if (m_chunks[c])
                for (std::size_t i = 0; i < c_chunk; ++i)
                    if (Entity * const entity = (*m_chunks[c])[i]) visit(*entity);
        for (auto i = m_far.begin(); i != m_far.end();) {
            unsigned long long const id = i->first;
            visit(*i->second);
            i = m_far.upper_bound(id);
        }
    }

private:
    static constexpr std::size_t c_chunk = 128;
    static constexpr unsigned long long c_reach = 1ULL << 28;
    using Chunk = std::array<Entity *, c_chunk>;

    Entity *& place(unsigned long long id) {
        if (id >= c_reach) return m_far[id];
        std::size_t const chunk = static_cast<std::size_t>(id / c_chunk);
        if (chunk >= m_chunks.size()) m_chunks.resize(chunk + 1);
        if (!m_chunks[chunk]) m_chunks[chunk] = std::make_unique<Chunk>();
        return (*m_chunks[chunk])[static_cast<std::size_t>(id % c_chunk)];
    }

    std::vector<std::unique_ptr<Chunk>> m_chunks;
    std::map<unsigned long long, Entity *> m_far;
    std::size_t m_count = 0;
};

} // namespace Vn::DataModel

#endif
