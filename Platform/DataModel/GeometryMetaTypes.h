// The kinds of members that are points and vectors.

#ifndef VN_PLATFORM_DATAMODEL_GEOMETRYMETATYPES_H
#define VN_PLATFORM_DATAMODEL_GEOMETRYMETATYPES_H

#include "Platform/DataModel/Export.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/Geometry/Tg.h"

namespace Vn {

// The kind of members TgPoint3d, or TgVector3d.  A value has the members "x", "y" and "z".
template <class T>
class VN_DATAMODEL_API GeometryMetaType : public ValueMetaType {
public:
    // The one instance.
    static GeometryMetaType * get();

private:
    GeometryMetaType();

    std::size_t doSizeInBytes(VisitorContext const & context) const override;
    void * doConstruct(void * memory, VisitorContext const & context) const override;
    void * doConstruct() const override;
    void doDestruct(void * value) const override;
    std::wstring doToString(void * value, VisitorContext const & context) const override;
    void * doQueryMTInterface(void * value) const override;
    void onMigratingMemberSet(void * value, unsigned version, MemberSet * set,
                              VisitorContext const & context) const override;
};

// The two that there are.
using TgPoint3dMetaType = GeometryMetaType<TgPoint3d>;
using TgVector3dMetaType = GeometryMetaType<TgVector3d>;

} // namespace Vn

#endif
