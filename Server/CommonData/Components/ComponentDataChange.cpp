#include "Server/CommonData/Components/ComponentDataChange.h"

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/Entity.h"
#include "Server/CommonData/Components/IComponentObject.h"

namespace Vn::CommonData {

ComponentDataChange::ComponentDataChange(IComponentObject * changed, EChangeType type)
    : m_pChanged(changed), m_type(type) {}

ComponentDataChange::ComponentDataChange(ComponentDataChange const & other) = default;
ComponentDataChange & ComponentDataChange::operator=(ComponentDataChange const & other) = default;
ComponentDataChange::~ComponentDataChange() = default;

DataChange * ComponentDataChange::onClone() const { return new ComponentDataChange(*this); }

std::string ComponentDataChange::onToString() const {
    auto const * const entity = query<Entity>(m_pChanged);
    return "ComponentDataChange: Change = " + ToHString(typeText(m_type)) +
           "; Entity = " + (entity ? ToHString(entity->toString()) : std::string());
}

} // namespace Vn::CommonData
