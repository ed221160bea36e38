#ifndef VN_PLATFORM_SCENE_CAMERA_H
#define VN_PLATFORM_SCENE_CAMERA_H

#include <cstddef>
#include <string>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/Geometry/Tg.h"
#include "Platform/Scene/Export.h"

namespace Vn {
class EntityMetaType;
class MemberSet;
class MetaType;
class Segment;
} // namespace Vn

namespace Vn::Scene {

// From where, and how, a scene is looked at.  All values are kept as they are given: nothing is
// normalized or made to fit another value, and neither NaN nor infinities are refused.
//
// In documents: the class "Camera" with the id "F0C5C2D4-8F0E-4E5B-9C35-1B0D4A7C6E21", version 0,
// and the members "position", "target", "up", "extentsWidth" and "extentsHeight".
class VN_SCENE_API Camera : public Identified<Camera, Entity> {
public:
    // How others find the class; its meta type, and the id of that.
    static constexpr NamedClass c_class{"Vn::Scene::Camera"};
    static std::string s_metaTypeId();
    static EntityMetaType * s_metaType();

    // A new camera at the origin that looks down the axis of z, with y up and extents of 1.  Null
    // without a segment.
    static StrongRefCreator<Camera> make(Segment * segment);

    // The object as what a meta type describes.
    void * queryMTInterface(MetaType const * type) override;

    // A setter of a value that differs opens a bracket (ChangeValue), and does nothing otherwise.
    // Points and vectors differ beyond the default tolerance; numbers if they aren't equal, so a
    // NaN always does.

    // Where the camera is, and the point that it looks at, in cm.
    TgPoint3d position() const noexcept { return m_position; }
    void position(TgPoint3d const & position);
    TgPoint3d target() const noexcept { return m_target; }
    void target(TgPoint3d const & target);
    // The direction that is up in the picture.
    TgVector3d up() const noexcept { return m_up; }
    void up(TgVector3d const & up);
    // The size of what is seen at the target, in cm.
    double extentsWidth() const noexcept { return m_extentsWidth; }
    void extentsWidth(double width);
    double extentsHeight() const noexcept { return m_extentsHeight; }
    void extentsHeight(double height);

protected:
    // A new one, and one that is being loaded.
    explicit Camera(Segment * segment);
    Camera(Segment * segment, unsigned long long id);

private:
    friend class CameraMetaType;

    EntityMetaType * onMetaType() const override;
    std::wstring onToString() const override;
    void initializeMemberSetIfNeeded();
    void initializeMemberSet(MemberSet * set);

    TgPoint3d m_position;
    TgPoint3d m_target{0, 0, -1};
    TgVector3d m_up{0, 1, 0};
    double m_extentsWidth = 1;
    double m_extentsHeight = 1;
};

} // namespace Vn::Scene

#endif
