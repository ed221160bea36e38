#include "Platform/Base/LocalizedText.h"
#include "Platform/DataModel/MemberKindInternal.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <new>
#include <system_error>
#include <type_traits>

#include "Platform/Base/Text.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/File/Database.h"
#include "Platform/DataModel/File/Text.h"
#include "Platform/DataModel/File/Values.h"
#include "Platform/DataModel/Limits.h"
#include "Platform/Types/GlobalizedString.h"

namespace Vn::DataModel {

namespace {

using Words = std::uint64_t const *;

static_assert(sizeof(GlobalizedString) == sizeof(std::uint64_t));
static_assert(sizeof(PassiveRef<Entity>) == sizeof(std::uint64_t));

constexpr char const * c_notANumber = localizable("it isn't a number");
constexpr char const * c_notWhole = localizable("it isn't a whole number of that kind");
constexpr char const * c_notBool = localizable("it is neither true nor false");
constexpr char const * c_notText = localizable("it isn't a well-formed text");
constexpr char const * c_notReference = localizable("it isn't the id of an entity");
constexpr char const * c_noReference = localizable("it is a reference, which isn't set by a text");
constexpr char const * c_beyondFloat = localizable("it is beyond the range of a float");
constexpr char const * c_beyondDouble = localizable("it is beyond the range of a double");

template <class T>
void put(void * field, T value) {
    if (field) *static_cast<T *>(field) = value;
}

template <class T>
T const & at(void const * field) noexcept {
    return *static_cast<T const *>(field);
}

// ASCII, from which numbers are read; a text with anything else isn't one.
bool narrowAscii(std::wstring_view text, std::string & narrow) {
    narrow.clear();
    for (wchar_t const c : text) {
        if (c <= L' ' || c > L'~') return false;
        narrow.push_back(static_cast<char>(c));
    }
    return true;
}

// --- Numbers -----------------------------------------------------------------------------------

// What all kinds of one word have that own nothing.
struct OneWord {
    static constexpr bool c_ownsWords = false;
    static constexpr int c_columns = 1;
    static std::size_t words(void const *) noexcept { return 1; }
    static void skip(Words & words) noexcept { ++words; }
    static void release(std::uint64_t *& words) noexcept { ++words; }
};

template <class T>
struct Number : OneWord {
    using Type = T;
    static constexpr std::uint8_t c_numberBytes = sizeof(T);
    static void keep(void const * field, Asset const *, WordBuffer & words) {
        words.push(wordOf(sizeof(T), field));
    }
    static bool isKept(void const * field, Words & words) noexcept {
        return wordOf(sizeof(T), field) == *words++;
    }
    static void restore(void * field, Words & words) { setNumber(sizeof(T), field, *words++); }
};

struct Bool : Number<bool> {
    static void bind(ValueWriter &, Statement & row, int place, void const * field, std::string &) {
        row.bind(place, at<bool>(field) ? 1LL : 0LL);
    }
    static void append(ValueWriter &, void const * field, std::string & json) {
        json += at<bool>(field) ? "true" : "false";
    }
    static char const * readColumn(ValueReader &, Statement & row, int place, void * field,
                                   unsigned long long &) {
        long long const value = row.type(place) == SQLITE_INTEGER ? row.integer(place) : -1;
        if (value != 0 && value != 1) return c_notBool;
        put(field, value == 1);
        return nullptr;
    }
    static char const * readElement(ValueReader &, JsonReader & json, void * field,
                                    unsigned long long &) {
        bool const isTrue = json.skip("true");
        if (!isTrue && !json.skip("false")) return c_notBool;
        put(field, isTrue);
        return nullptr;
    }
    static std::wstring print(void const * field) { return at<bool>(field) ? L"true" : L"false"; }
    static char const * parse(std::wstring_view text, bool & value) {
        value = text == L"true";
        return value || text == L"false" ? nullptr : c_notBool;
    }
};

template <class T>
struct Whole : Number<T> {
    // A file has whole numbers of 64 bits with a sign; unsigned ones as those of the same bits.
    static bool narrowed(long long stored, void * field) {
        if constexpr (sizeof(T) < sizeof(stored))
            if (stored < static_cast<long long>(std::numeric_limits<T>::min()) ||
                stored > static_cast<long long>(std::numeric_limits<T>::max()))
                return false;
        put(field, static_cast<T>(stored));
        return true;
    }
    static void bind(ValueWriter &, Statement & row, int place, void const * field, std::string &) {
        row.bind(place, static_cast<long long>(at<T>(field)));
    }
    static void append(ValueWriter &, void const * field, std::string & json) {
        appendJson(json, static_cast<long long>(at<T>(field)));
    }
    static char const * readColumn(ValueReader &, Statement & row, int place, void * field,
                                   unsigned long long &) {
        bool const isWhole = row.type(place) == SQLITE_INTEGER;
        return isWhole && narrowed(row.integer(place), field) ? nullptr : c_notWhole;
    }
    static char const * readElement(ValueReader &, JsonReader & json, void * field,
                                    unsigned long long &) {
        long long value = 0;
        return json.readInteger(value) && narrowed(value, field) ? nullptr : c_notWhole;
    }
    static std::wstring print(void const * field) { return std::to_wstring(at<T>(field)); }
    static char const * parse(std::wstring_view text, T & value) {
        std::string digits;
        if (!narrowAscii(text, digits)) return c_notWhole;
        char const * const end = digits.data() + digits.size();
        auto const [stop, error] = std::from_chars(digits.data(), end, value);
        return error == std::errc() && stop == end ? nullptr : c_notWhole;
    }
};

template <class T>
struct Real : Number<T> {
    // The engine makes NULL of NaN.
    static void bind(ValueWriter &, Statement & row, int place, void const * field, std::string &) {
        row.bind(place, static_cast<double>(at<T>(field)));
    }
    static void append(ValueWriter &, void const * field, std::string & json) {
        appendJson(json, at<T>(field));
    }
    // A whole number comes from a writer that wrote 5 and not 5.0.
    static char const * readColumn(ValueReader &, Statement & row, int place, void * field,
                                   unsigned long long &) {
        int const type = row.type(place);
        if (type != SQLITE_FLOAT && type != SQLITE_INTEGER && type != SQLITE_NULL)
            return c_notANumber;
        double const value =
            type == SQLITE_NULL ? std::numeric_limits<double>::quiet_NaN() : row.real(place);
        if (std::is_same_v<T, float> && std::isfinite(value) &&
            std::abs(value) > static_cast<double>(std::numeric_limits<float>::max()))
            return c_beyondFloat;
        put(field, static_cast<T>(value));
        return nullptr;
    }
    static char const * readElement(ValueReader &, JsonReader & json, void * field,
                                    unsigned long long &) {
        T value = 0;
        if (!json.readReal(value)) return c_notANumber;
        put(field, value);
        return nullptr;
    }
    // The shortest number that reads back; "inf", "-inf" and "nan".
    static std::wstring print(void const * field) {
        char digits[32];
        auto const result = std::to_chars(digits, digits + sizeof(digits), at<T>(field));
        return std::wstring(digits, result.ptr);
    }
    static char const * parse(std::wstring_view text, T & value) {
        std::string digits;
        if (!narrowAscii(text, digits)) return c_notANumber;
        char const * const end = digits.data() + digits.size();
        auto const [stop, error] = std::from_chars(digits.data(), end, value);
        if (stop != end || error == std::errc::invalid_argument) return c_notANumber;
        if (error == std::errc()) return nullptr;
        return std::is_same_v<T, float> ? c_beyondFloat : c_beyondDouble;
    }
};

// --- Texts -------------------------------------------------------------------------------------

template <class T>
struct TextKind {
    using Type = T;
    using Character = typename T::value_type;
    static constexpr std::uint8_t c_numberBytes = 0;
    static constexpr bool c_ownsWords = false;
    static constexpr int c_columns = 1;

