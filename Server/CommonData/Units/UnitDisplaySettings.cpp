#include "Server/CommonData/Units/UnitDisplaySettings.h"

#include <type_traits>

#include "Platform/Base/Shared.h"

namespace Vn::Units {

static_assert(std::is_trivially_copyable_v<UnitDisplaySettings>);

UnitDisplaySettings const & UnitDisplaySettings::get() { return editableGet(); }

UnitDisplaySettings & UnitDisplaySettings::editableGet() {
    static constinit Shared<UnitDisplaySettings> s_user;
    return s_user.get([] { return new UnitDisplaySettings; });
}

UnitDisplaySettings const & UnitDisplaySettings::standard() {
    static constinit Shared<UnitDisplaySettings const> s_standard;
    return s_standard.get([] { return new UnitDisplaySettings; });
}

UnitDisplaySettings::UNIT_TYPE UnitDisplaySettings::generalUnit() const {
    return m_generalUnit >= Centimeter && m_generalUnit <= Foot
               ? static_cast<UNIT_TYPE>(m_generalUnit)
               : Millimeter;
}

} // namespace Vn::Units
