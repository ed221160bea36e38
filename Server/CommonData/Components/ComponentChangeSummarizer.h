#ifndef VN_SERVER_COMMONDATA_COMPONENTS_COMPONENTCHANGESUMMARIZER_H
#define VN_SERVER_COMMONDATA_COMPONENTS_COMPONENTCHANGESUMMARIZER_H

#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/EntityChange.h"
#include "Server/CommonData/Export.h"

namespace Vn::CommonData {

class IComponentObject;

// Tells a component of a change of an object below it, once per bracket.  Managed entities make it,
// and their bracket owns it.
class VN_COMMONDATA_API ComponentChangeSummarizer : public EntityChangeSummarizer {
public:
    // `object` isn't owned and must outlive the bracket; null has no component to tell.
    explicit ComponentChangeSummarizer(IComponentObject * object) noexcept : m_pObject(object) {}
    ~ComponentChangeSummarizer() override;

    // The id of the class.
    static UniqueString const * interfaceId();

private:
    void onPreChange(DataChange::EChangeType type) override;
    void onPostChange(DataChange::EChangeType type) override;

public:
    // The id of the object's own class, and the object as the class with an id, or null.
    UniqueString const * getInterfaceId() const override;
    void * queryInterface(UniqueString const * id) const override;

private:
    template <class Tell>
    void tell(DataChange::EChangeType type, Tell && tell);

    IComponentObject * const m_pObject;
};

} // namespace Vn::CommonData

#endif