    static std::size_t wordsOf(std::size_t characters) noexcept {
        return 1 + (characters * sizeof(Character) + 7) / 8;
    }
    static std::size_t words(void const * field) noexcept { return wordsOf(at<T>(field).size()); }
    static void keep(void const * field, Asset const *, WordBuffer & words) {
        T const & text = at<T>(field);
        std::size_t const count = wordsOf(text.size());
        std::uint64_t * const place = words.append(count);
        place[count - 1] = 0; // the padding, so that equal texts have equal words
        place[0] = text.size();
        std::memcpy(place + 1, text.data(), text.size() * sizeof(Character));
    }
    static bool isKept(void const * field, Words & words) noexcept {
        T const & text = at<T>(field);
        bool const same = text.size() == words[0] &&
                          std::memcmp(text.data(), words + 1, text.size() * sizeof(Character)) == 0;
        skip(words);
        return same;
    }
    static void restore(void * field, Words & words) {
        static_cast<T *>(field)->assign(reinterpret_cast<Character const *>(words + 1),
                                        static_cast<std::size_t>(words[0]));
        skip(words);
    }
    static void skip(Words & words) noexcept { words += wordsOf(words[0]); }
    static void release(std::uint64_t *& words) noexcept { words += wordsOf(words[0]); }

    static char const * readColumn(ValueReader & reader, Statement & row, int place, void * field,
                                   unsigned long long &) {
        int const type = row.type(place);
        if (type != SQLITE_TEXT && type != SQLITE_BLOB) return c_notText;
        return read(reader, row.bytes(place), type == SQLITE_TEXT, field);
    }
    static char const * readElement(ValueReader & reader, JsonReader & json, void * field,
                                    unsigned long long &) {
        bool isText = false;
        if (!json.readText(reader.m_bytes, isText)) return c_notText;
        return read(reader, reader.m_bytes, isText, field);
    }

private:
    static char const * read(ValueReader & reader, std::string_view stored, bool isText,
                             void * field) {
        if constexpr (std::is_same_v<T, std::string>)
            return reader.narrow(stored, isText, field) ? nullptr : c_notText;
        else
            return reader.wide(stored, isText, field) ? nullptr : c_notText;
    }
};

struct NarrowText : TextKind<std::string> {
    static void bind(ValueWriter & writer, Statement & row, int place, void const * field,
                     std::string &) {
        writer.bindNarrow(row, place, at<std::string>(field));
    }
    static void append(ValueWriter & writer, void const * field, std::string & json) {
        writer.appendNarrow(json, at<std::string>(field));
    }
    static std::wstring print(void const * field) { return Text::fromUtf8(at<std::string>(field)); }
    static char const * parse(std::wstring_view text, std::string & value) {
        value = Text::toUtf8(text);
        return nullptr;
    }
};

struct WideText : TextKind<std::wstring> {
    static void bind(ValueWriter & writer, Statement & row, int place, void const * field,
                     std::string & text) {
        writer.bindWide(row, place, at<std::wstring>(field), text);
    }
    static void append(ValueWriter & writer, void const * field, std::string & json) {
        writer.appendWide(json, at<std::wstring>(field));
    }
    static std::wstring print(void const * field) { return at<std::wstring>(field); }
    static char const * parse(std::wstring_view text, std::wstring & value) {
        value = text;
        return nullptr;
    }
};

// --- What words own ----------------------------------------------------------------------------

struct Globalized : OneWord {
    using Type = GlobalizedString;
    static constexpr std::uint8_t c_numberBytes = 0;
    static constexpr bool c_ownsWords = true;
    static constexpr int c_columns = 3; // the text, the module, the key

