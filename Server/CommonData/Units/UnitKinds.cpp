// The internal unit of every kind, each made once, on first use.

#include <boost/format.hpp>

#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Units {

namespace {

// The base kinds by their plain names, as the table of composite kinds writes them.
enum BaseKind {
#define VN_BASE_KIND(number, name, internal) name = number,
#include "Server/CommonData/Units/UnitKinds.inc"
};

BaseUnit const * internalUnit(BaseKind kind) {
    switch (kind) {
#define VN_BASE_KIND(number, name, internal)                                                       \
    case name:                                                                                     \
        return name##Unit::staticInternalBaseUnit();
#include "Server/CommonData/Units/UnitKinds.inc"
    }
    return nullptr;
}

ComplexUnit const * makeInternal(std::initializer_list<BaseKind> numerator,
                                 std::initializer_list<BaseKind> denominator) {
    ComplexUnit * const units = ComplexUnit::make();
    for (BaseKind const kind : numerator) units->addToNumerator(internalUnit(kind));
    for (BaseKind const kind : denominator) units->addToDenominator(internalUnit(kind));
    units->validateBaseIfNecessary();
    return units;
}

} // namespace

#define VN_BASE_KIND(number, name, internal)                                                       \
    BaseUnit const * name##Unit::staticInternalBaseUnit() {                                        \
        static constinit Shared<BaseUnit const> s_unit;                                            \
        return &s_unit.get([] { return static_cast<BaseUnit const *>(internal); });                \
    }
#include "Server/CommonData/Units/UnitKinds.inc"

#define VN_KIND_LIST(...)                                                                          \
    { __VA_ARGS__ }
#define VN_COMPOSITE_KIND(number, name, numerator, denominator)                                    \
    ComplexUnit const * name##Unit::staticInternalComplexUnit() {                                  \
        static constinit Shared<ComplexUnit const> s_units;                                        \
        return &s_units.get(                                                                       \
            [] { return makeInternal(VN_KIND_LIST numerator, VN_KIND_LIST denominator); });        \
    }
#include "Server/CommonData/Units/UnitKinds.inc"
#undef VN_KIND_LIST

std::wstring BaseUnit::onToString() const {
    UnitDisplaySettings const & settings = UnitDisplaySettings::get();
    BaseUnit const * const internal = internalBaseUnit();
    return (boost::wformat(L"BaseUnit Id: %1%, Magnitude: %2%, Name: %3%, Internal of 1.0 = %4% "
                           L"%5%, 1.0 %6% = %7% Internal, internalBaseType (%8% * %9%)",
                           std::locale::classic()) %
            Text::widen(*identifier()) % magnitude() % name(settings) % toThisUnit(1.0) %
            abbreviation(settings) % abbreviation(settings) % toInternal(1.0) %
            Text::widen(*internal->identifier()) % internal->magnitude())
        .str();
}

std::wstring CompositeUnit::onToString() const {
    UnitDisplaySettings const & settings = UnitDisplaySettings::get();
    return (boost::wformat(L"CompositeUnit Id: %1%, Magnitude: %2%, Name: %3%, Internal of 1.0 = "
                           L"%4% %5%, 1.0 %6% = %7% Internal, internally represented %8%",
                           std::locale::classic()) %
            Text::widen(*identifier()) % magnitude() % name(settings) % toThisUnit(1.0) %
            abbreviation(settings) % abbreviation(settings) % toInternal(1.0) %
            internalComplexUnit()->toString())
        .str();
}

} // namespace Vn::Units
