#include "Platform/Base/PathInfo.h"

#include <mutex>
#include <system_error>

#include "Platform/Base/OS.h"
#include "Platform/Base/OSFiles.h"
#include "Platform/Base/Shared.h"
#include "Platform/Base/Text.h"

namespace Vn {

namespace {

constexpr char c_application[] = "VnCommonData10";

// What the host set; empty where it set nothing.
struct Places {
    std::mutex mutex;
    std::filesystem::path options;
    std::filesystem::path root;
    std::filesystem::path modules;
};

constinit Shared<Places> s_places;

Places & places() {
    return s_places.get([] { return new Places; });
}

using Place = std::filesystem::path Places::*;

void set(Place place, std::wstring const & text) {
    std::filesystem::path directory;
    if (!text.empty()) {
        directory = PathInfo::fromText(text);
        std::error_code error;
        std::filesystem::path const absolute = std::filesystem::absolute(directory, error);
        if (!error) directory = absolute;
    }
    Places & all = places();
    std::lock_guard const guard(all.mutex);
    all.*place = directory;
}

std::filesystem::path get(Place place) {
    Places & all = places();
    std::lock_guard const guard(all.mutex);
    return all.*place;
}

std::wstring textOf(std::filesystem::path const & directory, bool endsInSeparator) {
    std::wstring text = PathInfo::toText(directory);
    if (text.empty()) return text;
    while (text.size() > 1 && text.back() == L'/') text.pop_back();
    if (endsInSeparator && text.back() != L'/') text += L'/';
    return text;
}

} // namespace

std::wstring PathInfo::optionsDirectory(bool endsInSeparator) {
    std::filesystem::path directory = get(&Places::options);
    if (directory.empty()) {
        directory = OS::preferencesDirectory();
        if (!directory.empty()) directory /= c_application;
    }
    return textOf(directory, endsInSeparator);
}

void PathInfo::optionsDirectory(std::wstring const & directory) {
    set(&Places::options, directory);
}

void PathInfo::optionsDirectory(wchar_t const * directory) {
    set(&Places::options, directory ? directory : L"");
}

std::wstring PathInfo::rootDirectory(bool endsInSeparator) {
    std::filesystem::path directory = get(&Places::root);
    if (directory.empty()) directory = OS::executableDirectory().parent_path();
    return textOf(directory, endsInSeparator);
}

void PathInfo::rootDirectory(std::wstring const & directory) { set(&Places::root, directory); }

void PathInfo::rootDirectory(wchar_t const * directory) {
    set(&Places::root, directory ? directory : L"");
}

std::wstring PathInfo::installedRoot() {
    std::filesystem::path prefix = OS::libraryDirectory();
    // Some systems have one more folder below that of the libraries, for the kind of processor.
    for (int level = 0; level < 2; ++level) {
        prefix = prefix.parent_path();
        if (prefix.empty()) break;
        for (auto const & root : {prefix, prefix / "share" / c_application}) {
            std::error_code error;
            if (std::filesystem::is_directory(root / "Server", error)) return textOf(root, false);
        }
    }
    return {};
}

std::wstring PathInfo::modulesDirectory(bool endsInSeparator) {
    std::filesystem::path directory = get(&Places::modules);
    if (directory.empty()) directory = OS::libraryDirectory();
    return textOf(directory, endsInSeparator);
}

void PathInfo::modulesDirectory(std::wstring const & directory) {
    set(&Places::modules, directory);
}

void PathInfo::modulesDirectory(wchar_t const * directory) {
    set(&Places::modules, directory ? directory : L"");
}

#ifdef _WIN32

std::wstring PathInfo::toText(std::filesystem::path const & path) { return path.generic_wstring(); }
std::filesystem::path PathInfo::fromText(std::wstring_view text) {
    return std::filesystem::path(text);
}

#else

namespace {

// A byte that is no part of a character, as half of a surrogate pair; 0x80 to 0xFF.
constexpr wchar_t c_oddByte = 0xDC00;

} // namespace

std::wstring PathInfo::toText(std::filesystem::path const & path) {
    std::string const & bytes = path.native();
    std::wstring text;
    if (Text::fromUtf8(bytes, text)) return text;
    // A character has four bytes at most.
    for (std::size_t i = 0; i < bytes.size();) {
        std::wstring character;
        std::size_t length = 1;
        while (length <= 4 && i + length <= bytes.size() &&
               !Text::fromUtf8(std::string_view(bytes).substr(i, length), character))
            ++length;
        if (character.empty()) {
            text += static_cast<wchar_t>(c_oddByte + static_cast<unsigned char>(bytes[i]));
            length = 1;
        }
        text += character;
        i += length;
    }
    return text;
}

std::filesystem::path PathInfo::fromText(std::wstring_view text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size();) {
        wchar_t const c = text[i];
        if (c >= c_oddByte + 0x80 && c <= c_oddByte + 0xFF) {
            bytes += static_cast<char>(c - c_oddByte);
            ++i;
            continue;
        }
        std::size_t end = i;
        while (end < text.size() && (text[end] < c_oddByte || text[end] > c_oddByte + 0xFF)) ++end;
        end = std::max(end, i + 1);
        bytes += Text::toUtf8(text.substr(i, end - i));
        i = end;
    }
    return std::filesystem::path(bytes);
}

#endif

} // namespace Vn
