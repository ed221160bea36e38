// OCAF, the documents of Open CASCADE: a child is a label below the label of the group, its fields
// are attributes of the label.  Files are of the format BinOcaf.

#include <cstdio>
#include <cstdlib>

#include <BinDrivers.hxx>
#include <TCollection_ExtendedString.hxx>
#include <TDF_ChildIterator.hxx>
#include <TDF_Label.hxx>
#include <TDataStd_Integer.hxx>
#include <TDataStd_Name.hxx>
#include <TDataStd_Real.hxx>
#include <TDocStd_Application.hxx>
#include <TDocStd_Document.hxx>

#include "Benchmarks/Document/DocumentBenchmarks.h"

namespace Vn::Benchmarks {

namespace {

constexpr char const * c_format = "BinOcaf";

// A label has one attribute of each id, so the second of a kind has an id of its own.
Standard_GUID const & yId() {
    static Standard_GUID const s_id("5e1d9c54-2f0b-4c43-9d0e-1b7a6c1f0a01");
    return s_id;
}

Standard_GUID const & flagId() {
    static Standard_GUID const s_id("5e1d9c54-2f0b-4c43-9d0e-1b7a6c1f0a02");
    return s_id;
}

template <class Attribute>
opencascade::handle<Attribute> find(TDF_Label const & label, Standard_GUID const & id) {
    opencascade::handle<Attribute> attribute;
    label.FindAttribute(id, attribute);
    return attribute;
}

[[noreturn]] void fail(char const * what, int status) {
    std::fprintf(stderr, "OCAF: status %d of %s\n", status, what);
    std::exit(1);
}

class OcafDocument {
public:
    static constexpr char const * c_name = "ocaf";
    static constexpr char const * c_extension = ".cbf";
    static constexpr bool c_firstSaveWaits = false;
    static constexpr bool c_laterSaveWaits = false;

    OcafDocument() : m_application(new TDocStd_Application) {
        BinDrivers::DefineFormat(m_application);
    }
    ~OcafDocument() {
        if (!m_document.IsNull()) m_application->Close(m_document);
    }
    OcafDocument(OcafDocument const &) = delete;
    OcafDocument & operator=(OcafDocument const &) = delete;

    void create(std::span<Record const> source) {
        m_application->NewDocument(c_format, m_document);
        // The default is none, and there is no word for no limit.
        m_document->SetUndoLimit(10'000'000);
        m_document->NewCommand();
        TDF_Label const group = this->group();
        int tag = 0;
        for (Record const & record : source) {
            TDF_Label const child = group.FindChild(++tag);
            TDataStd_Name::Set(child, TCollection_ExtendedString(record.text.c_str()));
            TDataStd_Real::Set(child, TDataStd_Real::GetID(), record.x);
            TDataStd_Real::Set(child, yId(), record.y);
            TDataStd_Integer::Set(child, TDataStd_Integer::GetID(),
                                  static_cast<int>(record.number));
            TDataStd_Integer::Set(child, flagId(), record.flag);
        }
        m_document->CommitCommand();
    }

    // A label whose creation is undone stays, without attributes.
    double walk() const {
        double sum = 0.0;
        for (TDF_ChildIterator child(group()); child.More(); child.Next()) {
            TDF_Label const label = child.Value();
            auto const name = find<TDataStd_Name>(label, TDataStd_Name::GetID());
            if (name.IsNull()) continue;
            auto const x = find<TDataStd_Real>(label, TDataStd_Real::GetID());
            auto const y = find<TDataStd_Real>(label, yId());
            auto const number = find<TDataStd_Integer>(label, TDataStd_Integer::GetID());
            auto const flag = find<TDataStd_Integer>(label, flagId());
            TCollection_ExtendedString const & text = name->Get();
            // As weight() does it, without a copy of the text.
            sum += static_cast<double>(text.Length()) +
                   static_cast<double>(text.Value(text.Length())) + x->Get() + y->Get() +
                   static_cast<double>(number->Get()) + static_cast<double>(flag->Get());
        }
        return sum;
    }

    void changeAll(double x) {
        m_document->NewCommand();
        for (TDF_ChildIterator child(group()); child.More(); child.Next())
            TDataStd_Real::Set(child.Value(), TDataStd_Real::GetID(), x);
        m_document->CommitCommand();
    }

    // To find a label by its number is to walk a list, so programs keep the labels they work on.
    void indexChildren() {
        for (TDF_ChildIterator child(group()); child.More(); child.Next())
            m_children.push_back(child.Value());
    }

    void changeOne(std::size_t i, double x) {
        m_document->NewCommand();
        TDataStd_Real::Set(m_children[i], TDataStd_Real::GetID(), x);
        m_document->CommitCommand();
    }

    void undo() { m_document->Undo(); }
    void redo() { m_document->Redo(); }

    void saveAs(std::filesystem::path const & file) {
        PCDM_StoreStatus const status = m_application->SaveAs(m_document, file.c_str());
        if (status != PCDM_SS_OK) fail("SaveAs", status);
    }

    void save() {
        PCDM_StoreStatus const status = m_application->Save(m_document);
        if (status != PCDM_SS_OK) fail("Save", status);
    }

    void load(std::filesystem::path const & file) {
        PCDM_ReaderStatus const status = m_application->Open(file.c_str(), m_document);
        if (status != PCDM_RS_OK) fail("Open", status);
    }

private:
    TDF_Label group() const { return m_document->Main().FindChild(1); }

    opencascade::handle<TDocStd_Application> m_application;
    opencascade::handle<TDocStd_Document> m_document;
    std::vector<TDF_Label> m_children;
};

[[maybe_unused]] bool const s_registered = [] {
    registerCreation<OcafDocument>();
    registerChangeAll<OcafDocument>();
    registerChangeEach<OcafDocument>();
    registerUndoOfCreation<OcafDocument>();
    registerUndoOfChanges<OcafDocument>();
    registerFiles<OcafDocument>();
    return true;
}();

} // namespace

} // namespace Vn::Benchmarks
