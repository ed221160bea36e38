#include <cmath>
#include <limits>

#include "Platform/DataModel/File/Schema.h"
#include "Platform/DataModel/File/Values.h"
#include "Platform/Types/GlobalizedString.h"

namespace Vn::DataModel {

namespace {

template <class T>
void put(void * field, T value) {
    if (field) *static_cast<T *>(field) = value;
}

// A whole number of any kind.
bool putInteger(EMemberKind kind, long long value, void * field) {
    switch (kind) {
    case EMemberKind::Int:
        if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max())
            return false;
        put(field, static_cast<int>(value));
        return true;
    case EMemberKind::UnsignedInt:
        if (value < 0 || value > std::numeric_limits<unsigned>::max()) return false;
        put(field, static_cast<unsigned>(value));
        return true;
    case EMemberKind::Int64:
        put(field, value);
        return true;
    default:
        put(field, static_cast<unsigned long long>(value));
        return true;
    }
}

bool isId(long long value) noexcept {
    return value > 0 && static_cast<unsigned long long>(value) < c_idLimit;
}

constexpr char c_notANumber[] = "it isn't a number";
constexpr char c_notWhole[] = "it isn't a whole number of that kind";
constexpr char c_notBool[] = "it is neither true nor false";
constexpr char c_notText[] = "it isn't a well-formed text";
constexpr char c_notReference[] = "it isn't the id of an entity";
constexpr char c_noKind[] = "it has no kind";

} // namespace

bool ValueReader::narrow(std::string_view stored, bool isWellFormed, void * field) {
    if (isWellFormed && !DataModel::isText(stored)) return false;
    if (field) static_cast<std::string *>(field)->assign(stored);
    return true;
}

bool ValueReader::wide(std::string_view stored, bool isWellFormed, void * field) {
    std::wstring & text = field ? *static_cast<std::wstring *>(field) : m_wide;
    return isWellFormed ? decodeText(stored, text) : decodeBytes(stored, text);
}

char const * ValueReader::globalizedColumn(Statement & row, int place, void * field) {
    auto const isTextual = [&](int at) {
        return row.type(at) == SQLITE_TEXT || row.type(at) == SQLITE_BLOB;
    };
    bool const isText = row.type(place) == SQLITE_TEXT;
    if (!isTextual(place) || !wide(row.bytes(place), isText, &m_wide)) return c_notText;
    if (row.type(place + 1) == SQLITE_NULL && row.type(place + 2) == SQLITE_NULL) {
        if (field) *static_cast<GlobalizedString *>(field) = GlobalizedString(m_wide);
        return nullptr;
    }
    for (int const at : {place + 1, place + 2}) {
        bool const isNameText = row.type(at) == SQLITE_TEXT;
        if (!isTextual(at) ||
            !narrow(row.bytes(at), isNameText, at == place + 1 ? &m_module : &m_key))
            return c_notText;
    }
    if (field) *static_cast<GlobalizedString *>(field) = GlobalizedString(m_module, m_key, m_wide);
    return nullptr;
}

bool ValueReader::globalizedElement(JsonReader & json, void * field) {
    bool isText = false;
    bool const isGlobalized = json.skip('[');
    if (isGlobalized) {
        for (std::string * const name : {&m_module, &m_key})
            if (!json.readText(m_bytes, isText) || !narrow(m_bytes, isText, name) ||
                !json.skip(','))
                return false;
    }
    if (!json.readText(m_bytes, isText) || !wide(m_bytes, isText, &m_wide)) return false;
    if (isGlobalized && !json.skip(']')) return false;
    if (field)
        *static_cast<GlobalizedString *>(field) =
            isGlobalized ? GlobalizedString(m_module, m_key, m_wide) : GlobalizedString(m_wide);
    return true;
}

