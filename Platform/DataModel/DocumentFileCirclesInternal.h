#ifndef VN_PLATFORM_DATAMODEL_DOCUMENTFILECIRCLESINTERNAL_H
#define VN_PLATFORM_DATAMODEL_DOCUMENTFILECIRCLESINTERNAL_H

#include <string>
#include <utility>
#include <vector>

namespace Vn::DataModel {

// Of entities by id, pairs of an owner and what it owns: one that owns itself by way of others, or
// directly; 0 if none does.  Such entities would never go.
unsigned long long
idOnCircle(std::vector<std::pair<unsigned long long, unsigned long long>> const & ownerships);
// What is wrong then.
std::string circleText(unsigned long long id);

} // namespace Vn::DataModel

#endif
