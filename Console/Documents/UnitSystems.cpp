#include "Console/Documents/UnitSystems.h"

#include <vector>

#include "Console/Documents/Equipment.h"
#include "Console/Failure.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Expressions/FailureExplanation.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Console {

namespace {

using Units::ComplexUnit;
using Units::ESimpleUnitType;
using Units::SimpleUnit;
using Units::UnitSystem;
using Units::UnitSystemChoice;
using Units::UnitSystemChoiceById;
using Units::UnitSystemChoiceByUnit;
using Units::UnitSystems;

bool isKindNamed(ESimpleUnitType kind, std::wstring const & name) {
    GlobalizedString const text = SimpleUnit::globalizedSimpleUnitTypeName(kind);
    return Text::foldedEqual(std::wstring_view(text.value()), std::wstring_view(name)) ||
           Text::foldedEqual(std::wstring_view(text.defaultText()), std::wstring_view(name));
}

std::vector<StrongRef<UnitSystem>> unitSystems(Segment * segment) {
    StrongRef<UnitSystems> const systems = UnitSystems::find(segment);
    std::vector<StrongRef<UnitSystem>> all;
    for (unsigned i = 0; systems && i < systems->unitSystems(); ++i)
        if (StrongRef<UnitSystem> each = systems->unitSystem(i)) all.push_back(std::move(each));
    return all;
}

// The number that a text is; none for other texts.
std::optional<unsigned> numberOf(std::wstring const & text) {
    unsigned number = 0;
    if (text.empty() || text.size() > 9) return std::nullopt;
    for (wchar_t const c : text) {
        if (c < L'0' || c > L'9') return std::nullopt;
        number = number * 10 + static_cast<unsigned>(c - L'0');
    }
    return number;
}

} // namespace

StrongRef<UnitSystem> activeUnitSystem(Segment * segment) {
    auto const settings = segment ? settingsOf(*segment) : nullptr;
    return settings ? settings->activeUnitSystem() : nullptr;
}

std::wstring findUnitSystem(Segment * segment, std::optional<std::wstring> const & id,
                            StrongRef<UnitSystem> & system) {
    if (StrongRef<UnitSystem> active = id ? nullptr : activeUnitSystem(segment)) {
        system = std::move(active);
        return {};
    }
    std::vector<StrongRef<UnitSystem>> const all = unitSystems(segment);
    if (all.empty())
        return message(L"the document has no unit system; UnitSystems.Make NAME ID mks makes one");
    if (!id && all.size() == 1) {
        system = all.front();
        return {};
    }
    std::string const key = id ? Text::toUtf8(*id) : std::string();
    std::vector<std::wstring> ids;
    for (StrongRef<UnitSystem> const & each : all) {
        if (id && each->id() == key) {
            system = each;
            return {};
        }
        ids.push_back(Text::fromUtf8(each->id()));
    }
    if (!id) {
        return message(L"the document has several unit systems%1%; UnitSystems.Activate ID makes "
                       L"one the document's",
                       orInstead({}, ids));
    }
    return message(L"the document has no unit system %1%", inQuotes(*id)) + orInstead(*id, ids);
}

std::wstring findShownSystem(Segment * segment, StrongRef<UnitSystem> & system) {
    if (!activeUnitSystem(segment) && unitSystems(segment).size() != 1) {
        system = nullptr;
        return {};
    }
    return findUnitSystem(segment, std::nullopt, system);
}

std::wstring purposeOf(UnitSystemChoice const & choice) {
    if (auto const * const byUnit = query<UnitSystemChoiceByUnit>(&choice)) {
        bool const isKind = byUnit->simpleUnitType() < UnitSystemChoiceByUnit::c_noKind;
        return isKind ? SimpleUnit::globalizedSimpleUnitTypeName(byUnit->simpleUnitType()).value()
                      : L"";
    }
    auto const * const byId = query<UnitSystemChoiceById>(&choice);
    return byId ? Text::fromUtf8(byId->id()) : L"";
}

std::wstring findUnitChoice(UnitSystem const & system, std::wstring const & which,
                            StrongRef<UnitSystemChoice> & choice) {
    StrongRef<UnitSystemChoice> found = system.find(Text::toUtf8(which));
    std::optional<unsigned> const number = numberOf(which);
    if (!found && number) found = system.unitSystemChoice(*number);
    std::vector<std::wstring> names;
    for (unsigned i = 0; !found && i < system.unitSystemChoices(); ++i) {
        StrongRef<UnitSystemChoice> const each = system.unitSystemChoice(i);
        if (!each) continue;
        auto const * const byUnit = query<UnitSystemChoiceByUnit>(each.get());
        if (byUnit && isKindNamed(byUnit->simpleUnitType(), which)) found = each;
        if (std::wstring const name = purposeOf(*each); !name.empty()) names.push_back(name);
    }
    if (!found) {
        std::wstring const id = inQuotes(Text::fromUtf8(system.id()));
        if (number) return message(L"the unit system %1% has no choice of that number", id);
        return message(L"the unit system %1% has no choice %2%", id, inQuotes(which)) +
               orInstead(which, names);
    }
    choice = std::move(found);
    return {};
}

std::wstring readKeptUnit(std::wstring const & text, ComplexUnit & units) {
    ComplexUnit read;
    if (!UnitSystemChoice::parse(text, read)) {
        std::wstring why = message(L"%1% isn't a unit", inQuotes(text));
        // A unit begins with no number, not even with the 1 above a fraction line.
        std::wstring_view rest = trimmed(text);
        if (rest.starts_with(L'1')) {
            rest = trimmed(rest.substr(1));
            if (rest.starts_with(L'/') && UnitSystemChoice::parse(std::wstring(rest), read))
                return message(L"%1%; write %2%", why,
                               unitText(read, Units::UnitDisplaySettings::standard()));
        }
        std::wstring const hint(trimmed(hintLine(Expressions::explainUnit(text))));
        return hint.empty() ? why : message(L"%1%; %2%", why, hint);
    }
    if (!UnitSystemChoice::isStorable(&read)) {
        std::wstring const back = UnitSystemChoice::reconstructString(&read);
        if (back.empty()) {
            return message(L"%1% can't be kept: a document would give back no unit, since nothing "
                           L"remains of the dimension",
                           inQuotes(text));
        }
        return message(L"%1% can't be kept: a document would give back %2%", inQuotes(text),
                       inQuotes(back));
    }
    units = read;
    return {};
}

std::wstring findUnitKind(std::wstring const & name, ESimpleUnitType & kind) {
    std::vector<std::wstring> names;
    for (unsigned i = 0; i < Units::c_simpleUnitTypes; ++i) {
        auto const each = static_cast<ESimpleUnitType>(i);
        if (isKindNamed(each, name)) {
            kind = each;
            return {};
        }
        names.push_back(SimpleUnit::globalizedSimpleUnitTypeName(each).value());
    }
    return message(L"%1% isn't a kind of quantity", inQuotes(name)) + orInstead(name, names);
}

} // namespace Vn::Console
