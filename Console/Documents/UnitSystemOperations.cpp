// The commands that change the unit systems of a document.

#include <ostream>
#include <utility>

#include <nlohmann/json.hpp>

#include "Console/Documents/Equipment.h"
#include "Console/Documents/Operations.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/UnitSystems.h"
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

std::wstring count(unsigned number, wchar_t const * thing) {
    return std::to_wstring(number) + L' ' + thing + (number == 1 ? L"" : L"s");
}

std::wstring idOf(UnitSystem const & system) { return printable(Text::fromUtf8(system.id())); }

// The unit as it is shown: "ft".  Of a choice whose text is no unit, that text.
std::wstring unitOf(UnitSystemChoice const & choice) {
    std::wstring const text = unitText(choice.units(), Units::UnitDisplaySettings::standard());
    if (!text.empty()) return printable(text);
    return choice.storedUnitString().empty()
               ? L"no unit"
               : inQuotes(choice.storedUnitString()) + L", which isn't a unit";
}

std::wstring purpose(UnitSystemChoice const & choice) {
    std::wstring const text = purposeOf(choice);
    return printable(text.empty() ? choice.name() : text);
}

// A choice that was made, or why none was: one that is there is in the way.
Result chosen(UnitSystem const & system, StrongRef<UnitSystemChoice> const & made,
              StrongRef<UnitSystemChoice> const & held) {
    if (!made) {
        return cannot(L"choose the unit",
                      held ? L"the unit system has " + unitOf(*held) + L" for " + purpose(*held) +
                                 L" already; UnitSystems.Change gives it another unit"
                           : std::wstring(L"the document is closed"));
    }
    return {0, idOf(system) + L" has " + unitOf(*made) + L" for " + purpose(*made)};
}

} // namespace

Result makeUnitSystem(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const purpose = L"make a unit system";
    std::wstring const & name = parameters.parameter(0);
    std::wstring const & id = parameters.parameter(1);
    std::wstring const & kind = parameters.parameter(2);
    Completion const * const completion = findCompletion(kind);
    bool const isEmpty = Text::foldedEqual(std::wstring_view(kind), std::wstring_view(L"empty"));
    if (!isEmpty && (!completion || !completion->isWhole))
        return cannot(purpose, inQuotes(kind) + L" isn't mks, cgs, imperial or empty");
    if (id.empty()) return cannot(purpose, L"its identifier is empty");
    StrongRef<UnitSystems> systems = UnitSystems::find(&session.design());
    std::string const key = Text::toUtf8(id);
    if (systems && systems->findUnitSystem(key))
        return cannot(purpose, L"the document has a unit system " + inQuotes(id) + L" already");
    if (!systems && session.design().rootEntity(UnitSystems::segmentRootId()))
        return cannot(purpose, L"something else stands under \"UnitSystems\"");
    StrongRef<UnitSystem> made;
    session.change(L"make the unit system " + printable(id), [&] {
        if (!systems) systems = UnitSystems::make(&session.design());
        made = UnitSystem::make(systems, name, key);
        if (completion) ((*made).*completion->complete)();
    });
    return {0, L"made the unit system " + idOf(*made) + L" with " +
                   count(made->unitSystemChoices(), L"choice")};
}

Result completeUnitSystem(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const purpose = L"complete the unit system";
    StrongRef<UnitSystem> system;
    std::wstring const why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (!why.empty()) return cannot(purpose, why);
    Completion const * const completion = findCompletion(parameters.parameter(1));
    if (!completion)
        return cannot(purpose,
                      inQuotes(parameters.parameter(1)) + L" isn't mks, cgs, imperial or common");
    unsigned const before = system->unitSystemChoices();
    session.change(L"complete " + idOf(*system) + L" as " + completion->name,
                   [&] { ((*system).*completion->complete)(); });
    unsigned const added = system->unitSystemChoices() - before;
    return {0, L"added " + count(added, L"choice") + L" to " + idOf(*system)};
}

Result removeUnitSystem(DocumentSession & session, Parameters const & parameters) {
    StrongRef<UnitSystem> system;
    std::wstring const why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (!why.empty()) return cannot(L"remove the unit system", why);
    unsigned const choices = system->unitSystemChoices();
    bool const wasActive = activeUnitSystem(&session.design()) == system;
    std::wstring answer =
        L"removed the unit system " + idOf(*system) + L" with " + count(choices, L"choice");
    session.change(L"remove the unit system " + idOf(*system), [&] {
        StrongRef<UnitSystems> const systems = system->parentUnitSystems();
        systems->remove(std::exchange(system, nullptr)); // the last to hold it
    });
    if (wasActive && !activeUnitSystem(&session.design()))
        answer += L"; it was the active one, and now none is";
    return {0, answer};
}

Result activateUnitSystem(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const task = L"activate the unit system";
    StrongRef<UnitSystem> system;
    std::wstring why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (why.empty()) why = whyNoSettings(session.design());
    if (!why.empty()) return cannot(task, why);
    if (activeUnitSystem(&session.design()) == system)
        return {0, idOf(*system) + L" is the active unit system already"};
    session.change(L"activate the unit system " + idOf(*system), [&] {
        equip(session.design());
        settingsOf(session.design())->activateUnitSystem(system);
    });
    return {0, idOf(*system) + L" is the active unit system now"};
}

