// The meta types of unit systems, in the order in which they register.

#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"

namespace Vn::Units {

namespace {

template <class X>
using MetaTypeOf = Managed::PersistedMetaType<X>;

class UnitSystemMetaType final : public MetaTypeOf<UnitSystem> {};
class UnitSystemChoiceMetaType final : public MetaTypeOf<UnitSystemChoice> {};
class UnitSystemChoiceByUnitMetaType final : public MetaTypeOf<UnitSystemChoiceByUnit> {};
class UnitSystemChoiceByIdMetaType final : public MetaTypeOf<UnitSystemChoiceById> {};
class UnitSystemsMetaType final : public MetaTypeOf<UnitSystems> {};

UnitSystemMetaType s_unitSystem VN_LOAD_UNIT_SYSTEM_META_TYPES;
UnitSystemChoiceMetaType s_choice VN_LOAD_UNIT_SYSTEM_META_TYPES;
UnitSystemChoiceByUnitMetaType s_choiceByUnit VN_LOAD_UNIT_SYSTEM_META_TYPES;
UnitSystemChoiceByIdMetaType s_choiceById VN_LOAD_UNIT_SYSTEM_META_TYPES;
UnitSystemsMetaType s_unitSystems VN_LOAD_UNIT_SYSTEM_META_TYPES;

} // namespace

EntityMetaType * UnitSystem::s_metaType() { return &s_unitSystem; }
EntityMetaType * UnitSystemChoice::s_metaType() { return &s_choice; }
EntityMetaType * UnitSystemChoiceByUnit::s_metaType() { return &s_choiceByUnit; }
EntityMetaType * UnitSystemChoiceById::s_metaType() { return &s_choiceById; }
EntityMetaType * UnitSystems::s_metaType() { return &s_unitSystems; }

} // namespace Vn::Units
