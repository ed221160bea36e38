#ifndef VN_PLATFORM_PICTURE_GLTFJSONINTERNAL_H
#define VN_PLATFORM_PICTURE_GLTFJSONINTERNAL_H

#include <cstddef>
#include <cstdint>
#include <string>

#include <nlohmann/json.hpp>

namespace Vn::Picture {

using Json = nlohmann::ordered_json;

// The text of an object; what isn't UTF-8 in it becomes U+FFFD.
inline std::string textOf(Json const & object) {
    return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// A list of objects as it stands in the file.  Each is text at once: the objects themselves would
// take many times the memory.
class JsonList {
public:
    // Adds an object; the answer is its place.
    std::uint32_t add(Json const & object) {
        m_text += m_size == 0 ? '[' : ',';
        m_text += textOf(object);
        return m_size++;
    }
    std::uint32_t size() const noexcept { return m_size; }
    // In bytes.
    std::size_t length() const noexcept { return m_text.size() + 1; }

    // Adds the list to an object that isn't closed, unless it is empty.
    void appendTo(std::string & object, char const * name) const {
        if (m_size == 0) return;
        object += ",\"";
        object += name;
        object += "\":";
        object += m_text;
        object += ']';
    }

private:
    std::string m_text;
    std::uint32_t m_size = 0;
};

} // namespace Vn::Picture

#endif
