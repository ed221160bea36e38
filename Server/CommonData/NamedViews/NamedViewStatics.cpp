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

class NamedViewMetaType final : public Managed::PersistedMetaType<NamedView> {};
class NamedViewsMetaType final : public Managed::PersistedMetaType<NamedViews> {};

} // namespace

std::wstring const NamedViews::c_home VN_LOAD_NAMED_VIEWS = nameOf(L"HOME");
std::wstring const NamedViews::c_top VN_LOAD_NAMED_VIEWS = nameOf(L"TOP");
std::wstring const NamedViews::c_front VN_LOAD_NAMED_VIEWS = nameOf(L"FRONT");
std::wstring const NamedViews::c_right VN_LOAD_NAMED_VIEWS = nameOf(L"RIGHT");

namespace {

NamedViewMetaType s_namedView VN_LOAD_NAMED_VIEWS;
NamedViewsMetaType s_namedViews VN_LOAD_NAMED_VIEWS;

} // namespace

EntityMetaType * NamedView::s_metaType() { return &s_namedView; }
EntityMetaType * NamedViews::s_metaType() { return &s_namedViews; }

} // namespace Vn::NameView
