// Documents on disk.  The schema is told in Docs/document-format.md.

#ifndef VN_PLATFORM_DATAMODEL_DOCUMENTFILE_H
#define VN_PLATFORM_DATAMODEL_DOCUMENTFILE_H

#include <filesystem>
#include <string>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

// Saves and loads documents.  Every failure is a Status with the operation, the file and the cause.
class VN_DATAMODEL_API DocumentFile {
public:
    // The version of the schema that is written.  Older ones are read, newer ones refused.
    static constexpr int c_schemaVersion = 1;

    // Writes the document to the file that it was last loaded from or saved to; only what changed since.
    // After a crash or a failure at any moment the file holds the document as it was before or after the
    // save.  Refused if somebody else changed the file meanwhile, within a transaction, and for a
    // document without a file.
    static Status save(Asset & asset);
    // Writes the whole document to a file, in place of one that is there, and makes that the document's
    // file.  After a failure the document has the file that it had.
    static Status saveAs(Asset & asset, std::filesystem::path const & file);
    // Opens a document.  After a failure `asset` is null.  `type` as in Asset::make.
    static Status load(std::filesystem::path const & file, AssetType const * type,
                       StrongRef<Asset> & asset);

    // What is wrong with a file, in lines for a person; empty if nothing is.  It looks at the database, the
    // schema, and every reference and value.
    static Status check(std::filesystem::path const & file, std::vector<std::string> & findings);

    // Reads and writes through a virtual file system that was registered with the database engine under
    // that name; empty for its own.  For the tests of failing devices.
    static void fileSystem(std::string name);
};

} // namespace Vn

#endif
