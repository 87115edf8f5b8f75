// SPDX-License-Identifier: Apache-2.0
// What the hosts read from the printer's PPD itself: each option's default
// choice, for the ticket, and its choices by keyword and text, to name them on the
// command line.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace varno::hosts {

struct PPDChoice {
  std::string keyword;
  std::string text;  // as the PPD gives it
};

struct PPDDefaults {
  std::string manufacturer;
  std::string nickName;
  // (main keyword, default choice keyword) in the file's option order.
  std::vector<std::pair<std::string, std::string>> choices;
  // (main keyword, its choices in file order) for every option.
  std::vector<std::pair<std::string, std::vector<PPDChoice>>> options;

  // The choices of `keyword`, or null when the PPD has no such option.
  const std::vector<PPDChoice>* choicesOf(std::string_view keyword) const;
};

// Opens the PPD and reads every option's default choice and choices. False, with
// libcups' message and the line number in `error`, when the file is missing or malformed.
bool ReadPPDDefaults(const std::filesystem::path& ppd, PPDDefaults& out, std::string& error);

}  // namespace varno::hosts
