// SPDX-License-Identifier: Apache-2.0
#include "alert_boxes.h"

#include <QApplication>
#include <QDesktopServices>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

namespace varno::qt {

namespace {

QMessageBox::Icon IconOf(toolkit::AlertType type) {
  switch (type) {
    case toolkit::kAlertStopAlert: return QMessageBox::Critical;
    case toolkit::kAlertCautionAlert: return QMessageBox::Warning;
    case toolkit::kAlertPlainAlert: return QMessageBox::NoIcon;
    default: return QMessageBox::Information;
  }
}

QString OrDefault(const std::string& text, const char* fallback) {
  return text.empty() ? QApplication::translate("AlertBoxes", fallback) : QString::fromStdString(text);
}

}  // namespace

toolkit::DialogItemIndex AlertBoxes::runAlert(const toolkit::AlertRequest& alert) {
  QMessageBox box(IconOf(alert.type), QString::fromStdString(alert.title),
                  QString::fromStdString(alert.title), QMessageBox::NoButton,
                  QApplication::activeWindow());
  box.setInformativeText(QString::fromStdString(alert.message));
  std::map<QAbstractButton*, toolkit::DialogItemIndex> buttons;
  QPushButton* ok = box.addButton(OrDefault(alert.defaultText, "OK"), QMessageBox::AcceptRole);
  buttons[ok] = toolkit::kAlertStdAlertOKButton;
  if (alert.cancelText)
    buttons[box.addButton(OrDefault(*alert.cancelText, "Cancel"), QMessageBox::RejectRole)] =
        toolkit::kAlertStdAlertCancelButton;
  if (alert.otherText)
    buttons[box.addButton(OrDefault(*alert.otherText, "Don't Save"), QMessageBox::DestructiveRole)] =
        toolkit::kAlertStdAlertOtherButton;
  if (alert.helpButton) buttons[box.addButton(QMessageBox::Help)] = toolkit::kAlertStdAlertHelpButton;
  for (const auto& [button, index] : buttons) {
    if (index == alert.defaultButton) box.setDefaultButton(static_cast<QPushButton*>(button));
    if (index == alert.cancelButton) box.setEscapeButton(button);
  }
  box.exec();
  auto it = buttons.find(box.clickedButton());
  // Closed without a button: as escape does, the cancel button when there is one.
  if (it == buttons.end()) return alert.cancelButton ? alert.cancelButton : alert.defaultButton;
  return it->second;
}

void AlertBoxes::displayNotice(const toolkit::NoticeRequest& notice) {
  const toolkit::AlertType type = notice.level == toolkit::kCFUserNotificationStopAlertLevel
                                      ? toolkit::kAlertStopAlert
                                  : notice.level == toolkit::kCFUserNotificationCautionAlertLevel
                                      ? toolkit::kAlertCautionAlert
                                      : toolkit::kAlertNoteAlert;
  QMessageBox box(IconOf(type), QString::fromStdString(notice.header),
                  QString::fromStdString(notice.header), QMessageBox::NoButton,
                  QApplication::activeWindow());
  box.setInformativeText(QString::fromStdString(notice.message));
  box.setDefaultButton(box.addButton(OrDefault(notice.buttonTitle, "OK"), QMessageBox::AcceptRole));
  box.exec();
}

void AlertBoxes::beep(std::int16_t) { QApplication::beep(); }

OSStatus AlertBoxes::registerHelpBook(const std::filesystem::path& bundleFolder) {
  return books_.add(bundleFolder);
}

OSStatus AlertBoxes::showHelp(const toolkit::HelpRequest& request) {
  const std::string url = books_.url(request);
  if (url.empty()) {
    displayNotice({toolkit::kCFUserNotificationNoteAlertLevel, "Help is not installed",
                   "The help pages of \"" + request.book + "\" are not on this computer. "
                   "Reinstall the Varno printing package to get them.",
                   {}});
    return fnfErr;
  }
  const bool opened = openURL_ ? openURL_(url) : QDesktopServices::openUrl(QUrl(QString::fromStdString(url)));
  if (!opened) {
    displayNotice({toolkit::kCFUserNotificationCautionAlertLevel, "No web browser",
                   "The help page " + url + " could not be opened: no web browser is set up on "
                   "this desktop. Open the page with a browser yourself.",
                   {}});
    return fnfErr;
  }
  return noErr;
}

}  // namespace varno::qt
