#include "Console/Documents/OutputFile.h"

#include <utility>

#include "Console/Documents/Session.h"
#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/OSFiles.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace fs = std::filesystem;

bool hasExtension(std::wstring const & name, std::wstring_view extension) {
    return name.size() > extension.size() &&
           Text::foldedEqual(std::wstring_view(name).substr(name.size() - extension.size()),
                             extension);
}

bool isSameFile(fs::path const & one, fs::path const & other) {
    std::error_code error;
    if (fs::equivalent(one, other, error)) return true;
    fs::path const a = fs::weakly_canonical(fs::absolute(one, error), error);
    if (error) return false;
    fs::path const b = fs::weakly_canonical(fs::absolute(other, error), error);
    return !error && a == b;
}

std::wstring whyNoOutput(std::wstring const & name,
                         std::initializer_list<std::wstring_view> extensions,
                         fs::path const & document) {
    if (name.empty()) return message(L"the name of the file is empty");
    if (name.find(L'\0') != name.npos) return message(L"%1% isn't a file name", inQuotes(name));
    bool isKnown = false;
    std::wstring all;
    for (std::wstring_view const extension : extensions) {
        isKnown = isKnown || hasExtension(name, extension);
        all += all.empty() ? std::wstring(extension)
                           : message(L"%1% or %2%", std::exchange(all, {}), extension);
    }
    if (!isKnown) return message(L"%1% doesn't end with %2%", inQuotes(name), all);
    if (!document.empty() && isSameFile(pathOf(name), document))
        return message(L"%1% is the document itself", inQuotes(name));
    return {};
}

std::wstring writeOutput(std::wstring const & name, std::string_view bytes) {
    Status const status = OS::replaceFile(pathOf(name), bytes);
    return status ? L"" : printable(statusText(status));
}

} // namespace Vn::Console
