#include "Platform/Base/MessageCatalogueInternal.h"

#include <cstring>
#include <fstream>
#include <ios>
#include <system_error>
#include <utility>

#include "Platform/Base/Text.h"

namespace Vn {

// The file starts with seven numbers of 32 bits: the magic number, the version, how many messages
// there are, where the tables of messages and of translations start, and the size and start of a
// hash table, which isn't used here.  A row of a table is the length of a text and where it starts;
// a null that isn't counted stands after each text.  The messages are in order, byte by byte.
namespace {

constexpr std::size_t c_headerSize = 28;
constexpr std::size_t c_rowSize = 8;
constexpr std::uint32_t c_magic = 0x950412DEU;

constexpr std::size_t c_versionAt = 4;
constexpr std::size_t c_countAt = 8;
constexpr std::size_t c_messagesAt = 12;
constexpr std::size_t c_translationsAt = 16;

} // namespace

std::unique_ptr<MessageCatalogue const> MessageCatalogue::read(std::filesystem::path const & path) {
    constexpr std::streamoff c_largestFile = 64 << 20;
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return nullptr;
    std::ifstream stream(path, std::ios::binary | std::ios::ate);
    std::streamoff const size = stream.tellg();
    if (size <= 0 || size > c_largestFile) return nullptr;
    std::string file(static_cast<std::size_t>(size), '\0');
    stream.seekg(0);
    if (!stream.read(file.data(), size)) return nullptr;
    return make(std::move(file));
}

std::unique_ptr<MessageCatalogue const> MessageCatalogue::make(std::string file) {
    std::unique_ptr<MessageCatalogue> catalogue(new MessageCatalogue(std::move(file)));
    if (!catalogue->isSound()) return nullptr;
    return catalogue;
}

MessageCatalogue::MessageCatalogue(std::string file) : m_file(std::move(file)) {}

std::optional<std::string_view> MessageCatalogue::find(std::string_view context,
                                                       std::string_view message) const {
    if (context.empty()) return find(message);
    std::string key(context);
    key += '\4';
    key += message;
    return find(key);
}

std::optional<std::string_view> MessageCatalogue::find(std::string_view key) const {
    std::size_t first = 0;
    for (std::size_t count = m_count; count > 0;) {
        std::size_t const middle = first + count / 2;
        int const order = text(m_messages, middle).compare(key);
        if (order == 0) return text(m_translations, middle);
        if (order < 0) {
            count -= middle + 1 - first;
            first = middle + 1;
        } else {
            count = middle - first;
        }
    }
    return std::nullopt;
}

std::uint32_t MessageCatalogue::number(std::size_t offset) const {
    std::uint32_t number = 0;
    std::memcpy(&number, m_file.data() + offset, sizeof number);
    if (!m_bSwapped) return number;
    return (number >> 24) | ((number >> 8) & 0xFF00U) | ((number << 8) & 0xFF0000U) |
           (number << 24);
}

std::string_view MessageCatalogue::text(std::size_t table, std::size_t row) const {
    std::size_t const at = table + c_rowSize * row;
    std::string_view const whole(m_file.data() + number(at + 4), number(at));
    return whole.substr(0, whole.find('\0'));
}

bool MessageCatalogue::isTableSound(std::size_t table) const {
    if (table > m_file.size() || (m_file.size() - table) / c_rowSize < m_count) return false;
    for (std::size_t i = 0; i < m_count; ++i) {
        std::uint64_t const length = number(table + c_rowSize * i);
        std::uint64_t const end = number(table + c_rowSize * i + 4) + length;
        if (end >= m_file.size() || m_file[static_cast<std::size_t>(end)] != '\0') return false;
    }
    return true;
}

// The translation of the empty message tells the encoding.
bool MessageCatalogue::isUtf8() const {
    constexpr std::string_view c_charset = "charset=";
    std::string_view const header = find("").value_or(std::string_view());
    std::size_t const charset = header.find(c_charset);
    if (charset == header.npos) return false;
    std::string_view const name = header.substr(charset + c_charset.size());
    return Text::foldedEqual(name.substr(0, name.find_first_of("; \t\r\n")), "UTF-8");
}

bool MessageCatalogue::isSound() {
    if (m_file.size() < c_headerSize) return false;
    m_bSwapped = number(0) != c_magic;
    // A later minor version adds tables after those that are read here.
    if (number(0) != c_magic || number(c_versionAt) >> 16 > 1) return false;
    m_count = number(c_countAt);
    m_messages = number(c_messagesAt);
    m_translations = number(c_translationsAt);
    return isTableSound(m_messages) && isTableSound(m_translations) && isUtf8();
}

} // namespace Vn
