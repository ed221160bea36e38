#include "Server/CommonData/NamedViews/NamedViewSelections.h"

#include "Platform/Base/StringTable.h"
#include "Server/CommonData/NamedViews/NamedView.h"
#include "Server/CommonData/NamedViews/NamedViews.h"

namespace Vn::CommonData {

using NameView::NamedView;
using NameView::NamedViews;

namespace {

template <class T>
StrongRef<T> leafOf(ObjectPath const & path) {
    StrongRef<Entity> const leaf = path.leaf();
    return StrongRef<T>(query<T>(leaf.get()));
}

} // namespace

NamedViewSelection::NamedViewSelection(ObjectPath const & path) : Identified(path) {}
NamedViewSelection::~NamedViewSelection() = default;

StrongRefCreator<NamedViewSelection> NamedViewSelection::make(ObjectPath const & path,
                                                              StrongRef<NamedView>) {
    return StrongRefCreator<NamedViewSelection>(new NamedViewSelection(path));
}

StrongRef<NamedView> NamedViewSelection::namedView() const {
    return leafOf<NamedView>(logicalPath());
}

std::wstring NamedViewSelection::onUserName() const {
    return StringTable::getLocalizedString("VnCommonData", "NamedViewSelectionId", L"NamedView");
}

NamedViewsSelection::NamedViewsSelection(ObjectPath const & path) : Identified(path) {}
NamedViewsSelection::~NamedViewsSelection() = default;

StrongRefCreator<NamedViewsSelection> NamedViewsSelection::make(ObjectPath const & path,
                                                                StrongRef<NamedViews>) {
    return StrongRefCreator<NamedViewsSelection>(new NamedViewsSelection(path));
}

StrongRef<NamedViews> NamedViewsSelection::namedViews() const {
    return leafOf<NamedViews>(logicalPath());
}

std::wstring NamedViewsSelection::onUserName() const {
    return StringTable::getLocalizedString("VnCommonData", "NamedViewsSelectionId", L"NamedViews");
}

} // namespace Vn::CommonData
