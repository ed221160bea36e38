#ifndef VN_SERVER_COMMONDATA_COMPONENTS_COMPONENTCHANGESUMMARIZER_H
#define VN_SERVER_COMMONDATA_COMPONENTS_COMPONENTCHANGESUMMARIZER_H

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/EntityChange.h"
#include "Server/CommonData/Export.h"

namespace Vn::CommonData {

class IComponentObject;

// Tells a component of a change of an object below it, once per bracket.  Managed entities make it,
// and their bracket owns it.
class VN_COMMONDATA_API ComponentChangeSummarizer
    : public Identified<ComponentChangeSummarizer, EntityChangeSummarizer> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::CommonData::ComponentChangeSummarizer"};

    // `object` isn't owned and must outlive the bracket; null has no component to tell.
    explicit ComponentChangeSummarizer(IComponentObject * object) noexcept : m_pObject(object) {}
    ~ComponentChangeSummarizer() override;

private:
    void onPreChange(DataChange::EChangeType type) override;
    void onPostChange(DataChange::EChangeType type) override;

    template <class Tell>
    void tell(DataChange::EChangeType type, Tell && tell);

    IComponentObject * const m_pObject;
};

} // namespace Vn::CommonData

#endif
