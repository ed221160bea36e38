#include "Platform/Base/TextCommandService.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>
#include <optional>
#include <typeinfo>
#include <utility>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/Shared.h"
#include "Platform/Base/Spelling.h"
#include "Platform/Base/Text.h"

namespace Vn {

namespace {

constinit Shared<TextCommandService> s_service;

// Longer names than this are neither corrected nor shown in full, so that an answer to a line that
// was never meant as a command stays short and cheap.
constexpr std::size_t c_longestName = 64;

bool isBlank(wchar_t c) { return Text::isSpace(static_cast<char32_t>(c)); }

bool isAsciiLetter(wchar_t c) { return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z'); }

bool isFlag(std::wstring_view word) {
    return word.size() >= 2 && word[0] == L'/' && isAsciiLetter(word[1]) &&
           std::all_of(word.begin() + 2, word.end(),
                       [](wchar_t c) { return isAsciiLetter(c) || (c >= L'0' && c <= L'9'); });
}

// A line taken apart.  The first word is the command.
struct Line {
    std::wstring command;
    std::vector<std::wstring> parameters;
    std::vector<std::wstring> flags;
};

// Nothing if a quote isn't closed.
std::optional<Line> takeApart(std::wstring_view line) {
    Line parts;
    bool first = true;
    std::size_t i = 0;
    for (;;) {
        while (i < line.size() && isBlank(line[i])) ++i;
        if (i == line.size()) return parts;
        std::wstring word;
        bool const quoted = line[i] == L'"';
        if (quoted) {
            bool closed = false;
            for (++i; i < line.size() && !closed; ++i) {
                bool const last = i + 1 == line.size();
                if (line[i] == L'\\' && !last && line[i + 1] == L'"')
                    word += line[++i];
                else if (line[i] == L'"' && (last || isBlank(line[i + 1])))
                    closed = true;
                else
                    word += line[i];
            }
            if (!closed) return std::nullopt;
        } else {
            std::size_t const start = i;
            while (i < line.size() && !isBlank(line[i])) ++i;
            word = line.substr(start, i - start);
        }
        if (std::exchange(first, false))
            parts.command = std::move(word);
        else if (!quoted && isFlag(word))
            parts.flags.push_back(word.substr(1));
        else
            parts.parameters.push_back(std::move(word));
    }
}

// The text and "Did you mean ...?" with the candidate nearest to what was typed, or the text alone
// if none is near.
std::wstring withSuggestion(std::wstring text, std::wstring_view typed,
                            std::vector<std::wstring> candidates) {
    if (typed.size() > c_longestName) return text;
    std::erase_if(candidates, [](auto const & each) { return each.size() > c_longestName; });
    auto const nearest =
        Spelling::nearest(typed, candidates, std::max<std::size_t>(2, typed.size() / 3));
    return nearest.empty() ? text : localized(L"%1% Did you mean %2%?", text, *nearest.front());
}

std::wstring shown(std::wstring_view name) { return Text::clipped(name, c_longestName); }

// The text and the names, for which `english` has the places, or the text alone if there are none.
std::wstring withNames(std::wstring text, wchar_t const * english,
                       std::vector<std::wstring> const & names) {
    if (names.empty()) return text;
    std::wstring const comma = localized(L", ");
    std::wstring all = names.front();
    for (std::size_t i = 1; i < names.size(); ++i) all += comma + names[i];
    return localized(english, text, all);
}

// Whatever `matches` exactly, or else whatever matches folded.
template <class Item, class Name>
std::vector<Item *> select(std::vector<Item *> const & items, std::wstring_view wanted,
                           Name && nameOf) {
    std::vector<Item *> found;
    for (Item * item : items)
        if (nameOf(*item) == wanted) found.push_back(item);
    if (!found.empty()) return found;
    for (Item * item : items)
        if (Text::foldedEqual(std::wstring_view(nameOf(*item)), wanted)) found.push_back(item);
    return found;
}

std::wstring const & subjectOf(TextCommand const & command) { return command.subjectArea(); }
std::wstring const & nameOf(TextCommand const & command) { return command.name(); }

} // namespace

TextCommandService & TextCommandService::get() {
    return s_service.get([] { return new TextCommandService; });
}

std::vector<TextCommandSubjectArea *> TextCommandService::subjectAreas() const {
    std::lock_guard const guard(m_mutex);
    return m_areas;
}

std::vector<TextCommand *> TextCommandService::commands(std::wstring_view subject) const {
    std::lock_guard const guard(m_mutex);
    return select(m_commands, subject, subjectOf);
}

TextCommand * TextCommandService::find(std::wstring_view subject, std::wstring_view name) const {
    std::vector<TextCommand *> found;
    if (!subject.empty()) {
        found = select(commands(subject), name, nameOf);
    } else if (!name.empty()) {
        std::lock_guard const guard(m_mutex);
        found = select(m_commands, name,
                       [](TextCommand const & command) { return Text::widen(command.alias()); });
    }
    return found.empty() ? nullptr : found.front();
}

TextCommand * TextCommandService::findTyped(std::wstring_view typed) const {
    std::size_t const stop = typed.find(L'.');
    return stop == typed.npos ? find({}, typed)
                              : find(typed.substr(0, stop), typed.substr(stop + 1));
}

std::vector<std::wstring> TextCommandService::completions(std::wstring_view front) const {
    std::optional<Line> parts = takeApart(front);
    TextCommand * const command = parts ? findTyped(parts->command) : nullptr;
    if (!command) return {};
    try {
        return command->completions(
            TextCommandParameters(std::move(parts->parameters), std::move(parts->flags)));
    } catch (std::exception const &) { // of a line that nobody has asked to run
        return {};
    }
}

TextCommandResult TextCommandService::run(std::wstring_view line) {
    std::optional<Line> parts = takeApart(line);
    if (!parts)
        return {1, localized(L"A quote is not closed: it ends with a double quote that a blank or "
                             L"the end of the line follows")};
    TextCommand * const command = findTyped(parts->command);
    if (!command) return {1, unknownCommand(parts->command)};
    return run(*command,
               TextCommandParameters(std::move(parts->parameters), std::move(parts->flags)));
}

TextCommandResult TextCommandService::run(TextCommand & command,
                                          TextCommandParameters const & parameters) {
    try {
        return command.run(parameters);
    } catch (TextCommandFailure const & failure) {
        return {1, failure.text()};
    } catch (std::bad_alloc const &) {
        return {1, localized(L"Memory ran out")};
    } catch (std::exception const & exception) {
        // What it says was written for whoever wrote the command.
        std::string text = exception.what();
        if (text.empty()) text = OS::className(typeid(exception));
        return {1, localized(L"%1%.%2% failed unexpectedly: %3%", command.subjectArea(),
                             command.name(), text)};
    }
}

std::wstring TextCommandService::unknownCommand(std::wstring_view typed) const {
    std::vector<std::wstring> areas;
    for (TextCommandSubjectArea const * area : subjectAreas())
        if (!area->hidden()) areas.push_back(area->name());
    auto const withAreas = [&](std::wstring text) {
        return withNames(std::move(text), localizable(L"%1% The subject areas are: %2%."), areas);
    };

    if (typed.empty())
        return withAreas(
            localized(L"There is no command in this line; one is written as Subject.Name."));

    std::size_t const stop = typed.find(L'.');
    std::wstring_view const subject = typed.substr(0, stop);
    std::vector<TextCommand *> const ofSubject = commands(subject);
    if (!subject.empty() && !ofSubject.empty()) {
        std::vector<std::wstring> names;
        for (TextCommand const * command : ofSubject)
            if (!command->hidden())
                names.push_back(command->subjectArea() + L"." + command->name());
        std::wstring const text =
            stop == typed.npos || stop + 1 == typed.size()
                ? localized(L"\"%1%\" is a subject area, not a command.", shown(subject))
                : withSuggestion(localized(L"The subject area \"%1%\" has no command \"%2%\".",
                                           shown(subject), shown(typed.substr(stop + 1))),
                                 typed, names);
        return withNames(text, localizable(L"%1% Its commands are: %2%."), names);
    }

    bool const areaExists = std::any_of(areas.begin(), areas.end(), [&](std::wstring const & area) {
        return Text::foldedEqual(std::wstring_view(area), subject);
    });
    if (areaExists) return localized(L"The subject area \"%1%\" has no commands.", shown(subject));
    if (stop != typed.npos)
        return withAreas(withSuggestion(
            localized(L"There is no subject area \"%1%\".", shown(subject)), subject, areas));

    std::vector<std::wstring> candidates = areas;
    {
        std::lock_guard const guard(m_mutex);
        for (TextCommand const * command : m_commands) {
            if (command->hidden()) continue;
            candidates.push_back(command->subjectArea() + L"." + command->name());
            if (!command->alias().empty()) candidates.push_back(Text::widen(command->alias()));
        }
    }
    return withAreas(withSuggestion(
        localized(L"There is no command \"%1%\"; one is written as Subject.Name.", shown(typed)),
        typed, candidates));
}

void TextCommandService::add(TextCommandSubjectArea * area) {
    std::lock_guard const guard(m_mutex);
    m_areas.push_back(area);
}

void TextCommandService::remove(TextCommandSubjectArea * area) noexcept {
    std::lock_guard const guard(m_mutex);
    std::erase(m_areas, area);
}

void TextCommandService::add(TextCommand * command) {
    std::lock_guard const guard(m_mutex);
    m_commands.push_back(command);
}

void TextCommandService::remove(TextCommand * command) noexcept {
    std::lock_guard const guard(m_mutex);
    std::erase(m_commands, command);
}

} // namespace Vn
