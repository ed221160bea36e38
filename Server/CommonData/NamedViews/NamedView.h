#ifndef VN_SERVER_COMMONDATA_NAMEDVIEWS_NAMEDVIEW_H
#define VN_SERVER_COMMONDATA_NAMEDVIEWS_NAMEDVIEW_H

#include <memory>
#include <string>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/ILogicalSelectionSource.h"
#include "Platform/DataModel/IPasteSink.h"
#include "Platform/DataModel/IPasteSource.h"
#include "Platform/DataModel/IRenameTarget.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/ManagedEntity.h"

namespace Vn::Scene {
class Camera;
}

namespace Vn::CommonData {
class NewNamedViewRequest;
}

namespace Vn::NameView {

class NamedViews;

// A camera that is kept under a name, as a child of the document's NamedViews.
//
// A view is fixed or it isn't.  The built-in views are fixed: the user neither renames them nor
// changes their cameras.
class VN_COMMONDATA_API NamedView
    : public Managed::Persisted<NamedView, Managed::ManagedEntity, ILogicalSelectionSource,
                                DataModel::IRenameTarget, DataModel::IPasteSink,
                                DataModel::IPasteSource> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr Managed::PersistedClass c_class{"Vn::NameView::NamedView",
                                                     "1787C882-91E2-4363-9C18-80C98EBE4C77", 0};
    static EntityMetaType * s_metaType();

    // A new view that isn't fixed, as the last of `views`.  It owns `camera`, which may be null; a
    // camera of another document counts as null.  The name may be empty or hold any characters.
    // Null if `views` has a view of that name, and if `views` is null or gone.
    static StrongRefCreator<NamedView> make(StrongRef<NamedViews> const & views,
                                            std::wstring const & name,
                                            StrongRef<Scene::Camera> const & camera);
    ~NamedView() override;

    // Whether the user may change the view.  Nobody is told when it is set, and no undo takes that
    // back, but the document has then changed and is saved with it.
    bool enableModify() const noexcept { return m_bEnableModify; }
    void enableModify(bool enable) noexcept;
    // Whether the view is fixed.
    bool isFixed() const noexcept { return !m_bEnableModify; }

    // The name.  Setting it doesn't look for other views of the name: see
    // NamedViews::updateNamedViewName.  A fixed view keeps its name.
    std::wstring const & name() const noexcept { return m_name; }
    void name(std::wstring const & name);

    // The camera; null if there is none, and while an undo has taken it away.
    StrongRef<Scene::Camera> const & camera() const noexcept;
    // Sets it, as enableModify is set.  A fixed view keeps its camera, and a camera of another
    // document is ignored.
    void camera(StrongRef<Scene::Camera> const & camera) noexcept;
    // Gives the view's own camera the position, target, up vector and extents of `source`.  Nothing
    // happens on a fixed view and without one of the cameras.
    void updateCamera(StrongRef<Scene::Camera> const & source);

    // Both interfaces have one of that name.
    using DataModel::IPasteSink::canReorder;
    using DataModel::IPasteSource::canReorder;

protected:
    // As of ManagedEntity, with a name and a camera as for `make`.
    NamedView(PassiveRef<Entity> const & parent, std::wstring const & name,
              StrongRef<Scene::Camera> const & camera);
    NamedView(Segment * segment, std::wstring const & name,
              StrongRef<Scene::Camera> const & camera);
    NamedView(Segment * segment, unsigned long long id);

private:
    friend class CommonData::NewNamedViewRequest;
    friend class Managed::PersistedAccess;

    // As `make` of a name that is known to be free, which saves a walk over all views.
    static StrongRefCreator<NamedView> makeFree(StrongRef<NamedViews> const & views,
                                                std::wstring const & name,
                                                StrongRef<Scene::Camera> const & camera);
    void initializeMemberSet(unsigned version, MemberSet * set);
    static Status setName(NamedView & view, std::wstring const & name);
    void assignName(std::wstring name);

    StrongRef<LogicalSelection> onCreateLogicalSelection(ObjectPath const & path) override;
    bool onProvideNominalHitInfo(StrongRef<LogicalSelection> selection, TgMatrix3d const & matrix,
                                 TgPoint3d & point, TgMatrix3d & outMatrix) const override;
    bool onCanRename() const override;
    std::wstring onRenameText() override;
    void onRename(std::wstring const & name) override;
    std::unique_ptr<IPasteRequest> onProvidePasteRequest(std::vector<ObjectPath> const & paths,
                                                         ObjectPath const & target,
                                                         bool insertAfter, bool cut,
                                                         bool reorder) const override;
    bool onCanReorder(std::vector<ObjectPath> const & paths,
                      ObjectPath const & target) const override;
    bool onCanCut() const override;
    bool onCanCopy() const override;
    bool onCanReorder() const override;

    bool m_bEnableModify = true;
    std::wstring m_name;
    StrongRef<Scene::Camera> m_rCamera;
};

} // namespace Vn::NameView

#endif
