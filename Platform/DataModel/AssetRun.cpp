#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/Request.h"

namespace Vn {

Status Asset::run(std::unique_ptr<Request> request) {
    if (!request) return Status::invalidArgument("run a request", {}, "there is none");
    Transaction transaction(*this, request->name());
    Status status = request->execute();
    if (status.ok()) {
        request.reset(); // what only it held goes within the step
        transaction.commit();
    }
    return status;
}

} // namespace Vn
