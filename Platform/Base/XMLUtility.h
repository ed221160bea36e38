// Whether files say what they should.

#ifndef VN_PLATFORM_BASE_XMLUTILITY_H
#define VN_PLATFORM_BASE_XMLUTILITY_H

#include <string>

#include "Platform/Base/Export.h"
#include "Platform/Base/Status.h"

namespace Vn::XMLUtility {

// Whether the document in one file is valid by the XML Schema in another; false too if one of them
// is missing, can't be read, or is too large for XMLSchema.  Only these two files are looked at.
VN_BASE_API bool schemaValidator(std::wstring const & document, std::wstring const & schema);

// The same, with the reason: the file, the line and what is wrong there.
[[nodiscard]] VN_BASE_API Status validateBySchema(std::wstring const & document,
                                                  std::wstring const & schema);

} // namespace Vn::XMLUtility

#endif
