#ifndef VN_PLATFORM_BASE_XMLNODE_H
#define VN_PLATFORM_BASE_XMLNODE_H

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "Platform/Base/Export.h"
#include "Platform/Base/Status.h"

namespace Vn {

class XMLAttributeProxy;

// An element of an XML document, or none.  It keeps the document, which goes with the last of its
// nodes; copies are the same element.  One document belongs to one thread at a time.
class VN_BASE_API XMLNode {
public:
    // No element.
    XMLNode() noexcept = default;
    // The root of a new document.  `name` is a name of XML in ASCII.
    explicit XMLNode(std::string_view name);

    // Reads a document.  One that isn't well-formed, that has a DOCTYPE or an encoding other than
    // UTF-8, UTF-16, ISO-8859-1 or ASCII, or that goes beyond what the parser takes (elements 256
    // deep, a text of 10 MB) is StatusCorrupt, and `root` stays as it was.  Nothing but `bytes` is
    // looked at, whatever the document asks for.  The status names `subject`, and what is being
    // done by `operation`.
    [[nodiscard]] static Status parse(std::string_view bytes, std::string_view subject,
                                      XMLNode & root,
                                      std::string_view operation = "read the options");
    // The whole document of this node in UTF-8, with what was read and isn't known here: comments,
    // other elements, blanks.  Without an element `text` becomes empty.
    [[nodiscard]] Status write(std::string & text) const;

    // Whether there is an element.
    explicit operator bool() const noexcept { return m_pNode != nullptr; }
    friend bool operator==(XMLNode const & a, XMLNode const & b) noexcept {
        return a.m_pNode == b.m_pNode;
    }

    // The name without a prefix; empty without an element.
    std::string name() const;
    // The attribute with that name and no prefix, which needn't be there.  Without an element there
    // is none, and none can be written.
    XMLAttributeProxy attribute(std::string_view name) const;

    // The first element in this one, and the next one beside it; none if there is none.
    XMLNode firstChild() const;
    XMLNode nextSibling() const;
    // Makes an element after those that this one holds, on a line of its own.  None without an
    // element.
    XMLNode addChild(std::string_view name) const;

private:
    friend class XMLAttributeProxy;
    friend class XMLSchema;

    XMLNode(std::shared_ptr<void> document, void * node) noexcept;

    std::shared_ptr<void> m_pDocument;
    void * m_pNode = nullptr;
};

// An attribute of an element, which may be missing.  It keeps the element.
class VN_BASE_API XMLAttributeProxy {
public:
    // The attribute `name` of an element, as XMLNode::attribute() gives it.
    XMLAttributeProxy(XMLNode node, std::string_view name)
        : m_node(std::move(node)), m_name(name) {}

    // Whether the element has it.
    bool exists() const;
    // Its text; empty if it is missing.
    std::wstring text() const;
    // Gives it a text, and makes it if it is missing.  False without an element, and for a text
    // with a character that XML can't hold.
    bool text(std::wstring_view text) const;

    // Reads its value: a bool is "1" or "0", an int decimal digits, a double as
    // Utility::localeTolerantLexicalCast() reads it.  False, with `value` as it was, if it is
    // missing or its text is anything else.
    bool read(bool & value) const;
    bool read(int & value) const;
    bool read(double & value) const;

    // Writes a value in those forms, a double as Utility::decimalText() gives it.  False without an
    // element.
    bool write(bool value) const;
    bool write(int value) const;
    bool write(double value) const;
    bool write(void const * value) const = delete; // a text would be a bool

private:
    XMLNode m_node;
    std::string m_name;
};

} // namespace Vn

#endif
