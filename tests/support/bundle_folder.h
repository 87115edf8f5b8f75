// SPDX-License-Identifier: Apache-2.0
// A minimal plug-in bundle for tests that need string tables of their own: Info.plist with
// an identifier and English as development region, and an English Localizable table.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/bundle/bundle.h"
#include "support/temp_dir.h"

namespace varno::testing {

// Key -> English text.
using StringEntries = std::vector<std::pair<std::string, std::string>>;

inline std::string XmlEscaped(std::string_view text) {
  std::string out;
  for (char c : text) {
    if (c == '&') out += "&amp;";
    else if (c == '<') out += "&lt;";
    else if (c == '>') out += "&gt;";
    else out += c;
  }
  return out;
}

// Writes <dir>/Test.plugin with `strings` as its English Localizable table; returns its path.
inline std::filesystem::path WriteBundleFolder(const TempDir& dir, const StringEntries& strings,
                                               std::string_view identifier = "com.varno.test") {
  const std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>\n";
  const std::string tail = "</dict></plist>\n";
  dir.write("Test.plugin/Contents/Info.plist",
            head + "<key>CFBundleIdentifier</key><string>" + XmlEscaped(identifier) +
                "</string>\n<key>CFBundleDevelopmentRegion</key><string>en</string>\n" + tail);
  std::string table = head;
  for (const auto& [key, text] : strings)
    table += "<key>" + XmlEscaped(key) + "</key><string>" + XmlEscaped(text) + "</string>\n";
  dir.write("Test.plugin/Contents/Resources/en.lproj/Localizable.plist", table + tail);
  return dir / "Test.plugin";
}

// WriteBundleFolder, opened; null (with the reason in `error`) when it cannot be.
inline bundle::BundleRef MakeBundle(const TempDir& dir, const StringEntries& strings,
                                    std::string* error = nullptr) {
  return bundle::Bundle::Open(WriteBundleFolder(dir, strings), error);
}

}  // namespace varno::testing
