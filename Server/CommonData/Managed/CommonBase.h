#ifndef VN_SERVER_COMMONDATA_MANAGED_COMMONBASE_H
#define VN_SERVER_COMMONDATA_MANAGED_COMMONBASE_H

#include "Platform/DataModel/DataChange.h"
#include "Server/CommonData/Managed/ICommonData.h"
#include "Server/CommonData/Managed/PersistedEntity.h"

namespace Vn::CommonData {

// What the persisted classes of common data share: X is derived from a managed base and from
// ICommonDataHelper.  Whatever undo and redo make of the object and of its client, it observes the
// client that it has, and none once it is gone.
template <class X, class Base>
class CommonBase : public Managed::Persisted<X, Base, ICommonDataHelper> {
    using Pattern = Managed::Persisted<X, Base, ICommonDataHelper>;

protected:
    using Pattern::Pattern;

    // A replay may change the client: the one so far isn't observed any more.
    void onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                     DataChange * details) override {
        if (DataChange::test(transact, DataChange::TransactReplay)) this->ignoreClient();
        Base::onPreChange(transact, type, details);
    }
    // The one that the replay restored is.
    void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                      DataChange * details) override {
        if (DataChange::test(transact, DataChange::TransactReplay)) this->observeClient();
        Base::onPostChange(transact, type, details);
    }
    // The client outlives the object, and mustn't tell it of anything.
    void onPreDeletion(DataChange::ETransact transact) override {
        Base::onPreDeletion(transact);
        this->ignoreClient();
    }
    // An object that comes back observes its client again.
    void onPostCreation(DataChange::ETransact transact) override {
        Base::onPostCreation(transact);
        if (DataChange::test(transact, DataChange::TransactReplay)) this->observeClient();
    }
};

} // namespace Vn::CommonData

#endif
