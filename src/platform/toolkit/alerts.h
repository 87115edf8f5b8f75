// SPDX-License-Identifier: Apache-2.0
// Alerts, notices, beeps and help requests, through a presenter.
//
// Headless, the presenter records everything and answers alerts from a queue of
// scripted buttons; unscripted, an alert is answered as a person dismissing it would:
// its cancel button when it has one, else its default button. A graphical host sets a
// presenter that shows message boxes and opens help pages.
//
// Process-wide state: the current presenter (the headless one unless a host set
// another) and the headless presenter with its recordings, used from the main thread.
#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/toolkit/types.h"

namespace varno::toolkit {

using AlertType = std::int16_t;
inline constexpr AlertType kAlertStopAlert = 0;
inline constexpr AlertType kAlertNoteAlert = 1;
inline constexpr AlertType kAlertCautionAlert = 2;
inline constexpr AlertType kAlertPlainAlert = 3;

inline constexpr DialogItemIndex kAlertStdAlertOKButton = 1;      // the default button
inline constexpr DialogItemIndex kAlertStdAlertCancelButton = 2;
inline constexpr DialogItemIndex kAlertStdAlertOtherButton = 3;   // the alternate button
inline constexpr DialogItemIndex kAlertStdAlertHelpButton = 4;

using CFOptionFlags = std::uint32_t;
inline constexpr CFOptionFlags kCFUserNotificationStopAlertLevel = 0;
inline constexpr CFOptionFlags kCFUserNotificationNoteAlertLevel = 1;
inline constexpr CFOptionFlags kCFUserNotificationCautionAlertLevel = 2;
inline constexpr CFOptionFlags kCFUserNotificationPlainAlertLevel = 3;

// A standard alert: a title, a message and up to three buttons. An empty button text
// stands for the presenter's own word ("OK", "Cancel").
struct AlertRequest {
  AlertType type = kAlertNoteAlert;
  std::string title;
  std::string message;
  std::string defaultText;
  std::optional<std::string> cancelText;  // nullopt: no cancel button
  std::optional<std::string> otherText;   // nullopt: no alternate button
  bool helpButton = false;
  DialogItemIndex defaultButton = kAlertStdAlertOKButton;  // what return presses
  DialogItemIndex cancelButton = 0;                        // what escape presses; 0 none
};

// A notice: a header, a text and one button; it returns nothing.
struct NoticeRequest {
  CFOptionFlags level = kCFUserNotificationNoteAlertLevel;
  std::string header;
  std::string message;
  std::string buttonTitle;  // empty: the presenter's own "OK"
};

// A help page of a help book: a page, an anchor, or both.
struct HelpRequest {
  std::string book;
  std::string page;
  std::string anchor;
  friend bool operator==(const HelpRequest&, const HelpRequest&) = default;
};

class AlertPresenter {
 public:
  virtual ~AlertPresenter() = default;
  // Shows the alert until a button is pressed; returns that button.
  virtual DialogItemIndex runAlert(const AlertRequest& alert) = 0;
  virtual void displayNotice(const NoticeRequest& notice) = 0;
  virtual void beep(std::int16_t duration) = 0;
  // Opens the help page; returns a status.
  virtual OSStatus showHelp(const HelpRequest& request) = 0;
  // Makes the help books of a bundle folder known, so their pages can be opened.
  virtual OSStatus registerHelpBook(const std::filesystem::path& bundleFolder) = 0;
};

class HeadlessPresenter final : public AlertPresenter {
 public:
  struct AnsweredAlert {
    AlertRequest alert;
    DialogItemIndex button;
  };

  // Queues the button the next alert is answered with.
  void answerNextAlert(DialogItemIndex button) { answers_.push_back(button); }
  // What was presented, oldest first.
  const std::vector<AnsweredAlert>& alerts() const { return alerts_; }
  const std::vector<NoticeRequest>& notices() const { return notices_; }
  const std::vector<std::int16_t>& beeps() const { return beeps_; }
  const std::vector<HelpRequest>& helpRequests() const { return helpRequests_; }
  const std::vector<std::filesystem::path>& helpBooks() const { return helpBooks_; }
  // Forgets the recordings and the queued answers.
  void clear();

  DialogItemIndex runAlert(const AlertRequest& alert) override;
  void displayNotice(const NoticeRequest& notice) override { notices_.push_back(notice); }
  void beep(std::int16_t duration) override { beeps_.push_back(duration); }
  OSStatus showHelp(const HelpRequest& request) override;
  OSStatus registerHelpBook(const std::filesystem::path& bundleFolder) override;

 private:
  std::deque<DialogItemIndex> answers_;
  std::vector<AnsweredAlert> alerts_;
  std::vector<NoticeRequest> notices_;
  std::vector<std::int16_t> beeps_;
  std::vector<HelpRequest> helpRequests_;
  std::vector<std::filesystem::path> helpBooks_;
};

// The presenter alerts go through now.
AlertPresenter& CurrentAlertPresenter();
// Makes `presenter` current (null: the headless one); the caller keeps it alive.
void SetAlertPresenter(AlertPresenter* presenter);
// The headless presenter, for scripting answers and reading what was presented.
HeadlessPresenter& HeadlessAlerts();

// --- The classic calls -------------------------------------------------------------

// The buttons and texts of a standard alert; GetStandardAlertDefaultParams fills it.
struct AlertStdCFStringAlertParamRec {
  std::uint32_t version = 0;
  bool movable = true;
  bool helpButton = false;
  std::string defaultText;
  std::optional<std::string> cancelText;
  std::optional<std::string> otherText;
  DialogItemIndex defaultButton = kAlertStdAlertOKButton;
  DialogItemIndex cancelButton = 0;
  std::uint16_t position = 0;
  std::uint32_t flags = 0;
};
using DialogRef = AlertRequest*;
using ModalFilterUPP = void*;  // never called: alerts have no filters here

// Resets `param` to one OK button; paramErr for null.
OSStatus GetStandardAlertDefaultParams(AlertStdCFStringAlertParamRec* param,
                                       std::uint32_t version);
// Makes an alert (owned by the caller until RunStandardAlert or DisposeDialog) with the
// given texts and buttons; a null `param` gives one OK button. paramErr for null out.
OSStatus CreateStandardAlert(AlertType type, std::string_view error,
                             std::string_view explanation,
                             const AlertStdCFStringAlertParamRec* param, DialogRef* outAlert);
// Presents the alert, stores the pressed button and disposes of the alert.
OSStatus RunStandardAlert(DialogRef alert, ModalFilterUPP filter, DialogItemIndex* outItemHit);
// Disposes of an alert that was never run.
void DisposeDialog(DialogRef alert);
// Shows a notice with a header, a text and one button; returns 0. The time-out is not
// used: notices stay until dismissed.
std::int32_t CFUserNotificationDisplayNotice(double timeout, CFOptionFlags flags,
                                             std::string_view header, std::string_view message,
                                             std::string_view buttonTitle = {});
// Beeps (headless: records the duration).
void SysBeep(std::int16_t duration);
// Opens a page of a help book at an optional anchor; returns the presenter's status.
OSStatus AHGotoPage(std::string_view book, std::string_view page, std::string_view anchor);
// Opens the page of a help book that holds the anchor.
OSStatus AHLookupAnchor(std::string_view book, std::string_view anchor);
// Registers the help books of the bundle at `bundleFolder`; fnfErr when it is not there.
OSStatus AHRegisterHelpBook(const std::filesystem::path& bundleFolder);

}  // namespace varno::toolkit
