// A document of many subjects in twenty folders shown in the object-types tree, the sets tree and
// the table, against QStandardItemModel trees and table with QSortFilterProxyModel doing the same
// work on the same names in the same run: build, natural sort by name, filter by a text, remove
// half. Each step runs at 25k, 50k and 100k subjects so that growth shows; bytes per subject are
// reported from the allocator's bytes in use.
#include "BenchRatios.h"

#include "items/QRKAbstractItemModelNode.h"
#include "items/QRKAbstractSubject.h"
#include "items/QRKObjectTypesTreeItemModel.h"
#include "items/QRKSetsTreeItemModel.h"
#include "items/QRKSortFilterProxyModel.h"
#include "items/QRKTableItemModel.h"

#include <QCollator>
#include <QGuiApplication>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>

#include <memory>
#include <malloc.h>

using namespace rkBase;

namespace {

constexpr int kFolders = 20;
const QString kFilter = QStringLiteral("well 1");

// Bytes the allocator has handed out and not taken back: unlike the resident set, this does not
// depend on what earlier runs left in the allocator's free lists.
long heapInUse() { return long(mallinfo2().uordblks); }

QStringList names(int n)
{
    QStringList out;
    out.reserve(n);
    quint32 x = 12345;
    for (int i = 0; i < n; ++i) {
        x = x * 1664525u + 1013904223u;
        out << QStringLiteral("Well %1-%2").arg(x % 997).arg(i);
    }
    return out;
}

// ---- the library ----

struct Doc {
    std::unique_ptr<QRKAbstractModelBrowserData> data{new QRKAbstractModelBrowserData};
    std::vector<std::unique_ptr<QRKSimpleSubject>> subjects;
    QRKTableProxyItemModel proxy;

    void build(const QStringList& n)
    {
        data->restart();
        subjects.reserve(n.size());
        for (int i = 0; i < n.size(); ++i) {
            subjects.emplace_back(new QRKSimpleSubject(n[i], Qt::red, Qt::Checked));
            data->objectTypesModel()->addSubjectTo(i % kFolders, subjects.back().get());
            data->setsModel()->addSubjectTo(i % QRKSetsTreeItemModel::FolderCount, subjects.back().get());
        }
        data->tableModel()->setTreeRootNode(data->objectTypesModel()->rootNode());
        proxy.setSourceModel(data->tableModel());
        proxy.setFilterKeyColumn(1);
    }
    ~Doc()
    {
        // Models first: each takes its nodes out of the subjects' lists as it goes.
        proxy.setSourceModel(nullptr);
        data.reset();
    }
};

// ---- the peer ----

class CollatingProxy : public QSortFilterProxyModel {
public:
    CollatingProxy() { m_collator.setNumericMode(true), m_collator.setCaseSensitivity(Qt::CaseInsensitive); }

protected:
    bool lessThan(const QModelIndex& l, const QModelIndex& r) const override
    {
        return m_collator.compare(l.data().toString(), r.data().toString()) < 0;
    }

private:
    QCollator m_collator;
};

struct Peer {
    QStandardItemModel types, sets, table;
    CollatingProxy proxy;

