// SPDX-License-Identifier: Apache-2.0
// The second process of the store's concurrency tests. The store folder comes from
// VARNO_SUPPORT_DIR, as for every program of the product.
//
//   watermark_store_worker churn TAG COUNT   COUNT rounds of WriterRound, then exit 0
#include <cstdlib>
#include <cstring>
#include <string>

#include "panels/watermark_test_records.h"

using varno::testing::WriterRound;

int main(int argc, char** argv) {
  if (argc != 4 || std::strcmp(argv[1], "churn") != 0) return 2;
  for (int i = 0, count = std::atoi(argv[3]); i < count; ++i) WriterRound(argv[2], i, false);
  return 0;
}
