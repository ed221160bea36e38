#ifndef VN_SERVER_COMMONDATA_COMPONENTS_COMPONENTDATACHANGE_H
#define VN_SERVER_COMMONDATA_COMPONENTS_COMPONENTDATACHANGE_H

#include <string>

#include "Platform/DataModel/DataChange.h"
#include "Server/CommonData/Export.h"

namespace Vn::CommonData {

class IComponentObject;

// What a component is told: which object below it changed first within a bracket, and how.
class VN_COMMONDATA_API ComponentDataChange : public DataChange {
public:
    // `changed` isn't owned and must outlive the record.
    ComponentDataChange(IComponentObject * changed, EChangeType type);
    ComponentDataChange(ComponentDataChange const & other);
    ComponentDataChange & operator=(ComponentDataChange const & other);
    ~ComponentDataChange() override;

    // What the constructor was given.
    IComponentObject * changedComponentObject() const noexcept { return m_pChanged; }
    EChangeType changeType() const noexcept { return m_type; }

private:
    DataChange * onClone() const override;
    std::string onToString() const override;

    IComponentObject * m_pChanged;
    EChangeType m_type;
};

} // namespace Vn::CommonData

#endif
