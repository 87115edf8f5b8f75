// SPDX-License-Identifier: Apache-2.0
// Cost of the property-list work every Sync does: building a ticket, reading it back,
// and writing and reading the session file a saved job reuses.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "platform/plist/file.h"
#include "platform/print/session.h"

namespace {

using namespace varno;

// A print-settings ticket of realistic size: `items` maker keys, each a small record.
void FillTicket(print::Ticket ticket, int items) {
  for (int i = 0; i < items; ++i) {
    plist::Dictionary record{{"Size", 1}, {"Width", 612.0}, {"Length", 792.0},
                             {"Color", 6}, {"Description", "Plain white 20 lb"},
                             {"Ranges", plist::Array{1, 2, 3, 4}}};
    ticket.setValue("com.varno.print.Record" + std::to_string(i), record,
                    "com.varno.printingmanager");
  }
  plist::Dictionary ppd = ticket.ppdDictionary();
  for (int i = 0; i < 40; ++i) ppd.set("VNOption" + std::to_string(i), "Choice");
}

void BM_TicketWriteAndRead(benchmark::State& state) {
  const int items = static_cast<int>(state.range(0));
  for (auto _ : state) {
    print::Ticket ticket;
    FillTicket(ticket, items);
    std::int32_t sum = 0;
    for (int i = 0; i < items; ++i) {
      plist::Dictionary record;
      if (ticket.getDictionary("com.varno.print.Record" + std::to_string(i), record) == noErr)
        sum += record.getNumber<std::int32_t>("Color").value_or(0);
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * items);
}
BENCHMARK(BM_TicketWriteAndRead)->Arg(10)->Arg(100)->Arg(1000);

void BM_SessionSaveAndLoad(benchmark::State& state) {
  print::Session session;
  session.setPrinterPPD("/usr/share/ppd/varno.ppd");
  FillTicket(session.printSettings(), static_cast<int>(state.range(0)));
  std::filesystem::path file = std::filesystem::temp_directory_path() / "varno-bench.session";
  std::size_t bytes = 0;
  for (auto _ : state) {
    if (!session.save(file)) state.SkipWithError("save failed");
    std::unique_ptr<print::Session> back = print::Session::load(file);
    if (!back) state.SkipWithError("load failed");
    bytes = std::filesystem::file_size(file);
  }
  std::filesystem::remove(file);
  state.counters["file_bytes"] = static_cast<double>(bytes);
}
BENCHMARK(BM_SessionSaveAndLoad)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);

void BM_ParseLargeDictionary(benchmark::State& state) {
  plist::Dictionary big;
  for (int i = 0; i < state.range(0); ++i) big.set("Key" + std::to_string(i), "Value");
  std::string xml = *plist::ToXML(big);
  for (auto _ : state) benchmark::DoNotOptimize(plist::Parse(xml));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(xml.size()));
}
BENCHMARK(BM_ParseLargeDictionary)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
