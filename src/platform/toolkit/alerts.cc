// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/alerts.h"

namespace varno::toolkit {
namespace {

// The presenter a host set; null means the headless one.
AlertPresenter* gPresenter = nullptr;

}  // namespace

void HeadlessPresenter::clear() {
  answers_.clear();
  alerts_.clear();
  notices_.clear();
  beeps_.clear();
  helpRequests_.clear();
  helpBooks_.clear();
}

DialogItemIndex HeadlessPresenter::runAlert(const AlertRequest& alert) {
  DialogItemIndex button = alert.cancelButton ? alert.cancelButton : alert.defaultButton;
  if (!answers_.empty()) {
    button = answers_.front();
    answers_.pop_front();
  }
  alerts_.push_back({alert, button});
  return button;
}

OSStatus HeadlessPresenter::showHelp(const HelpRequest& request) {
  helpRequests_.push_back(request);
  return noErr;
}

OSStatus HeadlessPresenter::registerHelpBook(const std::filesystem::path& bundleFolder) {
  helpBooks_.push_back(bundleFolder);
  return noErr;
}

HeadlessPresenter& HeadlessAlerts() {
  static HeadlessPresenter presenter;
  return presenter;
}

AlertPresenter& CurrentAlertPresenter() {
  return gPresenter ? *gPresenter : HeadlessAlerts();
}

void SetAlertPresenter(AlertPresenter* presenter) { gPresenter = presenter; }

OSStatus GetStandardAlertDefaultParams(AlertStdCFStringAlertParamRec* param,
                                       std::uint32_t version) {
  if (!param) return paramErr;
  *param = AlertStdCFStringAlertParamRec();
  param->version = version;
  return noErr;
}

OSStatus CreateStandardAlert(AlertType type, std::string_view error,
                             std::string_view explanation,
                             const AlertStdCFStringAlertParamRec* param, DialogRef* outAlert) {
  if (!outAlert) return paramErr;
  AlertStdCFStringAlertParamRec defaults;
  if (!param) param = &defaults;
  *outAlert = new AlertRequest{type,
                               std::string(error),
                               std::string(explanation),
                               param->defaultText,
                               param->cancelText,
                               param->otherText,
                               param->helpButton,
                               param->defaultButton,
                               param->cancelButton};
  return noErr;
}

OSStatus RunStandardAlert(DialogRef alert, ModalFilterUPP, DialogItemIndex* outItemHit) {
  if (!alert) return paramErr;
  DialogItemIndex button = CurrentAlertPresenter().runAlert(*alert);
  delete alert;
  if (outItemHit) *outItemHit = button;
  return noErr;
}

void DisposeDialog(DialogRef alert) { delete alert; }

std::int32_t CFUserNotificationDisplayNotice(double, CFOptionFlags flags,
                                             std::string_view header, std::string_view message,
                                             std::string_view buttonTitle) {
  CurrentAlertPresenter().displayNotice(
      {flags, std::string(header), std::string(message), std::string(buttonTitle)});
  return 0;
}

void SysBeep(std::int16_t duration) { CurrentAlertPresenter().beep(duration); }

OSStatus AHGotoPage(std::string_view book, std::string_view page, std::string_view anchor) {
  return CurrentAlertPresenter().showHelp(
      {std::string(book), std::string(page), std::string(anchor)});
}

OSStatus AHLookupAnchor(std::string_view book, std::string_view anchor) {
  return AHGotoPage(book, {}, anchor);
}

OSStatus AHRegisterHelpBook(const std::filesystem::path& bundleFolder) {
  std::error_code ec;
  if (bundleFolder.empty() || !std::filesystem::is_directory(bundleFolder, ec)) return fnfErr;
  return CurrentAlertPresenter().registerHelpBook(bundleFolder);
}

}  // namespace varno::toolkit
