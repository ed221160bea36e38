// The names of the built-in views and the meta types, in the order in which they come into being.

#include "Platform/Base/RegistrationLog.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/NamedViews/NamedView.h"
#include "Server/CommonData/NamedViews/NamedViews.h"

namespace Vn::NameView {

namespace {

// A call, so that even a short name is made when its turn comes and not by the compiler.
std::wstring nameOf(wchar_t const * text) {
    RegistrationLog::note(RegistrationLog::EKind::Static, Text::toUtf8(text), text);
    return text;
}

// Tells of a name that came, and of its end.
class Noted {
public:
    explicit Noted(std::wstring const & name) : m_name(name) { note(RegistrationLog::EEvent::Joins); }
    ~Noted() { note(RegistrationLog::EEvent::Leaves); }
    Noted(Noted const &) = delete;
    Noted & operator=(Noted const &) = delete;

private:
    void note(RegistrationLog::EEvent event) const {
        if (RegistrationLog::isAsked())
            RegistrationLog::note(RegistrationLog::EKind::Static, Text::toUtf8(m_name), &m_name,
                                  event);
    }

    std::wstring const & m_name;
};

class NamedViewMetaType final : public Managed::PersistedMetaType<NamedView> {};
class NamedViewsMetaType final : public Managed::PersistedMetaType<NamedViews> {};

} // namespace

std::wstring const NamedViews::c_home VN_LOAD_NAMED_VIEWS = nameOf(L"HOME");
static Noted const s_home VN_LOAD_NAMED_VIEWS(NamedViews::c_home);
std::wstring const NamedViews::c_top VN_LOAD_NAMED_VIEWS = nameOf(L"TOP");
static Noted const s_top VN_LOAD_NAMED_VIEWS(NamedViews::c_top);
std::wstring const NamedViews::c_front VN_LOAD_NAMED_VIEWS = nameOf(L"FRONT");
static Noted const s_front VN_LOAD_NAMED_VIEWS(NamedViews::c_front);
std::wstring const NamedViews::c_right VN_LOAD_NAMED_VIEWS = nameOf(L"RIGHT");
static Noted const s_right VN_LOAD_NAMED_VIEWS(NamedViews::c_right);
static NamedViewMetaType s_namedView VN_LOAD_NAMED_VIEWS;
static NamedViewsMetaType s_namedViews VN_LOAD_NAMED_VIEWS;

EntityMetaType * NamedView::s_metaType() { return &s_namedView; }
EntityMetaType * NamedViews::s_metaType() { return &s_namedViews; }

} // namespace Vn::NameView
