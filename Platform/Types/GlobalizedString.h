#ifndef VN_PLATFORM_TYPES_GLOBALIZEDSTRING_H
#define VN_PLATFORM_TYPES_GLOBALIZEDSTRING_H

#include <string>
#include <string_view>

#include "Platform/Base/RefCounted.h"
#include "Platform/Types/Export.h"

namespace Vn {

// A text for the user: either a plain one, or one that the string table translates.
//
// It is a value of one pointer.  The translation is looked up when it is first asked for and kept,
// for all copies alike; after a change of language another is looked up.  Several threads may read
// the same object.
class VN_TYPES_API GlobalizedString {
public:
    // An empty plain text.
    GlobalizedString() noexcept;
    // A text that is the same in every language.
    explicit GlobalizedString(std::wstring_view text);
    // A text of the string table: its module, its key and its English wording.
    GlobalizedString(std::string_view module, std::string_view key, std::wstring_view defaultText);
    GlobalizedString(GlobalizedString const & other) noexcept;
    GlobalizedString(GlobalizedString && other) noexcept;
    GlobalizedString & operator=(GlobalizedString const & other) noexcept;
    GlobalizedString & operator=(GlobalizedString && other) noexcept;
    ~GlobalizedString();

    // The text to show.  The reference stays valid as long as this object or a copy of it does.
    std::wstring const & value() const;

    // Whether the string table is asked.
    bool isGlobalized() const noexcept;
    // Empty for a plain text.
    std::string const & module() const noexcept;
    std::string const & key() const noexcept;
    // The English wording, or the plain text itself.
    std::wstring const & defaultText() const noexcept;

    // Whether both are plain with the same text, or both of the string table with the same module,
    // key and English wording.  A plain text never equals a translated one, even if they read
    // alike.
    friend VN_TYPES_API bool operator==(GlobalizedString const & a,
                                        GlobalizedString const & b) noexcept;

private:
    class Body;

    StrongRef<Body> m_rBody;
};

} // namespace Vn

#endif
