// The operations that are timed, the same for every contender.  A contender is a class with those
// of these members that it has the operations for:
//
//   static constexpr char const * c_name;         // in the names of its benchmarks
//   static constexpr char const * c_extension;    // of its files, such as ".bin"
//   static constexpr bool c_firstSaveWaits;       // saveAs() returns when the file is on the disk
//   static constexpr bool c_laterSaveWaits;       // so does save()
//   void create(std::span<Record const>);         // one group of these, in one transaction
//   double walk();                                // the sum of weight() over the children
//   void changeAll(double x);                     // field x of each, in one transaction
//   void changeOne(std::size_t i, double x);      // field x of child i, in a transaction
//   void indexChildren();                         // optional: finds what changeOne() goes by
//   void undo(); void redo();                     // the latest transaction
//   void saveAs(std::filesystem::path const &);   // a new file
//   void save();                                  // what has changed since, to the same file
//   void load(std::filesystem::path const &);
//
// Its file registers the groups of operations that it has.  The names are
// BM_Document/<contender>/<operation>/<children>, followed by what the framework adds.
//
// Times are of the operation alone: what it needs is made before, and what it has done is checked
// after.  "per_entity" and "per_transaction" are seconds.  A save is timed until the file is on the
// disk: if the contender doesn't see to that, a sync stands after its save, and the counter "sync"
// says how many seconds of the save that is.  Files are read back from the cache of the system.

#ifndef VN_BENCHMARKS_DOCUMENT_DOCUMENTBENCHMARKS_H
#define VN_BENCHMARKS_DOCUMENT_DOCUMENTBENCHMARKS_H

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Benchmarks/Document/DocumentWorkload.h"

