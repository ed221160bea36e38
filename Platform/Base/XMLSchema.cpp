#include "Platform/Base/XMLSchema.h"

#include <mutex>
#include <new>
#include <string>

#include <libxml/tree.h>
#include <libxml/xmlschemas.h>

#include "Platform/Base/Limits.h"
#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OSFiles.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/XMLErrorInternal.h"

namespace Vn {

namespace {

constexpr char c_read[] = "read the schema";
constexpr char c_validate[] = "validate the document";

// The library makes its tables of types at the first use, without a lock of its own.
constinit Shared<std::mutex> s_reading;

template <class T, void (*c_free)(T *)>
struct Free {
    void operator()(T * object) const { c_free(object); }
};
using SchemaReader =
    std::unique_ptr<xmlSchemaParserCtxt, Free<xmlSchemaParserCtxt, xmlSchemaFreeParserCtxt>>;
using Validator =
    std::unique_ptr<xmlSchemaValidCtxt, Free<xmlSchemaValidCtxt, xmlSchemaFreeValidCtxt>>;

// The first error that the library tells.
struct Notes {
    std::string error;
    bool isOutOfMemory = false;
};

void noteError(void * data, Detail::XmlError error) {
    Notes & notes = *static_cast<Notes *>(data);
    if (error->code == XML_ERR_NO_MEMORY) notes.isOutOfMemory = true;
    if (error->level < XML_ERR_ERROR || !notes.error.empty()) return;
    try {
        notes.error = Detail::messageOf(*error);
    } catch (std::bad_alloc const &) {
        notes.isOutOfMemory = true; // no exception passes the library
    }
}

std::string textOf(std::filesystem::path const & file) {
    return Text::toUtf8(PathInfo::toText(file));
}

// Whether an element asks for another file.
bool asksForFile(XMLNode const & element) {
    std::string const name = element.name();
    return name == "include" || name == "import" || name == "redefine";
}

// A schema with the document that it was made from, which it goes on using.
struct SchemaOfDocument {
    XMLNode root;
    xmlSchemaPtr schema = nullptr;

    ~SchemaOfDocument() {
        if (schema) xmlSchemaFree(schema);
    }
};

} // namespace

Status XMLSchema::readDocument(std::filesystem::path const & file, XMLNode & root,
                               std::string_view operation) {
    std::string bytes;
    if (Status status = OS::readSmallFile(file, Limits::c_validatedFile, bytes); !status)
        return status;
    return XMLNode::parse(bytes, textOf(file), root, operation);
}

Status XMLSchema::read(std::filesystem::path const & file, XMLSchema & schema) {
    std::string const subject = textOf(file);
    auto const made = std::make_shared<SchemaOfDocument>();
    if (Status status = readDocument(file, made->root, c_read); !status) return status;
    // These elements stand directly in the root.
    for (XMLNode i = made->root.firstChild(); i; i = i.nextSibling())
        if (asksForFile(i))
            return Status(StatusUnsupported, c_read, subject,
                          localized("it asks for another file"));
    std::lock_guard const guard(s_reading.get([] { return new std::mutex; }));
    SchemaReader const reader(
        xmlSchemaNewDocParserCtxt(static_cast<xmlDocPtr>(made->root.m_pDocument.get())));
    if (!reader) return Status::outOfMemory(c_read, subject);
    Notes notes;
    xmlSchemaSetParserStructuredErrors(reader.get(), &noteError, &notes);
    made->schema = xmlSchemaParse(reader.get());
    if (notes.isOutOfMemory) return Status::outOfMemory(c_read, subject);
    if (!made->schema)
        return Status::corrupt(c_read, subject,
                               notes.error.empty() ? localized("it isn't a schema") : notes.error);
    schema.m_pSchema = made;
    return Status::success();
}

Status XMLSchema::validate(XMLNode const & root, std::string_view subject) const {
    if (!root)
        return Status::invalidArgument(c_validate, subject, localized("there is no document"));
    if (!m_pSchema)
        return Status::invalidArgument(c_validate, subject, localized("there is no schema"));
    Validator const validator(
        xmlSchemaNewValidCtxt(static_cast<SchemaOfDocument *>(m_pSchema.get())->schema));
    if (!validator) return Status::outOfMemory(c_validate, subject);
    Notes notes;
    xmlSchemaSetValidStructuredErrors(validator.get(), &noteError, &notes);
    int const result =
        xmlSchemaValidateDoc(validator.get(), static_cast<xmlDocPtr>(root.m_pDocument.get()));
    if (notes.isOutOfMemory) return Status::outOfMemory(c_validate, subject);
    if (result == 0) return Status::success();
    return Status::corrupt(c_validate, subject,
                           notes.error.empty() ? localized("it isn't valid") : notes.error);
}

} // namespace Vn
