#include "Platform/Base/Object.h"

#include <typeinfo>

#include "Platform/Base/OS.h"
#include "Platform/Base/Text.h"

namespace Vn {

Object::~Object() = default;

std::wstring Object::toString() const {
    return onToString();
}

std::wstring Object::onToString() const {
    return Text::fromUtf8(OS::className(typeid(*this)));
}

} // namespace Vn
