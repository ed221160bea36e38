#include "Platform/Base/XMLUtility.h"

#include "Platform/Base/PathInfo.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/XMLSchema.h"

namespace Vn::XMLUtility {

bool schemaValidator(std::wstring const & document, std::wstring const & schema) {
    return validateBySchema(document, schema).ok();
}

Status validateBySchema(std::wstring const & document, std::wstring const & schema) {
    XMLSchema read;
    if (Status status = XMLSchema::read(PathInfo::fromText(schema), read); !status) return status;
    XMLNode root;
    Status status =
        XMLSchema::readDocument(PathInfo::fromText(document), root, "validate the document");
    return status ? read.validate(root, Text::toUtf8(document)) : status;
}

} // namespace Vn::XMLUtility