char const * ValueReader::column(Statement & row, int place, EMemberKind kind, void * field,
                                 unsigned long long & reference) {
    int const type = row.type(place);
    reference = 0;
    switch (kind) {
    case EMemberKind::Bool: {
        long long const value = type == SQLITE_INTEGER ? row.integer(place) : -1;
        if (value != 0 && value != 1) return c_notBool;
        put(field, value == 1);
        return nullptr;
    }
    case EMemberKind::Int:
    case EMemberKind::UnsignedInt:
    case EMemberKind::Int64:
    case EMemberKind::UnsignedInt64:
        return type == SQLITE_INTEGER && putInteger(kind, row.integer(place), field) ? nullptr
                                                                                     : c_notWhole;
    case EMemberKind::Float:
    case EMemberKind::Double: {
        // NULL is NaN.  A whole number comes from a writer that wrote 5 and not 5.0.
        if (type != SQLITE_FLOAT && type != SQLITE_INTEGER && type != SQLITE_NULL)
            return c_notANumber;
        double const value =
            type == SQLITE_NULL ? std::numeric_limits<double>::quiet_NaN() : row.real(place);
        if (kind == EMemberKind::Double)
            put(field, value);
        else if (std::isfinite(value) && std::abs(value) > std::numeric_limits<float>::max())
            return "it is beyond the range of a float";
        else
            put(field, static_cast<float>(value));
        return nullptr;
    }
    case EMemberKind::String:
        if (type != SQLITE_TEXT && type != SQLITE_BLOB) return c_notText;
        return narrow(row.bytes(place), type == SQLITE_TEXT, field) ? nullptr : c_notText;
    case EMemberKind::WideString:
        if (type != SQLITE_TEXT && type != SQLITE_BLOB) return c_notText;
        return wide(row.bytes(place), type == SQLITE_TEXT, field) ? nullptr : c_notText;
    case EMemberKind::GlobalizedString:
        return globalizedColumn(row, place, field);
    case EMemberKind::StrongRef:
    case EMemberKind::PassiveRef:
        if (type == SQLITE_NULL) return nullptr;
        if (type != SQLITE_INTEGER || !isId(row.integer(place))) return c_notReference;
        reference = static_cast<unsigned long long>(row.integer(place));
        return nullptr;
    case EMemberKind::Vector:
    case EMemberKind::Value:
        break;
    }
    return c_noKind;
}

char const * ValueReader::element(JsonReader & json, EMemberKind kind, void * field,
                                  unsigned long long & reference) {
    reference = 0;
    long long whole = 0;
    switch (kind) {
    case EMemberKind::Bool:
        if (json.skip("true"))
            put(field, true);
        else if (json.skip("false"))
            put(field, false);
        else
            return c_notBool;
        return nullptr;
    case EMemberKind::Int:
    case EMemberKind::UnsignedInt:
    case EMemberKind::Int64:
    case EMemberKind::UnsignedInt64:
        return json.readInteger(whole) && putInteger(kind, whole, field) ? nullptr : c_notWhole;
    case EMemberKind::Float: {
        float value = 0;
        if (!json.readReal(value)) return c_notANumber;
        put(field, value);
        return nullptr;
    }
    case EMemberKind::Double: {
        double value = 0;
        if (!json.readReal(value)) return c_notANumber;
        put(field, value);
        return nullptr;
    }
    case EMemberKind::String: {
        bool isText = false;
        return json.readText(m_bytes, isText) && narrow(m_bytes, isText, field) ? nullptr
                                                                                : c_notText;
    }
    case EMemberKind::WideString: {
        bool isText = false;
        return json.readText(m_bytes, isText) && wide(m_bytes, isText, field) ? nullptr : c_notText;
    }
    case EMemberKind::GlobalizedString:
        return globalizedElement(json, field) ? nullptr : c_notText;
    case EMemberKind::StrongRef:
    case EMemberKind::PassiveRef:
        if (json.skip("null")) return nullptr;
        if (!json.readInteger(whole) || !isId(whole)) return c_notReference;
        reference = static_cast<unsigned long long>(whole);
        return nullptr;
    case EMemberKind::Vector:
    case EMemberKind::Value:
        break;
    }
    return c_noKind;
}

} // namespace Vn::DataModel