namespace Vn::Benchmarks {

// How many transactions of one change are timed at most, how many saves, and for how long.
constexpr std::size_t c_mostTransactions = 100'000;
constexpr std::size_t c_mostSaves = 100;
constexpr double c_sampleSeconds = 2.0;

// Seconds that `work` takes.
template <class Work>
double secondsOf(Work work) {
    auto const start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Sample {
    std::size_t count;
    double seconds;
};

// Calls work(0), work(1), ... at most that often, until the time for it is over.
template <class Work>
Sample sample(std::size_t most, Work work) {
    // The clock isn't read each time: that would cost more than the cheapest work.
    constexpr std::size_t c_stretch = 16;
    Sample done{0, 0.0};
    while (done.count < most && done.seconds < c_sampleSeconds) {
        std::size_t const end = std::min(done.count + c_stretch, most);
        done.seconds += secondsOf([&] {
            for (std::size_t i = done.count; i < end; ++i) work(i);
        });
        done.count = end;
    }
    return done;
}

// The child that transaction i of a sample changes: all over the group, and none twice, for the
// sizes have no factor in common with the step.
inline std::size_t sampledChild(std::size_t i, std::size_t children) { return i * 7919 % children; }

inline std::size_t children(benchmark::State const & state) {
    return static_cast<std::size_t>(state.range(0));
}

inline std::size_t sampleSize(std::size_t children) {
    return std::min(children, c_mostTransactions);
}

// Seconds for one of the items that all iterations together have done.
inline benchmark::Counter secondsPer(std::size_t items) {
    return {static_cast<double>(items), benchmark::Counter::kIsRate | benchmark::Counter::kInvert};
}

inline std::size_t allIterations(benchmark::State const & state) {
    return children(state) * static_cast<std::size_t>(state.iterations());
}

// The contender with its children.
template <class Contender>
std::unique_ptr<Contender> created(std::size_t count) {
    settleHeap();
    auto contender = std::make_unique<Contender>();
    contender->create(records(count));
    if constexpr (requires { contender->indexChildren(); }) contender->indexChildren();
    return contender;
}

// The name of a file of the contender's.
template <class Contender>
std::filesystem::path fileIn(TemporaryFolder const & folder, int number = 0) {
    return folder.file("document" + std::to_string(number) + Contender::c_extension);
}

// Fails the benchmark unless the walk adds up to what it should.
template <class Contender>
void check(benchmark::State & state, Contender & contender, double expected) {
    if (contender.walk() != expected) state.SkipWithError("the contents are wrong");
}

template <class Operation>
void registerOne(char const * contender, char const * operation, bool repeats, Operation run) {
    for (Size const & size : c_sizes) {
        std::string const name = std::string("BM_Document/") + contender + '/' + operation;
        benchmark::RegisterBenchmark(name.c_str(), run)
            ->Arg(static_cast<std::int64_t>(size.children))
            ->Iterations(repeats ? size.iterations : 1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

template <class Contender>
void create(benchmark::State & state) {
    auto const source = records(children(state));
    for (auto _ : state) {
        settleHeap();
        Contender contender;
        state.SetIterationTime(secondsOf([&] { contender.create(source); }));
        check(state, contender, expectedWeight(source));
    }
    state.counters["per_entity"] = secondsPer(allIterations(state));
}

template <class Contender>
void walk(benchmark::State & state) {
    auto const contender = created<Contender>(children(state));
    for (auto _ : state)
        state.SetIterationTime(secondsOf([&] { benchmark::DoNotOptimize(contender->walk()); }));
    check(state, *contender, expectedWeight(records(children(state))));
    state.counters["per_entity"] = secondsPer(allIterations(state));
}

// Bytes for each child: "created" as it stands after the transaction that made it, what undo needs
// of it included; "loaded" as it comes from a file.  The time says nothing.
template <class Contender>
void memory(benchmark::State & state) {
    double const count = static_cast<double>(children(state));
    auto const source = records(children(state));
    TemporaryFolder const folder;
    for (auto _ : state) {
        settleHeap();
        auto contender = std::make_unique<Contender>();
        std::size_t before = heapInUse();
        state.SetIterationTime(secondsOf([&] { contender->create(source); }));
        state.counters["created"] = static_cast<double>(heapInUse() - before) / count;
        if constexpr (requires { contender->load(fileIn<Contender>(folder)); }) {
            contender->saveAs(fileIn<Contender>(folder));
            contender = std::make_unique<Contender>();
            before = heapInUse();
            contender->load(fileIn<Contender>(folder));
            state.counters["loaded"] = static_cast<double>(heapInUse() - before) / count;
        }
    }
}

template <class Contender>
void changeAll(benchmark::State & state) {
    auto const contender = created<Contender>(children(state));
    double x = 0.0;
    for (auto _ : state) {
        x -= 1.0;
        state.SetIterationTime(secondsOf([&] { contender->changeAll(x); }));
    }
    check(state, *contender, expectedWeight(records(children(state)), x));
    state.counters["per_entity"] = secondsPer(allIterations(state));
}

template <class Contender>
void changeEach(benchmark::State & state) {
    std::size_t const count = children(state);
    auto const contender = created<Contender>(count);
    std::size_t done = 0;
    for (auto _ : state) {
        Sample const taken = sample(sampleSize(count), [&](std::size_t i) {
            contender->changeOne(sampledChild(i, count), -1.0);
        });
        state.SetIterationTime(taken.seconds);
        done += taken.count;
    }
    state.counters["transactions"] = static_cast<double>(done);
    state.counters["per_transaction"] = secondsPer(done);
}

// Undo, or redo, of one transaction on all children, which `act` makes; there and back each time.
template <class Contender, class Act>
void replayAll(benchmark::State & state, bool redo, Act act, double before, double after) {
    auto const contender = created<Contender>(children(state));
    act(*contender);
    for (auto _ : state) {
        double const undoing = secondsOf([&] { contender->undo(); });
        check(state, *contender, before);
        double const redoing = secondsOf([&] { contender->redo(); });
        state.SetIterationTime(redo ? redoing : undoing);
    }
    check(state, *contender, after);
    state.counters["per_entity"] = secondsPer(allIterations(state));
}

template <class Contender>
void replayCreate(benchmark::State & state, bool redo) {
    replayAll<Contender>(
        state, redo, [](Contender &) {}, 0.0, expectedWeight(records(children(state))));
}

template <class Contender>
void replayChangeAll(benchmark::State & state, bool redo) {
    auto const source = records(children(state));
    replayAll<Contender>(
        state, redo, [](Contender & contender) { contender.changeAll(-1.0); },
        expectedWeight(source), expectedWeight(source, -1.0));
}

// Undo, or redo, of transactions of one change each.
template <class Contender>
void replayEach(benchmark::State & state, bool redo) {
    std::size_t const count = children(state);
    auto const contender = created<Contender>(count);
    std::size_t done = 0;
    for (auto _ : state) {
        Sample const made = sample(sampleSize(count), [&](std::size_t i) {
            contender->changeOne(sampledChild(i, count), -1.0);
        });
        double const changed = contender->walk();
        Sample const undone = sample(made.count, [&](std::size_t) { contender->undo(); });
        if (undone.count == made.count) check(state, *contender, expectedWeight(records(count)));
        Sample const redone = sample(undone.count, [&](std::size_t) { contender->redo(); });
        if (redone.count == undone.count) check(state, *contender, changed);
        Sample const & taken = redo ? redone : undone;
        state.SetIterationTime(taken.seconds);
        done += taken.count;
    }
    state.counters["transactions"] = static_cast<double>(done);
    state.counters["per_transaction"] = secondsPer(done);
}

// Bytes on the heap that a change needs to be undone: "together" when all are of one transaction,
// "apart" when each has its own.  The time says nothing.
template <class Contender>
void memoryOfUndo(benchmark::State & state) {
    std::size_t const count = children(state);
    for (auto _ : state) {
        auto contender = created<Contender>(count);
        std::size_t before = heapInUse();
        contender->changeAll(-1.0);
        state.counters["together"] =
            static_cast<double>(heapInUse() - before) / static_cast<double>(count);
        contender = created<Contender>(count);
        before = heapInUse();
        Sample const made = sample(sampleSize(count), [&](std::size_t i) {
            contender->changeOne(sampledChild(i, count), -1.0);
        });
        state.counters["apart"] =
            static_cast<double>(heapInUse() - before) / static_cast<double>(made.count);
        state.SetIterationTime(made.seconds);
    }
}

// A save to its end on the disk, and how much of that was a sync after it.
struct SaveTime {
    double seconds;
    double syncing;
};

template <class Save>
SaveTime timeSave(std::filesystem::path const & file, bool waits, Save save) {
    double const saving = secondsOf(save);
    double const syncing = waits ? 0.0 : secondsOf([&] { waitForDisk(file); });
    return {saving + syncing, syncing};
}

// Disks are moody, so it is the median save that counts.
inline SaveTime median(std::vector<SaveTime> times) {
    auto const middle = times.begin() + std::ssize(times) / 2;
    std::ranges::nth_element(times, middle, {}, &SaveTime::seconds);
    return *middle;
}

// Saves over and over, c_mostSaves times at most, and at least three times.
template <class Save>
void measureSaves(benchmark::State & state, Save save) {
    for (auto _ : state) {
        std::vector<SaveTime> times;
        double spent = 0.0;
        while (times.size() < 3 || (times.size() < c_mostSaves && spent < c_sampleSeconds)) {
            times.push_back(save());
            spent += times.back().seconds;
        }
        SaveTime const typical = median(times);
        state.SetIterationTime(typical.seconds);
        state.counters["sync"] = typical.syncing;
        state.counters["saves"] = static_cast<double>(times.size());
    }
    state.counters["per_entity"] = secondsPer(allIterations(state));
}

inline double bytesPerEntity(benchmark::State const & state, std::filesystem::path const & file) {
    return static_cast<double>(std::filesystem::file_size(file)) /
           static_cast<double>(children(state));
}

// Each time a file that isn't there yet.
template <class Contender>
void saveFirst(benchmark::State & state) {
    auto const contender = created<Contender>(children(state));
    TemporaryFolder const folder;
    std::filesystem::path file;
    int saves = 0;
    measureSaves(state, [&] {
        if (saves > 0) std::filesystem::remove(file);
        file = fileIn<Contender>(folder, saves++);
        return timeSave(file, Contender::c_firstSaveWaits, [&] { contender->saveAs(file); });
    });
    state.counters["file_bytes"] = bytesPerEntity(state, file);
}

template <class Contender>
void saveAfterOneChange(benchmark::State & state) {
    std::size_t const count = children(state);
    auto const contender = created<Contender>(count);
    TemporaryFolder const folder;
    auto const file = fileIn<Contender>(folder);
    contender->saveAs(file);
    waitForDisk(file);
    // The first one may have things to open and prepare that stay.
    std::size_t changes = 0;
    auto const change = [&] { contender->changeOne(sampledChild(changes++, count), -1.0); };
    change();
    contender->save();
    measureSaves(state, [&] {
        change();
        return timeSave(file, Contender::c_laterSaveWaits, [&] { contender->save(); });
    });
    state.counters["file_bytes"] = bytesPerEntity(state, file);
    Contender other;
    other.load(file);
    check(state, other, contender->walk());
}

template <class Contender>
void load(benchmark::State & state) {
    TemporaryFolder const folder;
    auto const file = fileIn<Contender>(folder);
    created<Contender>(children(state))->saveAs(file);
    for (auto _ : state) {
        settleHeap();
        Contender contender;
        state.SetIterationTime(secondsOf([&] { contender.load(file); }));
        check(state, contender, expectedWeight(records(children(state))));
    }
    state.counters["per_entity"] = secondsPer(allIterations(state));
}

// The groups of operations.

template <class Contender>
void registerCreation() {
    registerOne(Contender::c_name, "create", true, create<Contender>);
    registerOne(Contender::c_name, "walk", true, walk<Contender>);
    registerOne(Contender::c_name, "memory", false, memory<Contender>);
}

template <class Contender>
void registerChangeAll() {
    registerOne(Contender::c_name, "changeAll", true, changeAll<Contender>);
}

template <class Contender>
void registerChangeEach() {
    registerOne(Contender::c_name, "changeEach", false, changeEach<Contender>);
}

template <class Contender>
void registerUndoOfCreation() {
    auto const replay = [](bool redo) {
        return [redo](benchmark::State & state) { replayCreate<Contender>(state, redo); };
    };
    registerOne(Contender::c_name, "undoCreate", true, replay(false));
    registerOne(Contender::c_name, "redoCreate", true, replay(true));
}

template <class Contender>
void registerUndoOfChanges() {
    auto const all = [](bool redo) {
        return [redo](benchmark::State & state) { replayChangeAll<Contender>(state, redo); };
    };
    auto const each = [](bool redo) {
        return [redo](benchmark::State & state) { replayEach<Contender>(state, redo); };
    };
    registerOne(Contender::c_name, "undoChangeAll", true, all(false));
    registerOne(Contender::c_name, "redoChangeAll", true, all(true));
    registerOne(Contender::c_name, "undoChangeEach", false, each(false));
    registerOne(Contender::c_name, "redoChangeEach", false, each(true));
    registerOne(Contender::c_name, "memoryOfUndo", false, memoryOfUndo<Contender>);
}

template <class Contender>
void registerFiles() {
    registerOne(Contender::c_name, "saveFirst", false, saveFirst<Contender>);
    registerOne(Contender::c_name, "saveAfterOneChange", false, saveAfterOneChange<Contender>);
    registerOne(Contender::c_name, "load", true, load<Contender>);
}

} // namespace Vn::Benchmarks

#endif
