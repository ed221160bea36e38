// How texts and lists are written into documents.
//
// A text is stored as TEXT where that is the same in every program: well-formed UTF-8 without
// U+0000.  Any other is stored as a BLOB: a narrow one as its bytes, a wide one in generalized
// UTF-8, the scheme of UTF-8 carried on to surrogates and to values of 32 bits, each wchar_t by
// itself.  (Where wchar_t has 16 bits, a pair of surrogates is one character, as ever.)
//
// The elements of a list stand in JSON texts:
//
//   bool                        true, false
//   whole numbers               the number; unsigned 64-bit ones as the signed one of the same bits
//   float, double               the shortest number that reads back, 1e999 and -1e999 for the
//                               infinities, null for NaN
//   texts                       a string, or {"bytes":"6a00..."} with the bytes of the BLOB
//   GlobalizedString            a text if plain, else ["module","key",default text]
//   references                  the id, or null
//   values                      an object with the members by name, in order

#ifndef VN_PLATFORM_DATAMODEL_FILE_TEXT_H
#define VN_PLATFORM_DATAMODEL_FILE_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace Vn::DataModel {

// Whether bytes are stored as TEXT.
bool isText(std::string_view bytes) noexcept;

// Makes `stored` what a wide text is stored as; the answer is whether that is TEXT.
bool encodeText(std::wstring_view text, std::string & stored);

// Reads it back.  False if it isn't well-formed; `text` is then anything.
bool decodeText(std::string_view stored, std::wstring & text);
bool decodeBytes(std::string_view stored, std::wstring & text);

// Appends to JSON what is stored as TEXT or as a BLOB; numbers; a string of nothing but itself.
void appendJsonText(std::string & json, std::string_view stored, bool isText);
void appendJson(std::string & json, long long value);
void appendJson(std::string & json, double value);
void appendJson(std::string & json, float value);

// Reads what the functions above append, strictly and from left to right.  The caller knows what
// is to come; an operation that finds something else answers false and leaves the reader useless.
class JsonReader {
public:
    explicit JsonReader(std::string_view json) noexcept
        : m_p(json.data()), m_pEnd(json.data() + json.size()) {}

    bool atEnd() const noexcept { return m_p == m_pEnd; }
    // The next character; 0 at the end.
    char peek() const noexcept { return m_p == m_pEnd ? '\0' : *m_p; }
    // Steps over a character or a word if that comes next.
    bool skip(char c) noexcept {
        if (m_p == m_pEnd || *m_p != c) return false;
        ++m_p;
        return true;
    }
    bool skip(std::string_view word) noexcept;

    bool readInteger(long long & value) noexcept;
    bool readReal(double & value) noexcept;
    bool readReal(float & value) noexcept;
    // A string, as UTF-8.
    bool readString(std::string & text);
    // A text of either form.
    bool readText(std::string & stored, bool & isText);

private:
    template <class Real>
    bool readAnyReal(Real & value) noexcept;
    bool readHex(unsigned digits, unsigned & value) noexcept;

    char const * m_p;
    char const * m_pEnd;
};

} // namespace Vn::DataModel

#endif
