// SPDX-License-Identifier: Apache-2.0
// The Print dialog: the printing framework's own parts (printer, copies, pages,
// orientation, files, the pane chooser, the buttons) around the plug-in's pane, which it
// loads for Varno printers exactly as varno-print does and shows through a WindowRenderer,
// and the Special Pages pane, which it loads from the same bundle by its getter as a
// framework loads a pane of its own.
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QRadioButton>
#include <QSpinBox>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "alert_boxes.h"
#include "common/job_setup.h"
#include "common/pane_driver.h"
#include "modal_windows.h"
#include "pane_chooser.h"
#include "platform/print/framework_driver.h"
#include "platform/print/session.h"
#include "platform/toolkit/window.h"
#include "window_renderer.h"

namespace varno::qt {

struct DialogOptions {
  std::optional<std::string> queue = {};   // -P: "QUEUE" or "QUEUE/INSTANCE"
  std::optional<std::string> server = {};  // -h
  std::optional<std::string> ppd = {};     // --ppd
  std::optional<std::string> ticket = {};  // --ticket
  std::vector<std::string> files = {};
};

// What the dialog asks a person for through a file chooser.
enum class FileQuestion { FilesToPrint, SaveSettings, LoadSettings };

class PrintDialog final : public QDialog {
 public:
  explicit PrintDialog(DialogOptions options, QWidget* parent = nullptr);
  ~PrintDialog() override;

  // Replaces the file choosers (tests answer them without a window).
  void setFileChooser(std::function<QStringList(FileQuestion)> chooser) { chooser_ = std::move(chooser); }
  // The dialog's toolkit window (the plug-in's pane and the buttons) and its renderer.
  toolkit::Window& frameWindow() { return *frame_; }
  WindowRenderer& renderer() { return *renderer_; }
  ModalWindows& modalWindows() { return modal_; }
  AlertBoxes& alertBoxes() { return alerts_; }
  // The session of the printer shown, or null before one is open.
  print::Session* session() const { return session_.get(); }
  // The line that reports what the last button did.
  QString statusText() const { return status_->text(); }
  // The printer chooser, copies, page range and orientation.
  QComboBox* printerChooser() const { return printers_; }
  QSpinBox* copiesBox() const { return copies_; }
  QComboBox* orientationChooser() const { return orientation_; }
  // The pop-up of the panes: the plug-in's, then the Special Pages pane.
  QComboBox* paneChooser() const { return paneChooser_; }
  // The request id of the last job sent, 0 before any.
  int lastJob() const { return lastJob_; }

 protected:
  void reject() override;

 private:
  struct Printer {
    QString label;
    std::optional<std::string> ppd;    // a PPD file without a queue
    std::optional<std::string> queue;  // "QUEUE" or "QUEUE/INSTANCE"
  };

  QWidget* makeFrameworkParts();
  void listPrinters();
  // Closes the plug-in of the printer shown and opens the chosen one.
  void openPrinter(int index);
  void closePlugIn();
  bool openPlugIn(QString* problem);
  // Opens the Special Pages pane beside the plug-in's and lists both in the pane chooser.
  void openSpecialPages();
  void buildButtons();
  void layoutButtons();
  OSStatus command(toolkit::MenuCommand command);
  hosts::FrameworkSettings frameworkSettings() const;
  void writeFrameworkSettings();
  // Writes the panes into the ticket; false, said in the status line, when one fails.
  bool syncToTicket();
  // The pane written into the ticket, as CUPS job options; nullopt, said in the status line
  // after `failure`, when either step fails.
  std::optional<std::vector<print::JobOption>> ticketJobOptions(const QString& failure);
  void print();
  void saveAsDefaults();
  void saveSettings();
  void loadSettings();
  void chooseFiles();
  void showFiles();
  void say(const QString& text, bool problem = false);
  QStringList ask(FileQuestion question);

  DialogOptions options_;
  std::vector<Printer> printerList_;
  int shownPrinter_ = -1;
  bool startedFromTicket_ = false;  // the printer shown started from --ticket

  // The toolkit window outlives the plug-in that draws into it.
  std::unique_ptr<toolkit::Window> frame_;
  toolkit::Control* pane_ = nullptr;
  WindowRenderer* renderer_ = nullptr;
  std::unique_ptr<print::Session> session_;
  std::unique_ptr<print::FrameworkDriver> driver_;
  hosts::PPDDefaults ppd_;
  // The Special Pages pane, in a user pane of its own over the plug-in's.
  toolkit::Control* specialArea_ = nullptr;
  std::unique_ptr<hosts::PaneDriver> specialPages_;
  std::unique_ptr<PaneChooser> panes_;

  ModalWindows modal_;
  AlertBoxes alerts_;
  std::function<QStringList(FileQuestion)> chooser_;

  QComboBox* printers_ = nullptr;
  QSpinBox* copies_ = nullptr;
  QRadioButton* allPages_ = nullptr;
  QSpinBox* firstPage_ = nullptr;
  QSpinBox* lastPage_ = nullptr;
  QComboBox* orientation_ = nullptr;
  QComboBox* paneChooser_ = nullptr;
  QLabel* files_ = nullptr;
  QLabel* paneNote_ = nullptr;
  QLabel* status_ = nullptr;
  int lastJob_ = 0;
};

}  // namespace varno::qt