    void build(const QStringList& n)
    {
        QList<QStandardItem*> typeFolders, setFolders;
        for (int f = 0; f < kFolders; ++f)
            typeFolders << new QStandardItem(QStringLiteral("Folder %1").arg(f));
        for (int f = 0; f < 6; ++f)
            setFolders << new QStandardItem(QStringLiteral("Set %1").arg(f));
        for (QStandardItem* f : typeFolders)
            types.appendRow(f);
        for (QStandardItem* f : setFolders)
            sets.appendRow(f);
        table.setColumnCount(3);
        for (int i = 0; i < n.size(); ++i) {
            typeFolders[i % kFolders]->appendRow(new QStandardItem(n[i]));
            setFolders[i % 6]->appendRow(new QStandardItem(n[i]));
        }
        // The table lists the tree's leaves folder by folder, as the library's does.
        for (int f = 0; f < kFolders; ++f)
            for (int i = f; i < n.size(); i += kFolders) {
                auto* check = new QStandardItem;
                check->setCheckState(Qt::Checked);
                table.appendRow({new QStandardItem(QString::number(i)), new QStandardItem(n[i]), check});
            }
        proxy.setSourceModel(&table);
        proxy.setFilterKeyColumn(1);
        proxy.setFilterCaseSensitivity(Qt::CaseInsensitive);
    }
};

template <class T> void setRange(benchmark::internal::Benchmark* b)
{
    b->Arg(25000)->Arg(50000)->Arg(100000)->Iterations(1)->Unit(benchmark::kMillisecond);
}

template <class T> void BM_Build(benchmark::State& state)
{
    const QStringList n = names(int(state.range(0)));
    for (auto _ : state) {
        const long before = heapInUse();
        auto doc = std::make_unique<T>();
        doc->build(n);
        state.PauseTiming();
        state.counters["bytes_per_subject"] = double(heapInUse() - before) / n.size();
        doc.reset();
        state.ResumeTiming();
    }
}

template <class T> void BM_Sort(benchmark::State& state)
{
    const QStringList n = names(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto doc = std::make_unique<T>();
        doc->build(n);
        state.ResumeTiming();
        doc->proxy.sort(1);
        state.PauseTiming();
        doc.reset();
        state.ResumeTiming();
    }
}

void filterBy(Doc& d, const QString& text) { d.proxy.setFilterText(text); }
void filterBy(Peer& p, const QString& text) { p.proxy.setFilterFixedString(text); }

template <class T> void BM_Filter(benchmark::State& state)
{
    const QStringList n = names(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto doc = std::make_unique<T>();
        doc->build(n);
        state.ResumeTiming();
        filterBy(*doc, kFilter);
        benchmark::DoNotOptimize(doc->proxy.rowCount());
        state.PauseTiming();
        doc.reset();
        state.ResumeTiming();
    }
}

void removeHalf(Doc& d)
{
    for (int i = int(d.subjects.size()) - 1; i >= 0; i -= 2)
        d.subjects[i]->clearNodes();
}

void removeHalf(Peer& p)
{
    const int n = p.table.rowCount();
    for (int f = kFolders - 1; f >= 0; --f) {
        QStandardItem* folder = p.types.item(f);
        for (int r = folder->rowCount() - 1; r >= 0; r -= 2)
            folder->removeRow(r);
    }
    for (int f = 5; f >= 0; --f) {
        QStandardItem* folder = p.sets.item(f);
        for (int r = folder->rowCount() - 1; r >= 0; r -= 2)
            folder->removeRow(r);
    }
    for (int r = n - 1; r >= 0; r -= 2)
        p.table.removeRow(r);
}

template <class T> void BM_RemoveHalf(benchmark::State& state)
{
    const QStringList n = names(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto doc = std::make_unique<T>();
        doc->build(n);
        doc->proxy.sort(1);
        state.ResumeTiming();
        removeHalf(*doc);
        state.PauseTiming();
        doc.reset();
        state.ResumeTiming();
    }
}

// The same removal with no proxy attached: what the models themselves cost, without the
// proxy's per-row remapping of a sorted view.
template <class T> void BM_RemoveHalfNoProxy(benchmark::State& state)
{
    const QStringList n = names(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto doc = std::make_unique<T>();
        doc->build(n);
        doc->proxy.setSourceModel(nullptr);
        state.ResumeTiming();
        removeHalf(*doc);
        state.PauseTiming();
        doc.reset();
        state.ResumeTiming();
    }
}

} // namespace

BENCHMARK_TEMPLATE(BM_Build, Doc)->Apply(setRange<Doc>);
BENCHMARK_TEMPLATE(BM_Build, Peer)->Apply(setRange<Peer>);
BENCHMARK_TEMPLATE(BM_Sort, Doc)->Apply(setRange<Doc>);
BENCHMARK_TEMPLATE(BM_Sort, Peer)->Apply(setRange<Peer>);
BENCHMARK_TEMPLATE(BM_Filter, Doc)->Apply(setRange<Doc>);
BENCHMARK_TEMPLATE(BM_Filter, Peer)->Apply(setRange<Peer>);
BENCHMARK_TEMPLATE(BM_RemoveHalf, Doc)->Apply(setRange<Doc>);
BENCHMARK_TEMPLATE(BM_RemoveHalf, Peer)->Apply(setRange<Peer>);
BENCHMARK_TEMPLATE(BM_RemoveHalfNoProxy, Doc)->Apply(setRange<Doc>);
BENCHMARK_TEMPLATE(BM_RemoveHalfNoProxy, Peer)->Apply(setRange<Peer>);

int main(int argc, char** argv)
{
    // Folder nodes carry icons, which need the GUI side of Qt; no window is shown.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    {
        // Warm the allocator and Qt's lazily built tables so that the first measured run is not
        // charged for them.
        const QStringList warm = names(25000);
        Doc().build(warm);
        Peer().build(warm);
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::vector<std::pair<std::string, std::string>> pairs;
    std::vector<double> targets;
    for (const char* step : {"BM_Build", "BM_Sort", "BM_Filter", "BM_RemoveHalf", "BM_RemoveHalfNoProxy"})
        for (const char* size : {"25000", "50000", "100000"}) {
            pairs.emplace_back(std::string(step) + "<Doc>/" + size + "/iterations:1",
                               std::string(step) + "<Peer>/" + size + "/iterations:1");
            targets.push_back(1.5);
        }
    return reporter.printRatios(pairs, targets) ? 0 : 1;
}
