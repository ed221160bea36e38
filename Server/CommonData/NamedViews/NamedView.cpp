#include "Server/CommonData/NamedViews/NamedView.h"

#include <utility>

#include "Platform/Base/LocalizedText.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/Scene/Camera.h"
#include "Server/CommonData/NamedViews/CopyCameraInternal.h"
#include "Server/CommonData/NamedViews/NamedViewRequests.h"
#include "Server/CommonData/NamedViews/NamedViewSelections.h"
#include "Server/CommonData/NamedViews/NamedViews.h"

namespace Vn::NameView {

using Scene::Camera;

namespace {

StrongRef<Camera> const c_noCamera;

// Whether an entity may own a camera: one of its own document, or none.
bool canOwn(Entity const & entity, StrongRef<Camera> const & camera) noexcept {
    return !camera || camera->asset() == entity.asset();
}

} // namespace

NamedView::NamedView(PassiveRef<Entity> const & parent, std::wstring const & name,
                     StrongRef<Camera> const & camera)
    : Persisted(parent), m_name(name) {
    if (canOwn(*this, camera)) m_rCamera = camera;
    initializeMemberSetIfNeeded();
}

NamedView::NamedView(Segment * segment, std::wstring const & name, StrongRef<Camera> const & camera)
    : Persisted(segment), m_name(name) {
    if (canOwn(*this, camera)) m_rCamera = camera;
    initializeMemberSetIfNeeded();
}

NamedView::NamedView(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

NamedView::~NamedView() = default;

StrongRefCreator<NamedView> NamedView::make(StrongRef<NamedViews> const & views,
                                            std::wstring const & name,
                                            StrongRef<Camera> const & camera) {
    return views && !views->find(name) ? makeFree(views, name, camera) : nullptr;
}

StrongRefCreator<NamedView> NamedView::makeFree(StrongRef<NamedViews> const & views,
                                                std::wstring const & name,
                                                StrongRef<Camera> const & camera) {
    return create(PassiveRef<Entity>(views), name, camera);
}

void NamedView::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "m_name", m_name)->setter(&setName);
    Managed::addMember(set, "m_bEnableModify", m_bEnableModify);
    Managed::addMember(set, "m_rCamera", m_rCamera);
}

Status NamedView::setName(NamedView & view, std::wstring const & name) {
    if (view.isFixed())
        return Status::invalidArgument("rename the view", {},
                                       localized("a built-in view keeps its name"));
    view.name(name);
    return Status();
}

void NamedView::enableModify(bool enable) noexcept {
    if (enable == m_bEnableModify) return;
    m_bEnableModify = enable;
    markModified(&m_bEnableModify);
}

void NamedView::name(std::wstring const & name) {
    if (m_bEnableModify) assignName(name);
}

// Takes a copy, since `name` may be that of another view, which an observer of this one may end.
void NamedView::assignName(std::wstring name) {
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_name = std::move(name);
}

StrongRef<Camera> const & NamedView::camera() const noexcept {
    return m_rCamera && m_rCamera->isAlive() ? m_rCamera : c_noCamera;
}

void NamedView::camera(StrongRef<Camera> const & camera) noexcept {
    if (!m_bEnableModify || camera == m_rCamera || !canOwn(*this, camera)) return;
    m_rCamera = camera;
    markModified(&m_rCamera);
}

void NamedView::updateCamera(StrongRef<Camera> const & source) {
    if (m_bEnableModify) copyCamera(source, camera());
}

StrongRef<LogicalSelection> NamedView::onCreateLogicalSelection(ObjectPath const & path) {
    return CommonData::NamedViewSelection::make(path, StrongRef<NamedView>(this));
}

bool NamedView::onProvideNominalHitInfo(StrongRef<LogicalSelection>, TgMatrix3d const & matrix,
                                        TgPoint3d & point, TgMatrix3d & outMatrix) const {
    point = TgPoint3d::kOrigin;
    outMatrix = matrix;
    return true;
}

bool NamedView::onCanRename() const { return m_bEnableModify; }

std::wstring NamedView::onRenameText() { return m_name; }

void NamedView::onRename(std::wstring const & name) {
    StrongRef<Entity> const up = parent();
    auto const * const views = query<NamedViews>(up.get());
    if (views && m_bEnableModify) assignName(views->generateNamedViewName(name));
}

std::unique_ptr<IPasteRequest>
NamedView::onProvidePasteRequest(std::vector<ObjectPath> const & paths, ObjectPath const & target,
                                 bool insertAfter, bool cut, bool reorder) const {
    return std::unique_ptr<IPasteRequest>(
        CommonData::NamedViewPasteRequest::make(asset(), paths, target, insertAfter, cut, reorder));
}

bool NamedView::onCanReorder(std::vector<ObjectPath> const & paths,
                             ObjectPath const & target) const {
    for (ObjectPath const & path : paths) {
        if (path == target) return false;
        StrongRef<Entity> const leaf = path.leaf();
        auto const * const view = query<NamedView>(leaf.get());
        if (view && view->parent() == parent()) return true;
    }
    return false;
}

// Pasting a view moves it, and never makes a second one.
bool NamedView::onCanCut() const { return false; }
bool NamedView::onCanCopy() const { return false; }
bool NamedView::onCanReorder() const { return true; }

} // namespace Vn::NameView
