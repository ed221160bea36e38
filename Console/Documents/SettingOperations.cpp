// What the commands of the subject area "Settings" do.

#include <charconv>
#include <optional>
#include <ostream>
#include <string_view>

#include <nlohmann/json.hpp>

#include "Console/Documents/Coordinates.h"
#include "Console/Documents/DocumentSettings.h"
#include "Console/Documents/Equipment.h"
#include "Console/Documents/Operations.h"
#include "Console/Documents/Session.h"
#include "Console/Documents/UnitSystems.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

using CommonData::CommonDataAssetSettings;
using Json = nlohmann::ordered_json;
using Parameters = TextCommandParameters;
using Result = TextCommandResult;
using Settings = StrongRef<CommonDataAssetSettings>;

constexpr wchar_t const * c_notYet =
    tr(L"the document has no settings yet, and gets these with its first change");

bool isLength(DocumentSetting const & setting) {
    return setting.kind == ESettingKind::Length || setting.kind == ESettingKind::Point;
}

std::wstring nameOf(DocumentSetting const & setting) { return Text::widen(setting.accessor); }

// The value that a setting has, or will have once there are settings.
SettingValue valueOf(DocumentSetting const & setting, Settings const & settings) {
    return settings ? setting.get(*settings) : setting.standard;
}

template <class... Visitors>
struct Overloaded : Visitors... {
    using Visitors::operator()...;
};

std::wstring textOf(DocumentSetting const & setting, SettingValue const & value,
                    Coordinates const & coordinates) {
    bool const isDirection = setting.kind == ESettingKind::Direction;
    auto const triple = [&](Triple const & components) {
        return isDirection ? Coordinates::direction(components) : coordinates.lengths(components);
    };
    return std::visit(
        Overloaded{[](std::monostate) { return message(L"none"); },
                   [](bool flag) { return std::wstring(flag ? L"on" : L"off"); },
                   [](unsigned number) { return std::to_wstring(number); },
                   [&](double length) { return coordinates.length(length); },
                   [&](auto const & components) { return triple(tripleOf(components)); }},
        value);
}

Json jsonValue(SettingValue const & value) {
    return std::visit(
        Overloaded{[](std::monostate) { return Json(); }, [](bool flag) { return Json(flag); },
                   [](unsigned number) { return Json(number); },
                   [](double length) { return jsonOf(length); },
                   [](auto const & components) { return jsonOf(tripleOf(components)); }},
        value);
}

// Of the two references: what they name, as a text and as JSON.
struct Named {
    std::wstring text;
    Json json;
};
Named namedBy(DocumentSetting const & setting, Settings const & settings) {
    if (std::string_view(setting.accessor) == "activeUnitSystem") {
        auto const system = settings ? settings->activeUnitSystem() : nullptr;
        if (system) return {printable(Text::fromUtf8(system->id())), system->id()};
    } else if (auto const views = settings ? settings->namedViews() : nullptr) {
        unsigned const count = views->children();
        return {counted(count, tr(L"%1% view"), tr(L"%1% views")), views->id()};
    }
    return {message(L"none"), nullptr};
}

std::wstring readFlag(std::wstring const & text, SettingValue & value) {
    for (wchar_t const * const yes : {L"on", L"true"})
        if (Text::foldedEqual(std::wstring_view(text), std::wstring_view(yes))) value = true;
    for (wchar_t const * const no : {L"off", L"false"})
        if (Text::foldedEqual(std::wstring_view(text), std::wstring_view(no))) value = false;
    return std::holds_alternative<bool>(value) ? L""
                                               : message(L"%1% isn't on or off", inQuotes(text));
}

std::wstring readNumber(std::wstring const & text, SettingValue & value) {
    std::string const digits = Text::toUtf8(text);
    unsigned number = 0;
    auto const [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size())
        return message(L"%1% isn't a whole number from 0 to 4294967295", inQuotes(text));
    value = number;
    return {};
}

// Reads a value of the kind of a setting.  The answer is empty, or says why it can't be read.
std::wstring readValue(DocumentSetting const & setting, std::wstring const & text,
                       Coordinates const & coordinates, SettingValue & value) {
    double length = 0;
    Triple triple{};
    std::wstring why;
    switch (setting.kind) {
    case ESettingKind::Flag:
        return readFlag(text, value);
    case ESettingKind::Number:
        return readNumber(text, value);
    case ESettingKind::Length:
        why = coordinates.readLength(text, length);
        if (why.empty()) value = length;
        return why;
    case ESettingKind::Direction:
        why = Coordinates::readDirection(text, triple);
        if (why.empty()) value = fromTriple<TgVector3d>(triple);
        return why;
    default:
        why = coordinates.readLengths(text, triple);
        if (!why.empty()) return why;
        if (std::holds_alternative<TgPoint3d>(setting.standard))
            value = fromTriple<TgPoint3d>(triple);
        else
            value = fromTriple<TgVector3d>(triple);
        return {};
    }
}

// Why a setting can't be set by name.
std::wstring whyNotSet(DocumentSetting const & setting) {
    if (setting.kind != ESettingKind::Reference) return {};
    return std::string_view(setting.accessor) == "activeUnitSystem"
               ? message(L"UnitSystems.Activate ID and UnitSystems.Deactivate do that")
               : message(L"the commands of the subject area Views change the views");
}

// The words from one on, as they were typed but for the number of blanks.
std::wstring joined(Parameters const & parameters, unsigned first) {
    std::wstring text;
    for (unsigned i = first; i < parameters.parameters(); ++i)
        text += (i > first ? L" " : L"") + parameters.parameter(i);
    return text;
}

