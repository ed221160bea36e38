#ifndef VN_PLATFORM_BASE_MESSAGECATALOGUEINTERNAL_H
#define VN_PLATFORM_BASE_MESSAGECATALOGUEINTERNAL_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace Vn {

// A compiled gettext catalogue (.mo), in UTF-8 and of either byte order.
//
// It is read once and never changes, so that any thread may ask it.
class MessageCatalogue {
public:
    // Reads a file; null if there is none or if it isn't sound.
    static std::unique_ptr<MessageCatalogue const> read(std::filesystem::path const & path);

    // Takes the contents of a file; null if they aren't sound: a table or text that doesn't lie
    // within the file, a text without its null at the end, another encoding.
    static std::unique_ptr<MessageCatalogue const> make(std::string file);

    // The translation of a message in its context, or of one without a context if that is empty;
    // none if the catalogue hasn't got it.  Of a message with plural forms it is the first.
    std::optional<std::string_view> find(std::string_view context, std::string_view message) const;

private:
    explicit MessageCatalogue(std::string file);

    std::uint32_t number(std::size_t offset) const;
    // The text that a row of a table names, up to its first null.
    std::string_view text(std::size_t table, std::size_t row) const;
    std::optional<std::string_view> find(std::string_view key) const;
    bool isTableSound(std::size_t table) const;
    bool isUtf8() const;
    bool isSound();

    std::string const m_file;
    bool m_bSwapped = false;
    // Read from the header: how many messages there are, and where the tables of messages and of
    // translations start.
    std::size_t m_count = 0;
    std::size_t m_messages = 0;
    std::size_t m_translations = 0;
};

} // namespace Vn

#endif
