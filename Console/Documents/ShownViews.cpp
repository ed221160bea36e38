#include "Console/Documents/ShownViews.h"

#include "Console/Documents/Equipment.h"
#include "Server/CommonData/NamedViews/NamedViews.h"

namespace Vn::Console {

namespace {

using Settings = StrongRef<CommonData::CommonDataAssetSettings>;

bool isHomeFitted(Segment const & design) {
    Settings const settings = settingsOf(design);
    return !settings || settings->fitHome();
}

} // namespace

Aim shownAim(Segment const & design, NameView::NamedView const & view) {
    bool const isHome = view.name() == NameView::NamedViews::c_home;
    return {valuesOf(*view.camera()), isHome ? isHomeFitted(design) : view.isFixed()};
}

Aim homeAim(Segment const & design) { return {homeOf(design), isHomeFitted(design)}; }

Picture::View shownView(Segment const & design, Aim const & aim) {
    Settings const settings = settingsOf(design);
    CameraValues const & camera = aim.camera;
    Picture::View view;
    view.position = camera.position;
    view.target = camera.target;
    view.up = camera.up;
    // The extents that built-in views are made with tell no angle.
    view.width = aim.isFitted ? 0 : camera.width;
    view.height = aim.isFitted ? 0 : camera.height;
    unsigned const projection =
        settings ? settings->currHomeProjection() : unsigned{Picture::ProjectionPerspective};
    view.perspective = Picture::isPerspective(
        projection, settings && settings->perspWithOrthoFaces(), camera.target - camera.position);
    return view;
}

Status fitIfNeeded(Aim const & aim, std::optional<Vrx::Devices::BoundingBox> const & bounds,
                   double aspect, Picture::View & view) {
    if (!aim.isFitted) return Status::success();
    return fit(view, bounds.value_or(Vrx::Devices::BoundingBox{}), aspect, view);
}

} // namespace Vn::Console
