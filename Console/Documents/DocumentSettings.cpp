#include "Console/Documents/DocumentSettings.h"

#include <string_view>
#include <type_traits>
#include <vector>

#include "Console/Messages.h"
#include "Console/Texts.h"
#include "Platform/Base/Text.h"

namespace Vn::Console {

using CommonData::CommonDataAssetSettings;

namespace {

template <class Value>
constexpr ESettingKind kindOf(std::string_view accessor) {
    if constexpr (std::is_same_v<Value, bool>) return ESettingKind::Flag;
    if constexpr (std::is_same_v<Value, unsigned>) return ESettingKind::Number;
    if constexpr (std::is_same_v<Value, double>) return ESettingKind::Length;
    if constexpr (std::is_same_v<Value, TgPoint3d>) return ESettingKind::Point;
    // Of the vectors only this is a size.
    return accessor == "sceneBoundBoxExtent" ? ESettingKind::Point : ESettingKind::Direction;
}

SettingValue nothing(CommonDataAssetSettings const &) { return {}; }

// clang-format off
#define VN_CONSOLE_SETTING(type, accessor, member, standard, isStep)                               \
    {#accessor, member, kindOf<type>(#accessor), isStep,                                           \
     SettingValue(static_cast<type>(standard)),                                                    \
     [](CommonDataAssetSettings const & settings) { return SettingValue(settings.accessor()); },   \
     [](CommonDataAssetSettings & settings, SettingValue const & value) {                          \
         settings.accessor(std::get<type>(value));                                                 \
     }},
#define VN_CONSOLE_REFERENCE(accessor, member)                                                     \
    {#accessor, member, ESettingKind::Reference, false, SettingValue(), &nothing, nullptr},

constexpr DocumentSetting c_settings[] = {
#define VN_SETTING(type, accessor, member, standard, version)                                      \
    VN_CONSOLE_SETTING(type, accessor, member, (standard), true)
#define VN_SETTING_MARK(type, accessor, member, standard, version)                                 \
    VN_CONSOLE_SETTING(type, accessor, member, (standard), false)
#define VN_SETTING_SYSTEM(type, accessor, member, version) VN_CONSOLE_REFERENCE(accessor, member)
#define VN_SETTING_VIEWS(type, accessor, member, version) VN_CONSOLE_REFERENCE(accessor, member)
#include "Server/CommonData/AddIn/CommonDataAssetSettings.inc"
};
// clang-format on

#undef VN_CONSOLE_SETTING
#undef VN_CONSOLE_REFERENCE

} // namespace

std::span<DocumentSetting const> documentSettings() { return c_settings; }

std::wstring findSetting(std::wstring const & name, DocumentSetting const *& setting) {
    std::vector<std::wstring> names;
    for (DocumentSetting const & each : c_settings) {
        for (char const * const known : {each.accessor, each.member}) {
            names.push_back(Text::widen(known));
            if (!Text::foldedEqual(std::wstring_view(names.back()), std::wstring_view(name)))
                continue;
            setting = &each;
            return {};
        }
        if (names.back() == names[names.size() - 2]) names.pop_back();
    }
    return message(L"there is no setting %1%", inQuotes(name)) + orInstead(name, names);
}

} // namespace Vn::Console
