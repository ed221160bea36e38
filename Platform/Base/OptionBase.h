#ifndef VN_PLATFORM_BASE_OPTIONBASE_H
#define VN_PLATFORM_BASE_OPTIONBASE_H

#include <span>
#include <string>
#include <vector>

#include "Platform/Base/Export.h"
#include "Platform/Base/Status.h"

namespace Vn {

class OptionGroup;
class XMLNode;

// One preference of the user: what it is called, where it stands on a page, and in derived classes
// its value.  It belongs to whoever made it, and its group lists it as long as it lives.  A group
// and its options are used by one thread at a time.
class VN_BASE_API OptionBase {
public:
    // What the value is.  The numbers are seen by hosts.
    enum EDataType { DataTypeNone = 0, DataTypeBool = 2, DataTypeInt = 3, DataTypeDouble = 8 };

    // A value that a page offers.  An option takes others too.
    struct Choice {
        std::wstring value; // as setValueFromString() takes it
        std::wstring text;  // for the user
    };

    // An option without a value.  `id` is ASCII, names the option in files and doesn't change;
    // `userName` and `toolTip` are for the user.  The option joins `group`, which must outlive it;
    // null is no group.
    OptionBase(std::string const & id, std::wstring const & userName, std::wstring const & toolTip,
               OptionGroup * group);
    virtual ~OptionBase();
    OptionBase(OptionBase const &) = delete;
    OptionBase & operator=(OptionBase const &) = delete;

    // Takes the value that a text stands for.  If that changes the value, the option's group is
    // told, and then the listener.  A text that isn't a value is passed over.
    virtual void setValueFromString(std::wstring const & text);
    // Whether a text stands for the value.
    virtual bool doesStringMatchValue(std::wstring const & text) const;
    virtual EDataType valueType() const;

    // What the constructor was given.
    std::string const & id() const noexcept { return m_id; }
    std::wstring const & userName() const noexcept { return m_userName; }
    std::wstring const & toolTip() const noexcept { return m_toolTip; }
    OptionGroup * group() const noexcept { return m_pGroup; }

    // Offers a value on the page.
    void addChoice(std::wstring const & value, std::wstring const & text);
    // The values that the page offers, in their order; none if any may be typed.
    std::span<Choice const> choices() const noexcept { return m_choices; }
    // Takes the value of a choice as setValueFromString() does, and tells the group that it was
    // chosen.  False, and nothing is done, if `value` isn't that of a choice.
    bool choose(std::wstring const & value);

    // The option, or the sub-group, under which this one stands on the page; null for none.
    OptionBase * subGroup() const noexcept { return m_pSubGroup; }
    void subGroup(OptionBase * parent) noexcept { m_pSubGroup = parent; }
    // Whether the page shows it only to those who ask for more.
    bool advanced() const noexcept { return m_bAdvanced; }
    void advanced(bool advanced) noexcept { m_bAdvanced = advanced; }

    // A second group that is told of changes, after the option's own; null for none.  It must
    // outlive the option, or be taken back.
    OptionGroup * listener() const noexcept { return m_pListener; }
    void listener(OptionGroup * listener) noexcept { m_pListener = listener; }

    // Writes the value into the option's element of a file.
    void save(XMLNode & node, Status & status) { onSave(node, status); }
    // What was written has reached the file.
    void postSave() { onPostSave(); }
    // Takes the value from the option's element, as what is saved; nobody is told.  An element
    // without a value changes nothing.  Neither does one whose text isn't a value; the status names
    // the option then.
    void load(XMLNode & node, Status & status) { onLoad(node, status); }
    // The same.  Whether it changed the value.
    bool reload(XMLNode & node, Status & status) { return onReload(node, status); }
    // Whether the value differs from what is saved, and from the default.
    bool dirty() const { return onDirty(); }
    bool nonDefault() const { return onNonDefault(); }
    // Takes the default.  If that changes the value, the group and the listener are told.
    void reset(Status & status) { onReset(status); }
    // The value as a text.
    std::wstring toString() const { return onToString(); }
    // What a page shows that has only a stub of the option, and a value from there: it counts as
    // saved, and nobody is told.
    std::wstring getDynamicStubValue() const { return onGetDynamicStubValue(); }
    void setFromDynamicStubValue(std::wstring const & text) { onSetFromDynamicStubValue(text); }

    // Whether a save writes the option: its value differs from what is saved, or it was set since
    // the file was found to have a text that isn't a value.
    bool needsSaving() const { return m_bReplacing || dirty(); }

private:
    virtual void onSave(XMLNode & node, Status & status);
    virtual void onPostSave();
    virtual void onLoad(XMLNode & node, Status & status);
    virtual bool onReload(XMLNode & node, Status & status);
    virtual bool onDirty() const;
    virtual bool onNonDefault() const;
    virtual void onReset(Status & status);
    virtual std::wstring onToString() const;
    virtual std::wstring onGetDynamicStubValue() const;
    virtual void onSetFromDynamicStubValue(std::wstring const & text);

protected:
    // The same; `isListed` says whether the option joins the group.
    OptionBase(std::string const & id, std::wstring const & userName, std::wstring const & toolTip,
               OptionGroup * group, bool isListed);

    // Tells the group and the listener that the value has changed.
    void notifyChange();
    // The file has a text that isn't a value, `text`; what it should be, `wanted`, is a part of the
    // reason: "a whole number".
    void noteUnreadable(std::wstring const & text, char const * wanted, Status & status);
    // The file has a value.
    void noteReadable() noexcept;
    // The value was set, also if it didn't change.
    void noteSet() noexcept { m_bReplacing = m_bUnreadable; }

private:
    std::string const m_id;
    std::wstring const m_userName;
    std::wstring const m_toolTip;
    OptionGroup * const m_pGroup;
    OptionBase * m_pSubGroup = nullptr;
    OptionGroup * m_pListener = nullptr;
    std::vector<Choice> m_choices;
    bool m_bAdvanced = false;
    bool m_bUnreadable = false; // the text in the file
    bool m_bReplacing = false;  // that text, at the next save
};

} // namespace Vn

#endif
