// The interactive console: one line after another, with a memory for what is expected and how
// values are shown.

#ifndef VN_CONSOLE_SESSION_SESSION_H
#define VN_CONSOLE_SESSION_SESSION_H

#include <iosfwd>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "Console/LastValue.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"

namespace Vn::Console {

class Session {
public:
    enum class Result { Good, Bad, Quit };

    // A word that begins a line and isn't an expression.
    struct Command {
        wchar_t const * name;
        wchar_t const * arguments;
        wchar_t const * meaning;
        Result (Session::*run)(std::wstring const & argument);
    };

    // A subject of `help`.
    struct Topic {
        wchar_t const * name;
        wchar_t const * meaning;
        void (Session::*show)();
    };

    // The streams must live as long as the session.  With `standard` it starts with the factory
    // settings, else with what the user prefers.
    Session(std::ostream & out, std::ostream & err, bool standard = false);

    // Does what a line says: a command of the session, a text command, or an expression to
    // evaluate.
    Result execute(std::string const & utf8Line);

    // What stands in front of the next line: the unit that is expected.
    std::wstring prompt() const;

    static std::span<Command const> commands();
    static std::span<Topic const> topics();

private:
    Result help(std::wstring const & topic);
    Result unit(std::wstring const & text);
    Result display(std::wstring const & text);
    Result set(std::wstring const & argument);
    Result standard(std::wstring const & argument);
    Result options(std::wstring const & argument);
    Result units(std::wstring const & pattern);
    Result language(std::wstring const & tag);
    Result quit(std::wstring const & argument);

    void helpOnExpressions();
    void helpOnNumbers();
    void helpOnConversions();
    void helpOnFunctions();
    void helpOnConstants();
    void helpOnPrefixes();
    void helpOnPreferences();
    void helpOnDocuments();
    void helpOnCommands();

    Result evaluate(std::wstring const & text);
    Result bad(std::wstring const & why);
    bool readUnit(std::wstring const & text, char const * what, Units::UnitContext & context);
    void showUnit(wchar_t const * what, Units::UnitContext const & context);
    void showSettings();
    // Gives all settings their factory values, without saving them.
    void setStandard();

    std::ostream & m_rOut;
    std::ostream & m_rErr;
    Units::UnitContext m_context;
    Units::UnitContext m_display; // expects nothing unless one was chosen
    LastValue m_last;
    // What was set without being saved, which goes before the preferences.
    std::map<Units::UnitDisplaySettingsField const *, double> m_set;
};

} // namespace Vn::Console

#endif
