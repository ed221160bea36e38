#ifndef VN_PLATFORM_DATAMODEL_FILE_VALUES_H
#define VN_PLATFORM_DATAMODEL_FILE_VALUES_H

#include <string>
#include <string_view>

#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/File/Database.h"
#include "Platform/DataModel/File/Text.h"
#include "Platform/DataModel/MemberKindInternal.h"

namespace Vn::DataModel {

// Reads values of any kind out of a file, and believes none of them.  The rows of the kinds do it,
// with what they share here.
class ValueReader {
public:
    // Reads a value into a field of its kind; null if nobody wants it, and it is only looked at.
    // Of a reference it gives the id instead, 0 for null, and leaves the field as it is.  The
    // answer is what is wrong with the value; null if nothing is.
    char const * column(Statement & row, int place, EMemberKind kind, void * field,
                        unsigned long long & reference);
    // The same for an element of a list.
    char const * element(JsonReader & json, EMemberKind kind, void * field,
                         unsigned long long & reference);

    // A stored text into a field, which may be null; false if it isn't well-formed.  `isText` tells
    // TEXT from a BLOB.
    static bool narrow(std::string_view stored, bool isText, void * field);
    bool wide(std::string_view stored, bool isText, void * field);

    // Where the rows put what they are reading.
    std::string m_bytes;
    std::string m_module;
    std::string m_key;
    std::wstring m_wide;
};

// Writes values of any kind.
class ValueWriter {
public:
    ValueWriter() = default;
    ValueWriter(ValueWriter const &) = delete;
    ValueWriter & operator=(ValueWriter const &) = delete;
    virtual ~ValueWriter() = default;

    // What is written of a reference; 0 for null.
    unsigned long long idOf(StrongRef<Entity> const & reference) const noexcept {
        return onIdOf(reference.get());
    }
    unsigned long long idOf(PassiveRef<Entity> const & reference) const noexcept {
        return onIdOf(reference);
    }

    // Binds a text as TEXT or as a BLOB, the wide one out of `buffer`.
    static void bindNarrow(Statement & row, int place, std::string_view text);
    static void bindWide(Statement & row, int place, std::wstring_view text, std::string & buffer);
    // Appends a text to a list.
    static void appendNarrow(std::string & json, std::string_view text);
    void appendWide(std::string & json, std::wstring_view text);

private:
    virtual unsigned long long onIdOf(Entity const * target) const noexcept = 0;
    virtual unsigned long long onIdOf(PassiveRef<Entity> const & reference) const noexcept = 0;

    std::string m_encoded;
};

} // namespace Vn::DataModel

#endif
