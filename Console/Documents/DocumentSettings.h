// The settings of a document as data: what the console knows of each.

#ifndef VN_CONSOLE_DOCUMENTS_DOCUMENTSETTINGS_H
#define VN_CONSOLE_DOCUMENTS_DOCUMENTSETTINGS_H

#include <span>
#include <string>
#include <variant>

#include "Platform/Geometry/Tg.h"
#include "Server/CommonData/AddIn/CommonDataAssetSettings.h"

namespace Vn::Console {

// What a setting is, and so how it is written.
enum class ESettingKind {
    Flag,
    Number, // without unit
    Length,
    Point,     // lengths along the axes
    Direction, // numbers along the axes
    Reference  // which has commands of its own
};

// Nothing for a reference.
using SettingValue = std::variant<std::monostate, bool, unsigned, double, TgPoint3d, TgVector3d>;

// One setting.
struct DocumentSetting {
    char const * accessor;
    char const * member; // as documents have it
    ESettingKind kind;
    bool isStep; // whether setting it can be undone
    SettingValue standard;
    SettingValue (*get)(CommonData::CommonDataAssetSettings const & settings);
    void (*set)(CommonData::CommonDataAssetSettings & settings, SettingValue const & value);
};

// In the order in which documents have them.
std::span<DocumentSetting const> documentSettings();

// Finds a setting by either name, in any case.  The answer is empty, or says why there is none.
std::wstring findSetting(std::wstring const & name, DocumentSetting const *& setting);

} // namespace Vn::Console

#endif
