#include "Console/Options.h"

#include <algorithm>
#include <optional>
#include <ostream>

#include <nlohmann/json.hpp>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/Spelling.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/Utility.h"
#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"
#include "Server/CommonData/Units/UnitDisplaySettingsOptionGroup.h"

namespace Vn::Console {

using Group = Units::UnitDisplaySettingsOptionGroup;
using Field = Units::UnitDisplaySettingsField;
using Json = nlohmann::ordered_json;

namespace {

std::wstring idOf(OptionBase const & option) { return Text::widen(option.id()); }
std::wstring nameOf(OptionBase const & option) { return Text::widen(Group::fieldName(option)); }

// The choice that stands for a value; null if none does.
OptionBase::Choice const * choiceOf(OptionBase const & option, std::wstring const & value) {
    for (OptionBase::Choice const & choice : option.choices())
        if (choice.value == value) return &choice;
    return nullptr;
}

// What a choice says beyond its value.
std::wstring choiceText(OptionBase const & option) {
    OptionBase::Choice const * const choice = choiceOf(option, option.toString());
    return choice && choice->text != choice->value ? choice->text : std::wstring();
}

class OptionsCommand {
public:
    OptionsCommand(bool json, std::ostream & out, std::ostream & err,
                   std::function<void(OptionBase const &)> const & changed)
        : m_bJson(json), m_rOut(out), m_rErr(err), m_rChanged(changed), m_rGroup(*Group::get()) {}

    int run(std::vector<std::wstring> const & words);

private:
    int list(std::wstring const & pattern);
    int get(std::wstring const & name);
    int set(std::wstring const & name, std::wstring const & text);
    int reset(std::wstring const & name);
    int path();

    int bad(std::wstring const & why) {
        m_rOut.flush();
        return told(why, m_rErr);
    }
    int failed(Status const & status) { return bad(printable(statusText(status))); }
    int badUsage();

    // The option by its id or the name of its field, in any case; null, which is told, for none.
    OptionBase * find(std::wstring const & name);
    int notAValue(OptionBase const & option, std::wstring const & text);
    void show(std::vector<OptionBase const *> const & options);
    void showJson(OptionBase const & option);
    // Saves; what can't be saved is taken back.
    int save(std::vector<std::pair<OptionBase *, std::wstring>> const & before);

