// Writes Docs/units.md from the catalogue of units to its standard output.

#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/Initializer.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Expressions/ValueFormatter.h"
#include "Server/CommonData/Units/SimpleUnits.h"

namespace {

using namespace Vn;
using Units::SimpleUnit;
using Units::UnitDisplaySettings;

constexpr char c_head[] = R"(# Units

The words with which an expression names a unit, by kind of quantity. Each may be written by its name,
its abbreviation or, if it has one, its symbol. [expression-language.md](expression-language.md) tells
how units are put together. A name ends at an underscore, so a spelling with one is shown but can't be
typed.

The build writes this document from the catalogue (target `units-document`).

)";

constexpr char c_prefixes[] = R"(## Prefixes

A unit that takes prefixes takes any of them, as a word or short, in front of its name or its
abbreviation: `kilometer`, `km` and `kmeter` are one unit. Such a unit is written in its exact case.
A unit without prefixes is found in any case, if no other word is meant.

| Prefix | Short | Times |
|---|---|---|
)";

std::string code(std::wstring const & text) {
    return text.empty() ? std::string() : '`' + Text::toUtf8(text) + '`';
}

std::vector<SimpleUnit const *> catalogue() {
    std::vector<SimpleUnit const *> units;
    for (unsigned row = 0; row < static_cast<unsigned>(Units::ECatalogueRow::Count); ++row) {
        units.push_back(Units::findOrCloneUnit(
            Units::catalogueIdentifier(static_cast<Units::ECatalogueRow>(row)), 1.0));
    }
    return units;
}

void writeKind(std::vector<SimpleUnit const *> const & units) {
    UnitDisplaySettings const & settings = UnitDisplaySettings::standard();
    std::wstring const internal =
        Console::internalUnitText(units.front()->asComplexUnit(), settings);
    std::string const after = internal.empty() ? "" : ' ' + Text::toUtf8(internal);
    std::cout << "## " << Text::toUtf8(units.front()->simpleUnitTypeName()) << "\n\n"
              << "| Name | Abbreviation | Symbol | One is | Prefixes |\n|---|---|---|---|---|\n";
    for (SimpleUnit const * const unit : units) {
        std::cout << "| " << code(unit->name(settings)) << " | "
                  << code(unit->abbreviation(settings)) << " | "
                  << code(unit->hasSymbol() ? unit->symbol(settings) : std::wstring()) << " | "
                  << Text::toUtf8(Console::shortestNumber(unit->internalConversionFactor()))
                  << after;
        if (unit->internalConversionOffset() != 0.0) {
            std::cout << ", counted from "
                      << Text::toUtf8(Console::shortestNumber(unit->internalConversionOffset()))
                      << after;
        }
        std::cout << " | " << (unit->supportsMagnitude() ? "yes" : "no") << " |\n";
    }
    std::cout << '\n';
}

void writePrefixes() {
    Expressions::valueFormatter const & formatter = *Expressions::valueFormatter::get();
    Expressions::Tokens const & tokens = *Expressions::Tokens::get();
    std::cout << c_prefixes;
    double last = 0.0;
    for (int token = Expressions::e_EXA; token <= Expressions::e_ATTO_ABBR; ++token) {
        double const magnitude = tokens.getMagnitudeValue(static_cast<Expressions::EToken>(token));
        if (magnitude == last) continue;
        last = magnitude;
        std::cout << "| " << code(formatter.magnitudeString(magnitude, false)) << " | "
                  << code(formatter.magnitudeString(magnitude, true)) << " | "
                  << Text::toUtf8(Console::shortestNumber(magnitude)) << " |\n";
    }
}

} // namespace

int main() {
    OS::Utf8Streams const streams;
    Initializer::runAll();
    // Whoever builds the document has preferences that don't belong in it.
    UnitDisplaySettings::userEditableSettings() = UnitDisplaySettings::standard();
    std::map<int, std::vector<SimpleUnit const *>> kinds;
    for (SimpleUnit const * const unit : catalogue())
        kinds[static_cast<int>(unit->simpleUnitType())].push_back(unit);
    std::cout << c_head;
    for (auto const & kind : kinds) writeKind(kind.second);
    writePrefixes();
    return std::cout.flush() ? 0 : 1;
}