    static void keep(void const * field, Asset const *, WordBuffer & words) {
        new (words.append(1)) GlobalizedString(at<GlobalizedString>(field));
    }
    static bool isKept(void const * field, Words & words) noexcept {
        return at<GlobalizedString>(field) == *reinterpret_cast<GlobalizedString const *>(words++);
    }
    static void restore(void * field, Words & words) {
        *static_cast<GlobalizedString *>(field) =
            *reinterpret_cast<GlobalizedString const *>(words++);
    }
    static void release(std::uint64_t *& words) noexcept {
        reinterpret_cast<GlobalizedString *>(words++)->~GlobalizedString();
    }

    static void bind(ValueWriter & writer, Statement & row, int place, void const * field,
                     std::string & text) {
        auto const & value = at<GlobalizedString>(field);
        writer.bindWide(row, place, value.defaultText(), text);
        if (value.isGlobalized()) {
            writer.bindNarrow(row, place + 1, value.module());
            writer.bindNarrow(row, place + 2, value.key());
        } else {
            row.bindNull(place + 1);
            row.bindNull(place + 2);
        }
    }
    static void append(ValueWriter & writer, void const * field, std::string & json) {
        auto const & value = at<GlobalizedString>(field);
        if (value.isGlobalized()) {
            json += '[';
            writer.appendNarrow(json, value.module());
            json += ',';
            writer.appendNarrow(json, value.key());
            json += ',';
        }
        writer.appendWide(json, value.defaultText());
        if (value.isGlobalized()) json += ']';
    }
    static char const * readColumn(ValueReader & reader, Statement & row, int place, void * field,
                                   unsigned long long &) {
        auto const isTextual = [&](int column) {
            return row.type(column) == SQLITE_TEXT || row.type(column) == SQLITE_BLOB;
        };
        bool const isText = row.type(place) == SQLITE_TEXT;
        if (!isTextual(place) || !reader.wide(row.bytes(place), isText, &reader.m_wide))
            return c_notText;
        if (row.type(place + 1) == SQLITE_NULL && row.type(place + 2) == SQLITE_NULL) {
            put(field, GlobalizedString(reader.m_wide));
            return nullptr;
        }
        for (int const column : {place + 1, place + 2}) {
            bool const isNameText = row.type(column) == SQLITE_TEXT;
            if (!isTextual(column) ||
                !reader.narrow(row.bytes(column), isNameText,
                               column == place + 1 ? &reader.m_module : &reader.m_key))
                return c_notText;
        }
        put(field, GlobalizedString(reader.m_module, reader.m_key, reader.m_wide));
        return nullptr;
    }
    static char const * readElement(ValueReader & reader, JsonReader & json, void * field,
                                    unsigned long long &) {
        bool isText = false;
        bool const isGlobalized = json.skip('[');
        if (isGlobalized) {
            for (std::string * const name : {&reader.m_module, &reader.m_key})
                if (!json.readText(reader.m_bytes, isText) ||
                    !reader.narrow(reader.m_bytes, isText, name) || !json.skip(','))
                    return c_notText;
        }
        if (!json.readText(reader.m_bytes, isText) ||
            !reader.wide(reader.m_bytes, isText, &reader.m_wide))
            return c_notText;
        if (isGlobalized && !json.skip(']')) return c_notText;
        put(field, isGlobalized ? GlobalizedString(reader.m_module, reader.m_key, reader.m_wide)
                                : GlobalizedString(reader.m_wide));
        return nullptr;
    }