    bool const m_bJson;
    std::ostream & m_rOut;
    std::ostream & m_rErr;
    std::function<void(OptionBase const &)> const & m_rChanged;
    Group & m_rGroup;
};

int OptionsCommand::badUsage() {
    told(message(L"the preferences are shown and changed by"), m_rErr);
    Table table;
    for (OptionsJob const & job : optionsJobs())
        table.add(
            {std::wstring(L"options ") + job.name + L' ' + job.arguments, message(job.meaning)});
    m_rErr << table.toUtf8("  ");
    return ExitBadUsage;
}

int OptionsCommand::run(std::vector<std::wstring> const & words) {
    std::wstring const job = words.empty() ? L"list" : words[0];
    std::wstring const first = words.size() > 1 ? words[1] : std::wstring();
    if (job == L"list" && words.size() <= 2) return list(first);
    if (job == L"path" && words.size() == 1) return path();
    if (job == L"reset" && words.size() <= 2) return reset(first);
    if (job == L"get" && words.size() == 2) return get(first);
    if (job != L"set" || words.size() < 3) return badUsage();
    std::wstring value = words[2];
    for (std::size_t i = 3; i < words.size(); ++i) value += L' ' + words[i];
    return set(first, value);
}

OptionBase * OptionsCommand::find(std::wstring const & name) {
    std::vector<std::pair<std::wstring, OptionBase *>> names;
    for (OptionBase * const option : m_rGroup.options()) {
        names.emplace_back(nameOf(*option), option);
        names.emplace_back(idOf(*option), option);
    }
    for (auto const & [known, option] : names)
        if (Text::foldedEqual(known, std::wstring_view(name))) return option;
    auto const nearest =
        Spelling::nearest(name, names, Spelling::allowedMistakes(name.size()),
                          [](auto const & each) -> std::wstring const & { return each.first; });
    bad(nearest.empty()
            ? message(L"there is no preference %1%; \"options list\" lists them", inQuotes(name))
            : message(L"there is no preference %1%; did you mean %2%?", inQuotes(name),
                      nearest.front()->first));
    return nullptr;
}

void OptionsCommand::showJson(OptionBase const & option) {
    auto const text = [](std::wstring const & wide) { return Text::toUtf8(wide); };
    auto const value = [](OptionBase const & each) -> Json {
        if (auto const * flag = dynamic_cast<Option<bool> const *>(&each)) return flag->value();
        if (auto const * whole = dynamic_cast<Option<int> const *>(&each)) return whole->value();
        if (auto const * real = dynamic_cast<Option<double> const *>(&each)) return real->value();
        return {};
    };
    Json object;
    object["name"] = text(nameOf(option));
    object["id"] = option.id();
    object["value"] = value(option);
    object["text"] = text(option.toString());
    object["choice"] = text(choiceText(option));
    object["isDefault"] = !option.nonDefault();
    object["userName"] = text(option.userName());
    object["toolTip"] = text(option.toolTip());
    Json choices = Json::array();
    for (OptionBase::Choice const & choice : option.choices())
        choices.push_back(Json{{"value", text(choice.value)}, {"text", text(choice.text)}});
    object["choices"] = choices;
    m_rOut << object.dump() << '\n';
}

void OptionsCommand::show(std::vector<OptionBase const *> const & options) {
    Table table;
    for (OptionBase const * const option : options) {
        if (m_bJson)
            showJson(*option);
        else
            table.add({option->nonDefault() ? L"*" : L" ", nameOf(*option), option->toString(),
                       choiceText(*option).empty()
                           ? option->userName()
                           : message(L"%1%: %2%", option->userName(), choiceText(*option))});
    }
    if (!m_bJson) m_rOut << table.toUtf8();
}

int OptionsCommand::list(std::wstring const & pattern) {
    std::vector<OptionBase const *> found;
    for (OptionBase const * const option : m_rGroup.options()) {
        for (std::wstring const & text : {nameOf(*option), idOf(*option), option->userName()}) {
            if (!containsFolded(text, pattern)) continue;
            found.push_back(option);
            break;
        }
    }
    if (found.empty()) return bad(message(L"no preference matches %1%", inQuotes(pattern)));
    show(found);
    return ExitGood;
}

int OptionsCommand::get(std::wstring const & name) {
    OptionBase const * const option = find(name);
    if (!option) return ExitBadInput;
    show({option});
    return ExitGood;
}

// A number that the option's field can hold; of a flag, any.
bool isInRange(OptionBase const & option, std::wstring const & text) {
    Field const * const field = Units::findUnitDisplaySettingsField(Group::fieldName(option));
    double value = 0.0;
    if (!field || field->kind == Units::ESettingsField::Flag ||
        !Utility::localeTolerantLexicalCast(text, value))
        return true;
    return value >= field->low && value <= field->high;
}

// Whether an option takes a text as it is.
bool isStoredForm(OptionBase const & option, std::wstring const & text) {
    int whole = 0;
    double real = 0.0;
    switch (option.valueType()) {
    case OptionBase::DataTypeBool:
        return Text::foldedEqual(text, std::wstring_view(L"ON")) ||
               Text::foldedEqual(text, std::wstring_view(L"OFF"));
    case OptionBase::DataTypeInt:
        return Utility::wholeNumberLexicalCast(text, whole);
    case OptionBase::DataTypeDouble:
        return Utility::localeTolerantLexicalCast(text, real);
    default:
        return false;
    }
}

// Whether a text is that of a choice, or the words before what stands in brackets.
bool isChoice(OptionBase::Choice const & choice, std::wstring const & text) {
    if (Text::foldedEqual(choice.text, std::wstring_view(text))) return true;
    std::size_t const bracket = choice.text.find(L'(');
    return bracket != choice.text.npos &&
           Text::foldedEqual(trimmed(std::wstring_view(choice.text).substr(0, bracket)),
                             std::wstring_view(text));
}

// The value that a person means, as the option takes it.
std::optional<std::wstring> meantValue(OptionBase const & option, std::wstring const & text) {
    if (isStoredForm(option, text)) return text;
    for (OptionBase::Choice const & choice : option.choices())
        if (isChoice(choice, text)) return choice.value;
    if (option.valueType() != OptionBase::DataTypeBool) return std::nullopt;
    for (wchar_t const * const yes : {L"true", L"yes", L"1"})
        if (Text::foldedEqual(text, std::wstring_view(yes))) return L"ON";
    for (wchar_t const * const no : {L"false", L"no", L"0"})
        if (Text::foldedEqual(text, std::wstring_view(no))) return L"OFF";
    return std::nullopt;
}

// What an option takes, in words.
std::wstring wantedText(OptionBase const & option) {
    if (option.valueType() == OptionBase::DataTypeBool) return message(L"ON or OFF");
    if (option.valueType() != OptionBase::DataTypeInt) return message(L"a number");
    Field const * const field = Units::findUnitDisplaySettingsField(Group::fieldName(option));
    return message(L"a whole number from %1% to %2%", shortestNumber(field->low),
                   shortestNumber(field->high));
}

int OptionsCommand::notAValue(OptionBase const & option, std::wstring const & text) {
    bad(message(option.choices().empty() ? tr(L"%1% takes %2%, not %3%")
                                         : tr(L"%1% takes %2%, not %3%; the choices are"),
                nameOf(option), wantedText(option), inQuotes(text)));
    Table table;
    for (OptionBase::Choice const & choice : option.choices())
        table.add({choice.value, choice.text});
    m_rErr << table.toUtf8("  ");
    return ExitBadInput;
}

int OptionsCommand::save(std::vector<std::pair<OptionBase *, std::wstring>> const & before) {
    Status status;
    m_rGroup.save(status);
    if (status) {
        for (auto const & each : before)
            if (m_rChanged) m_rChanged(*each.first);
        return ExitGood;
    }
    for (auto const & [option, text] : before) option->setValueFromString(text);
    return failed(status);
}

int OptionsCommand::set(std::wstring const & name, std::wstring const & text) {
    OptionBase * const option = find(name);
    if (!option) return ExitBadInput;
    std::optional<std::wstring> const value = meantValue(*option, text);
    if (!value || !isInRange(*option, *value)) return notAValue(*option, text);
    std::wstring const before = option->toString();
    if (!option->choose(*value)) option->setValueFromString(*value);
    int const result = save({{option, before}});
    if (result == ExitGood) show({option});
    return result;
}

int OptionsCommand::reset(std::wstring const & name) {
    std::vector<std::pair<OptionBase *, std::wstring>> before;
    if (name.empty()) {
        for (OptionBase * const option : m_rGroup.options())
            before.emplace_back(option, option->toString());
    } else {
        OptionBase * const option = find(name);
        if (!option) return ExitBadInput;
        before.emplace_back(option, option->toString());
    }
    Status status;
    for (auto const & each : before) each.first->reset(status);
    int const result = save(before);
    if (result != ExitGood) return result;
    std::vector<OptionBase const *> shown;
    for (auto const & each : before) shown.push_back(each.first);
    show(shown);
    return ExitGood;
}

int OptionsCommand::path() {
    auto const native = [](std::wstring const & text) {
        return Text::toUtf8(PathInfo::toText(PathInfo::fromText(text)));
    };
    std::vector<std::wstring> others;
    std::wstring const own = m_rGroup.onPersistFile(others);
    if (own.empty())
        return bad(message(L"the system has no place for preferences; --options names one"));
    if (m_bJson) {
        Json object;
        object["path"] = native(own);
        object["serverPath"] = native(others.front());
        m_rOut << object.dump() << '\n';
    } else {
        m_rOut << native(own) << '\n';
    }
    return ExitGood;
}

} // namespace

std::vector<OptionsJob> const & optionsJobs() {
    static std::vector<OptionsJob> const s_jobs = {
        {L"list", L"[PATTERN]", tr(L"lists them; * marks what isn't the default")},
        {L"get", L"ID", tr(L"shows one")},
        {L"set", L"ID VALUE", tr(L"changes one, and saves it")},
        {L"reset", L"[ID]", tr(L"takes one or all back to the defaults, and saves that")},
        {L"path", L"", tr(L"the file that they are saved in")},
    };
    return s_jobs;
}

std::vector<std::string> preferenceNames() {
    std::vector<std::string> names;
    for (OptionBase const * const option : Group::get()->options())
        names.emplace_back(Group::fieldName(*option));
    return names;
}

int runOptions(std::vector<std::wstring> const & words, bool json, std::ostream & out,
               std::ostream & err, std::function<void(OptionBase const &)> const & changed) {
    return OptionsCommand(json, out, err, changed).run(words);
}

void tellOfDamagedOptions(std::ostream & err) {
    Status const & status = Group::get()->loadStatus();
    if (!status) told(status, err);
}

} // namespace Vn::Console
