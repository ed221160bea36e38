#include "Console/Documents/Hosting.h"

#include <map>
#include <string>
#include <utility>

#include "Console/Messages.h"
#include "Platform/AddInMgr/AddIn.h"
#include "Platform/AddInMgr/AddInMgr.h"
#include "Platform/DataModel/DocumentFile.h"

namespace Vn::Console {

namespace {

// The type of the documents that the server equips.  It outlives all of them.
Status documentType(char const * operation, AssetType const *& type) {
    std::string const & identifier = AddIn::defaultCommonDataServerAddIn()->assetTypeId();
    if (identifier.empty())
        return Status::failed(
            operation, {},
            messageUtf8(L"the configuration of the add-in for common data names no asset type"));
    static std::map<std::string, AssetType> s_types;
    type = &s_types.try_emplace(identifier, identifier).first->second;
    return Status::success();
}

} // namespace

Status makeDocument(StrongRef<Asset> & asset) {
    asset.reset();
    AssetType const * type = nullptr;
    if (Status status = documentType("make a document", type); !status) return status;
    StrongRef<Asset> made = Asset::make(type);
    Status status = AddInMgr::get()->initializeNewAsset(made.get());
    if (status) asset = std::move(made);
    return status;
}

Status loadDocument(std::filesystem::path const & file, StrongRef<Asset> & asset) {
    Status status = readDocument(file, asset);
    return status ? equipDocument(asset) : status;
}

Status readDocument(std::filesystem::path const & file, StrongRef<Asset> & asset) {
    asset.reset();
    AssetType const * type = nullptr;
    if (Status status = documentType("open the document", type); !status) return status;
    return DocumentFile::load(file, type, asset);
}

Status equipDocument(StrongRef<Asset> & asset) {
    Status status = AddInMgr::get()->initializeOpenedAsset(asset.get());
    if (!status) asset.reset();
    return status;
}

} // namespace Vn::Console
