#ifndef VN_PLATFORM_BASE_UNIQUESTRING_H
#define VN_PLATFORM_BASE_UNIQUESTRING_H

#include <string>
#include <string_view>

#include "Platform/Base/Export.h"

namespace Vn {

// An identifier that exists once in the process: two identifiers are equal exactly if their
// addresses are.  Once made, it lives to the end of the process.
class VN_BASE_API UniqueString {
public:
    // The identifier with this text, compared byte for byte.  If there is none, it is made when
    // `create` says so, and the answer is null otherwise.  Any thread may call this at any time,
    // also while modules load.
    static UniqueString const * find(std::string_view text, bool create);

    // The text, as long as the process lives.
    std::string const & string() const noexcept { return m_string; }

    UniqueString(UniqueString const &) = delete;
    UniqueString & operator=(UniqueString const &) = delete;

private:
    explicit UniqueString(std::string_view text) : m_string(text) {}

    std::string const m_string;
};

} // namespace Vn

#endif
