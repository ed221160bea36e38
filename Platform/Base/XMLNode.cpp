#include "Platform/Base/XMLNode.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/Utility.h"
#include "Platform/Base/XMLEncodingInternal.h"
#include "Platform/Base/XMLErrorInternal.h"

namespace Vn {

namespace {

constexpr char c_write[] = "write the options";

xmlChar const * xml(std::string const & text) {
    return reinterpret_cast<xmlChar const *>(text.c_str());
}

std::string_view view(xmlChar const * text) {
    return text ? std::string_view(reinterpret_cast<char const *>(text)) : std::string_view();
}

xmlNodePtr nodeOf(void * node) { return static_cast<xmlNodePtr>(node); }

struct FreeText {
    void operator()(xmlChar * text) const { xmlFree(text); }
};
using OwnedText = std::unique_ptr<xmlChar, FreeText>;

struct FreeParser {
    void operator()(xmlParserCtxtPtr parser) const { xmlFreeParserCtxt(parser); }
};

// What the callbacks of one parse note.
struct Notes {
    bool hasDoctype = false;
    bool isOutOfMemory = false;
    std::string error; // the first
};

Notes & notesOf(void * parser) {
    return *static_cast<Notes *>(static_cast<xmlParserCtxtPtr>(parser)->_private);
}

// Entities are declared in a DOCTYPE only.  Those in attributes are expanded while the tree is
// made, to any size, so nothing after its beginning is read.
void stopAtDoctype(void * parser, xmlChar const *, xmlChar const *, xmlChar const *) {
    notesOf(parser).hasDoctype = true;
    xmlStopParser(static_cast<xmlParserCtxtPtr>(parser));
}

// Without a handler of the parser's own the error would go to that of the process.
void noteError(void * parser, Detail::XmlError error) {
    Notes & notes = notesOf(parser);
    // A text beyond the parser's limit has the same number.
    if (error->code == XML_ERR_NO_MEMORY &&
        !(error->message && std::strstr(error->message, "huge")))
        notes.isOutOfMemory = true;
    if (error->level < XML_ERR_ERROR || !notes.error.empty()) return;
    try {
        notes.error = Detail::messageOf(*error);
    } catch (std::bad_alloc const &) {
        notes.isOutOfMemory = true; // no exception passes the parser
    }
}

// Whether XML can hold the character.
bool isXmlCharacter(wchar_t character) {
    auto const c = static_cast<char32_t>(character);
    if (c < 0x20) return c == U'\t' || c == U'\n' || c == U'\r';
    return c != 0xFFFE && c != 0xFFFF;
}

bool isBlank(xmlNodePtr node) { return node && xmlIsBlankNode(node) == 1; }

// Appends a line break and the blanks before an element at a depth.
void addIndent(xmlNodePtr parent, std::size_t depth) {
    std::string const text = '\n' + std::string(2 * depth, ' ');
    xmlNodePtr const blanks = xmlNewDocText(parent->doc, xml(text));
    if (!blanks || !xmlAddChild(parent, blanks)) throw std::bad_alloc();
}

// Before the first document: threads that begin with it at once must not meet in the library.
void prepareLibrary() {
    static bool const s_bPrepared = (::xmlInitParser(), true);
    static_cast<void>(s_bPrepared);
}

} // namespace

std::string Detail::messageOf(xmlError const & error) {
    std::wstring const text = Text::fromUtf8(error.message ? error.message : "");
    return localizedIn("libxml2", "line %1%: %2%", error.line,
                       Text::printable(Text::clipped(Text::trimmed(text), 100)));
}

XMLNode::XMLNode(std::shared_ptr<void> document, void * node) noexcept
    : m_pDocument(node ? std::move(document) : nullptr), m_pNode(node) {}

XMLNode::XMLNode(std::string_view name) {
    prepareLibrary();
    xmlDocPtr const document = xmlNewDoc(xml("1.0"));
    if (!document) throw std::bad_alloc();
    m_pDocument =
        std::shared_ptr<void>(document, [](void * d) { xmlFreeDoc(static_cast<xmlDocPtr>(d)); });
    xmlNodePtr const root = xmlNewDocNode(document, nullptr, xml(std::string(name)), nullptr);
    if (!root) throw std::bad_alloc();
    xmlDocSetRootElement(document, root);
    m_pNode = root;
}

Status XMLNode::parse(std::string_view bytes, std::string_view subject, XMLNode & root,
                      std::string_view operation) {
    prepareLibrary();
    std::string converted;
    std::string_view text;
    if (char const * const reason = decodeXml(bytes, converted, text))
        return Status::corrupt(operation, subject, localized(reason));
    std::unique_ptr<xmlParserCtxt, FreeParser> const parser(xmlNewParserCtxt());
    if (!parser) return Status::outOfMemory(operation, subject);
    Notes notes;
    parser->_private = &notes;
    parser->sax->internalSubset = &stopAtDoctype;
    parser->sax->serror = &noteError;
    // No option that loads, expands, includes or guesses, and none that lifts a limit.
    constexpr int c_options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
    std::shared_ptr<void> const document(xmlCtxtReadMemory(parser.get(), text.data(),
                                                           static_cast<int>(text.size()), nullptr,
                                                           nullptr, c_options),
                                         [](void * d) {
                                             if (d) xmlFreeDoc(static_cast<xmlDocPtr>(d));
                                         });
    if (notes.isOutOfMemory) return Status::outOfMemory(operation, subject);
    if (notes.hasDoctype) return Status::corrupt(operation, subject, localized("it has a DOCTYPE"));
    auto * const read = static_cast<xmlDocPtr>(document.get());
    xmlNodePtr const element = read ? xmlDocGetRootElement(read) : nullptr;
    if (!element) {
        xmlError const * const last = xmlCtxtGetLastError(parser.get());
        if (notes.error.empty() && last) notes.error = Detail::messageOf(*last);
        return Status::corrupt(operation, subject,
                               notes.error.empty() ? localized("it has no element") : notes.error);
    }
    root = XMLNode(document, element);
    return Status::success();
}

Status XMLNode::write(std::string & text) const {
    text.clear();
    if (!m_pNode) return Status::success();
    xmlChar * bytes = nullptr;
    int size = 0;
    xmlDocDumpFormatMemoryEnc(static_cast<xmlDocPtr>(m_pDocument.get()), &bytes, &size, "UTF-8", 0);
    OwnedText const owned(bytes);
    if (!bytes || size < 0) return Status::outOfMemory(c_write);
    text.assign(reinterpret_cast<char const *>(bytes), static_cast<std::size_t>(size));
    return Status::success();
}

std::string XMLNode::name() const {
    return m_pNode ? std::string(view(nodeOf(m_pNode)->name)) : std::string();
}

XMLAttributeProxy XMLNode::attribute(std::string_view name) const {
    return XMLAttributeProxy(*this, name);
}

XMLNode XMLNode::firstChild() const {
    if (!m_pNode) return {};
    return XMLNode(m_pDocument, xmlFirstElementChild(nodeOf(m_pNode)));
}

XMLNode XMLNode::nextSibling() const {
    if (!m_pNode) return {};
    return XMLNode(m_pDocument, xmlNextElementSibling(nodeOf(m_pNode)));
}

XMLNode XMLNode::addChild(std::string_view name) const {
    if (!m_pNode) return {};
    xmlNodePtr const parent = nodeOf(m_pNode);
    std::size_t depth = 0;
    for (xmlNodePtr at = parent; at->parent && at->parent->type == XML_ELEMENT_NODE;
         at = at->parent)
        ++depth;
    // The blanks in front of the end of the parent make way.
    if (isBlank(parent->last)) {
        xmlNodePtr const blanks = parent->last;
        xmlUnlinkNode(blanks);
        xmlFreeNode(blanks);
    }
    addIndent(parent, depth + 1);
    xmlNodePtr const child = xmlNewDocNode(parent->doc, nullptr, xml(std::string(name)), nullptr);
    if (!child) throw std::bad_alloc();
    xmlAddChild(parent, child);
    addIndent(parent, depth);
    return XMLNode(m_pDocument, child);
}

bool XMLAttributeProxy::exists() const {
    return m_node && xmlHasNsProp(nodeOf(m_node.m_pNode), xml(m_name), nullptr) != nullptr;
}

std::wstring XMLAttributeProxy::text() const {
    if (!m_node) return {};
    OwnedText const text(xmlGetNoNsProp(nodeOf(m_node.m_pNode), xml(m_name)));
    return Text::fromUtf8(view(text.get()));
}

bool XMLAttributeProxy::text(std::wstring_view text) const {
    if (!m_node || !std::all_of(text.begin(), text.end(), isXmlCharacter)) return false;
    std::string const bytes = Text::toUtf8(text);
    if (!xmlSetNsProp(nodeOf(m_node.m_pNode), nullptr, xml(m_name), xml(bytes)))
        throw std::bad_alloc();
    return true;
}

bool XMLAttributeProxy::read(bool & value) const {
    std::wstring const read = text();
    if (read != L"1" && read != L"0") return false;
    value = read == L"1";
    return true;
}

bool XMLAttributeProxy::read(int & value) const {
    return Utility::wholeNumberLexicalCast(text(), value);
}

bool XMLAttributeProxy::read(double & value) const {
    return Utility::localeTolerantLexicalCast(text(), value);
}

bool XMLAttributeProxy::write(bool value) const { return text(value ? L"1" : L"0"); }
bool XMLAttributeProxy::write(int value) const { return text(std::to_wstring(value)); }
bool XMLAttributeProxy::write(double value) const { return text(Utility::decimalText(value)); }

} // namespace Vn
