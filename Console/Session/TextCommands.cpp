#include "Console/Session/TextCommands.h"

#include <algorithm>
#include <ostream>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Documents/CommandTable.h"
#include "Console/Messages.h"
#include "Console/Terminal/Table.h"
#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommandService.h"

namespace Vn::Console {

std::wstring descriptionOf(TextCommand const & command) {
    DocumentCommand const * const own =
        findDocumentCommand(command.subjectArea() + L'.' + command.name());
    if (!own) return localized(command.description().c_str());
    return own->usage + std::wstring(*own->usage ? L" " : L"") + message(own->meaning);
}

namespace {

std::wstring meaningOf(TextCommandSubjectArea const & area) {
    return localized(message(area.description().c_str()).c_str());
}

int listCommands(std::ostream & out) {
    TextCommandService & service = TextCommandService::get();
    bool first = true;
    for (TextCommandSubjectArea const * const area : service.subjectAreas()) {
        if (area->hidden()) continue;
        if (!first) out << '\n';
        first = false;
        out << Text::toUtf8(message(L"%1%: %2%", area->name(), meaningOf(*area))) << '\n';
        Table table;
        for (TextCommand const * const command : service.commands(area->name()))
            if (!command->hidden())
                table.add({area->name() + L'.' + command->name(), descriptionOf(*command)});
        out << table.toUtf8("  ");
    }
    return ExitGood;
}

// A parameter as it is written in a line.
std::wstring quotedIfNeeded(std::wstring const & word) {
    bool const blank = std::any_of(word.begin(), word.end(), [](wchar_t c) {
        return Text::isSpace(static_cast<char32_t>(c));
    });
    if (!blank && !word.empty() && word.front() != L'"') return word;
    std::wstring text = L"\"";
    for (wchar_t const c : word) {
        if (c == L'"') text += L'\\';
        text += c;
    }
    return text + L'"';
}

std::wstring lineOf(std::vector<std::wstring> const & words) {
    std::wstring line = words.front();
    for (std::size_t i = 1; i < words.size(); ++i) line += L' ' + quotedIfNeeded(words[i]);
    return line;
}

// Commands end their lines with a carriage return too.
std::string withPlainLineEnds(std::string text) {
    for (std::size_t at = 0; (at = text.find("\r\n", at)) != text.npos;) text.erase(at, 1);
    if (!text.empty() && text.back() != '\n') text += '\n';
    return text;
}

} // namespace

int runTextCommand(std::vector<std::wstring> const & words, std::ostream & out,
                   std::ostream & err) {
    if (words.empty()) return listCommands(out);
    TextCommandResult const result = TextCommandService::get().run(lineOf(words));
    (result.status == 0 ? out : err) << withPlainLineEnds(Text::toUtf8(result.text));
    return result.status;
}

bool namesTextCommand(std::wstring_view word) {
    TextCommandService const & service = TextCommandService::get();
    std::size_t const stop = word.find(L'.');
    if (stop == word.npos) return service.find({}, word) != nullptr;
    std::wstring_view const area = word.substr(0, stop);
    return !area.empty() && !service.commands(area).empty();
}

std::vector<std::wstring> textCommandNames() {
    TextCommandService const & service = TextCommandService::get();
    std::vector<std::wstring> names;
    for (TextCommandSubjectArea const * const area : service.subjectAreas()) {
        if (area->hidden()) continue;
        for (TextCommand const * const command : service.commands(area->name()))
            if (!command->hidden()) names.push_back(area->name() + L'.' + command->name());
        for (TextCommand const * const command : service.commands(area->name()))
            if (!command->hidden() && !command->alias().empty())
                names.push_back(Text::widen(command->alias()));
    }
    return names;
}

} // namespace Vn::Console