    static std::wstring print(void const * field) { return at<GlobalizedString>(field).value(); }
    // What is typed is the same in every language.
    static char const * parse(std::wstring_view text, GlobalizedString & value) {
        value = GlobalizedString(text);
        return nullptr;
    }
};

// What both references have in files and texts.
template <class Reference>
struct ReferenceKind : OneWord {
    using Type = Reference;
    static constexpr std::uint8_t c_numberBytes = 0;
    static constexpr bool c_ownsWords = true;

    static void bind(ValueWriter & writer, Statement & row, int place, void const * field,
                     std::string &) {
        if (unsigned long long const id = writer.idOf(at<Reference>(field)))
            row.bind(place, static_cast<long long>(id));
        else
            row.bindNull(place);
    }
    static void append(ValueWriter & writer, void const * field, std::string & json) {
        if (unsigned long long const id = writer.idOf(at<Reference>(field)))
            appendJson(json, static_cast<long long>(id));
        else
            json += "null";
    }
    static bool isId(long long value) noexcept {
        return value > 0 && static_cast<unsigned long long>(value) < Limits::c_entityId;
    }
    static char const * readColumn(ValueReader &, Statement & row, int place, void *,
                                   unsigned long long & reference) {
        if (row.type(place) == SQLITE_NULL) return nullptr;
        if (row.type(place) != SQLITE_INTEGER || !isId(row.integer(place))) return c_notReference;
        reference = static_cast<unsigned long long>(row.integer(place));
        return nullptr;
    }
    static char const * readElement(ValueReader &, JsonReader & json, void *,
                                    unsigned long long & reference) {
        long long value = 0;
        if (json.skip("null")) return nullptr;
        if (!json.readInteger(value) || !isId(value)) return c_notReference;
        reference = static_cast<unsigned long long>(value);
        return nullptr;
    }

