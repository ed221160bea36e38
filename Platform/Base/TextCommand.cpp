#include "Platform/Base/TextCommand.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/RegistrationLog.h"
#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/TextCommandService.h"

namespace Vn {

namespace {

constinit Shared<std::wstring> s_noText;

using Log = RegistrationLog;

void note(TextCommandSubjectArea const & area, Log::EEvent event) {
    if (Log::isAsked())
        Log::note(Log::EKind::TextCommandArea, Text::toUtf8(area.name()), &area, event);
}

void note(TextCommand const & command, Log::EEvent event) {
    if (Log::isAsked())
        Log::note(Log::EKind::TextCommand,
                  Text::toUtf8(command.subjectArea() + L'.' + command.name()), &command, event);
}

} // namespace

TextCommandParameters::TextCommandParameters(std::vector<std::wstring> parameters,
                                             std::vector<std::wstring> flags)
    : m_parameters(std::move(parameters)), m_flags(std::move(flags)) {}

unsigned TextCommandParameters::parameters() const noexcept {
    std::size_t const most = std::numeric_limits<unsigned>::max();
    return static_cast<unsigned>(std::min(m_parameters.size(), most));
}

std::wstring const & TextCommandParameters::parameter(unsigned index) const {
    if (index < m_parameters.size()) return m_parameters[index];
    return s_noText.get([] { return new std::wstring; });
}

bool TextCommandParameters::hasFlag(std::wstring_view name) const noexcept {
    return std::any_of(m_flags.begin(), m_flags.end(), [&](std::wstring const & flag) {
        return Text::foldedEqual(std::wstring_view(flag), name);
    });
}

TextCommandSubjectArea::TextCommandSubjectArea(std::wstring name, std::wstring description,
                                               bool hidden)
    : m_name(std::move(name)), m_description(std::move(description)), m_bHidden(hidden) {
    TextCommandService::get().add(this);
    note(*this, Log::EEvent::Joins);
}

TextCommandSubjectArea::~TextCommandSubjectArea() {
    TextCommandService::get().remove(this);
    note(*this, Log::EEvent::Leaves);
}

TextCommandFailure::TextCommandFailure(std::wstring text) : m_text(std::move(text)) {}

// Out of line, so that one module has the type that the service looks for.
TextCommandFailure::~TextCommandFailure() = default;

TextCommand::TextCommand(std::wstring subjectArea, std::wstring name, std::wstring description,
                         std::string alias, bool hidden, bool enabled)
    : m_subjectArea(std::move(subjectArea)), m_name(std::move(name)),
      m_description(std::move(description)), m_alias(std::move(alias)), m_bHidden(hidden),
      m_bEnabled(enabled) {
    TextCommandService::get().add(this);
    note(*this, Log::EEvent::Joins);
}

TextCommand::~TextCommand() {
    TextCommandService::get().remove(this);
    note(*this, Log::EEvent::Leaves);
}

TextCommandResult TextCommand::run(TextCommandParameters const & parameters) {
    if (!m_bEnabled) return {1, localized(L"%1%.%2% is not enabled", m_subjectArea, m_name)};
    return onRun(parameters);
}

std::vector<std::wstring> TextCommand::onComplete(TextCommandParameters const &) { return {}; }

} // namespace Vn
