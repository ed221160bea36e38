#ifndef VN_PLATFORM_BASE_TEXTCOMMANDSERVICE_H
#define VN_PLATFORM_BASE_TEXTCOMMANDSERVICE_H

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/Export.h"
#include "Platform/Base/TextCommand.h"

namespace Vn {

// All text commands of the process, and the reader of the lines that call them.
//
// A line is the area and the name of a command with a full stop between them, or the command's
// alias, and then its parameters:
//
//     Expressions.Parse "3 m + 4 ft" m /ValueOnly
//
// - Blanks separate parameters.
// - A double quote at the start of a parameter opens a quoted one, in which blanks are kept.  It is
//   closed by the first double quote that a blank or the end of the line follows; any other double
//   quote inside is kept, so that "2' 6 3/4" + 1 in" is one parameter with the inch mark in it.  A
//   quote that would close but shouldn't is written \" ; a backslash stands for itself otherwise.
// - A double quote elsewhere in a parameter stands for itself, so that 6" needs no quotes.
// - A parameter that consists of a slash, an ASCII letter and further ASCII letters or digits is a
//   flag, unless it is quoted.  Flags may stand anywhere after the name.
//
// Any thread may call these operations.
class VN_BASE_API TextCommandService {
public:
    // The one service of the process.
    static TextCommandService & get();

    // The areas in the order in which they joined, hidden ones included.
    std::vector<TextCommandSubjectArea *> subjectAreas() const;

    // The commands of an area in the order in which they joined, hidden ones included.  The name is
    // compared exactly, or without regard to ASCII case if that finds none.
    std::vector<TextCommand *> commands(std::wstring_view subject) const;

    // A command by its area and name, compared exactly, or without regard to ASCII case if that
    // finds none; null if there is no such command.  With an empty `subject`, the name is an alias.
    TextCommand * find(std::wstring_view subject, std::wstring_view name) const;

    // Runs one line.  Whatever is wrong with it gives status 1 and a text that says what would have
    // been right; so does a std::exception out of the command, with its text.
    TextCommandResult run(std::wstring_view line);
    // Runs a command in the same way.
    static TextCommandResult run(TextCommand & command, TextCommandParameters const & parameters);
    // What the word may be that a person begins to type after `front`, the line up to there, as the
    // command in it tells; empty if there is no command or if it can't tell.
    std::vector<std::wstring> completions(std::wstring_view front) const;

    TextCommandService(TextCommandService const &) = delete;
    TextCommandService & operator=(TextCommandService const &) = delete;

private:
    friend class TextCommand;
    friend class TextCommandSubjectArea;

    TextCommandService() = default;

    void add(TextCommandSubjectArea * area);
    void remove(TextCommandSubjectArea * area) noexcept;
    void add(TextCommand * command);
    void remove(TextCommand * command) noexcept;

    TextCommand * findTyped(std::wstring_view typed) const;
    std::wstring unknownCommand(std::wstring_view typed) const;

    mutable std::mutex m_mutex;
    std::vector<TextCommandSubjectArea *> m_areas;
    std::vector<TextCommand *> m_commands;
};

} // namespace Vn

#endif
