// Undoable commands.

#ifndef VN_PLATFORM_DATAMODEL_REQUEST_H
#define VN_PLATFORM_DATAMODEL_REQUEST_H

#include <string>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

class Asset;

// A command that a document runs as one step of its history; see Asset::run.
class VN_DATAMODEL_API Request {
public:
    // `asset` is the document that the request is about, which isn't kept alive, and `name` is what
    // the user sees of the step.
    explicit Request(Asset * asset, std::wstring name = {});
    virtual ~Request();
    Request(Request const &) = delete;
    Request & operator=(Request const &) = delete;

    // The documents that the request is about, the first at 0; null for a bad index and for a
    // document that is gone.
    unsigned assets() const noexcept { return static_cast<unsigned>(m_assets.size()); }
    Asset * asset(unsigned index) const;
    // A further document, which isn't kept alive; null is ignored.
    void addAsset(Asset * asset);

    // The name of the step.
    std::wstring const & name() const noexcept { return m_name; }

    // Runs the three stages below, each as long as the status is ok after the one before.
    Status execute();
    // Tells the request that what it did is being taken back.
    void cancel() { onCancel(); }

protected:
    // The stages, and what follows if one fails or throws.  An override calls that of its base
    // first, and sets the status to say that the request failed.  Nothing by default.
    virtual void onPreExecute(Status & status);
    virtual void onExecute(Status & status);
    virtual void onPostExecute(Status & status);
    virtual void onCancel();

private:
    std::vector<PassiveRef<Asset>> m_assets;
    std::wstring const m_name;
};

} // namespace Vn

#endif
