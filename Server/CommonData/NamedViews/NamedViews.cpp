#include "Server/CommonData/NamedViews/NamedViews.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "Platform/Scene/Camera.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/NamedViews/DocumentSettingsInternal.h"
#include "Server/CommonData/NamedViews/NamedView.h"
#include "Server/CommonData/NamedViews/NamedViewSelections.h"

namespace Vn::NameView {

using CommonData::CommonDataAssetSettings;
using Scene::Camera;

namespace {

// The extents of the cameras of built-in views, in cm.
constexpr double c_extents = 0.4;

StrongRef<NamedView> makeBuiltIn(StrongRef<NamedViews> const & views, std::wstring const & name,
                                 TgPoint3d const & position, TgVector3d const & up) {
    // Before a camera is made, which would be a change.
    if (!views || !views->isAlive() || views->find(name)) return nullptr;
    StrongRef<Camera> const camera = Camera::make(views->segment());
    if (!camera) return nullptr;
    camera->position(position);
    camera->target(TgPoint3d::kOrigin);
    camera->up(up);
    camera->extentsWidth(c_extents);
    camera->extentsHeight(c_extents);
    StrongRef<NamedView> view = NamedView::make(views, name, camera);
    if (view) view->enableModify(false);
    return view;
}

// Where a camera stands and looks.
struct Aim {
    TgPoint3d position;
    TgPoint3d target;
    TgVector3d up;
};

// That of a camera at the origin.
Aim towards(TgVector3d const & direction, TgVector3d const & up) {
    return {TgPoint3d::kOrigin, TgPoint3d::kOrigin + direction, up};
}

void synchronize(StrongRef<NamedView> const & view,
                 StrongRef<CommonDataAssetSettings> const & settings,
                 Aim (*aimOf)(CommonDataAssetSettings const & settings)) {
    if (!view || !settings) return;
    StrongRef<Camera> const camera = view->camera();
    if (!camera) return;
    Aim const aim = aimOf(*settings);
    camera->target(aim.target);
    camera->position(aim.position);
    camera->up(aim.up);
}

// The number with which `name` continues `base`, as generateNamedViewName writes it; 0 if it
// doesn't, or if the number is above `highest`.
std::size_t suffix(std::wstring_view name, std::wstring_view base, std::size_t highest) {
    if (name.size() < base.size() + 2 || name[base.size()] != L'_' || !name.starts_with(base))
        return 0;
    std::size_t number = 0;
    for (wchar_t const c : name.substr(base.size() + 1)) {
        if (c < L'0' || c > L'9' || (c == L'0' && number == 0)) return 0;
        number = number * 10 + static_cast<std::size_t>(c - L'0');
        if (number > highest) return 0;
    }
    return number;
}

} // namespace

NamedViews::NamedViews(PassiveRef<Entity> const & parent) : Persisted(parent) {
    initializeMemberSetIfNeeded();
}

NamedViews::NamedViews(Segment * segment) : Persisted(segment) { initializeMemberSetIfNeeded(); }

NamedViews::NamedViews(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

NamedViews::~NamedViews() = default;

StrongRefCreator<NamedViews> NamedViews::make(Segment * segment) { return create(segment); }

void NamedViews::initializeMemberSet(unsigned, MemberSet *) {}

StrongRef<NamedView> NamedViews::namedView(unsigned index) const {
    if (index >= children()) return nullptr;
    return StrongRef<NamedView>(query<NamedView>(child(index).get()));
}

StrongRef<NamedView> NamedViews::find(std::wstring const & name) const {
    for (StrongRef<ManagedEntity> const & child : childrenVector()) {
        auto * const view = query<NamedView>(child.get());
        if (view && view->name() == name) return StrongRef<NamedView>(view);
    }
    return nullptr;
}

void NamedViews::makeDefaultNamedViews(StrongRef<NamedViews> const & views) {
    makeTopNamedView(views);
    makeFrontNamedView(views);
    makeRightNamedView(views);
    makeHomeNamedView(views);
}

StrongRef<NamedView> NamedViews::makeTopNamedView(StrongRef<NamedViews> const & views) {
    return makeBuiltIn(views, c_top, {0, 44.36, 0}, {0, 0, -1});
}

StrongRef<NamedView> NamedViews::makeFrontNamedView(StrongRef<NamedViews> const & views) {
    return makeBuiltIn(views, c_front, {0, 0, 44.36}, {0, 1, 0});
}

StrongRef<NamedView> NamedViews::makeRightNamedView(StrongRef<NamedViews> const & views) {
    return makeBuiltIn(views, c_right, {44.36, 0, 0}, {0, 1, 0});
}

StrongRef<NamedView> NamedViews::makeHomeNamedView(StrongRef<NamedViews> const & views) {
    return makeBuiltIn(views, c_home, {25.61, 25.61, 25.61}, {0, 1, 0});
}

void NamedViews::removeNamedView(std::wstring const & name) {
    if (StrongRef<NamedView> const view = find(name)) removeChild(view);
}

void NamedViews::updateNamedViewCamera(std::wstring const & name,
                                       StrongRef<Camera> const & camera) {
    if (StrongRef<NamedView> const view = find(name)) view->updateCamera(camera);
}

void NamedViews::updateNamedViewName(std::wstring const & oldName, std::wstring const & newName) {
    if (StrongRef<NamedView> const view = find(oldName)) view->name(generateNamedViewName(newName));
}

// One walk over the views, however many numbers are taken: with so many children, one of the
// numbers up to one more than that is free.
std::wstring NamedViews::generateNamedViewName(std::wstring const & base) const {
    std::vector<bool> taken(std::size_t{children()} + 2);
    bool isBaseTaken = false;
    for (StrongRef<ManagedEntity> const & child : childrenVector()) {
        auto const * const view = query<NamedView>(child.get());
        if (!view) continue;
        if (view->name() == base) isBaseTaken = true;
        taken[suffix(view->name(), base, taken.size() - 1)] = true;
    }
    if (!isBaseTaken) return base;
    auto const number = std::find(taken.begin() + 1, taken.end(), false) - taken.begin();
    return base + L'_' + std::to_wstring(number);
}

void NamedViews::synchonizeHomeNamedView() {
    synchronize(find(c_home), commonAssetDataSettings(), [](CommonDataAssetSettings const & s) {
        return Aim{s.currentHomePosition(), s.currentHomeTarget(), s.currentHomeUp()};
    });
}

void NamedViews::synchonizeTopNamedView() {
    synchronize(find(c_top), commonAssetDataSettings(), [](CommonDataAssetSettings const & s) {
        return towards((-s.sceneUp()).normal(TgContext::gTol), s.sceneFront());
    });
}

void NamedViews::synchonizeFrontNamedView() {
    synchronize(find(c_front), commonAssetDataSettings(), [](CommonDataAssetSettings const & s) {
        return towards(s.sceneFront(), s.sceneUp());
    });
}

void NamedViews::synchonizeRightNamedView() {
    synchronize(find(c_right), commonAssetDataSettings(), [](CommonDataAssetSettings const & s) {
        return towards(s.sceneUp().crossProduct(s.sceneFront()), s.sceneUp());
    });
}

StrongRef<CommonDataAssetSettings> NamedViews::commonAssetDataSettings() const {
    return settingsOf(asset());
}

StrongRef<LogicalSelection> NamedViews::onCreateLogicalSelection(ObjectPath const & path) {
    return CommonData::NamedViewsSelection::make(path, StrongRef<NamedViews>(this));
}

bool NamedViews::onProvideNominalHitInfo(StrongRef<LogicalSelection>, TgMatrix3d const & matrix,
                                         TgPoint3d & point, TgMatrix3d & outMatrix) const {
    point = TgPoint3d::kOrigin;
    outMatrix = matrix;
    return true;
}

} // namespace Vn::NameView
