#ifndef VN_PLATFORM_DATAMODEL_FILE_CIRCLES_H
#define VN_PLATFORM_DATAMODEL_FILE_CIRCLES_H

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Vn {
class Entity;
}

namespace Vn::DataModel {

// Of entities by id, pairs of an owner and what it owns: one that owns itself by way of others, or
// directly; 0 if none does.  Such entities would never go.
unsigned long long
idOnCircle(std::vector<std::pair<unsigned long long, unsigned long long>> const & ownerships);
// What is wrong then.
std::string circleText(unsigned long long id);

// Looks for parents that lead in a circle, to no root.  Every entity but those on their ways up is
// asked about, and each way is walked once.
class ParentWalk {
public:
    // An entity on a circle that the parents of `entity` lead to; null if they lead to none.
    Entity const * onCircle(Entity & entity);

private:
    std::unordered_map<Entity const *, std::size_t>
        m_met;                        // the parents, and the walk that met them
    Entity const * m_pLast = nullptr; // the parent that the last walk began with
    std::size_t m_walk = 0;
};
// What is wrong then.
std::string parentCircleText(unsigned long long id);

} // namespace Vn::DataModel

#endif
