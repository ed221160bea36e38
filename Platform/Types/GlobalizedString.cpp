#include "Platform/Types/GlobalizedString.h"

#include "Platform/Base/PerLanguage.h"
#include "Platform/Base/Shared.h"
#include "Platform/Base/StringTable.h"

namespace Vn {

class GlobalizedString::Body final : public RefCounted {
public:
    explicit Body(std::wstring_view text) : m_bGlobalized(false), m_defaultText(text) {}
    Body(std::string_view module, std::string_view key, std::wstring_view defaultText)
        : m_bGlobalized(true), m_module(module), m_key(key), m_defaultText(defaultText) {}
    ~Body() override { m_value.clear(); }

    std::wstring const & value() const {
        if (!m_bGlobalized) return m_defaultText;
        return m_value.get([this] {
            return new std::wstring(
                StringTable::getLocalizedString(m_module, m_key, m_defaultText));
        });
    }

    bool const m_bGlobalized;
    std::string const m_module;
    std::string const m_key;
    std::wstring const m_defaultText;

private:
    mutable PerLanguage<std::wstring> m_value;
};

namespace {

constinit Shared<std::string> s_noName;
constinit Shared<std::wstring> s_noText;

std::string const & noName() {
    return s_noName.get([] { return new std::string; });
}

std::wstring const & noText() {
    return s_noText.get([] { return new std::wstring; });
}

} // namespace

GlobalizedString::GlobalizedString() noexcept = default;
GlobalizedString::GlobalizedString(GlobalizedString const & other) noexcept = default;
GlobalizedString::GlobalizedString(GlobalizedString && other) noexcept = default;
GlobalizedString & GlobalizedString::operator=(GlobalizedString const & other) noexcept = default;
GlobalizedString & GlobalizedString::operator=(GlobalizedString && other) noexcept = default;
GlobalizedString::~GlobalizedString() = default;

GlobalizedString::GlobalizedString(std::wstring_view text)
    : m_rBody(text.empty() ? nullptr : new Body(text)) {}

GlobalizedString::GlobalizedString(std::string_view module, std::string_view key,
                                   std::wstring_view defaultText)
    : m_rBody(new Body(module, key, defaultText)) {}

std::wstring const & GlobalizedString::value() const {
    return m_rBody ? m_rBody->value() : noText();
}

bool GlobalizedString::isGlobalized() const noexcept { return m_rBody && m_rBody->m_bGlobalized; }

std::string const & GlobalizedString::module() const noexcept {
    return m_rBody ? m_rBody->m_module : noName();
}

std::string const & GlobalizedString::key() const noexcept {
    return m_rBody ? m_rBody->m_key : noName();
}

std::wstring const & GlobalizedString::defaultText() const noexcept {
    return m_rBody ? m_rBody->m_defaultText : noText();
}

bool operator==(GlobalizedString const & a, GlobalizedString const & b) noexcept {
    return a.m_rBody == b.m_rBody ||
           (a.isGlobalized() == b.isGlobalized() && a.module() == b.module() &&
            a.key() == b.key() && a.defaultText() == b.defaultText());
}

} // namespace Vn
