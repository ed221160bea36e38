// Qt's undo stack over a vector of structs: changes only.  A command holds the old value and the
// new one.

#include <QUndoStack>

#include "Benchmarks/Document/DocumentBenchmarks.h"

namespace Vn::Benchmarks {

namespace {

class SetX : public QUndoCommand {
public:
    SetX(std::vector<Record> & records, std::size_t i, double x)
        : m_records(records), m_i(i), m_old(records[i].x), m_new(x) {}

    void undo() override { m_records[m_i].x = m_old; }
    void redo() override { m_records[m_i].x = m_new; }

private:
    std::vector<Record> & m_records;
    std::size_t m_i;
    double m_old;
    double m_new;
};

class QtDocument {
public:
    static constexpr char const * c_name = "qundostack";

    void create(std::span<Record const> source) { m_records.assign(source.begin(), source.end()); }

    double walk() const { return expectedWeight(m_records); }

    void changeAll(double x) {
        m_stack.beginMacro(QString());
        for (std::size_t i = 0; i < m_records.size(); ++i) changeOne(i, x);
        m_stack.endMacro();
    }

    // The stack owns what is pushed.
    void changeOne(std::size_t i, double x) {
        m_stack.push(std::make_unique<SetX>(m_records, i, x).release());
    }

    void undo() { m_stack.undo(); }
    void redo() { m_stack.redo(); }

private:
    std::vector<Record> m_records;
    QUndoStack m_stack;
};

[[maybe_unused]] bool const s_registered = [] {
    registerChangeAll<QtDocument>();
    registerChangeEach<QtDocument>();
    registerUndoOfChanges<QtDocument>();
    return true;
}();

} // namespace

} // namespace Vn::Benchmarks
