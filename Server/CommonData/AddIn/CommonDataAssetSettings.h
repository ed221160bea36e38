#ifndef VN_SERVER_COMMONDATA_ADDIN_COMMONDATAASSETSETTINGS_H
#define VN_SERVER_COMMONDATA_ADDIN_COMMONDATAASSETSETTINGS_H

#include <string>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/Geometry/Tg.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/PersistedEntity.h"

namespace Vn::NameView {
class NamedViews;
}

namespace Vn::Units {
class UnitSystem;
}

namespace Vn::CommonData {

// The settings of a document: the active unit system, the axes and bounds of the scene, the home
// camera as it is by default and at present, flags of the view, and the named views.
//
// They are stored and nothing else: no value follows another, none is normalized or checked, and
// NaN and infinities are kept.  A caller that resets the axes writes them from the defaults.
//
// A setter does nothing if the value is the one that is stored: points and vectors within the
// default tolerance, all others exactly, so that a NaN is always a change.  Otherwise it stores
// within a bracket (ChangeValue), unless it says that it makes no change: then no observer is told
// and there is no step, and the value is saved all the same.  The table of the members, with their
// names in documents and their defaults, is CommonDataAssetSettings.inc.
class VN_COMMONDATA_API CommonDataAssetSettings
    : public Managed::Persisted<CommonDataAssetSettings, AssetSettings> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr Managed::PersistedClass c_class{"Vn::CommonData::CommonDataAssetSettings",
                                                     "23FD63FB-4EBE-4c85-A42B-5D9809AA3499", 1};
    static EntityMetaType * s_metaType();

    // New settings with the defaults, which are the document's unless it has some already.  Null
    // without a segment.
    static StrongRefCreator<CommonDataAssetSettings> make(Segment * segment);

    ~CommonDataAssetSettings() override;

    // The unit system in which the document's values are shown.  Null for none; and null as long as
    // the system isn't alive.
    void activateUnitSystem(StrongRef<Units::UnitSystem> system);
    StrongRef<Units::UnitSystem> activeUnitSystem() const;

    // The views, which the settings own.  The setter makes no change.  Null as long as they aren't
    // alive, since their making was undone.
    void namedViews(StrongRef<NameView::NamedViews> views);
    StrongRef<NameView::NamedViews> namedViews() const;

    // The application's mark that it has filled in the values of the scene.  The setter makes no
    // change.
    void settingsInitialized(bool initialized);
    bool settingsInitialized() const;

    // The directions of the scene's front and of what is up, as they were to begin with and as they
    // are.
    void defaultSceneFront(TgVector3d front);
    TgVector3d defaultSceneFront() const;
    void sceneFront(TgVector3d front);
    TgVector3d sceneFront() const;
    void defaultSceneUp(TgVector3d up);
    TgVector3d defaultSceneUp() const;
    void sceneUp(TgVector3d up);
    TgVector3d sceneUp() const;

    // What the application found the bounds of the scene to be, in cm: the radii of spheres, and
    // the center and the extent of a box.
    void sceneBoundRadius(double radius);
    double sceneBoundRadius() const;
    void globalBoundRadius(double radius);
    double globalBoundRadius() const;
    void sceneBoundBoxCenter(TgPoint3d center);
    TgPoint3d sceneBoundBoxCenter() const;
    void sceneBoundBoxExtent(TgVector3d extent);
    TgVector3d sceneBoundBoxExtent() const;

    // Flags of the view; nothing in this library follows them.
    void locktoSelection(bool lock);
    bool locktoSelection() const;
    void fitHome(bool fit);
    bool fitHome() const;
    void perspWithOrthoFaces(bool perspective);
    bool perspWithOrthoFaces() const;

    // The home camera by default: where it is, what it looks at and how large that is, in cm; what
    // is up; and the number of the projection, which is the scene's.
    void defaultHomePosition(TgPoint3d position);
    TgPoint3d defaultHomePosition() const;
    void defaultHomeTarget(TgPoint3d target);
    TgPoint3d defaultHomeTarget() const;
    void defaultHomeUp(TgVector3d up);
    TgVector3d defaultHomeUp() const;
    void defaultHomeProjection(unsigned int projection);
    unsigned int defaultHomeProjection() const;
    void defaultHomeExtentsWidth(double width);
    double defaultHomeExtentsWidth() const;
    void defaultHomeExtentsHeight(double height);
    double defaultHomeExtentsHeight() const;

    // The same at present.
    void currentHomePosition(TgPoint3d position);
    TgPoint3d currentHomePosition() const;
    void currentHomeTarget(TgPoint3d target);
    TgPoint3d currentHomeTarget() const;
    void currentHomeUp(TgVector3d up);
    TgVector3d currentHomeUp() const;
    void currHomeProjection(unsigned int projection);
    unsigned int currHomeProjection() const;
    void currHomeExtentsWidth(double width);
    double currHomeExtentsWidth() const;
    void currHomeExtentsHeight(double height);
    double currHomeExtentsHeight() const;

    // The grid: a number, which is the application's, and two sizes in cm; 0, 20 and 20 to begin
    // with and after a load.  Observers are told of a change, but it is neither undone nor saved.
    // The getter stores the sizes in its arguments and answers the number.
    void gridSize(int number, double first, double second);
    int gridSize(double & first, double & second) const;

protected:
    // A new object, and one that is being loaded.
    explicit CommonDataAssetSettings(Segment * segment);
    CommonDataAssetSettings(Segment * segment, unsigned long long id);

    std::wstring onToString() const override;

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);

    PassiveRef<Units::UnitSystem> m_activeUnitSystem;
    StrongRef<NameView::NamedViews> m_namedViews;
    TgVector3d m_defaultSceneFront;
    TgVector3d m_sceneFront;
    TgVector3d m_defaultSceneUp;
    TgVector3d m_sceneUp;
    TgPoint3d m_sceneBoundBoxCenter;
    TgVector3d m_sceneBoundBoxExtent;
    TgPoint3d m_defaultHomePosition;
    TgPoint3d m_defaultHomeTarget;
    TgVector3d m_defaultHomeUp;
    TgPoint3d m_currentHomePosition;
    TgPoint3d m_currentHomeTarget;
    TgVector3d m_currentHomeUp;
    double m_sceneBoundRadius = 0;
    double m_globalBoundRadius = 0;
    double m_defaultHomeExtentsWidth = 0;
    double m_defaultHomeExtentsHeight = 0;
    double m_currHomeExtentsWidth = 0;
    double m_currHomeExtentsHeight = 0;
    double m_firstGridSize = 20.0;
    double m_secondGridSize = 20.0;
    int m_gridNumber = 0;
    unsigned int m_defaultHomeProjection = 0;
    unsigned int m_currHomeProjection = 0;
    bool m_settingsInitialized = false;
    bool m_locktoSelection = false;
    bool m_fitHome = false;
    bool m_perspWithOrthoFaces = false;
};

} // namespace Vn::CommonData

#endif