Result deactivateUnitSystem(DocumentSession & session, Parameters const &) {
    StrongRef<UnitSystem> const system = activeUnitSystem(&session.design());
    if (!system) return {0, L"no unit system is active"};
    session.change(L"deactivate the unit system " + idOf(*system),
                   [&] { settingsOf(session.design())->activateUnitSystem(nullptr); });
    return {0, idOf(*system) + L" isn't active any more"};
}

Result chooseUnit(DocumentSession & session, Parameters const & parameters) {
    StrongRef<UnitSystem> system;
    ComplexUnit units;
    std::wstring why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (why.empty()) why = readKeptUnit(parameters.parameter(1), units);
    if (!why.empty()) return cannot(L"choose the unit", why);
    StrongRef<UnitSystemChoice> made;
    session.change(L"choose " + printable(parameters.parameter(1)) + L" in " + idOf(*system), [&] {
        SimpleUnit const * simple = nullptr;
        if (parameters.parameters() > 2)
            made = UnitSystemChoiceByUnit::make(system, &units,
                                                GlobalizedString(parameters.parameter(2)));
        else if (units.isSimpleUnit(&simple))
            made = UnitSystemChoiceByUnit::make(system, simple);
        else if (SimpleUnit const * const kind = Units::findEquivalentUnit(units))
            made =
                UnitSystemChoiceByUnit::make(system, &units, kind->globalizedSimpleUnitTypeName());
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
    if (!why.empty()) return cannot(L"choose the unit", why);
    std::string const key = Text::toUtf8(parameters.parameter(1));
    GlobalizedString name(parameters.parameter(1));
    if (parameters.parameters() > 3)
        name = GlobalizedString(parameters.parameter(3));
    else if (key == UnitSystemChoiceById::modelingLengthId())
        name = UnitSystemChoiceById::modelingLengthName();
    else if (key == UnitSystemChoiceById::modelingMassId())
        name = UnitSystemChoiceById::modelingMassName();
    StrongRef<UnitSystemChoice> made;
    session.change(L"choose " + printable(unit) + L" for " + printable(parameters.parameter(1)) +
                       L" in " + idOf(*system),
                   [&] { made = UnitSystemChoiceById::make(system, name, key, unit); });
    return chosen(*system, made, system->find(key));
}

Result changeUnit(DocumentSession & session, Parameters const & parameters) {
    wchar_t const * const task = L"change the unit";
    StrongRef<UnitSystem> system;
    StrongRef<UnitSystemChoice> choice;
    ComplexUnit units;
    std::wstring why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (why.empty()) why = findUnitChoice(*system, parameters.parameter(1), choice);
    if (why.empty()) why = readKeptUnit(parameters.parameter(2), units);
    if (!why.empty()) return cannot(task, why);
    std::wstring const before = unitOf(*choice);
    if (!choice->units().isDimensionallyEquivalent(&units)) {
        return cannot(task,
                      inQuotes(parameters.parameter(2)) + L" isn't of the dimension of " + before);
    }
    session.change(L"change " + purpose(*choice) + L" of " + idOf(*system) + L" to " +
                       printable(parameters.parameter(2)),
                   [&] { choice->changeUnits(&units); });
    return {0, idOf(*system) + L" has " + unitOf(*choice) + L" for " + purpose(*choice) +
                   L" in place of " + before};
}

Result removeUnitChoice(DocumentSession & session, Parameters const & parameters) {
    StrongRef<UnitSystem> system;
    StrongRef<UnitSystemChoice> choice;
    std::wstring why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (why.empty()) why = findUnitChoice(*system, parameters.parameter(1), choice);
    if (!why.empty()) return cannot(L"remove the choice", why);
    std::wstring const what = unitOf(*choice) + L" for " + purpose(*choice);
    session.change(L"remove " + purpose(*choice) + L" from " + idOf(*system),
                   [&] { system->removeChild(choice); });
    return {0, L"removed " + what + L" from " + idOf(*system)};
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
                       count(system->unitSystemChoices(), L"choice"),
                       system == active ? L"active" : L""});
        }
    }
    if (!json) out << (number > 0 ? table.toUtf8() : "the document has no unit system\n");
    return {};
}

Result showUnitSystem(DocumentSession const & session, Parameters const & parameters,
                      std::ostream & out) {
    StrongRef<UnitSystem> system;
    std::wstring const why = findUnitSystem(&session.design(), parameters.parameter(0), system);
    if (!why.empty()) return cannot(L"show the unit system", why);
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
        wchar_t const * const kind = key.empty() ? L"dimension" : L"kind";
        table.add({std::to_wstring(i), isById ? L"key" : kind, key, unitOf(*choice),
                   printable(choice->storedUnitString()), name == key ? L"" : name});
    }
    if (!json) out << table.toUtf8();
    return {};
}

} // namespace Vn::Console
