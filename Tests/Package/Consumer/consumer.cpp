// A program of someone else's that uses the package through its public headers.

#include <iostream>
#include <typeinfo>

#include "Platform/Base/Initializer.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitSystem.h"

using namespace Vn;
using Expressions::Expression;
using Units::UnitContext;

namespace {

// A document that measures in inches.
class Inches final : public Units::UnitSystem {
    bool onFindDefault(Units::ComplexUnit const & units, Units::ComplexUnit & out) const override {
        Units::ComplexUnit const inch(Units::UnitInch::get());
        if (!units.isDimensionallyEquivalent(&inch)) return false;
        out = inch;
        return true;
    }
    Units::SimpleUnit const * onFindDefault(Units::ESimpleUnitType type) const override {
        return type == Units::UnitTypeLength ? Units::UnitInch::get() : nullptr;
    }
};

std::string utf8(std::wstring const & text) { return Text::toUtf8(text); }

bool isBase(Units::Unit const & unit) {
    return dynamic_cast<Units::BaseUnit const *>(&unit) != nullptr;
}

} // namespace

int main() {
    Initializer::runAll();

    Expression const length(L"2' 6 3/4\"", UnitContext(L"cm"));
    if (!length) return 1;
    std::cout << "2' 6 3/4\" = " << *length.value() << " cm = " << utf8(length.textToStore())
              << '\n';

    Expression const speed(L"1 km / hr");
    std::cout.precision(16);
    std::cout << utf8(speed.rebuilt()) << " = " << *speed.value() << " cm / s\n";

    // The types are the same on both sides of the library's border.
    Units::Unit const & meter = *Units::UnitMeter::get(1.0);
    Units::Unit const & newton = *Units::UnitNewton::get(1.0);
    if (typeid(meter) != typeid(Units::UnitMeter)) return 2;
    std::cout << "meter is " << (isBase(meter) ? "a" : "no") << " base unit, newton "
              << (isBase(newton) ? "is" : "isn't") << '\n';

    UnitContext const document(StrongRef<Units::UnitSystem>(new Inches));
    Units::ComplexUnit shown;
    Units::ComplexUnit const centimetre(Units::UnitMeter::get(0.01));
    if (!document.findDefault(centimetre, shown)) return 3;
    std::cout << shown.toThisUnit(30.48) << " in by default: " << shown.toInternal(12.0) << " cm\n";

    std::cout << "sqrt(16) " << (Expression(L"sqrt(16)") ? "is" : "isn't") << " read, wurzel(16) "
              << (Expression(L"wurzel(16)") ? "is" : "isn't") << '\n';
}
