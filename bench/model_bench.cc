// SPDX-License-Identifier: Apache-2.0
// Cost of building the Special Pages lists: inserts added one at a time (as the inserts
// dialog does) and all at once (as reading a ticket does), and exception ranges merged
// one at a time and all at once. Page numbers and ranges are random with a fixed seed;
// each iteration builds a fresh list and destroys it.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "model/special_page_lists.h"

namespace {

using namespace varno::model;

// Inserts after random pages of a document with as many pages as inserts.
std::vector<Insert> RandomInserts(std::int32_t count) {
  std::mt19937 random(1123);
  std::uniform_int_distribution<std::int32_t> page(0, count);
  std::vector<Insert> inserts(static_cast<std::size_t>(count));
  for (Insert& insert : inserts) insert.setStartPage(page(random));
  return inserts;
}

// Ranges of 1 to 20 pages anywhere in a document of ten pages per range, so that new
// ranges split, trim and swallow older ones as well as fill gaps.
std::vector<ExceptionPage> RandomRanges(std::int32_t count) {
  std::mt19937 random(2026);
  std::uniform_int_distribution<std::int32_t> first(1, count * 10);
  std::uniform_int_distribution<std::int32_t> length(1, 20);
  std::vector<ExceptionPage> ranges(static_cast<std::size_t>(count));
  for (ExceptionPage& range : ranges) {
    range.setStartPage(first(random));
    range.setEndPage(range.startPage() + length(random) - 1);
  }
  return ranges;
}

template <typename Page>
std::vector<const SpecialPage*> View(const std::vector<Page>& pages) {
  std::vector<const SpecialPage*> view;
  for (const Page& page : pages) view.push_back(&page);
  return view;
}

template <typename List, typename Page>
void AddOneAtATime(benchmark::State& state, const std::vector<Page>& pages) {
  const std::vector<const SpecialPage*> view = View(pages);
  for (auto _ : state) {
    List list;
    for (const SpecialPage* page : view) list.add(SpecialPageSpan(&page, 1));
    benchmark::DoNotOptimize(list.count());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(pages.size()));
}

template <typename List, typename Page>
void AddAsOneArray(benchmark::State& state, const std::vector<Page>& pages) {
  const std::vector<const SpecialPage*> view = View(pages);
  for (auto _ : state) {
    List list;
    list.add(view);
    benchmark::DoNotOptimize(list.count());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(pages.size()));
}

void BM_InsertsOneAtATime(benchmark::State& state) {
  AddOneAtATime<InsertList>(state, RandomInserts(static_cast<std::int32_t>(state.range(0))));
}

void BM_InsertsAsOneArray(benchmark::State& state) {
  AddAsOneArray<InsertList>(state, RandomInserts(static_cast<std::int32_t>(state.range(0))));
}

void BM_ExceptionRangesOneAtATime(benchmark::State& state) {
  AddOneAtATime<ExceptionPageList>(state, RandomRanges(static_cast<std::int32_t>(state.range(0))));
}

void BM_ExceptionRangesAsOneArray(benchmark::State& state) {
  AddAsOneArray<ExceptionPageList>(state, RandomRanges(static_cast<std::int32_t>(state.range(0))));
}

// The floor under the insert figures: the same inserts cloned into a vector, in order, as
// every list has to clone them. Its growth is the memory's, not any search's.
void BM_InsertClonesOnly(benchmark::State& state) {
  const std::vector<Insert> inserts = RandomInserts(static_cast<std::int32_t>(state.range(0)));
  for (auto _ : state) {
    std::vector<std::unique_ptr<SpecialPage>> clones;
    for (const Insert& insert : inserts) clones.push_back(insert.clone());
    benchmark::DoNotOptimize(clones.data());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(inserts.size()));
}

// The number of ranges that survive the merge, for reading the figures.
void BM_ExceptionRangesSurviving(benchmark::State& state) {
  const std::vector<ExceptionPage> ranges = RandomRanges(static_cast<std::int32_t>(state.range(0)));
  ExceptionPageList list;
  list.add(View(ranges));
  for (auto _ : state) benchmark::DoNotOptimize(list.count());
  state.counters["ranges_left"] = list.count();
}

// 1,000, 10,000 and 100,000 pages.
void PageCounts(benchmark::internal::Benchmark* bench) {
  bench->Arg(1000)->Arg(10000)->Arg(100000);
}

BENCHMARK(BM_InsertsOneAtATime)->Apply(PageCounts)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_InsertsAsOneArray)->Apply(PageCounts)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ExceptionRangesOneAtATime)->Apply(PageCounts)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ExceptionRangesAsOneArray)->Apply(PageCounts)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_InsertClonesOnly)->Apply(PageCounts)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ExceptionRangesSurviving)->Apply(PageCounts)->Iterations(1);

}  // namespace
