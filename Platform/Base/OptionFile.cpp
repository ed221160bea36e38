#include <map>
#include <string_view>
#include <utility>

#include "Platform/Base/Limits.h"
#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OSFailuresInternal.h"
#include "Platform/Base/OptionBase.h"
#include "Platform/Base/OptionFileInternal.h"
#include "Platform/Base/Text.h"

namespace Vn {

using OS::Detail::pathText;

namespace {

constexpr char c_root[] = "Options";
constexpr char c_group[] = "OptionGroup";
constexpr char c_option[] = "Option";
constexpr char c_id[] = "Id";

std::filesystem::path withEnding(std::filesystem::path path, std::string const & ending) {
    path += ending;
    return path;
}

bool isNamed(XMLNode const & node, char const * name, std::wstring const & id) {
    return node.name() == name && node.attribute(c_id).text() == id;
}

} // namespace

Status OptionFile::lock() {
    if (Status status = OS::makeDirectories(m_file.parent_path()); !status) return status;
    std::filesystem::path target;
    if (Status status = OS::followLinks(m_file, target); !status) return status;
    m_file = std::move(target);
    return m_lock.take(withEnding(m_file, ".lock"), Limits::c_optionLock);
}

Status OptionFile::read() {
    m_root = XMLNode();
    m_bDamaged = false;
    std::string bytes;
    if (Status status = OS::readSmallFile(m_file, Limits::c_optionFile, bytes); !status)
        return status;
    std::string const subject = pathText(m_file);
    Status status = XMLNode::parse(bytes, subject, m_root);
    if (status && m_root.name() != c_root) {
        status = Status::corrupt("read the options", subject, localized("it isn't an option file"));
        m_root = XMLNode();
    }
    m_bDamaged = status.code() == StatusCorrupt;
    if (m_bDamaged) m_damaged = std::move(bytes);
    return status;
}

std::vector<XMLNode> OptionFile::find(std::string const & group,
                                      std::span<OptionBase * const> options) const {
    std::vector<XMLNode> found(options.size());
    std::map<std::wstring, std::size_t> places;
    for (std::size_t i = 0; i < options.size(); ++i)
        places.emplace(Text::fromUtf8(options[i]->id()), i);
    std::wstring const id = Text::fromUtf8(group);
    for (XMLNode each = m_root.firstChild(); each; each = each.nextSibling()) {
        if (!isNamed(each, c_group, id)) continue;
        for (XMLNode option = each.firstChild(); option; option = option.nextSibling()) {
            if (option.name() != c_option) continue;
            auto const place = places.find(option.attribute(c_id).text());
            if (place != places.end() && !found[place->second]) found[place->second] = option;
        }
    }
    return found;
}

XMLNode OptionFile::group(std::string const & id) {
    if (!m_root) m_root = XMLNode(c_root);
    std::wstring const wanted = Text::fromUtf8(id);
    for (XMLNode each = m_root.firstChild(); each; each = each.nextSibling())
        if (isNamed(each, c_group, wanted)) return each;
    XMLNode const made = m_root.addChild(c_group);
    made.attribute(c_id).text(wanted);
    return made;
}

XMLNode OptionFile::makeOption(XMLNode const & group, std::string const & id) {
    XMLNode const made = group.addChild(c_option);
    made.attribute(c_id).text(Text::fromUtf8(id));
    return made;
}

Status OptionFile::write() {
    std::string text;
    if (Status status = m_root.write(text); !status) return status;
    // What couldn't be read again isn't written.
    if (text.size() > Limits::c_optionFile)
        return Status(StatusUnsupported, "write the options", pathText(m_file),
                      localized("it would have more than %1% bytes", Limits::c_optionFile));
    if (m_bDamaged)
        if (Status status = keepDamaged(); !status) return status;
    return OS::replaceSmallFile(m_file, text);
}

Status OptionFile::keepDamaged() const {
    Status status;
    for (unsigned i = 1; i <= Limits::c_damagedCopies; ++i) {
        std::string const number = i == 1 ? std::string() : '.' + std::to_string(i);
        status = OS::makeSmallFile(withEnding(m_file, ".damaged" + number), m_damaged);
        if (status.code() != StatusAlreadyExists) break;
    }
    return status;
}

} // namespace Vn
