// The statics and the catalogue objects of all concrete units, made in catalogue order.

#include "Server/CommonData/Units/SimpleUnits.h"

#include "Platform/Base/RegistrationLog.h"
#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Units/SimpleUnitRegistryInternal.h"

namespace Vn::Units {

namespace {

struct Identifiers {
    std::string const names[static_cast<unsigned>(ECatalogueRow::Count)] = {
#define VN_UNIT(unit, kind, name, abbreviation, symbol, factor, offset, magnitudes) #unit,
#include "Server/CommonData/Units/UnitCatalogue.inc"
    };
};

Identifiers const s_identifiers VN_LOAD_UNITS;

} // namespace

#define VN_UNIT(unit, kind, name, abbreviation, symbol, factor, offset, magnitudes)                \
    VN_LOAD_UNITS std::wstring const unit::c_name = name;                                          \
    VN_LOAD_UNITS std::wstring const unit::c_abbreviation = abbreviation;                          \
    VN_LOAD_UNITS std::wstring const unit::c_symbol = symbol;
#include "Server/CommonData/Units/UnitCatalogue.inc"

// Tells the log of what registers that a unit is made.
struct UnitNote {
    UnitNote(char const * identifier, SimpleUnit const * unit) {
        RegistrationLog::note(RegistrationLog::EKind::Static, identifier, unit);
    }
};

// The one object of each class, after its statics.
class Catalogue {
public:
#define VN_UNIT(unit, kind, name, abbreviation, symbol, factor, offset, magnitudes)                \
    unit m_##unit;                                                                                 \
    [[no_unique_address]] UnitNote m_note##unit{#unit, &m_##unit};
#include "Server/CommonData/Units/UnitCatalogue.inc"
};

namespace {

Catalogue const s_catalogue VN_LOAD_UNITS;

} // namespace

#define VN_UNIT(unit, kind, name, abbreviation, symbol, factor, offset, magnitudes)                \
    unit const & unit::instance() { return s_catalogue.m_##unit; }
#include "Server/CommonData/Units/UnitCatalogue.inc"

std::string const * catalogueIdentifier(ECatalogueRow row) {
    return &s_identifiers.names[static_cast<unsigned>(row)];
}

SimpleUnit const * findOrCloneUnit(std::string const * identifier, double magnitude) {
    return SimpleUnitRegistry::get().findOrClone(identifier, magnitude);
}

} // namespace Vn::Units
