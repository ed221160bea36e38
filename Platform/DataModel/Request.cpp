#include "Platform/DataModel/Request.h"

#include <utility>

#include "Platform/DataModel/Asset.h"

namespace Vn {

Request::Request(Asset * asset, std::wstring name) : m_name(std::move(name)) { addAsset(asset); }

Request::~Request() = default;

Asset * Request::asset(unsigned index) const {
    return index < m_assets.size() ? m_assets[index].get() : nullptr;
}

void Request::addAsset(Asset * asset) {
    if (asset) m_assets.emplace_back(asset);
}

Status Request::execute() {
    Status status;
    onPreExecute(status);
    if (status.ok()) onExecute(status);
    if (status.ok()) onPostExecute(status);
    return status;
}

void Request::onPreExecute(Status &) {}
void Request::onExecute(Status &) {}
void Request::onPostExecute(Status &) {}
void Request::onCancel() {}

} // namespace Vn
