// The printer's default choices, read from its PPD file.
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace varno::cli {

struct PPDDefaults {
  std::string manufacturer;
  std::string nickName;
  // (main keyword, default choice keyword) in the file's option order.
  std::vector<std::pair<std::string, std::string>> choices;
};

// Opens the PPD and reads every option's default choice. False, with libcups' message
// and the line number in `error`, when the file is missing or malformed.
bool ReadPPDDefaults(const std::filesystem::path& ppd, PPDDefaults& out, std::string& error);

}  // namespace varno::cli
