#include "Server/CommonData/NamedViews/NamedViewRequests.h"

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/StringTable.h"
#include "Platform/Scene/Camera.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"
#include "Server/CommonData/NamedViews/CopyCameraInternal.h"
#include "Server/CommonData/NamedViews/DocumentSettingsInternal.h"
#include "Server/CommonData/NamedViews/NamedView.h"
#include "Server/CommonData/NamedViews/NamedViews.h"

namespace Vn::CommonData {

using Managed::ManagedEntity;
using NameView::NamedView;
using NameView::NamedViews;
using Scene::Camera;

namespace {

// The name of a new view, which is the same in all languages since it becomes part of the document.
constexpr wchar_t c_newName[] = L"NamedView";

std::wstring stepName(char const * key, wchar_t const * text) {
    return StringTable::getLocalizedString("VnCommonData", key, text);
}

// The views that a request is about; null if its document has none.
StrongRef<NamedViews> viewsOf(Request const & request) {
    StrongRef<CommonDataAssetSettings> const settings = NameView::settingsOf(request.asset(0));
    return settings ? settings->namedViews() : nullptr;
}

// The entity at the end of a path; null if that leads nowhere or out of the document.
StrongRef<ManagedEntity> leafWithin(Asset const * asset, ObjectPath const & path) {
    StrongRef<Entity> const leaf = path.leaf();
    if (!leaf || leaf->asset() != asset) return nullptr;
    return StrongRef<ManagedEntity>(query<ManagedEntity>(leaf.get()));
}

} // namespace

NewNamedViewRequest::NewNamedViewRequest(Asset * asset, StrongRef<Camera> const & camera)
    : Request(asset, stepName("NewNamedViewRequestId", L"New View")), m_rCamera(camera) {}

NewNamedViewRequest::~NewNamedViewRequest() = default;

NewNamedViewRequest * NewNamedViewRequest::make(Asset * asset, StrongRef<Camera> const & camera) {
    return new NewNamedViewRequest(asset, camera);
}

void NewNamedViewRequest::onPreExecute(Status & status) { Request::onPreExecute(status); }
void NewNamedViewRequest::onPostExecute(Status & status) { Request::onPostExecute(status); }
void NewNamedViewRequest::onCancel() { Request::onCancel(); }

void NewNamedViewRequest::onExecute(Status & status) {
    Request::onExecute(status);
    StrongRef<NamedViews> const views = viewsOf(*this);
    if (!views || !m_rCamera || !m_rCamera->isAlive()) return;
    StrongRef<Camera> const camera = Camera::make(views->segment());
    if (!camera) return;
    NameView::copyCamera(m_rCamera, camera);
    std::wstring const name = views->generateNamedViewName(c_newName);
    static_cast<void>(NamedView::makeFree(views, name, camera));
}

DeleteNamedViewRequest::DeleteNamedViewRequest(Asset * asset, std::wstring const & name)
    : Request(asset, stepName("DeleteNamedViewRequestId", L"Delete View")), m_name(name) {}

DeleteNamedViewRequest::~DeleteNamedViewRequest() = default;

DeleteNamedViewRequest * DeleteNamedViewRequest::make(Asset * asset, std::wstring const & name) {
    return new DeleteNamedViewRequest(asset, name);
}

void DeleteNamedViewRequest::onPreExecute(Status & status) { Request::onPreExecute(status); }
void DeleteNamedViewRequest::onPostExecute(Status & status) { Request::onPostExecute(status); }
void DeleteNamedViewRequest::onCancel() { Request::onCancel(); }

void DeleteNamedViewRequest::onExecute(Status & status) {
    Request::onExecute(status);
    if (StrongRef<NamedViews> const views = viewsOf(*this)) views->removeNamedView(m_name);
}

UpdateNamedViewNameRequest::UpdateNamedViewNameRequest(Asset * asset, std::wstring const & oldName,
                                                       std::wstring const & newName)
    : Request(asset, stepName("UpdateNamedViewNameRequestId", L"Rename View")), m_oldName(oldName),
      m_newName(newName) {}

UpdateNamedViewNameRequest::~UpdateNamedViewNameRequest() = default;

UpdateNamedViewNameRequest * UpdateNamedViewNameRequest::make(Asset * asset,
                                                              std::wstring const & oldName,
                                                              std::wstring const & newName) {
    return new UpdateNamedViewNameRequest(asset, oldName, newName);
}

void UpdateNamedViewNameRequest::onPreExecute(Status & status) { Request::onPreExecute(status); }
void UpdateNamedViewNameRequest::onPostExecute(Status & status) { Request::onPostExecute(status); }
void UpdateNamedViewNameRequest::onCancel() { Request::onCancel(); }

void UpdateNamedViewNameRequest::onExecute(Status & status) {
    Request::onExecute(status);
    if (StrongRef<NamedViews> const views = viewsOf(*this))
        views->updateNamedViewName(m_oldName, m_newName);
}

NamedViewPasteRequest::NamedViewPasteRequest(Asset * asset, std::vector<ObjectPath> const & paths,
                                             ObjectPath const & target, bool insertAfter, bool cut,
                                             bool reorder)
    : IPasteRequest(asset, paths, target, insertAfter, cut,
                    stepName("NamedViewPasteRequestId", L"Move Views")),
      m_bReorder(reorder) {}

NamedViewPasteRequest::~NamedViewPasteRequest() = default;

NamedViewPasteRequest * NamedViewPasteRequest::make(Asset * asset,
                                                    std::vector<ObjectPath> const & paths,
                                                    ObjectPath const & target, bool insertAfter,
                                                    bool cut, bool reorder) {
    return new NamedViewPasteRequest(asset, paths, target, insertAfter, cut, reorder);
}

void NamedViewPasteRequest::onPreExecute(Status & status) { IPasteRequest::onPreExecute(status); }
void NamedViewPasteRequest::onExecute(Status & status) { IPasteRequest::onExecute(status); }
void NamedViewPasteRequest::onPostExecute(Status & status) { IPasteRequest::onPostExecute(status); }
void NamedViewPasteRequest::onCancel() { IPasteRequest::onCancel(); }

void NamedViewPasteRequest::onPastePath(ObjectPath const & path) {
    if (!m_bReorder || !asset(0)) return;
    StrongRef<ManagedEntity> const moved = leafWithin(asset(0), path);
    if (!query<NamedView>(moved.get())) return;
    StrongRef<ManagedEntity> const besides = leafWithin(asset(0), target());
    if (besides) Managed::ManagedEntityUtils::reorderEntity(moved, besides, insertAfter());
}

} // namespace Vn::CommonData
