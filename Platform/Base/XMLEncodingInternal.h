// What an XML document is written in.
//
// The parser isn't left to find out: what it converts, it converts by functions that differ from
// system to system, and it tells of their errors outside of the parse.

#ifndef VN_PLATFORM_BASE_XMLENCODINGINTERNAL_H
#define VN_PLATFORM_BASE_XMLENCODINGINTERNAL_H

#include <string>
#include <string_view>

namespace Vn {

// The document in UTF-8, without a byte order mark, and without another encoding in its
// declaration: `text` is a part of `bytes`, or what `converted` holds then.  Read are UTF-8,
// UTF-16, ISO-8859-1 and ASCII, as the first bytes and the declaration say.  If it can't be read,
// the reason is returned; null for success.
char const * decodeXml(std::string_view bytes, std::string & converted, std::string_view & text);

} // namespace Vn

#endif
