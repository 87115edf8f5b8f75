// SPDX-License-Identifier: Apache-2.0
// The host's pictures: files of the bundle's Resources folder found by name, each looked
// up once per dialog. A renderer paints the file a control's picture name resolves to.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace varno::host {

class ImageManager {
 public:
  explicit ImageManager(std::filesystem::path resources) : resources_(std::move(resources)) {}

  // The picture's file, or nullopt when the folder has no regular file of that name.
  // Names are file names only: a path that leaves the folder is never found.
  std::optional<std::filesystem::path> picture(std::string_view name);

 private:
  std::filesystem::path resources_;
  std::map<std::string, std::optional<std::filesystem::path>, std::less<>> found_;
};

}  // namespace varno::host
