#include "Console/Documents/TextCommands.h"

#include <new>
#include <sstream>
#include <stdexcept>
#include <string>

#include "Console/CommandLine/ExitStatus.h"
#include "Console/Documents/CommandTable.h"
#include "Console/Documents/Interruption.h"
#include "Console/Documents/Operations.h"
#include "Console/Documents/Session.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

class SubjectArea final : public TextCommandSubjectArea {
public:
    using TextCommandSubjectArea::TextCommandSubjectArea;
};

bool isFlag(std::wstring_view text, wchar_t const * flag) {
    return flag && Text::foldedEqual(text, std::wstring_view(flag));
}

class Command final : public TextCommand {
public:
    Command(DocumentCommand const & command, DocumentSession & session, std::ostream * out)
        : TextCommand(command.area, command.name,
                      (*command.usage ? command.usage + std::wstring(L" ") : std::wstring()) +
                          command.meaning,
                      command.alias),
          m_rCommand(command), m_rSession(session), m_pOut(out) {}

private:
    TextCommandResult onRun(TextCommandParameters const & parameters) override {
        std::wstring const usage =
            subjectArea() + L'.' + name() + (*m_rCommand.usage ? L" " : L"") + m_rCommand.usage;
        if (parameters.parameters() < m_rCommand.least)
            return cannot(m_rCommand.refusal, message(L"more is needed: %1%", usage));
        if (parameters.parameters() > m_rCommand.most) {
            std::wstring const & next = parameters.parameter(m_rCommand.most);
            return cannot(m_rCommand.refusal,
                          message(L"%1% is too much: %2%", inQuotes(next), usage));
        }
        for (std::wstring const & flag : parameters.flags()) {
            if (isFlag(flag, m_rCommand.flag) || isFlag(flag, m_rCommand.otherFlag)) continue;
            return cannot(m_rCommand.refusal,
                          message(L"%1% isn't a flag of it, and a path goes in quotes: %2%",
                                  inQuotes(L'/' + flag), usage));
        }
        if (m_rCommand.needsDocument && !m_rSession.isOpen()) {
            return cannot(m_rCommand.refusal,
                          message(L"no document is open; Document.New makes one, and "
                                  L"Document.Open FILE opens one"));
        }
        // A change that throws was taken back.
        try {
            endIfInterrupted();
            return m_rCommand.write ? write(parameters) : m_rCommand.run(m_rSession, parameters);
        } catch (Interrupted const &) {
            return {ExitInterrupted,
                    cannot(m_rCommand.refusal,
                           m_rCommand.write ? message(L"it was interrupted")
                                            : message(L"it was interrupted; the document is as it "
                                                      L"was before"))
                        .text};
        } catch (std::bad_alloc const &) {
            return cannot(m_rCommand.refusal,
                          message(L"memory ran out; the document is as it was before"));
        } catch (std::length_error const & error) {
            return cannot(m_rCommand.refusal, Text::fromUtf8(error.what()));
        }
    }

    TextCommandResult write(TextCommandParameters const & parameters) {
        if (m_pOut) return m_rCommand.write(m_rSession, parameters, *m_pOut);
        std::ostringstream text;
        TextCommandResult result = m_rCommand.write(m_rSession, parameters, text);
        if (result.status == 0) result.text = Text::fromUtf8(text.str());
        return result;
    }

    DocumentCommand const & m_rCommand;
    DocumentSession & m_rSession;
    std::ostream * const m_pOut;
};

} // namespace

DocumentTextCommands::DocumentTextCommands(DocumentSession & session, std::ostream * out) {
    m_areas.push_back(std::make_unique<SubjectArea>(
        L"Document", tr(L"Commands that keep a document: its file, its tree and its history")));
    m_areas.push_back(std::make_unique<SubjectArea>(
        L"Groups", tr(L"Commands that change the groups of the document")));
    m_areas.push_back(std::make_unique<SubjectArea>(
        L"UnitSystems", tr(L"Commands that change the units of the document")));
    m_areas.push_back(std::make_unique<SubjectArea>(
        L"Settings", tr(L"Commands that show and change the settings of the document")));
    m_areas.push_back(std::make_unique<SubjectArea>(
        L"Views", tr(L"Commands that keep the named views of the document")));
    for (DocumentCommand const & command : documentCommands())
        m_commands.push_back(std::make_unique<Command>(command, session, out));
}

// The areas go last, so that no command is without one.
DocumentTextCommands::~DocumentTextCommands() { m_commands.clear(); }

} // namespace Vn::Console
