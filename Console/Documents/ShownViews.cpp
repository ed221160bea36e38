#include "Console/Documents/ShownViews.h"

#include "Console/Documents/Equipment.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/NamedViews/NamedViews.h"

namespace Vn::Console {

using CommonData::CommonDataAssetSettings;
using NameView::NamedViews;

Picture::View viewOf(Segment const & design, Scene::Camera const & camera) {
    StrongRef<CommonDataAssetSettings> const settings = settingsOf(design);
    Picture::View view;
    view.position = camera.position();
    view.target = camera.target();
    view.up = camera.up();
    view.width = camera.extentsWidth();
    view.height = camera.extentsHeight();
    view.perspective = Picture::isPerspective(
        settings ? settings->currHomeProjection() : unsigned{Picture::ProjectionPerspective},
        settings && settings->perspWithOrthoFaces(), view.target - view.position);
    return view;
}

bool isFitted(Segment const & design, NameView::NamedView const & view) {
    if (!view.isFixed()) return false;
    std::wstring const & name = view.name();
    if (name != NamedViews::c_home)
        return name == NamedViews::c_top || name == NamedViews::c_front ||
               name == NamedViews::c_right;
    StrongRef<CommonDataAssetSettings> const settings = settingsOf(design);
    return !settings || settings->fitHome();
}

std::optional<Picture::View> shownView(Segment const & design, NameView::NamedView const & view,
                                       std::optional<Vrx::Devices::BoundingBox> const & bounds,
                                       double aspect) {
    if (!view.camera()) return std::nullopt;
    Picture::View shown = viewOf(design, *view.camera());
    Picture::View fitted;
    if (bounds && isFitted(design, view) && Picture::fit(shown, *bounds, aspect, fitted))
        shown = fitted;
    return shown;
}

} // namespace Vn::Console
