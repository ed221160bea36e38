// The add-in as the application sees it.

#include <filesystem>
#include <string>

#include "Platform/AddInMgr/AddIn.h"
#include "Platform/AddInMgr/AddInMgr.h"
#include "Platform/AddInMgr/Export.h"
#include "Platform/AddInMgr/IAddInInitializeAsset.h"
#include "Platform/AddInMgr/IApplicationServerAddIn.h"
#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/UnitTest.h"
#include "Platform/Base/XMLUtility.h"
#include "Platform/DataModel/Asset.h"
#include "Server/CommonData/AddIn/CommonDataAssetAdapter.h"
#include "Server/CommonData/AddIn/LoadOrder.h"

namespace Vn {

namespace {

// The file name of this module on any platform.
std::wstring moduleName() {
    std::filesystem::path name;
    name /= std::filesystem::path(L"VnCommonData10.dll").generic_wstring();
    name.replace_extension(OS::platformModuleExtension());
    return name.wstring();
}

// Documents of other types, and those without one, are none of this add-in's.
bool isServed(Asset const & asset) {
    AssetType const * const type = asset.assetType();
    return type && AddIn::defaultCommonDataServerAddIn()->assetTypeId() == type->identifier();
}

class CommonDataAddIn final : public IApplicationServerAddIn, public IAddInInitializeAsset {
public:
    CommonDataAddIn() { AddInMgr::get()->defaultCommonDataServerAddInName(moduleName()); }

    UniqueString const * getInterfaceId() const override {
        static constinit InterfaceId s_id("CommonDataAddIn");
        return s_id.get();
    }
    void * queryInterface(UniqueString const * id) const override {
        if (id == getInterfaceId()) return const_cast<CommonDataAddIn *>(this);
        void * const found = IApplicationServerAddIn::queryInterface(id);
        return found ? found : IAddInInitializeAsset::queryInterface(id);
    }

private:
    void onInitializeLoadedAsset(Asset * asset, AddIn const *) override {
        if (isServed(*asset)) CommonDataAssetAdapter::defaultInitializeLoadedAsset(asset);
    }
    void onFullyInitializeLoadedAsset(Asset * asset, AddIn const *) override {
        if (isServed(*asset)) CommonDataAssetAdapter::defaultFullyInitializeLoadedAsset(asset);
    }
};

CommonDataAddIn s_addIn VN_LOAD_ADD_IN;

void configureUnitTests(UnitTest & test) {
    std::wstring const root = PathInfo::rootDirectory(true);
    test.Assert(
        XMLUtility::schemaValidator(root + L"Server/CommonData/Configuration/VnCommonData10.xml",
                                    root + L"Server/AddInMgr/Configuration/Schema/AddinSchema.xsd"),
        L"XMLUtility::schemaValidator(addInConfigure, addInSchema)");
}

UnitTest s_configureUnitTests VN_LOAD_ADD_IN_SELF_CHECK("VantorCore",
                                                        "vnCommonDataAddInConfigureUnitTests",
                                                        &configureUnitTests);

} // namespace

} // namespace Vn

// How the add-in manager comes by the add-in.
extern "C" VN_ADDIN_EXPORT Vn::IAddIn * _GetIAddIn() { return &Vn::s_addIn; }
