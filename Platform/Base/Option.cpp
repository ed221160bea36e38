#include "Platform/Base/Option.h"

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/Text.h"
#include "Platform/Base/Utility.h"
#include "Platform/Base/XMLNode.h"

namespace Vn {

namespace {

constexpr char c_value[] = "Value"; // the attribute

// What a text stands for.  False, with `value` as it was, if it is no value.
bool convert(std::wstring const & text, bool & value) {
    bool const isOn = Text::foldedEqual(text, std::wstring_view(L"ON"));
    if (!isOn && !Text::foldedEqual(text, std::wstring_view(L"OFF"))) return false;
    value = isOn;
    return true;
}
bool convert(std::wstring const & text, int & value) {
    return Utility::wholeNumberLexicalCast(text, value);
}
bool convert(std::wstring const & text, double & value) {
    return Utility::localeTolerantLexicalCast(text, value);
}

std::wstring textOf(bool value) { return value ? L"ON" : L"OFF"; }
std::wstring textOf(int value) { return std::to_wstring(value); }
std::wstring textOf(double value) { return Utility::decimalText(value); }

bool match(double a, double b) { return Utility::essentiallyEqual(a, b); }
template <class T>
bool match(T a, T b) {
    return a == b;
}

// What the text in a file should be.
char const * wanted(bool) { return localizable("1 or 0"); }
char const * wanted(int) { return localizable("a whole number"); }
char const * wanted(double) { return localizable("a number"); }

OptionBase::EDataType typeOf(bool) { return OptionBase::DataTypeBool; }
OptionBase::EDataType typeOf(int) { return OptionBase::DataTypeInt; }
OptionBase::EDataType typeOf(double) { return OptionBase::DataTypeDouble; }

} // namespace

template <class T>
Option<T>::Option(std::string const & id, std::wstring const & userName,
                  std::wstring const & toolTip, OptionGroup * group, T defaultValue)
    : OptionBase(id, userName, toolTip, group), m_value(defaultValue), m_default(defaultValue),
      m_saved(defaultValue) {}

template <class T>
Option<T>::~Option() = default;

template <class T>
void Option<T>::setValueFromString(std::wstring const & text) {
    T value = m_value;
    if (!convert(text, value)) return;
    noteSet();
    bool const isChange = value != m_value; // exactly, also for a double
    m_value = value;
    if (isChange) notifyChange();
}

template <class T>
bool Option<T>::doesStringMatchValue(std::wstring const & text) const {
    T value = m_value;
    return convert(text, value) && match(value, m_value);
}

template <class T>
OptionBase::EDataType Option<T>::valueType() const {
    return typeOf(T());
}

template <class T>
void Option<T>::onSave(XMLNode & node, Status & status) {
    if (!node.attribute(c_value).write(m_value))
        status = Status::invalidArgument("save the option", id(),
                                         localized("there is no element for it"));
}

template <class T>
void Option<T>::onPostSave() {
    m_saved = m_value;
    noteReadable();
}

template <class T>
void Option<T>::onLoad(XMLNode & node, Status & status) {
    onReload(node, status);
}

template <class T>
bool Option<T>::onReload(XMLNode & node, Status & status) {
    XMLAttributeProxy const attribute = node.attribute(c_value);
    if (!attribute.exists()) return false;
    T value = m_value;
    if (!attribute.read(value)) {
        noteUnreadable(attribute.text(), wanted(T()), status);
        return false;
    }
    noteReadable();
    bool const isChange = value != m_value;
    m_value = value;
    m_saved = value;
    return isChange;
}

template <class T>
bool Option<T>::onDirty() const {
    return m_value != m_saved;
}

template <class T>
bool Option<T>::onNonDefault() const {
    return m_value != m_default;
}

template <class T>
void Option<T>::onReset(Status &) {
    noteSet();
    bool const isChange = m_value != m_default;
    m_value = m_default;
    if (isChange) notifyChange();
}

template <class T>
std::wstring Option<T>::onToString() const {
    return textOf(m_value);
}

template <class T>
std::wstring Option<T>::onGetDynamicStubValue() const {
    return OptionBase::toString();
}

template <class T>
void Option<T>::onSetFromDynamicStubValue(std::wstring const & text) {
    T value = m_value;
    if (convert(text, value)) m_value = value;
    m_saved = m_value;
}

template class Option<bool>;
template class Option<int>;
template class Option<double>;

} // namespace Vn
