// The commands that show and set the members of an entity.

#include <ostream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Console/Documents/Operations.h"
#include "Console/Documents/Place.h"
#include "Console/Documents/Session.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Console/Texts.h"
#include "Platform/Base/Spelling.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/EntityMembers.h"

namespace Vn::Console {

namespace {

using Parameters = TextCommandParameters;
using Result = TextCommandResult;

// What a line of the list has room for; `show PATH MEMBER` shows the whole value.
constexpr std::size_t c_longestValue = 100;

std::wstring shownName(std::string const & name) { return printable(Text::fromUtf8(name)); }

// Why there is no member of a name, with the one that was probably meant, or those that there are.
std::wstring whyNoMember(EntityMembers const & members, std::wstring const & path,
                         std::wstring const & name) {
    std::vector<std::wstring> names;
    for (EntityMembers::Info const & info : members.all()) names.push_back(shownName(info.name));
    std::wstring const wished = inQuotes(name);
    auto const nearest = Spelling::nearest(name, names, Spelling::allowedMistakes(name.size()));
    if (!nearest.empty()) {
        return message(L"%1% has no member %2%; did you mean %3%?", path, wished, *nearest.front());
    }
    std::wstring all;
    for (std::wstring const & known : names) all += (all.empty() ? L"" : L", ") + known;
    return all.empty() ? message(L"%1% has no member %2%", path, wished)
                       : message(L"%1% has no member %2%; its members are %3%", path, wished, all);
}

void writeMembers(EntityMembers const & members, bool json, std::ostream & out) {
    Table table;
    for (EntityMembers::Info const & info : members.all()) {
        std::wstring value;
        members.get(info.name, value);
        if (json) {
            nlohmann::ordered_json line;
            line["name"] = info.name;
            line["class"] = info.className;
            line["kind"] = info.kind;
            line["value"] = Text::toUtf8(value);
            if (info.whyReadOnly.empty())
                line["readOnly"] = nullptr;
            else
                line["readOnly"] = info.whyReadOnly;
            out << line.dump() << '\n';
            continue;
        }
        table.add({shownName(info.name), shownName(info.kind),
                   clipped(printable(value), c_longestValue)});
    }
    if (!json) out << table.toUtf8();
}

} // namespace

Result showMembers(DocumentSession const & session, Parameters const & parameters,
                   std::ostream & out) {
    bool const json = parameters.hasFlag(L"Json");
    DocumentPlace place;
    std::wstring const why = findPlace(session, parameters.parameter(0), place);
    if (!why.empty()) return cannot(L"cannot show the members: %1%", why);
    EntityMembers const members(place.entity);
    if (parameters.parameters() == 1) {
        writeMembers(members, json, out);
        return {};
    }
    std::wstring const & name = parameters.parameter(1);
    std::wstring value;
    if (!members.get(Text::toUtf8(name), value))
        return cannot(L"cannot show the member: %1%",
                      whyNoMember(members, shownPath(place.path), name));
    if (json)
        out << nlohmann::json(Text::toUtf8(value)).dump() << '\n';
    else
        out << Text::toUtf8(printable(value)) << '\n';
    return {};
}

Result setMember(DocumentSession & session, Parameters const & parameters) {
    DocumentPlace place;
    std::wstring const why = findPlace(session, parameters.parameter(0), place);
    if (!why.empty()) return cannot(L"cannot set the member: %1%", why);
    std::wstring const & name = parameters.parameter(1);
    std::wstring const & value = parameters.parameter(2);

    std::wstring const path = shownPath(place.path);
    EntityMembers const members(place.entity);
    std::string const key = Text::toUtf8(name);
    std::wstring before;
    if (!members.get(key, before))
        return cannot(L"cannot set the member: %1%", whyNoMember(members, path, name));
    Status status;
    session.change(message(L"set %1% of %2%", printable(name), path),
                   [&] { status = members.set(key, value); });
    std::wstring const member = printable(name);
    if (!status) {
        return {1, message(L"cannot set %1% of %2% to %3%: %4%", member, path, inQuotes(value),
                           Text::fromUtf8(status.cause()))};
    }
    std::wstring after;
    members.get(key, after);
    if (after == before)
        return {0, message(L"%1% of %2% is %3% already", member, path, inQuotes(after))};
    return {0, message(L"set %1% of %2% from %3% to %4%", member, path, inQuotes(before),
                       inQuotes(after))};
}

} // namespace Vn::Console
