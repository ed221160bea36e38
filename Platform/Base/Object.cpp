#include "Platform/Base/Object.h"

namespace Vn {

Object::~Object() = default;

UniqueString const * Object::getInterfaceId() const { return nullptr; }
void * Object::queryInterface(UniqueString const *) const { return nullptr; }

} // namespace Vn
