#include "Server/CommonData/Units/UnitLookup.h"

#include "Server/CommonData/Units/SimpleUnitRegistryInternal.h"

namespace Vn::Units {

std::vector<SimpleUnit const *> listUnits() {
    std::vector<SimpleUnit const *> units;
    SimpleUnitRegistry::get().allUnits(units);
    return units;
}

SimpleUnit const * findUnit(std::wstring_view text, std::wstring_view * prefix) {
    return SimpleUnitRegistry::get().findExact(text, prefix);
}

SimpleUnit const * findUnitInAnyCase(std::wstring_view text) {
    return SimpleUnitRegistry::get().findCaseInsensitive(text);
}

SimpleUnit const * findEquivalentUnit(ComplexUnit const & units) {
    return SimpleUnitRegistry::get().findEquivalentSimpleUnit(units);
}

} // namespace Vn::Units
