#include "Platform/Base/LocalizedText.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/Request.h"

namespace Vn {

Status Asset::run(std::unique_ptr<Request> request) {
    if (!request) return Status::invalidArgument("run a request", {}, localized("there is none"));
    Transaction transaction(*this, request->name());
    if (!transaction.isOpen())
        return Status::invalidArgument("run a request", {},
                                       localized("an undo or redo is running"));
    Status status;
    try {
        status = request->execute();
    } catch (...) {
        request->cancel();
        throw;
    }
    if (!status.ok()) {
        request->cancel();
        return status;
    }
    request.reset(); // what only it held goes within the step
    transaction.commit();
    return status;
}

} // namespace Vn
