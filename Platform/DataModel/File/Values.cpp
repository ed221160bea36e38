#include "Platform/DataModel/File/Values.h"

namespace Vn::DataModel {

namespace {

constexpr char c_noKind[] = "it has no kind";

} // namespace

char const * ValueReader::column(Statement & row, int place, EMemberKind kind, void * field,
                                 unsigned long long & reference) {
    reference = 0;
    auto const read = memberKind(kind).readColumn;
    return read ? read(*this, row, place, field, reference) : c_noKind;
}

char const * ValueReader::element(JsonReader & json, EMemberKind kind, void * field,
                                  unsigned long long & reference) {
    reference = 0;
    auto const read = memberKind(kind).readElement;
    return read ? read(*this, json, field, reference) : c_noKind;
}

bool ValueReader::narrow(std::string_view stored, bool isText, void * field) {
    if (isText && !DataModel::isText(stored)) return false;
    if (field) static_cast<std::string *>(field)->assign(stored);
    return true;
}

bool ValueReader::wide(std::string_view stored, bool isText, void * field) {
    std::wstring & text = field ? *static_cast<std::wstring *>(field) : m_wide;
    return isText ? decodeText(stored, text) : decodeBytes(stored, text);
}

void ValueWriter::bindNarrow(Statement & row, int place, std::string_view text) {
    if (isText(text))
        row.bindText(place, text);
    else
        row.bindBytes(place, text);
}

void ValueWriter::bindWide(Statement & row, int place, std::wstring_view text,
                           std::string & buffer) {
    if (encodeText(text, buffer))
        row.bindText(place, buffer);
    else
        row.bindBytes(place, buffer);
}

void ValueWriter::appendNarrow(std::string & json, std::string_view text) {
    appendJsonText(json, text, isText(text));
}

void ValueWriter::appendWide(std::string & json, std::wstring_view text) {
    bool const isText = encodeText(text, m_encoded);
    appendJsonText(json, m_encoded, isText);
}

} // namespace Vn::DataModel