// Gives a setting a value that isn't the present one.
void give(DocumentSession & session, DocumentSetting const & setting, SettingValue const & value) {
    equip(session.design());
    setting.set(*settingsOf(session.design()), value);
}

Result setTo(DocumentSession & session, DocumentSetting const & setting, SettingValue const & value,
             Coordinates const & coordinates) {
    std::wstring const name = nameOf(setting);
    SettingValue const before = valueOf(setting, settingsOf(session.design()));
    if (value == before)
        return {0, message(L"%1% is %2% already", name, textOf(setting, before, coordinates))};
    bool const isStep =
        session.change(message(L"set %1%", name), [&] { give(session, setting, value); });
    std::wstring const old = textOf(setting, before, coordinates);
    std::wstring const now = textOf(setting, value, coordinates);
    if (setting.isStep || isStep) return {0, message(L"set %1% from %2% to %3%", name, old, now)};
    return {0,
            message(L"set %1% from %2% to %3%; that is no step of the history, and undo leaves it",
                    name, old, now)};
}

// The coordinates for values of a setting, of which only lengths ask for the units of the document.
std::wstring findCoordinates(DocumentSession const & session, bool needed,
                             std::optional<Coordinates> & coordinates) {
    StrongRef<Units::UnitSystem> system;
    std::wstring const why = needed ? findShownSystem(&session.design(), system) : std::wstring();
    if (why.empty()) coordinates.emplace(system);
    return why;
}

} // namespace

Result listSettings(DocumentSession const & session, Parameters const & parameters,
                    std::ostream & out) {
    bool const json = parameters.hasFlag(L"Json");
    std::optional<Coordinates> coordinates;
    std::wstring why = whyNoSettings(session.design());
    if (why.empty()) why = findCoordinates(session, true, coordinates);
    if (!why.empty()) return cannot(L"cannot list the settings: %1%", why);
    Settings const settings = settingsOf(session.design());
    Table table;
    for (DocumentSetting const & setting : documentSettings()) {
        SettingValue const value = valueOf(setting, settings);
        bool const isReference = setting.kind == ESettingKind::Reference;
        Named const named = isReference ? namedBy(setting, settings) : Named();
        bool const isChanged = isReference ? !named.json.is_null() : value != setting.standard;
        std::wstring const text = isReference ? named.text : textOf(setting, value, *coordinates);
        if (json) {
            Json line;
            line["name"] = setting.accessor;
            line["member"] = setting.member;
            line["value"] = isReference ? named.json : jsonValue(value);
            line["text"] = Text::toUtf8(text);
            line["default"] = jsonValue(setting.standard);
            line["changed"] = isChanged;
            out << line.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
            continue;
        }
        table.add({nameOf(setting), clipped(text, 100),
                   textOf(setting, setting.standard, *coordinates),
                   isChanged ? message(L"changed") : L""});
    }
    if (json) return {};
    out << table.toUtf8();
    if (!settings) out << Text::toUtf8(message(c_notYet)) << '\n';
    return {};
}

Result setSetting(DocumentSession & session, Parameters const & parameters) {
    DocumentSetting const * setting = nullptr;
    std::wstring why = findSetting(parameters.parameter(0), setting);
    if (!why.empty()) return cannot(L"cannot set: %1%", why);
    why = whyNotSet(*setting);
    if (why.empty()) why = whyNoSettings(session.design());
    std::optional<Coordinates> coordinates;
    if (why.empty()) why = findCoordinates(session, isLength(*setting), coordinates);
    SettingValue value;
    if (why.empty()) why = readValue(*setting, joined(parameters, 1), *coordinates, value);
    if (!why.empty()) return {1, message(L"cannot set %1%: %2%", nameOf(*setting), why)};
    return setTo(session, *setting, value, *coordinates);
}

Result resetSettings(DocumentSession & session, Parameters const & parameters) {
    std::wstring why = whyNoSettings(session.design());
    if (parameters.parameters() > 0) {
        DocumentSetting const * setting = nullptr;
        if (why.empty()) why = findSetting(parameters.parameter(0), setting);
        if (why.empty()) why = whyNotSet(*setting);
        std::optional<Coordinates> coordinates;
        if (why.empty()) why = findCoordinates(session, isLength(*setting), coordinates);
        if (!why.empty()) return cannot(L"cannot reset the setting: %1%", why);
        return setTo(session, *setting, setting->standard, *coordinates);
    }
    if (!why.empty()) return cannot(L"cannot reset the settings: %1%", why);
    Settings const settings = settingsOf(session.design());
    unsigned count = 0;
    session.change(message(L"reset the settings"), [&] {
        for (DocumentSetting const & setting : documentSettings()) {
            if (!setting.isStep || valueOf(setting, settings) == setting.standard) continue;
            give(session, setting, setting.standard);
            ++count;
        }
    });
    if (count == 0) return {0, message(L"all settings have their defaults already")};
    return {0, counted(count, tr(L"reset %1% setting"), tr(L"reset %1% settings"))};
}

Result resetAxes(DocumentSession & session, Parameters const &) {
    std::wstring const why = whyNoSettings(session.design());
    if (!why.empty()) return cannot(L"cannot reset the axes: %1%", why);
    Settings const settings = settingsOf(session.design());
    bool const isStep = session.change(message(L"reset the axes"), [&] {
        if (!settings) return; // the axes of new settings are the default ones
        settings->sceneFront(settings->defaultSceneFront());
        settings->sceneUp(settings->defaultSceneUp());
    });
    if (!isStep) return {0, message(L"the axes are the default ones already")};
    return {0, message(L"the front is %1% and up is %2%",
                       Coordinates::direction(tripleOf(settings->sceneFront())),
                       Coordinates::direction(tripleOf(settings->sceneUp())))};
}

} // namespace Vn::Console
