// The commands that change the unit systems of a document.

#include <ostream>
#include <utility>

#include <nlohmann/json.hpp>

#include "Console/Documents/Equipment.h"
#include "Console/Documents/Operations.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/UnitSystems.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Console/UnitTexts.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Units/SimpleUnit.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/UnitLookup.h"

namespace Vn::Console {

namespace {

using Json = nlohmann::ordered_json;
using Parameters = TextCommandParameters;
using Result = TextCommandResult;
using Units::ComplexUnit;
using Units::SimpleUnit;
using Units::UnitSystem;
using Units::UnitSystemChoice;
using Units::UnitSystemChoiceById;
using Units::UnitSystemChoiceByUnit;
using Units::UnitSystems;

// A set of units; one that makes a system complete can begin one.
struct Completion {
    wchar_t const * name;
    void (UnitSystem::*complete)();
    bool isWhole;
};
constexpr Completion c_completions[] = {{L"mks", &UnitSystem::completeAsMKS, true},
                                        {L"cgs", &UnitSystem::completeAsCGS, true},
                                        {L"imperial", &UnitSystem::completeAsImperial, true},
                                        {L"common", &UnitSystem::completeCommonUnits, false}};

Completion const * findCompletion(std::wstring const & name) {
    for (Completion const & each : c_completions)
        if (Text::foldedEqual(std::wstring_view(each.name), std::wstring_view(name))) return &each;
    return nullptr;
}

std::wstring idOf(UnitSystem const & system) { return printable(Text::fromUtf8(system.id())); }

// The unit as it is shown: "ft".  Of a choice whose text is no unit, that text.
std::wstring unitOf(UnitSystemChoice const & choice) {
    std::wstring const text = unitText(choice.units(), Units::UnitDisplaySettings::standard());
    if (!text.empty()) return printable(text);
    return choice.storedUnitString().empty()
               ? message(L"no unit")
               : message(L"%1%, which isn't a unit", inQuotes(choice.storedUnitString()));
}

std::wstring purpose(UnitSystemChoice const & choice) {
    std::wstring const text = purposeOf(choice);
    return printable(text.empty() ? choice.name() : text);
}

// A choice that was made, or why none was: one that is there is in the way.
Result chosen(UnitSystem const & system, StrongRef<UnitSystemChoice> const & made,
              StrongRef<UnitSystemChoice> const & held) {
    if (!made) {
        return cannot(L"cannot choose the unit: %1%",
                      held ? message(L"the unit system has %1% for %2% already; UnitSystems.Change "
                                     L"gives it another unit",
                                     unitOf(*held), purpose(*held))
                           : message(L"the document is closed"));
    }
    return {0, message(L"%1% has %2% for %3%", idOf(system), unitOf(*made), purpose(*made))};
}

} // namespace

Result makeUnitSystem(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const refusal = tr(L"cannot make a unit system: %1%");
    std::wstring const & name = parameters.parameter(0);
    std::wstring const & id = parameters.parameter(1);
    std::wstring const & kind = parameters.parameter(2);
    Completion const * const completion = findCompletion(kind);
    bool const isEmpty = Text::foldedEqual(std::wstring_view(kind), std::wstring_view(L"empty"));
    if (!isEmpty && (!completion || !completion->isWhole))
        return cannot(refusal, message(L"%1% isn't mks, cgs, imperial or empty", inQuotes(kind)));
    if (id.empty()) return cannot(refusal, message(L"its identifier is empty"));
    StrongRef<UnitSystems> systems = UnitSystems::find(&session.design());
    std::string const key = Text::toUtf8(id);
    if (systems && systems->findUnitSystem(key))
        return cannot(refusal,
                      message(L"the document has a unit system %1% already", inQuotes(id)));
    if (!systems && session.design().rootEntity(UnitSystems::segmentRootId()))
        return cannot(refusal, message(L"something else stands under \"%1%\"", L"UnitSystems"));
    StrongRef<UnitSystem> made;
    session.change(message(L"make the unit system %1%", printable(id)), [&] {
        if (!systems) systems = UnitSystems::make(&session.design());
        made = UnitSystem::make(systems, name, key);
        if (completion) ((*made).*completion->complete)();
    });
    return {0, counted(made->unitSystemChoices(), tr(L"made the unit system %2% with %1% choice"),
                       tr(L"made the unit system %2% with %1% choices"), idOf(*made))};
}

Result completeUnitSystem(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const refusal = tr(L"cannot complete the unit system: %1%");
    StrongRef<UnitSystem> system;
    std::wstring const why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (!why.empty()) return cannot(refusal, why);
    Completion const * const completion = findCompletion(parameters.parameter(1));
    if (!completion)
        return cannot(refusal, message(L"%1% isn't mks, cgs, imperial or common",
                                       inQuotes(parameters.parameter(1))));
    unsigned const before = system->unitSystemChoices();
    session.change(message(L"complete %1% as %2%", idOf(*system), completion->name),
                   [&] { ((*system).*completion->complete)(); });
    unsigned const added = system->unitSystemChoices() - before;
    return {0, counted(added, tr(L"added %1% choice to %2%"), tr(L"added %1% choices to %2%"),
                       idOf(*system))};
}

Result removeUnitSystem(DocumentSession & session, Parameters const & parameters) {
    StrongRef<UnitSystem> system;
    std::wstring const why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (!why.empty()) return cannot(L"cannot remove the unit system: %1%", why);
    unsigned const choices = system->unitSystemChoices();
    bool const wasActive = activeUnitSystem(&session.design()) == system;
    std::wstring answer =
        counted(choices, tr(L"removed the unit system %2% with %1% choice"),
                tr(L"removed the unit system %2% with %1% choices"), idOf(*system));
    session.change(message(L"remove the unit system %1%", idOf(*system)), [&] {
        StrongRef<UnitSystems> const systems = system->parentUnitSystems();
        systems->remove(std::exchange(system, nullptr)); // the last to hold it
    });
    if (wasActive && !activeUnitSystem(&session.design()))
        return {0, message(L"%1%; it was the active one, and now none is", answer)};
    return {0, answer};
}

Result activateUnitSystem(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const refusal = tr(L"cannot activate the unit system: %1%");
    StrongRef<UnitSystem> system;
    std::wstring why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (why.empty()) why = whyNoSettings(session.design());
    if (!why.empty()) return cannot(refusal, why);
    if (activeUnitSystem(&session.design()) == system)
        return {0, message(L"%1% is the active unit system already", idOf(*system))};
    session.change(message(L"activate the unit system %1%", idOf(*system)), [&] {
        equip(session.design());
        settingsOf(session.design())->activateUnitSystem(system);
    });
    return {0, message(L"%1% is the active unit system now", idOf(*system))};
}

Result deactivateUnitSystem(DocumentSession & session, Parameters const &) {
    StrongRef<UnitSystem> const system = activeUnitSystem(&session.design());
    if (!system) return {0, message(L"no unit system is active")};
    session.change(message(L"deactivate the unit system %1%", idOf(*system)),
                   [&] { settingsOf(session.design())->activateUnitSystem(nullptr); });
    return {0, message(L"%1% isn't active any more", idOf(*system))};
}

Result chooseUnit(DocumentSession & session, Parameters const & parameters) {
    StrongRef<UnitSystem> system;
    ComplexUnit units;
    std::wstring why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (why.empty()) why = readKeptUnit(parameters.parameter(1), units);
    if (!why.empty()) return cannot(L"cannot choose the unit: %1%", why);
    StrongRef<UnitSystemChoice> made;
    session.change(
        message(L"choose %1% in %2%", printable(parameters.parameter(1)), idOf(*system)), [&] {
            SimpleUnit const * simple = nullptr;
            if (parameters.parameters() > 2)
                made = UnitSystemChoiceByUnit::make(system, &units,
                                                    GlobalizedString(parameters.parameter(2)));
            else if (units.isSimpleUnit(&simple))
                made = UnitSystemChoiceByUnit::make(system, simple);
            else if (SimpleUnit const * const kind = Units::findEquivalentUnit(units))
                made = UnitSystemChoiceByUnit::make(system, &units,
                                                    kind->globalizedSimpleUnitTypeName());
            else
                made = UnitSystemChoiceByUnit::make(
                    system, &units,
                    GlobalizedString(unitText(units, Units::UnitDisplaySettings::standard())));
        });
    return chosen(*system, made, system->find(&units));
}

Result chooseUnitById(DocumentSession & session, Parameters const & parameters) {
    StrongRef<UnitSystem> system;
    ComplexUnit units;
    std::wstring const & unit = parameters.parameter(2);
    std::wstring why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (why.empty()) why = readKeptUnit(unit, units);
    if (!why.empty()) return cannot(L"cannot choose the unit: %1%", why);
    std::string const key = Text::toUtf8(parameters.parameter(1));
    GlobalizedString name(parameters.parameter(1));
    if (parameters.parameters() > 3)
        name = GlobalizedString(parameters.parameter(3));
    else if (key == UnitSystemChoiceById::modelingLengthId())
        name = UnitSystemChoiceById::modelingLengthName();
    else if (key == UnitSystemChoiceById::modelingMassId())
        name = UnitSystemChoiceById::modelingMassName();
    StrongRef<UnitSystemChoice> made;
    session.change(message(L"choose %1% for %2% in %3%", printable(unit),
                           printable(parameters.parameter(1)), idOf(*system)),
                   [&] { made = UnitSystemChoiceById::make(system, name, key, unit); });
    return chosen(*system, made, system->find(key));
}

Result changeUnit(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const refusal = tr(L"cannot change the unit: %1%");
    StrongRef<UnitSystem> system;
    StrongRef<UnitSystemChoice> choice;
    ComplexUnit units;
    std::wstring why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (why.empty()) why = findUnitChoice(*system, parameters.parameter(1), choice);
    if (why.empty()) why = readKeptUnit(parameters.parameter(2), units);
    if (!why.empty()) return cannot(refusal, why);
    std::wstring const before = unitOf(*choice);
    if (!choice->units().isDimensionallyEquivalent(&units)) {
        return cannot(refusal, message(L"%1% isn't of the dimension of %2%",
                                       inQuotes(parameters.parameter(2)), before));
    }
    session.change(message(L"change %1% of %2% to %3%", purpose(*choice), idOf(*system),
                           printable(parameters.parameter(2))),
                   [&] { choice->changeUnits(&units); });
    return {0, message(L"%1% has %2% for %3% in place of %4%", idOf(*system), unitOf(*choice),
                       purpose(*choice), before)};
}

Result removeUnitChoice(DocumentSession & session, Parameters const & parameters) {
    StrongRef<UnitSystem> system;
    StrongRef<UnitSystemChoice> choice;
    std::wstring why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (why.empty()) why = findUnitChoice(*system, parameters.parameter(1), choice);
    if (!why.empty()) return cannot(L"cannot remove the choice: %1%", why);
    std::wstring const unit = unitOf(*choice);
    std::wstring const use = purpose(*choice);
    session.change(message(L"remove %1% from %2%", use, idOf(*system)),
                   [&] { system->removeChild(choice); });
    return {0, message(L"removed %1% for %2% from %3%", unit, use, idOf(*system))};
}

Result listUnitSystems(DocumentSession const & session, Parameters const & parameters,
                       std::ostream & out) {
    bool const json = parameters.hasFlag(L"Json");
    StrongRef<UnitSystems> const systems = UnitSystems::find(&session.design());
    StrongRef<UnitSystem> const active = activeUnitSystem(&session.design());
    Table table;
    unsigned number = 0;
    for (unsigned i = 0; systems && i < systems->unitSystems(); ++i) {
        StrongRef<UnitSystem> const system = systems->unitSystem(i);
        if (!system) continue;
        ++number;
        if (json) {
            Json line;
            line["id"] = system->id();
            line["name"] = Text::toUtf8(system->name());
            line["choices"] = system->unitSystemChoices();
            line["active"] = system == active;
            out << line.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
        } else {
            table.add({idOf(*system), printable(system->name()),
                       counted(system->unitSystemChoices(), tr(L"%1% choice"), tr(L"%1% choices")),
                       system == active ? message(L"active") : L""});
        }
    }
    if (!json)
        out << (number > 0 ? table.toUtf8()
                           : Text::toUtf8(message(L"the document has no unit system")) + '\n');
    return {};
}

Result showUnitSystem(DocumentSession const & session, Parameters const & parameters,
                      std::ostream & out) {
    StrongRef<UnitSystem> system;
    std::wstring const why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (!why.empty()) return cannot(L"cannot show the unit system: %1%", why);
    bool const json = parameters.hasFlag(L"Json");
    Table table;
    for (unsigned i = 0; i < system->unitSystemChoices(); ++i) {
        StrongRef<UnitSystemChoice> const choice = system->unitSystemChoice(i);
        if (!choice) continue;
        bool const isById = query<UnitSystemChoiceById>(choice.get()) != nullptr;
        if (json) {
            Json line;
            line["number"] = i;
            line[isById ? "key" : "kind"] = Text::toUtf8(purposeOf(*choice));
            line["unit"] =
                Text::toUtf8(unitText(choice->units(), Units::UnitDisplaySettings::standard()));
            line["stored"] = Text::toUtf8(choice->storedUnitString());
            line["name"] = Text::toUtf8(choice->name());
            out << line.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
            continue;
        }
        std::wstring const key = printable(purposeOf(*choice));
        std::wstring const name = printable(choice->name());
        std::wstring const kind = key.empty() ? message(L"dimension") : message(L"kind");
        table.add({std::to_wstring(i), isById ? message(L"key") : kind, key, unitOf(*choice),
                   printable(choice->storedUnitString()), name == key ? L"" : name});
    }
    if (!json) out << table.toUtf8();
    return {};
}

} // namespace Vn::Console
