#ifndef VN_PLATFORM_BASE_TEXTCOMMAND_H
#define VN_PLATFORM_BASE_TEXTCOMMAND_H

#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/Export.h"

namespace Vn {

// What a text command answers: status 0 for success and 1 for failure, and a text for the user.
struct TextCommandResult {
    int status = 0;    // 0 for success; a failure is 1 unless the command tells more by another
    std::wstring text; // for the user, in as many lines as it needs
};

// What stands after the name of a command: parameters, counted from 0, and flags.
class VN_BASE_API TextCommandParameters {
public:
    TextCommandParameters() = default;
    // Flags are given without their slash.
    explicit TextCommandParameters(std::vector<std::wstring> parameters,
                                   std::vector<std::wstring> flags = {});

    // The number of parameters, flags not counted.
    unsigned parameters() const noexcept;
    // One parameter, or an empty text if there are fewer.
    std::wstring const & parameter(unsigned index) const;
    // Whether the flag was given.  The case of ASCII letters doesn't count.
    bool hasFlag(std::wstring_view name) const noexcept;
    std::vector<std::wstring> const & flags() const noexcept { return m_flags; }

private:
    std::vector<std::wstring> m_parameters;
    std::vector<std::wstring> m_flags;
};

// A base, beside its own, of an exception that a text command throws to tell the user something. Of
// other exceptions the service tells that they were not expected.
class VN_BASE_API TextCommandFailure {
public:
    // The text that the service makes a result of, with status 1.
    explicit TextCommandFailure(std::wstring text);
    virtual ~TextCommandFailure();

    // What the constructor was given.
    std::wstring const & text() const noexcept { return m_text; }

private:
    std::wstring m_text;
};

// A family of text commands, such as "Units".  It joins the text command service when it is
// constructed, and leaves it when it is destroyed.
class VN_BASE_API TextCommandSubjectArea {
public:
    // A hidden area isn't shown in listings; its commands can be run all the same.
    TextCommandSubjectArea(std::wstring name, std::wstring description, bool hidden = false);
    virtual ~TextCommandSubjectArea();
    TextCommandSubjectArea(TextCommandSubjectArea const &) = delete;
    TextCommandSubjectArea & operator=(TextCommandSubjectArea const &) = delete;

    // What the constructor was given.
    std::wstring const & name() const noexcept { return m_name; }
    std::wstring const & description() const noexcept { return m_description; }
    bool hidden() const noexcept { return m_bHidden; }

private:
    std::wstring const m_name;
    std::wstring const m_description;
    bool const m_bHidden;
};

// A command that a person types.  It joins the text command service when it is constructed, and
// leaves it when it is destroyed; no thread may be running it then.
class VN_BASE_API TextCommand {
public:
    // `subjectArea` names the area, which may be constructed later.  `alias`, if it isn't empty, is
    // an ASCII name under which the command is found without its area.  A hidden command isn't
    // shown in listings but can be run; one that isn't enabled is shown but refuses to run.
    TextCommand(std::wstring subjectArea, std::wstring name, std::wstring description,
                std::string alias = {}, bool hidden = false, bool enabled = true);
    virtual ~TextCommand();
    TextCommand(TextCommand const &) = delete;
    TextCommand & operator=(TextCommand const &) = delete;

    // What the constructor was given.
    std::wstring const & subjectArea() const noexcept { return m_subjectArea; }
    std::wstring const & name() const noexcept { return m_name; }
    std::wstring const & description() const noexcept { return m_description; }
    std::string const & alias() const noexcept { return m_alias; }
    bool hidden() const noexcept { return m_bHidden; }
    bool enabled() const noexcept { return m_bEnabled; }

    // Runs the command.  A command that isn't enabled answers status 1.  What the command throws
    // goes to the caller; the service makes a result of it.
    TextCommandResult run(TextCommandParameters const & parameters);
    // What a parameter may be that a person begins to type after others, for the completion of
    // lines; empty if nothing is known.  What the command throws goes to the caller.
    std::vector<std::wstring> completions(TextCommandParameters const & before) {
        return onComplete(before);
    }

private:
    // The order of the virtual operations is binding.
    virtual TextCommandResult onRun(TextCommandParameters const & parameters) = 0;
    // Nothing unless overridden.
    virtual std::vector<std::wstring> onComplete(TextCommandParameters const & before);

    std::wstring const m_subjectArea;
    std::wstring const m_name;
    std::wstring const m_description;
    std::string const m_alias;
    bool const m_bHidden;
    bool const m_bEnabled;
};

} // namespace Vn

#endif
