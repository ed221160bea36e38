#ifndef VN_SERVER_COMMONDATA_MANAGED_CUSTOMGROUPDELETEREQUEST_H
#define VN_SERVER_COMMONDATA_MANAGED_CUSTOMGROUPDELETEREQUEST_H

#include <memory>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Request.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/CustomGroup.h"

namespace Vn::Managed {

// Deletes a custom group.  Its members stay where the tree has them, and merely lose the group.
class VN_COMMONDATA_API CustomGroupDeleteRequest : public Request {
public:
    // A request for a document.  A group that is null, or that no other holds as its member, isn't
    // deleted, without a failure.
    static std::unique_ptr<CustomGroupDeleteRequest> make(Asset * asset,
                                                          StrongRef<CustomGroup> group);
    ~CustomGroupDeleteRequest() override;

protected:
    // As of `make`.
    CustomGroupDeleteRequest(Asset * asset, StrongRef<CustomGroup> group);

    void onPreExecute(Status & status) override;
    void onExecute(Status & status) override;
    void onPostExecute(Status & status) override;
    void onCancel() override;

private:
    StrongRef<CustomGroup> m_rGroup;
};

} // namespace Vn::Managed

#endif
