#include "Console/CommandLine/ParserTexts.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "Console/Messages.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

namespace {

// In the order in which they are tried.
constexpr wchar_t const * c_mistakes[] = {
    tr(L"The following argument was not expected: %1%"),
    tr(L"The following arguments were not expected: %1%"),
    tr(L"Expected exactly %1% arguments to %2%, got %3%"),
    tr(L"Expected at least %1% arguments to %2%, got %3%"),
    tr(L"%1%: At least %2% required but received %3%"),
    tr(L"%1%: At Most %2% required but received %3%"),
    tr(L"%1%: %2% required %3% missing"),
    tr(L"The value %1% is not an allowed value for %2%"),
    tr(L"Could not convert: %1%"),
    tr(L"%1%: too many inputs for a flag"),
    tr(L"%1% is required"),
};

constexpr std::size_t c_place = 3; // the length of "%1%"

// What stands in the places of a pattern, which are numbered from left to right, if the text is one
// of the pattern.
std::optional<std::vector<std::wstring>> valuesIn(std::wstring_view text,
                                                  std::wstring_view pattern) {
    std::size_t place = pattern.find(L'%');
    if (!text.starts_with(pattern.substr(0, place))) return std::nullopt;
    text.remove_prefix(place);
    std::vector<std::wstring> values;
    while (place != pattern.npos) {
        pattern.remove_prefix(place + c_place);
        place = pattern.find(L'%');
        std::wstring_view const between = pattern.substr(0, place);
        bool const isLast = place == pattern.npos;
        if (isLast && !text.ends_with(between)) return std::nullopt;
        std::size_t const end = isLast ? text.size() - between.size() : text.find(between);
        if (end == text.npos) return std::nullopt;
        values.emplace_back(text.substr(0, end));
        text.remove_prefix(end + between.size());
    }
    return values;
}

std::string mistakeMessage(CLI::App const * app, CLI::Error const & error) {
    std::string text = parserMistake(error.what()) + '\n';
    if (CLI::Option const * const help = app->get_help_ptr()) {
        text +=
            messageUtf8(L"Run with %1% for more information.", Text::fromUtf8(help->get_name())) +
            '\n';
    }
    return text;
}

} // namespace

void translateParser(CLI::App & app) {
    auto const formatter = std::make_shared<CLI::Formatter>();
    formatter->label("Usage", messageUtf8(L"Usage"));
    formatter->label("Positionals", messageUtf8(L"Positionals"));
    formatter->label("REQUIRED", messageUtf8(L"REQUIRED"));
    app.formatter(formatter);
    app.set_help_flag("-h,--help", messageUtf8(L"Print this help message and exit"));
    app.get_help_ptr()->group(messageUtf8(L"Options"));
    app.option_defaults()->group(messageUtf8(L"Options"));
    app.group(messageUtf8(L"Subcommands"));
    app.failure_message(&mistakeMessage);
}

std::string parserMistake(std::string const & english) {
    std::wstring const text = Text::fromUtf8(english);
    for (wchar_t const * const pattern : c_mistakes) {
        std::optional<std::vector<std::wstring>> values = valuesIn(text, pattern);
        if (!values) continue;
        values->resize(c_place);
        return messageUtf8(pattern, (*values)[0], (*values)[1], (*values)[2]);
    }
    return english;
}

} // namespace Vn::Console
