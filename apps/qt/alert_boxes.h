// SPDX-License-Identifier: Apache-2.0
// The toolkit's alerts, notices, beeps and help pages, shown the Qt way: message boxes
// with the alert's own buttons, the desktop's browser for help pages.
#pragma once

#include <functional>
#include <string>

#include "platform/toolkit/alerts.h"
#include "platform/toolkit/help_book.h"

namespace varno::qt {

class AlertBoxes final : public toolkit::AlertPresenter {
 public:
  toolkit::DialogItemIndex runAlert(const toolkit::AlertRequest& alert) override;
  void displayNotice(const toolkit::NoticeRequest& notice) override;
  void beep(std::int16_t duration) override;
  OSStatus showHelp(const toolkit::HelpRequest& request) override;
  OSStatus registerHelpBook(const std::filesystem::path& bundleFolder) override;

  // What opens a help page's URL; the desktop's browser unless a test sets another.
  void setOpenURL(std::function<bool(const std::string&)> open) { openURL_ = std::move(open); }

 private:
  toolkit::HelpBooks books_;
  std::function<bool(const std::string&)> openURL_;
};

}  // namespace varno::qt
