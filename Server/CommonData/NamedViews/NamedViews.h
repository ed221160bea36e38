#ifndef VN_SERVER_COMMONDATA_NAMEDVIEWS_NAMEDVIEWS_H
#define VN_SERVER_COMMONDATA_NAMEDVIEWS_NAMEDVIEWS_H

#include <string>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/ILogicalSelectionSource.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"

namespace Vn::CommonData {
class CommonDataAssetSettings;
}
namespace Vn::Scene {
class Camera;
}

namespace Vn::NameView {

class NamedView;

// The named views of a document, in the order in which they are shown.
//
// Four of them are built in: HOME, TOP, FRONT and RIGHT.  They are fixed, and follow the axes and
// the home camera of the document's settings, each when it is synchronized.  An operation that is
// given a name takes the first view of that name.
class VN_COMMONDATA_API NamedViews
    : public Managed::Persisted<NamedViews, Managed::ManagedGroupEntity, ILogicalSelectionSource> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr Managed::PersistedClass c_class{"Vn::NameView::NamedViews",
                                                     "88A5C187-5E68-4318-8A33-3AAA72F9DDB1", 0};
    static EntityMetaType * s_metaType();

    // The names of the built-in views: "HOME", "TOP", "FRONT", "RIGHT".
    static std::wstring const c_home;
    static std::wstring const c_top;
    static std::wstring const c_front;
    static std::wstring const c_right;

    // A new group without views, which is no root.  Null without a segment.
    static StrongRefCreator<NamedViews> make(Segment * segment);
    ~NamedViews() override;

    // The child at a place; null if there is none or if it isn't a view.
    StrongRef<NamedView> namedView(unsigned index) const;
    // The view of a name, in which capitals count; null if there is none.
    StrongRef<NamedView> find(std::wstring const & name) const;

    // Makes the built-in views in the order TOP, FRONT, RIGHT, HOME, each unless its name is taken.
    // Their cameras are those of a document with Y up, until they are synchronized.
    static void makeDefaultNamedViews(StrongRef<NamedViews> const & views);
    // Makes one of them.  Null, with nothing made, if its name is taken, and if `views` is null or
    // gone.
    static StrongRef<NamedView> makeTopNamedView(StrongRef<NamedViews> const & views);
    static StrongRef<NamedView> makeFrontNamedView(StrongRef<NamedViews> const & views);
    static StrongRef<NamedView> makeRightNamedView(StrongRef<NamedViews> const & views);
    static StrongRef<NamedView> makeHomeNamedView(StrongRef<NamedViews> const & views);

    // Takes a view out, also a built-in one.
    void removeNamedView(std::wstring const & name);
    // As NamedView::updateCamera on the view of that name.
    void updateNamedViewCamera(std::wstring const & name, StrongRef<Scene::Camera> const & camera);
    // Gives a view that isn't fixed the name that generateNamedViewName makes of `newName`.
    void updateNamedViewName(std::wstring const & oldName, std::wstring const & newName);

    // The first of `base`, `base`_1, `base`_2 and so on that no view has.  A view that is to be
    // renamed counts too.
    std::wstring generateNamedViewName(std::wstring const & base) const;

    // Sets the camera of a built-in view from the document's settings: HOME's to the current home
    // camera, the others' to the origin, with the scene's axes as the target and up vector.  The
    // extents stay as they are.  Nothing happens without the view, its camera or the settings.
    void synchonizeHomeNamedView();
    void synchonizeTopNamedView();
    void synchonizeFrontNamedView();
    void synchonizeRightNamedView();

protected:
    // As of ManagedGroupEntity.
    explicit NamedViews(PassiveRef<Entity> const & parent);
    explicit NamedViews(Segment * segment);
    NamedViews(Segment * segment, unsigned long long id);

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
    StrongRef<CommonData::CommonDataAssetSettings> commonAssetDataSettings() const;

    StrongRef<LogicalSelection> onCreateLogicalSelection(ObjectPath const & path) override;
    bool onProvideNominalHitInfo(StrongRef<LogicalSelection> selection, TgMatrix3d const & matrix,
                                 TgPoint3d & point, TgMatrix3d & outMatrix) const override;
};

} // namespace Vn::NameView

#endif
