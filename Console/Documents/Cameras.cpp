#include "Console/Documents/Cameras.h"

#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "Console/Documents/DocumentSettings.h"
#include "Console/Documents/Equipment.h"
#include "Console/Messages.h"
#include "Console/Texts.h"

namespace Vn::Console {

namespace {

std::vector<std::wstring> namesOf(NameView::NamedViews const & views) {
    std::vector<std::wstring> names;
    for (unsigned i = 0; i < views.children(); ++i)
        if (StrongRef<NameView::NamedView> const view = views.namedView(i))
            names.push_back(view->name());
    return names;
}

} // namespace

CameraValues valuesOf(Scene::Camera const & camera) {
    return {camera.position(), camera.target(), camera.up(), camera.extentsWidth(),
            camera.extentsHeight()};
}

CameraValues valuesOf(CommonData::CommonDataAssetSettings const & settings) {
    return {settings.currentHomePosition(), settings.currentHomeTarget(), settings.currentHomeUp(),
            settings.currHomeExtentsWidth(), settings.currHomeExtentsHeight()};
}

CameraValues homeOf(Segment const & design) {
    if (StrongRef<CommonData::CommonDataAssetSettings> const settings = settingsOf(design))
        return valuesOf(*settings);
    CameraValues values;
    for (DocumentSetting const & setting : documentSettings()) {
        std::string_view const name = setting.accessor;
        auto const take = [&](char const * wanted, auto & value) {
            if (name == wanted) value = std::get<std::decay_t<decltype(value)>>(setting.standard);
        };
        take("currentHomePosition", values.position);
        take("currentHomeTarget", values.target);
        take("currentHomeUp", values.up);
        take("currHomeExtentsWidth", values.width);
        take("currHomeExtentsHeight", values.height);
    }
    return values;
}

std::wstring findViews(Segment const & design, StrongRef<NameView::NamedViews> & views) {
    if (std::wstring why = whyNoViews(design); !why.empty()) return why;
    views = viewsOf(design);
    return views ? L""
                 : message(L"the document has no views yet; Views.Restore makes the built-in ones");
}

std::wstring findView(NameView::NamedViews const & views, std::wstring const & name,
                      StrongRef<NameView::NamedView> & view) {
    view = views.find(name);
    return view
               ? L""
               : message(L"there is no view %1%", inQuotes(name)) + orInstead(name, namesOf(views));
}

} // namespace Vn::Console
