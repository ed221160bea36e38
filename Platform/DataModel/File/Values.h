#ifndef VN_PLATFORM_DATAMODEL_FILE_VALUES_H
#define VN_PLATFORM_DATAMODEL_FILE_VALUES_H

#include <string>

#include "Platform/DataModel/File/Database.h"
#include "Platform/DataModel/File/Text.h"
#include "Platform/DataModel/MemberMetaType.h"

namespace Vn::DataModel {

// Reads values of any kind out of a file, and believes none of them.
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

private:
    bool narrow(std::string_view stored, bool isText, void * field);
    bool wide(std::string_view stored, bool isText, void * field);
    char const * globalizedColumn(Statement & row, int place, void * field);
    bool globalizedElement(JsonReader & json, void * field);

    std::string m_bytes;
    std::string m_module;
    std::string m_key;
    std::wstring m_wide;
};

} // namespace Vn::DataModel

#endif
