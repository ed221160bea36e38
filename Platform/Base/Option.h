#ifndef VN_PLATFORM_BASE_OPTION_H
#define VN_PLATFORM_BASE_OPTION_H

#include <string>

#include "Platform/Base/OptionBase.h"

namespace Vn {

// A preference with a value of type bool, int or double.  Beside the value it has the default, and
// what was last saved or read.
template <class T>
class VN_BASE_API Option : public OptionBase {
public:
    // As the constructor of OptionBase.  All three values start as the default.
    Option(std::string const & id, std::wstring const & userName, std::wstring const & toolTip,
           OptionGroup * group, T defaultValue);
    ~Option() override;

    // A bool is "ON" or "OFF" in any case of letters; an int decimal digits; a double as
    // Utility::localeTolerantLexicalCast() reads it.
    void setValueFromString(std::wstring const & text) override;
    // Two doubles that differ by less than 1e-08 match.
    bool doesStringMatchValue(std::wstring const & text) const override;
    EDataType valueType() const override;

    // The three values.
    T value() const noexcept { return m_value; }
    T defaultValue() const noexcept { return m_default; }
    T savedValue() const noexcept { return m_saved; }

    // The attribute "Value": "1" or "0", decimal digits, and for a double Utility::decimalText().
    void onSave(XMLNode & node, Status & status) override;
    void onPostSave() override;
    void onLoad(XMLNode & node, Status & status) override;
    bool onReload(XMLNode & node, Status & status) override;
    bool onDirty() const override;
    bool onNonDefault() const override;
    void onReset(Status & status) override;
    // As setValueFromString() takes it.
    std::wstring onToString() const override;
    std::wstring onGetDynamicStubValue() const override;
    void onSetFromDynamicStubValue(std::wstring const & text) override;

private:
    T m_value;
    T const m_default;
    T m_saved;
};

extern template class Option<bool>;
extern template class Option<int>;
extern template class Option<double>;

} // namespace Vn

#endif
