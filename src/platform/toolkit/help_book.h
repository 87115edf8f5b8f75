// SPDX-License-Identifier: Apache-2.0
// Help books: the HTML pages a bundle carries for its Help buttons, found by book name.
//
// A bundle names its book with "CFBundleHelpBookName" and the folder of its pages with
// "CFBundleHelpBookFolder", a folder of a localization (Resources/<lang>.lproj/<folder>)
// or of the shared resources. A request names a page relative to that folder, or none
// for the book's "index.html", and may add an anchor.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "platform/status.h"
#include "platform/toolkit/alerts.h"

namespace varno::toolkit {

class HelpBooks {
 public:
  // Learns the book of the bundle at `bundleFolder`. fnfErr when there is no bundle there
  // or it names no book folder that exists; paramErr when it names no book.
  OSStatus add(const std::filesystem::path& bundleFolder);
  // The page file of a request, or nullopt when the book is unknown or lacks the page.
  // An anchor without a page is looked up in the book's pages (an element with that id).
  std::optional<std::filesystem::path> page(const HelpRequest& request) const;
  // The page as a URL, the anchor as its fragment; empty when there is no page.
  std::string url(const HelpRequest& request) const;

 private:
  std::map<std::string, std::filesystem::path> folders_;  // book name -> pages folder
};

}  // namespace varno::toolkit
