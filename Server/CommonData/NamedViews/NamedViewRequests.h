// What a user does with named views, each as one step of the history.
//
// A request acts on the views that the settings of its document name.  One that can't act finishes
// without effect and without a failure, and leaves no step.  `make` gives it to the caller, who
// owns it and hands it to Asset::run.

#ifndef VN_SERVER_COMMONDATA_NAMEDVIEWS_NAMEDVIEWREQUESTS_H
#define VN_SERVER_COMMONDATA_NAMEDVIEWS_NAMEDVIEWREQUESTS_H

#include <string>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/IPasteRequest.h"
#include "Platform/DataModel/ObjectPath.h"
#include "Platform/DataModel/Request.h"
#include "Server/CommonData/Export.h"

namespace Vn::Scene {
class Camera;
}

namespace Vn::CommonData {

// Makes a view "NamedView", "NamedView_1" and so on, with a camera of its own.
class VN_COMMONDATA_API NewNamedViewRequest : public Request {
public:
    // The new camera gets the values that `camera` has when the request is run; without it, or if
    // it is gone by then, no view is made.
    [[nodiscard]] static NewNamedViewRequest * make(Asset * asset,
                                                    StrongRef<Scene::Camera> const & camera);
    ~NewNamedViewRequest() override;

protected:
    void onPreExecute(Status & status) override;
    void onExecute(Status & status) override;
    void onPostExecute(Status & status) override;
    void onCancel() override;

private:
    NewNamedViewRequest(Asset * asset, StrongRef<Scene::Camera> const & camera);

    StrongRef<Scene::Camera> const m_rCamera;
};

// Takes a view out, also a built-in one.
class VN_COMMONDATA_API DeleteNamedViewRequest : public Request {
public:
    // Of the first view of that name.
    [[nodiscard]] static DeleteNamedViewRequest * make(Asset * asset, std::wstring const & name);
    ~DeleteNamedViewRequest() override;

protected:
    void onPreExecute(Status & status) override;
    void onExecute(Status & status) override;
    void onPostExecute(Status & status) override;
    void onCancel() override;

private:
    DeleteNamedViewRequest(Asset * asset, std::wstring const & name);

    std::wstring const m_name;
};

// Renames a view that isn't fixed.
class VN_COMMONDATA_API UpdateNamedViewNameRequest : public Request {
public:
    // The first view of the old name gets the new one, with a number if that is taken.
    [[nodiscard]] static UpdateNamedViewNameRequest *
    make(Asset * asset, std::wstring const & oldName, std::wstring const & newName);
    ~UpdateNamedViewNameRequest() override;

protected:
    void onPreExecute(Status & status) override;
    void onExecute(Status & status) override;
    void onPostExecute(Status & status) override;
    void onCancel() override;

private:
    UpdateNamedViewNameRequest(Asset * asset, std::wstring const & oldName,
                               std::wstring const & newName);

    std::wstring const m_oldName;
    std::wstring const m_newName;
};

// Moves views to a place beside another, the target.  It never copies them.
class VN_COMMONDATA_API NamedViewPasteRequest : public IPasteRequest {
public:
    // `insertAfter` and `cut` as of IPasteRequest; without `reorder` nothing is moved.  Each path
    // in turn is moved right next to the target.  Paths that lead to no view, or into another
    // document, are passed over.
    [[nodiscard]] static NamedViewPasteRequest * make(Asset * asset,
                                                      std::vector<ObjectPath> const & paths,
                                                      ObjectPath const & target, bool insertAfter,
                                                      bool cut, bool reorder);
    ~NamedViewPasteRequest() override;

protected:
    void onPreExecute(Status & status) override;
    void onExecute(Status & status) override;
    void onPostExecute(Status & status) override;
    void onCancel() override;

private:
    NamedViewPasteRequest(Asset * asset, std::vector<ObjectPath> const & paths,
                          ObjectPath const & target, bool insertAfter, bool cut, bool reorder);

    void onPastePath(ObjectPath const & path) override;

    bool const m_bReorder;
};

} // namespace Vn::CommonData

#endif
