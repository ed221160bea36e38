#ifndef VN_SERVER_COMMONDATA_NAMEDVIEWS_DOCUMENTSETTINGSINTERNAL_H
#define VN_SERVER_COMMONDATA_NAMEDVIEWS_DOCUMENTSETTINGSINTERNAL_H

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"

namespace Vn::NameView {

// The settings of a document, which may be null; null if it has no adapter or no such settings.
inline StrongRef<CommonData::CommonDataAssetSettings> settingsOf(Asset const * asset) {
    if (!asset || !asset->adapter()) return nullptr;
    StrongRef<AssetSettings> const settings = asset->adapter()->assetSettings();
    return StrongRef<CommonData::CommonDataAssetSettings>(
        query<CommonData::CommonDataAssetSettings>(settings.get()));
}

} // namespace Vn::NameView

#endif
