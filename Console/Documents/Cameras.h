// Cameras of a document, as values and by their names.

#ifndef VN_CONSOLE_DOCUMENTS_CAMERAS_H
#define VN_CONSOLE_DOCUMENTS_CAMERAS_H

#include <string>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Geometry/Tg.h"
#include "Platform/Scene/Camera.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/NamedViews/NamedView.h"
#include "Server/CommonData/NamedViews/NamedViews.h"

namespace Vn::Console {

// What a view keeps of a camera; lengths in cm.
struct CameraValues {
    TgPoint3d position;
    TgPoint3d target;
    TgVector3d up;
    double width = 0;
    double height = 0;

    bool operator==(CameraValues const &) const = default;
};

CameraValues valuesOf(Scene::Camera const & camera);
// Those of the present home camera.
CameraValues valuesOf(CommonData::CommonDataAssetSettings const & settings);
// The present home camera of a document; that of new documents if it has no settings.
CameraValues homeOf(Segment const & design);

// Finds the views of a document; and one of them by its name, the first of several.  The answer is
// empty, or says why there are none.
std::wstring findViews(Segment const & design, StrongRef<NameView::NamedViews> & views);
std::wstring findView(NameView::NamedViews const & views, std::wstring const & name,
                      StrongRef<NameView::NamedView> & view);

} // namespace Vn::Console

#endif