    static std::wstring print(void const * field) {
        Entity const * const target = at<Reference>(field).get();
        return target ? L'#' + std::to_wstring(target->id()) : L"null";
    }
    static char const * parse(std::wstring_view, Reference &) { return c_noReference; }
};

// Entities stand at the beginning of their objects, so that the reference of any class is one to an
// Entity.
struct Strong : ReferenceKind<StrongRef<Entity>> {
    static void keep(void const * field, Asset const * asset, WordBuffer & words) {
        Entity * const entity = at<StrongRef<Entity>>(field).get();
        auto word = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(entity));
        std::uint64_t * const place = words.append(1);
        if (entity && entity->asset() != asset) {
            entity->addRef();
            word |= 1;
        }
        *place = word;
    }
    static bool isKept(void const * field, Words & words) noexcept {
        return at<StrongRef<Entity>>(field).get() == strongTarget(*words++);
    }
    static void restore(void * field, Words & words) {
        *static_cast<StrongRef<Entity> *>(field) = StrongRef<Entity>(strongTarget(*words++));
    }
    static void release(std::uint64_t *& words) noexcept {
        if (isCounted(*words)) strongTarget(*words)->release();
        ++words;
    }
};

struct Passive : ReferenceKind<PassiveRef<Entity>> {
    static void keep(void const * field, Asset const *, WordBuffer & words) {
        new (words.append(1)) PassiveRef<Entity>(at<PassiveRef<Entity>>(field));
    }
    // The same way to the target, whether that is there at present or not.
    static bool isKept(void const * field, Words & words) noexcept {
        return std::memcmp(field, words++, sizeof(PassiveRef<Entity>)) == 0;
    }
    static void restore(void * field, Words & words) {
        *static_cast<PassiveRef<Entity> *>(field) =
            *reinterpret_cast<PassiveRef<Entity> const *>(words++);
    }
    static void release(std::uint64_t *& words) noexcept {
        reinterpret_cast<PassiveRef<Entity> *>(words++)->~PassiveRef();
    }
};

// --- The rows ----------------------------------------------------------------------------------

template <class Kind>
char const * parseAndKeep(std::wstring_view text, WordBuffer & words) {
    typename Kind::Type value{};
    char const * const wrong = Kind::parse(text, value);
    if (!wrong) Kind::keep(&value, nullptr, words);
    return wrong;
}

template <class Kind>
char const * parseElementAndKeep(ValueReader & reader, JsonReader & json, WordBuffer & words) {
    typename Kind::Type value{};
    unsigned long long reference = 0;
    char const * const wrong = Kind::readElement(reader, json, &value, reference);
    if (!wrong) Kind::keep(&value, nullptr, words);
    return wrong;
}

template <class Kind>
constexpr MemberKind row(char const * name) {
    return {name,
            Kind::c_numberBytes,
            Kind::c_ownsWords,
            Kind::c_columns,
            &Kind::words,
            &Kind::keep,
            &Kind::isKept,
            &Kind::restore,
            &Kind::skip,
            &Kind::release,
            &Kind::bind,
            &Kind::append,
            &Kind::readColumn,
            &Kind::readElement,
            &Kind::print,
            &parseAndKeep<Kind>,
            &parseElementAndKeep<Kind>};
}

// In the order of EMemberKind.
constexpr MemberKind c_rows[] = {
    row<Bool>("bool"),
    row<Whole<int>>("int"),
    row<Whole<unsigned int>>("unsigned int"),
    row<Whole<long long>>("long long"),
    row<Whole<unsigned long long>>("unsigned long long"),
    row<Real<float>>("float"),
    row<Real<double>>("double"),
    row<NarrowText>("std::string"),
    row<WideText>("std::wstring"),
    row<Globalized>("GlobalizedString"),
    row<Strong>("StrongRef"),
    row<Passive>("PassiveRef"),
    {"Vector", 0, false, 0, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}},
    {"Value", 0, false, 0, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}, {}},
};
static_assert(std::size(c_rows) == static_cast<std::size_t>(EMemberKind::Value) + 1);

} // namespace

MemberKind const & memberKind(EMemberKind kind) noexcept {
    return c_rows[static_cast<std::size_t>(kind)];
}

bool kindOf(std::string_view name, EMemberKind & kind) noexcept {
    for (std::size_t i = 0; i < std::size(c_rows); ++i)
        if (name == c_rows[i].name) {
            kind = static_cast<EMemberKind>(i);
            return true;
        }
    return false;
}

} // namespace Vn::DataModel
