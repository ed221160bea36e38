#ifndef VN_PLATFORM_BASE_XMLSCHEMA_H
#define VN_PLATFORM_BASE_XMLSCHEMA_H

#include <filesystem>
#include <memory>
#include <string_view>

#include "Platform/Base/Export.h"
#include "Platform/Base/Status.h"
#include "Platform/Base/XMLNode.h"

namespace Vn {

// What an XML Schema 1.0 demands of documents.  Copies share it.  It belongs to one thread at a
// time.
class VN_BASE_API XMLSchema {
public:
    // No schema.
    XMLSchema() noexcept = default;

    // Reads a schema.  It stands in one file: one that includes, imports or redefines another is
    // StatusUnsupported.  What isn't a schema is StatusCorrupt, and `schema` stays as it was.
    [[nodiscard]] static Status read(std::filesystem::path const & file, XMLSchema & schema);

    // Reads a document of at most Limits::c_validatedFile bytes, as XMLNode::parse() does.  A
    // longer one is StatusUnsupported.  `operation` names in the status what is being done.
    [[nodiscard]] static Status readDocument(std::filesystem::path const & file, XMLNode & root,
                                             std::string_view operation);

    // Whether a whole document, by its root, is valid: StatusCorrupt with the first reason and its
    // line if it isn't, and StatusInvalidArgument without an element or a schema.  `subject` is
    // named in the status.  Of what the document says of other schemas nothing is looked at.
    [[nodiscard]] Status validate(XMLNode const & root, std::string_view subject) const;

private:
    std::shared_ptr<void> m_pSchema;
};

} // namespace Vn

#endif
