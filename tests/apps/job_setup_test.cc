// SPDX-License-Identifier: Apache-2.0
// The framework's own settings, in the tickets and as the job options the scheduler applies.
#include "common/job_setup.h"

#include <gtest/gtest.h>

#include "platform/print/framework_keys.h"

namespace varno::hosts {
namespace {

TEST(FrameworkSettings, ReachTheTicketsAndTheScheduler) {
  struct Case {
    std::optional<int> copies, firstPage, lastPage, orientation;
    std::vector<std::pair<std::string, std::string>> options;
  } cases[] = {
      {{}, {}, {}, {}, {}},
      {3, 2, 5, 1, {{"copies", "3"}, {"page-ranges", "2-5"}, {"orientation-requested", "3"}}},
      {{}, {}, {}, 2, {{"orientation-requested", "4"}}},
      {{}, {}, {}, 3, {{"orientation-requested", "6"}}},  // IPP's reverse portrait
      {{}, {}, {}, 4, {{"orientation-requested", "5"}}},
      {{}, 2, {}, {}, {}},  // half a range is no range
      {{}, {}, {}, 9, {}},
  };
  for (const Case& c : cases) {
    FrameworkSettings settings;
    settings.copies = c.copies;
    settings.firstPage = c.firstPage;
    settings.lastPage = c.lastPage;
    settings.orientation = c.orientation;
    std::vector<std::pair<std::string, std::string>> options;
    for (const print::JobOption& option : FrameworkJobOptions(settings)) options.emplace_back(option.name, option.value);
    EXPECT_EQ(options, c.options);
  }

  print::Session session;
  WriteFrameworkSettings({.jobName = "report.pdf", .copies = 2, .firstPage = 3, .lastPage = 4, .orientation = 2},
                         session);
  std::string name;
  std::int32_t copies = 0, first = 0, last = 0, orientation = 0;
  EXPECT_EQ(session.printSettings().getString(print::kJobNameKey, name), noErr);
  EXPECT_EQ(session.printSettings().getNumber(print::kCopiesKey, copies), noErr);
  EXPECT_EQ(session.printSettings().getNumber(print::kFirstPageKey, first), noErr);
  EXPECT_EQ(session.printSettings().getNumber(print::kLastPageKey, last), noErr);
  EXPECT_EQ(session.pageFormat().getNumber(print::kOrientationKey, orientation), noErr);
  EXPECT_EQ(std::tie(name, copies, first, last, orientation), std::make_tuple("report.pdf", 2, 3, 4, 2));
}

}  // namespace
}  // namespace varno::hosts
