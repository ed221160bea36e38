#include "Console/Host/EarlyOptions.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace Vn::Console {

namespace {

// In the order of the enumeration.
constexpr ValueOptionName c_names[] = {
    {EValueOption::Density, "--density", nullptr},
    {EValueOption::Display, "--display", "-d"},
    {EValueOption::Document, "--document", nullptr},
    {EValueOption::From, "--from", nullptr},
    {EValueOption::Id, "--id", nullptr},
    {EValueOption::Kind, "--kind", nullptr},
    {EValueOption::Language, "--language", nullptr},
    {EValueOption::Material, "--material", nullptr},
    {EValueOption::Options, "--options", nullptr},
    {EValueOption::Output, "--output", "-o"},
    {EValueOption::Override, "--override", nullptr},
    {EValueOption::Precision, "--precision", nullptr},
    {EValueOption::Set, "--set", nullptr},
    {EValueOption::Size, "--size", nullptr},
    {EValueOption::System, "--system", nullptr},
    {EValueOption::Unit, "--unit", "-u"},
    {EValueOption::View, "--view", nullptr},
};

// The option that an argument begins with, up to a "=" or the end.
ValueOptionName const * find(std::string_view argument) {
    std::string_view const name = argument.substr(0, argument.find('='));
    auto const found =
        std::find_if(std::begin(c_names), std::end(c_names), [&](ValueOptionName const & each) {
            return name == each.name || (each.shortName && argument == each.shortName);
        });
    return found == std::end(c_names) ? nullptr : found;
}

} // namespace

ValueOptionName const & valueOptionName(EValueOption option) {
    return c_names[static_cast<std::size_t>(option)];
}

EarlyOptions readEarlyOptions(std::vector<std::string> const & arguments) {
    EarlyOptions options;
    for (auto i = arguments.begin(); i != arguments.end() && *i != "--"; ++i) {
        ValueOptionName const * const found = find(*i);
        if (!found) {
            if (options.subcommand.empty() && !i->starts_with('-')) options.subcommand = *i;
            continue;
        }
        std::size_t const equals = i->find('=');
        std::string_view value;
        if (equals != i->npos) value = std::string_view(*i).substr(equals + 1);
        // With nothing after the "=" it is the next argument all the same.
        if (value.empty()) {
            if (++i == arguments.end()) break;
            value = *i;
        }
        if (found->option == EValueOption::Language) options.language = value;
        if (found->option == EValueOption::Options) options.optionsDirectory = value;
    }
    return options;
}

} // namespace Vn::Console
