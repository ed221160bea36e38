// Named views that a user has picked.

#ifndef VN_SERVER_COMMONDATA_NAMEDVIEWS_NAMEDVIEWSELECTIONS_H
#define VN_SERVER_COMMONDATA_NAMEDVIEWS_NAMEDVIEWSELECTIONS_H

#include <string>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/LogicalSelection.h"
#include "Server/CommonData/Export.h"

namespace Vn::NameView {
class NamedView;
class NamedViews;
} // namespace Vn::NameView

namespace Vn::CommonData {

// A view.  The selection knows it by its path only: if the views are put into another order, it
// means the one that stands at that place then.
class VN_COMMONDATA_API NamedViewSelection
    : public Identified<NamedViewSelection, LogicalSelection> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::CommonData::NamedViewSelection"};

    // The selection of what `path` leads to, which is the view.
    static StrongRefCreator<NamedViewSelection> make(ObjectPath const & path,
                                                     StrongRef<NameView::NamedView> view);
    ~NamedViewSelection() override;

    // The view; null if the path leads to none.
    StrongRef<NameView::NamedView> namedView() const;

private:
    explicit NamedViewSelection(ObjectPath const & path);

    std::wstring onUserName() const override;
};

// All views of a document, as NamedViewSelection.
class VN_COMMONDATA_API NamedViewsSelection
    : public Identified<NamedViewsSelection, LogicalSelection> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::CommonData::NamedViewsSelection"};

    // The selection of what `path` leads to, which is the group.
    static StrongRefCreator<NamedViewsSelection> make(ObjectPath const & path,
                                                      StrongRef<NameView::NamedViews> views);
    ~NamedViewsSelection() override;

    // The group; null if the path leads to none.
    StrongRef<NameView::NamedViews> namedViews() const;

private:
    explicit NamedViewsSelection(ObjectPath const & path);

    std::wstring onUserName() const override;
};

} // namespace Vn::CommonData

#endif
