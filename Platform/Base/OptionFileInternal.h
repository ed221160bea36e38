// An option file: an element "Options" with an element "OptionGroup" for each group, which holds an
// element "Option" for each option.  Both have an attribute "Id", and an option one more, "Value".

#ifndef VN_PLATFORM_BASE_OPTIONFILEINTERNAL_H
#define VN_PLATFORM_BASE_OPTIONFILEINTERNAL_H

#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "Platform/Base/OSFiles.h"
#include "Platform/Base/Status.h"
#include "Platform/Base/XMLNode.h"

namespace Vn {

class OptionBase;

class OptionFile {
public:
    // Nothing is touched.
    explicit OptionFile(std::filesystem::path file) : m_file(std::move(file)) {}

    // Keeps others from saving, until this object goes; makes the directory if it isn't there.
    [[nodiscard]] Status lock();
    void unlock() noexcept { m_lock.release(); }
    // Reads the file.  StatusNotFound if there is none; StatusCorrupt if there is no sense in it.
    [[nodiscard]] Status read();
    // The elements of options of a group, one for each of `options` in their order, and none where
    // there is none.  Where there are several, it is the first.
    std::vector<XMLNode> find(std::string const & group,
                              std::span<OptionBase * const> options) const;
    // The element of a group, made if it is missing.
    XMLNode group(std::string const & id);
    // Makes the element of an option.
    static XMLNode makeOption(XMLNode const & group, std::string const & id);
    // Puts the file in its place; a damaged one is copied beside it before.  The lock is held.
    [[nodiscard]] Status write();

private:
    Status keepDamaged() const;

    std::filesystem::path m_file; // once the lock is held, not a link
    OS::FileLock m_lock;
    std::string m_damaged; // its bytes, if it is
    bool m_bDamaged = false;
    XMLNode m_root;
};

} // namespace Vn

#endif
