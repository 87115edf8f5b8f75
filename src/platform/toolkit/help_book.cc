// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/help_book.h"

#include <cctype>
#include <fstream>
#include <sstream>

#include "platform/bundle/bundle.h"

namespace varno::toolkit {

namespace {

constexpr const char* kIndexPage = "index.html";

bool IsInside(const std::filesystem::path& folder, const std::filesystem::path& file) {
  const std::filesystem::path relative = file.lexically_normal().lexically_relative(folder);
  return !relative.empty() && *relative.begin() != "..";
}

bool PageHasAnchor(const std::filesystem::path& page, const std::string& anchor) {
  std::ifstream in(page);
  std::stringstream text;
  text << in.rdbuf();
  const std::string body = text.str();
  return body.find("id=\"" + anchor + "\"") != std::string::npos ||
         body.find("name=\"" + anchor + "\"") != std::string::npos;
}

std::string PercentEncoded(const std::string& path) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  for (unsigned char c : path) {
    if (std::isalnum(c) || c == '/' || c == '-' || c == '_' || c == '.' || c == '~') {
      out += static_cast<char>(c);
    } else {
      out += '%';
      out += kHex[c >> 4];
      out += kHex[c & 15];
    }
  }
  return out;
}

}  // namespace

OSStatus HelpBooks::add(const std::filesystem::path& bundleFolder) {
  bundle::BundleRef bundle = bundle::Bundle::Open(bundleFolder);
  if (!bundle) return fnfErr;
  const plist::Value* name = bundle->infoValue("CFBundleHelpBookName");
  const plist::Value* folder = bundle->infoValue("CFBundleHelpBookFolder");
  if (!name || !name->asString()) return paramErr;
  if (!folder || !folder->asString()) return fnfErr;
  std::optional<std::filesystem::path> pages = bundle->resourcePath(*folder->asString());
  if (!pages || !std::filesystem::is_directory(*pages)) return fnfErr;
  folders_[*name->asString()] = *pages;
  return noErr;
}

std::optional<std::filesystem::path> HelpBooks::page(const HelpRequest& request) const {
  auto book = folders_.find(request.book);
  if (book == folders_.end()) return std::nullopt;
  const std::filesystem::path& folder = book->second;
  if (request.page.empty() && !request.anchor.empty()) {
    std::error_code ec;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, ec)) {
      const std::string extension = entry.path().extension().string();
      if ((extension == ".htm" || extension == ".html") && PageHasAnchor(entry.path(), request.anchor))
        return entry.path();
    }
    return std::nullopt;
  }
  // A page path from a caller never leads out of the book.
  const std::filesystem::path file = folder / (request.page.empty() ? kIndexPage : request.page);
  if (!IsInside(folder, file) || !std::filesystem::is_regular_file(file)) return std::nullopt;
  return file.lexically_normal();
}

std::string HelpBooks::url(const HelpRequest& request) const {
  std::optional<std::filesystem::path> file = page(request);
  if (!file) return {};
  std::string url = "file://" + PercentEncoded(file->string());
  if (!request.anchor.empty()) url += "#" + PercentEncoded(request.anchor);
  return url;
}

}  // namespace varno::toolkit
