// How a host makes and opens documents: of the type that the server of common data is configured
// for, and handed on to the add-ins, which equip them.

#ifndef VN_CONSOLE_DOCUMENTS_HOSTING_H
#define VN_CONSOLE_DOCUMENTS_HOSTING_H

#include <filesystem>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/Asset.h"

namespace Vn::Console {

// An empty document without a file.  After a failure, such as that of an add-in, `asset` is null
// and nothing is left of the document.
[[nodiscard]] Status makeDocument(StrongRef<Asset> & asset);

// The document in a file.  As above, and as of DocumentFile::load; the file isn't changed.
[[nodiscard]] Status loadDocument(std::filesystem::path const & file, StrongRef<Asset> & asset);

// The two halves of loadDocument, for those who tell a file that can't be read from an add-in that
// fails.
[[nodiscard]] Status readDocument(std::filesystem::path const & file, StrongRef<Asset> & asset);
[[nodiscard]] Status equipDocument(StrongRef<Asset> & asset);

} // namespace Vn::Console

#endif
