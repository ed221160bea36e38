// What a document has beside its content: its settings, its named views, and in a new document a
// unit system.

#ifndef VN_CONSOLE_DOCUMENTS_EQUIPMENT_H
#define VN_CONSOLE_DOCUMENTS_EQUIPMENT_H

#include <string>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Segment.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"
#include "Server/CommonData/NamedViews/NamedViews.h"

namespace Vn::Console {

// The key of the root under which the named views stand.
inline constexpr char c_viewsKey[] = "NamedViews";

// The settings of a document; null if it has none.
StrongRef<CommonData::CommonDataAssetSettings> settingsOf(Segment const & design);
// The views that its settings name; null if there are none.
StrongRef<NameView::NamedViews> viewsOf(Segment const & design);

// Why a document neither has settings nor can get them, or views: something else stands in their
// place.  Empty otherwise.
std::wstring whyNoSettings(Segment const & design);
std::wstring whyNoViews(Segment const & design);

// Gives a document the settings and the views that it lacks, with the built-in ones among the
// views. What stands in their place is left alone, and what could be given without it is.
void equip(Segment & design);

// Makes the root "UnitSystems" with one system, by the length that the user prefers for new
// documents, and has the settings activate it, unless something stands there already.
void makePreferredUnitSystem(Segment & design);

} // namespace Vn::Console

#endif
