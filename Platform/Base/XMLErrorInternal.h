// What the XML library tells of errors.

#ifndef VN_PLATFORM_BASE_XMLERRORINTERNAL_H
#define VN_PLATFORM_BASE_XMLERRORINTERNAL_H

#include <string>

#include <libxml/xmlerror.h>
#include <libxml/xmlversion.h>

namespace Vn::Detail {

// What its handlers are given.
#if LIBXML_VERSION >= 21200
using XmlError = xmlError const *;
#else
using XmlError = xmlError *;
#endif

// The line and the reason, on one line and not long.
std::string messageOf(xmlError const & error);

} // namespace Vn::Detail

#endif
