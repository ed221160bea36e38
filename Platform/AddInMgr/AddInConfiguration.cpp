#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <queue>
#include <string_view>
#include <system_error>
#include <utility>

#include "Platform/AddInMgr/AddInConfigurationInternal.h"
#include "Platform/AddInMgr/Limits.h"
#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OS.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/XMLNode.h"
#include "Platform/Base/XMLSchema.h"

namespace Vn {

namespace {

constexpr char c_read[] = "read the configuration";
constexpr char c_use[] = "use the configuration";

using Path = std::filesystem::path;

std::string textOf(Path const & path) { return Text::toUtf8(PathInfo::toText(path)); }

Status listFailure(Path const & directory, std::error_code const & error) {
    EStatus const code = error == std::errc::no_such_file_or_directory ? StatusNotFound
                         : error == std::errc::permission_denied       ? StatusAccessDenied
                                                                       : StatusIO;
    return Status(code, "list the configurations", textOf(directory), OS::errorText(error));
}

// The entries of a directory in the order of their names; none if there is no such directory.
Status list(Path const & directory, std::vector<Path> & entries) {
    std::error_code error;
    for (std::filesystem::directory_iterator i(directory, error), end; !error && i != end;
         i.increment(error)) {
        if (entries.size() == Limits::c_configurations)
            return Status(StatusUnsupported, "list the configurations", textOf(directory),
                          localized("there are too many"));
        entries.push_back(i->path());
    }
    if (error && error != std::errc::no_such_file_or_directory &&
        error != std::errc::not_a_directory)
        return listFailure(directory, error);
    std::sort(entries.begin(), entries.end());
    return Status::success();
}

// The files that are configurations by their place and name.
Status listConfigurations(Path const & server, std::vector<Path> & files) {
    std::vector<Path> folders;
    if (Status status = list(server, folders); !status) return status;
    for (Path const & folder : folders) {
        std::vector<Path> entries;
        if (Status status = list(folder / "Configuration", entries); !status) return status;
        for (Path & entry : entries) {
            std::error_code error;
            bool const isFolder = std::filesystem::is_directory(entry, error);
            if (!isFolder && Text::foldedEqual(PathInfo::toText(entry.extension()), L".xml"))
                files.push_back(std::move(entry));
        }
        if (files.size() > Limits::c_configurations)
            return Status(StatusUnsupported, "list the configurations", textOf(server),
                          localized("there are too many"));
    }
    return Status::success();
}

// What a valid document says.
void take(XMLNode const & root, AddInConfiguration & configuration) {
    auto const narrow = [&](char const * name) {
        return Text::toUtf8(root.attribute(name).text());
    };
    configuration.identifier = narrow("identifier");
    configuration.module = root.attribute("module").text();
    configuration.module += OS::platformModuleExtension();
    configuration.assetTypeId = narrow("assetType");
    std::wstring const core = root.attribute("core").text();
    configuration.isCore = core == L"true" || core == L"1";
    for (XMLNode i = root.firstChild(); i; i = i.nextSibling())
        configuration.required.push_back(Text::toUtf8(i.attribute("addIn").text()));
}

ReadConfiguration readOne(Path const & file, XMLSchema const & schema) {
    ReadConfiguration result;
    result.configuration.file = file;
    XMLNode root;
    result.status = XMLSchema::readDocument(file, root, c_read);
    if (result.status) result.status = schema.validate(root, textOf(file));
    if (result.status) take(root, result.configuration);
    return result;
}

Status refusal(ReadConfiguration const & refused, std::string const & cause) {
    return Status::invalidArgument(c_use, textOf(refused.configuration.file), cause);
}

std::string inQuotes(std::string const & name) { return localized("'%1%'", name); }

// Refuses all that share what `keyOf` says.  `what` is told of the other file, its value.
template <class KeyOf>
void refuseShared(std::vector<ReadConfiguration> & all, char const * what, KeyOf && keyOf) {
    std::map<std::wstring, std::vector<ReadConfiguration *>> groups;
    for (ReadConfiguration & each : all)
        if (each.status) groups[keyOf(each.configuration)].push_back(&each);
    for (auto const & [key, group] : groups) {
        if (group.size() == 1) continue;
        for (std::size_t i = 0; i < group.size(); ++i) {
            ReadConfiguration const & other = *group[i == 0 ? 1 : 0];
            group[i]->status =
                refusal(*group[i], localized(what, textOf(other.configuration.file)));
        }
    }
}

// The order that follows from what configurations require.
class Requirements {
public:
    // `others` are the identifiers that need no configuration.
    Requirements(std::vector<ReadConfiguration> & all, std::vector<std::string> const & others)
        : m_all(all), m_nodes(all.size()) {
        for (std::size_t i = 0; i < all.size(); ++i)
            if (all[i].status) m_byIdentifier.emplace(identifier(i), i);
        std::vector<std::pair<std::size_t, std::string>> missing;
        for (auto const & [name, i] : m_byIdentifier) {
            for (std::string const & required : all[i].configuration.required) {
                auto const found = m_byIdentifier.find(required);
                if (found != m_byIdentifier.end()) {
                    m_nodes[i].required.push_back(found->second);
                    m_nodes[found->second].users.push_back(i);
                } else if (std::find(others.begin(), others.end(), required) == others.end()) {
                    missing.emplace_back(i, required);
                }
            }
        }
        for (auto const & [i, required] : missing)
            refuse({i}, isThere(required)
                            ? localized("it requires '%1%', which is refused", required)
                            : localized("it requires '%1%', which isn't there", required));
    }

