// SPDX-License-Identifier: Apache-2.0
#include "host/image_manager.h"

namespace varno::host {

std::optional<std::filesystem::path> ImageManager::picture(std::string_view name) {
  if (auto known = found_.find(name); known != found_.end()) return known->second;
  std::optional<std::filesystem::path> file;
  const std::filesystem::path candidate = resources_ / name;
  std::error_code ec;
  if (!name.empty() && std::filesystem::path(name).filename() == name &&
      std::filesystem::is_regular_file(candidate, ec))
    file = candidate;
  found_.emplace(std::string(name), file);
  return file;
}

}  // namespace varno::host