    // The numbers of those that can be loaded, in order.  The others are refused.
    std::vector<std::size_t> order() {
        auto const isLater = [this](std::size_t a, std::size_t b) {
            return identifier(a) > identifier(b);
        };
        std::priority_queue<std::size_t, std::vector<std::size_t>, decltype(isLater)> ready(
            isLater);
        std::vector<std::size_t> waitsFor;
        for (Node const & node : m_nodes) waitsFor.push_back(node.required.size());
        for (auto const & [name, i] : m_byIdentifier)
            if (m_all[i].status && waitsFor[i] == 0) ready.push(i);
        std::vector<std::size_t> result;
        while (!ready.empty()) {
            std::size_t const next = ready.top();
            ready.pop();
            result.push_back(next);
            m_nodes[next].isOrdered = true;
            for (std::size_t const user : m_nodes[next].users)
                if (--waitsFor[user] == 0 && m_all[user].status) ready.push(user);
        }
        // What is left over requires something that is left over, and so leads into a circle.
        for (auto const & [name, i] : m_byIdentifier)
            if (m_all[i].status && !m_nodes[i].isOrdered) refuseCircleFrom(i);
        return result;
    }

private:
    struct Node {
        std::vector<std::size_t> required; // those that have a configuration
        std::vector<std::size_t> users;    // those that require it
        bool isOrdered = false;
    };

    std::string const & identifier(std::size_t i) const {
        return m_all[i].configuration.identifier;
    }

    bool isThere(std::string const & name) const {
        return std::any_of(m_all.begin(), m_all.end(), [&](ReadConfiguration const & each) {
            return each.configuration.identifier == name;
        });
    }

    // Refuses those for a reason, and then what requires them.
    void refuse(std::vector<std::size_t> refused, std::string const & cause) {
        for (std::size_t const i : refused) m_all[i].status = refusal(m_all[i], cause);
        while (!refused.empty()) {
            std::size_t const at = refused.back();
            refused.pop_back();
            for (std::size_t const user : m_nodes[at].users) {
                if (!m_all[user].status) continue;
                m_all[user].status = refusal(
                    m_all[user], localized("it requires '%1%', which is refused", identifier(at)));
                refused.push_back(user);
            }
        }
    }

    // Refuses the circle that one of those left over leads into.
    void refuseCircleFrom(std::size_t i) {
        std::vector<std::size_t> way;
        std::vector<std::size_t>::iterator begin;
        while ((begin = std::find(way.begin(), way.end(), i)) == way.end()) {
            way.push_back(i);
            auto const & required = m_nodes[i].required;
            i = *std::find_if(required.begin(), required.end(),
                              [this](std::size_t each) { return !m_nodes[each].isOrdered; });
        }
        way.erase(way.begin(), begin);
        constexpr std::size_t c_shown = 8;
        std::string text = way.size() > c_shown ? "..." : inQuotes(identifier(way.front()));
        for (std::size_t k = std::min(way.size(), c_shown); k-- > 0;)
            text = localized("'%1%' requires %2%", identifier(way[k]), text);
        refuse(std::move(way), text);
    }

    std::vector<ReadConfiguration> & m_all;
    std::vector<Node> m_nodes; // by number
    std::map<std::string, std::size_t> m_byIdentifier;
};

} // namespace

Status readConfigurations(Path const & root, std::vector<ReadConfiguration> & all) {
    Path const server = root / "Server";
    std::vector<Path> files;
    if (Status status = listConfigurations(server, files); !status) return status;
    if (files.empty())
        return Status::notFound("read the configurations of add-ins", textOf(server),
                                localized("there is none"));
    XMLSchema schema;
    Status const schemaStatus = XMLSchema::read(
        server / "AddInMgr" / "Configuration" / "Schema" / "AddinSchema.xsd", schema);
    std::vector<ReadConfiguration> result;
    for (Path const & file : files) {
        if (schemaStatus) {
            result.push_back(readOne(file, schema));
        } else {
            result.emplace_back();
            result.back().configuration.file = file;
            result.back().status = schemaStatus;
        }
    }
    all = std::move(result);
    return Status::success();
}

void orderConfigurations(std::vector<ReadConfiguration> & all,
                         std::vector<std::string> const & others) {
    for (ReadConfiguration & each : all)
        if (each.status &&
            std::find(others.begin(), others.end(), each.configuration.identifier) != others.end())
            each.status = refusal(
                each, localized("the application has '%1%' itself", each.configuration.identifier));
    refuseShared(all, localizable("'%1%' has the same identifier"),
                 [](AddInConfiguration const & configuration) {
                     return Text::fromUtf8(configuration.identifier);
                 });
    // Some systems don't tell the cases of letters apart in names of files.
    refuseShared(all, localizable("'%1%' has the same module"),
                 [](AddInConfiguration const & configuration) {
                     std::wstring folded = configuration.module; // in ASCII
                     for (wchar_t & c : folded)
                         if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c - L'A' + L'a');
                     return folded;
                 });
    std::vector<ReadConfiguration> ordered;
    for (std::size_t const i : Requirements(all, others).order())
        ordered.push_back(std::move(all[i]));
    for (ReadConfiguration & each : all)
        if (!each.status) ordered.push_back(std::move(each));
    all = std::move(ordered);
}

} // namespace Vn
