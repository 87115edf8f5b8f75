// SPDX-License-Identifier: Apache-2.0
#include "print_dialog.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>
#include <iostream>

#include "panels/special_pages/special_pages_ids.h"
#include "platform/print/cups_queue.h"
#include "platform/print/framework_keys.h"
#include "platform/print/job_options.h"
#include "platform/toolkit/application.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/text_editing.h"
#include "vocabulary/plugin_bundle.h"

namespace varno::qt {

namespace {

using toolkit::Control;
using toolkit::ControlKind;

// The framework's own controls in the dialog's toolkit window.
constexpr OSType kFrameworkSignature = MakeOSType("Vfrm");
constexpr toolkit::MenuCommand kSaveDefaultsCommand = MakeOSType("Vsdf");
constexpr toolkit::MenuCommand kSaveSettingsCommand = MakeOSType("Vsst");
constexpr toolkit::MenuCommand kLoadSettingsCommand = MakeOSType("Vlst");

struct FrameworkButton {
  const char* text;
  toolkit::MenuCommand command;
  std::int32_t width;
  bool right;  // in the group at the right edge
};
// The pane's help command, which the plug-in answers with its help book.
constexpr toolkit::MenuCommand kHelpCommand = MakeOSType("help");
constexpr FrameworkButton kButtons[] = {
    {"?", kHelpCommand, 28, false},
    {"Save as Defaults", kSaveDefaultsCommand, 130, false},
    {"Save Settings...", kSaveSettingsCommand, 120, false},
    {"Load Settings...", kLoadSettingsCommand, 120, false},
    {"Cancel", toolkit::kHICommandCancel, 90, true},
    {"Print", toolkit::kHICommandOK, 90, true},
};
std::vector<toolkit::EventTypeSpec> CommandEvents() {
  return {{toolkit::kEventClassCommand, toolkit::kEventCommandProcess}};
}
constexpr std::int32_t kButtonRowHeight = 48;
constexpr std::int32_t kMinimumFrameWidth = 640;
// The pane size when the plug-in reports none.
constexpr std::uint32_t kDefaultPaneWidth = 540;
constexpr std::uint32_t kDefaultPaneHeight = 491;

QString Q(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

PrintDialog::PrintDialog(DialogOptions options, QWidget* parent)
    : QDialog(parent), options_(std::move(options)) {
  setWindowTitle(tr("Print"));
  toolkit::Application::shared().setEventSource(&modal_);
  toolkit::SetAlertPresenter(&alerts_);

  frame_ = toolkit::Window::create({0, 0, static_cast<std::int32_t>(kDefaultPaneHeight) + kButtonRowHeight,
                                    kMinimumFrameWidth},
                                   "Print");
  frame_->setVisible(true);
  pane_ = frame_->embed(Control::create(ControlKind::UserPane,
                                        {0, 0, static_cast<std::int32_t>(kDefaultPaneHeight),
                                         static_cast<std::int32_t>(kDefaultPaneWidth)}));
  buildButtons();
  // Installed before the plug-in's handlers, so it hears a command only when they let it
  // pass: a refused OK never gets here.
  frame_->installHandler(CommandEvents(), [this](toolkit::EventHandlerCallRef, toolkit::Event& event) {
    std::optional<toolkit::HICommand> command = event.command();
    return command ? this->command(command->commandID) : eventNotHandledErr;
  });

  auto* layout = new QVBoxLayout(this);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(makeFrameworkParts());
  auto* frameWidget = new QWidget(this);
  renderer_ = new WindowRenderer(*frame_, frameWidget, nullptr);
  layout->addWidget(frameWidget);
  status_ = new QLabel(this);
  status_->setWordWrap(true);
  status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  layout->addWidget(status_);

  listPrinters();
  showFiles();
  openPrinter(printers_->currentIndex());
  connect(printers_, &QComboBox::currentIndexChanged, this, [this](int index) { openPrinter(index); });
}

PrintDialog::~PrintDialog() {
  closePlugIn();
  if (&toolkit::CurrentAlertPresenter() == &alerts_) toolkit::SetAlertPresenter(nullptr);
  if (&toolkit::Application::shared().eventSource() == &modal_)
    toolkit::Application::shared().setEventSource(nullptr);
}

void PrintDialog::buildButtons() {
  std::int32_t number = 1;
  for (const FrameworkButton& entry : kButtons) {
    Control* button = frame_->embed(Control::create(ControlKind::PushButton, {}, entry.text));
    button->setCommand(entry.command);
    button->setID({kFrameworkSignature, number++});
    if (entry.command == toolkit::kHICommandOK) frame_->setDefaultButton(button);
    if (entry.command == toolkit::kHICommandCancel) frame_->setCancelButton(button);
    // The framework's help goes to the pane shown, which answers with its own page; without
    // a pane it rises to the window as the other buttons' commands do.
    if (entry.command == kHelpCommand)
      button->installHandler(CommandEvents(), [this](toolkit::EventHandlerCallRef, toolkit::Event& event) {
        std::optional<toolkit::HICommand> command = event.command();
        if (!command || command->commandID != kHelpCommand || !panes_ || panes_->shown() < 0)
          return eventNotHandledErr;
        panes_->sendToShown(*command);
        return noErr;  // it has gone up the window from the pane already
      });
  }
  layoutButtons();
}

void PrintDialog::layoutButtons() {
  // One row under the pane: the left group from the left edge, the right group from the
  // right edge inwards, so Print ends at the edge.
  const std::int32_t top = frame_->bounds().height() - kButtonRowHeight + 10;
  std::int32_t left = 8;
  std::int32_t right = frame_->bounds().width() - 8;
  for (std::int32_t i = std::size(kButtons); i-- > 0;) {
    const FrameworkButton& entry = kButtons[i];
    Control* button = frame_->findByID({kFrameworkSignature, i + 1});
    if (!entry.right || !button) continue;
    right -= entry.width;
    button->setBounds({top, right, top + 28, right + entry.width});
    right -= 8;
  }
  for (std::int32_t i = 0; i < static_cast<std::int32_t>(std::size(kButtons)); ++i) {
    const FrameworkButton& entry = kButtons[i];
    Control* button = frame_->findByID({kFrameworkSignature, i + 1});
    if (entry.right || !button) continue;
    button->setBounds({top, left, top + 28, left + entry.width});
    left += entry.width + 8;
  }
}

QWidget* PrintDialog::makeFrameworkParts() {
  auto* parts = new QWidget(this);
  auto* form = new QFormLayout(parts);
  printers_ = new QComboBox(parts);
  printers_->setAccessibleName(tr("Printer"));
  form->addRow(tr("&Printer:"), printers_);

  copies_ = new QSpinBox(parts);
  copies_->setRange(1, 9999);
  copies_->setAccessibleName(tr("Copies"));
  form->addRow(tr("&Copies:"), copies_);

  auto* pages = new QWidget(parts);
  auto* pagesRow = new QHBoxLayout(pages);
  pagesRow->setContentsMargins(0, 0, 0, 0);
  allPages_ = new QRadioButton(tr("&All"), pages);
  auto* range = new QRadioButton(tr("&From"), pages);
  firstPage_ = new QSpinBox(pages);
  lastPage_ = new QSpinBox(pages);
  for (QSpinBox* box : {firstPage_, lastPage_}) box->setRange(1, 99999);
  firstPage_->setAccessibleName(tr("First page"));
  lastPage_->setAccessibleName(tr("Last page"));
  allPages_->setChecked(true);
  pagesRow->addWidget(allPages_);
  pagesRow->addWidget(range);
  pagesRow->addWidget(firstPage_);
  pagesRow->addWidget(new QLabel(tr("to"), pages));
  pagesRow->addWidget(lastPage_);
  pagesRow->addStretch();
  form->addRow(tr("Pages:"), pages);

  orientation_ = new QComboBox(parts);
  orientation_->addItems({tr("Portrait"), tr("Landscape"), tr("Reverse portrait"), tr("Reverse landscape")});
  orientation_->setAccessibleName(tr("Orientation"));
  form->addRow(tr("&Orientation:"), orientation_);

  auto* filesRow = new QWidget(parts);
  auto* filesLayout = new QHBoxLayout(filesRow);
  filesLayout->setContentsMargins(0, 0, 0, 0);
  files_ = new QLabel(filesRow);
  files_->setAccessibleName(tr("Files to print"));
  auto* choose = new QPushButton(tr("Choose &Files..."), filesRow);
  choose->setAutoDefault(false);
  filesLayout->addWidget(files_, 1);
  filesLayout->addWidget(choose);
  form->addRow(tr("Files:"), filesRow);

  paneChooser_ = new QComboBox(parts);
  paneChooser_->setAccessibleName(tr("Pane"));
  form->addRow(tr("Pa&ne:"), paneChooser_);
  panes_ = std::make_unique<PaneChooser>(paneChooser_);
  connect(paneChooser_, &QComboBox::currentIndexChanged, this, [this](int index) {
    if (const QString problem = panes_->show(index); !problem.isEmpty()) say(problem, true);
  });

  connect(choose, &QPushButton::clicked, this, [this] { chooseFiles(); });
  connect(copies_, &QSpinBox::valueChanged, this, [this] { writeFrameworkSettings(); });
  connect(allPages_, &QRadioButton::toggled, this, [this] { writeFrameworkSettings(); });
  connect(firstPage_, &QSpinBox::valueChanged, this, [this, range] {
    range->setChecked(true);
    if (lastPage_->value() < firstPage_->value()) lastPage_->setValue(firstPage_->value());
    writeFrameworkSettings();
  });
  connect(lastPage_, &QSpinBox::valueChanged, this, [this, range] {
    range->setChecked(true);
    writeFrameworkSettings();
  });
  connect(orientation_, &QComboBox::currentIndexChanged, this, [this] {
    writeFrameworkSettings();
    // Panels read the orientation from the page format: let them see the new one, keeping
    // what the person chose in them.
    if (panes_->writeAll().isEmpty()) panes_->readAll();
  });
  return parts;
}

void PrintDialog::listPrinters() {
  if (options_.ppd) {
    printerList_.push_back({tr("%1 (PPD file, no queue)").arg(QFileInfo(Q(*options_.ppd)).fileName()),
                            options_.ppd, std::nullopt});
  } else if (!options_.queue) {
    printerList_.push_back({tr("Varno AT120A sample printer (no queue)"),
                            hosts::SamplePPD().string(), std::nullopt});
  }
  std::string error;
  std::optional<std::vector<print::DestinationInfo>> destinations =
      print::ListDestinations(options_.server.value_or(""), &error);
  int chosen = 0;
  bool queueListed = false;
  for (const print::DestinationInfo& destination : destinations.value_or(std::vector<print::DestinationInfo>{})) {
    std::string name = destination.name.queue;
    if (!destination.name.instance.empty()) name += "/" + destination.name.instance;
    QString label = Q(name);
    if (!destination.description.empty() && destination.description != name)
      label += " — " + Q(destination.description);
    if (options_.queue && *options_.queue == name) {
      chosen = static_cast<int>(printerList_.size());
      queueListed = true;
    }
    printerList_.push_back({label, std::nullopt, name});
  }
  if (options_.queue && !queueListed) {
    chosen = static_cast<int>(printerList_.size());
    printerList_.push_back({Q(*options_.queue), std::nullopt, options_.queue});
  }
  const QSignalBlocker blocker(printers_);
  for (const Printer& printer : printerList_) printers_->addItem(printer.label);
  printers_->setCurrentIndex(chosen);
  // Without a scheduler the dialog still works on printer descriptions; say so calmly.
  if (!destinations) say(tr("Only printer descriptions are listed: %1").arg(Q(error)));
}

void PrintDialog::closePlugIn() {
  // A framework ends its own pane (the driver closes and terminates it) before the plug-in
  // it came from.
  panes_->clear();
  specialPages_.reset();
  if (driver_) {
    driver_->close();
    driver_->terminate(userCanceledErr);
    driver_.reset();
  }
  // What the plug-in put into the window goes with it; the framework's buttons stay.
  if (!frame_) return;
  std::vector<Control*> leaving;
  for (std::size_t i = 0; i < frame_->childCount(); ++i)
    if (frame_->child(i)->id().signature != kFrameworkSignature && frame_->child(i) != pane_)
      leaving.push_back(frame_->child(i));
  for (Control* control : leaving) control->dispose();
  specialArea_ = nullptr;
  while (pane_ && pane_->childCount() > 0) pane_->child(0)->dispose();
  if (pane_) pane_->setVisible(true);
}

void PrintDialog::openPrinter(int index) {
  if (index < 0 || index >= static_cast<int>(printerList_.size())) return;
  closePlugIn();
  session_.reset();
  shownPrinter_ = index;
  const Printer& printer = printerList_[index];
  session_ = std::make_unique<print::Session>();
  if (printer.ppd) session_->setPrinterPPD(*printer.ppd);
  else session_->setPrinterQueue(print::SplitDestination(*printer.queue).queue, options_.server.value_or(""));
  // The ticket given on the command line is where the first printer starts from.
  startedFromTicket_ = options_.ticket.has_value();
  if (options_.ticket) {
    std::string error;
    std::optional<print::Ticket> ticket = print::Ticket::load(*options_.ticket, &error);
    if (!ticket) say(Q(error), true);
    else session_->setDataItem(print::kPrintSettingsTicket, *ticket);
    options_.ticket.reset();
  }
  // Without the plug-in the pane says why, in the place of the options.
  QString problem;
  if (!openPlugIn(&problem))
    pane_->embed(Control::create(ControlKind::StaticText, {20, 20, 140, 520}, problem.toStdString()));
}

bool PrintDialog::openPlugIn(QString* problem) {
  std::string error;
  std::filesystem::path path;
  ppd_ = {};
  if (!hosts::ReadPrinter(*session_, ppd_, error, &path)) {
    *problem = tr("This printer's description cannot be read: %1\nChoose another printer.").arg(Q(error));
    return false;
  }
  if (!hosts::IsVarnoPrinter(ppd_)) {
    *problem = tr("%1 is not a Varno printer (its maker is %2), so the Varno options are not "
                  "shown. The settings above still apply when you print.")
                   .arg(Q(ppd_.nickName), Q(ppd_.manufacturer));
    writeFrameworkSettings();
    return false;
  }
  // A queue's saved defaults are where its jobs start, as in every application's dialog,
  // unless the dialog was given settings of its own.
  const Printer& printer = printerList_.at(shownPrinter_);
  if (printer.queue && !startedFromTicket_ &&
      !hosts::StartFromQueueDefaults(*printer.queue, options_.server.value_or(""), ppd_, *session_, error))
    say(tr("The saved defaults of %1 were not read: %2").arg(Q(*printer.queue), Q(error)), true);
  hosts::AddPrinterDefaults(ppd_, *session_);
  writeFrameworkSettings();

  driver_ = std::make_unique<print::FrameworkDriver>();
  if (driver_->loadByIdentifier(vocabulary::kPlugInBundleIdentifier) != noErr) {
    *problem = tr("The Varno options cannot be shown: %1\nReinstall the Varno printing package.")
                   .arg(Q(driver_->error()));
    driver_.reset();
    return false;
  }
  renderer_->setPictureBundle(driver_->bundle());
  modal_.setPictureBundle(driver_->bundle());
  if (driver_->prologue() != noErr) {
    *problem = tr("The Varno options cannot be shown: %1").arg(Q(driver_->error()));
    driver_.reset();
    return false;
  }
  // The window follows the pane size the plug-in asks for.
  const std::uint32_t width = driver_->prologueInfo().maxH ? driver_->prologueInfo().maxH : kDefaultPaneWidth;
  const std::uint32_t height = driver_->prologueInfo().maxV ? driver_->prologueInfo().maxV : kDefaultPaneHeight;
  const std::int32_t frameWidth = std::max<std::int32_t>(kMinimumFrameWidth, static_cast<std::int32_t>(width));
  const std::int32_t frameHeight = static_cast<std::int32_t>(height) + kButtonRowHeight;
  if (frame_->bounds().width() != frameWidth || frame_->bounds().height() != frameHeight) {
    frame_->setBounds({0, 0, frameHeight, frameWidth});
    pane_->setBounds({0, 0, static_cast<std::int32_t>(height), static_cast<std::int32_t>(width)});
    layoutButtons();
  }
  if (driver_->initialize(session_.get(), pane_) != noErr || driver_->open() != noErr) {
    *problem = tr("The Varno options cannot be shown: %1").arg(Q(driver_->error()));
    closePlugIn();
    return false;
  }
  setWindowTitle(tr("Print — %1").arg(Q(ppd_.nickName)));
  print::FrameworkDriver* plugIn = driver_.get();
  panes_->add({Q(plugIn->prologueInfo().title), pane_, [plugIn](bool direction) { return plugIn->sync(direction); },
               [plugIn] { return plugIn->error(); }});
  openSpecialPages();
  return true;
}

void PrintDialog::openSpecialPages() {
  // Over the plug-in's pane, in the same place, and hidden until it is chosen.
  specialArea_ = frame_->embed(Control::create(ControlKind::UserPane, pane_->bounds()));
  specialArea_->setVisible(false);
  specialPages_ = std::make_unique<hosts::PaneDriver>();
  hosts::PaneDriver& pane = *specialPages_;
  if (pane.load(driver_->bundle(), panels::kSpecialPagesPanelGetter) != noErr || pane.prologue() != noErr ||
      pane.initialize(session_.get(), specialArea_) != noErr || pane.open() != noErr) {
    say(tr("The Special Pages pane is not offered: %1. The other Varno options work as usual; reinstall "
           "the Varno printing package to get it back.").arg(Q(pane.error())), true);
    specialPages_.reset();
    return;
  }
  panes_->add({Q(pane.title()), specialArea_, [&pane](bool direction) { return pane.sync(direction); },
               [&pane] { return pane.error(); }});
}

OSStatus PrintDialog::command(toolkit::MenuCommand command) {
  if (command == toolkit::kHICommandOK) print();
  else if (command == toolkit::kHICommandCancel) QDialog::reject();
  else if (command == kSaveDefaultsCommand) saveAsDefaults();
  else if (command == kSaveSettingsCommand) saveSettings();
  else if (command == kLoadSettingsCommand) loadSettings();
  else if (command == kHelpCommand) say(tr("This printer has no Varno options, so there is no help for them."));
  else return eventNotHandledErr;
  return noErr;
}

void PrintDialog::reject() {
  // Escape and the close box press the dialog's Cancel button, as a person would.
  if (frame_ && frame_->cancelButton() && frame_->cancelButton()->isReachable())
    toolkit::PressKey(*frame_, toolkit::kEscapeCharCode);
  else
    QDialog::reject();
}

hosts::FrameworkSettings PrintDialog::frameworkSettings() const {
  hosts::FrameworkSettings settings;
  if (!options_.files.empty()) settings.jobName = QFileInfo(Q(options_.files.front())).fileName().toStdString();
  settings.copies = copies_->value();
  if (!allPages_->isChecked()) {
    settings.firstPage = firstPage_->value();
    settings.lastPage = std::max(firstPage_->value(), lastPage_->value());
  }
  settings.orientation = orientation_->currentIndex() + 1;
  return settings;
}

void PrintDialog::writeFrameworkSettings() {
  if (!session_) return;
  hosts::WriteFrameworkSettings(frameworkSettings(), *session_);
  if (allPages_->isChecked()) {
    print::Ticket ticket = session_->printSettings();
    ticket.releaseItem(print::kFirstPageKey);
    ticket.releaseItem(print::kLastPageKey);
  }
}

bool PrintDialog::syncToTicket() {
  writeFrameworkSettings();
  if (const QString problem = panes_->writeAll(); !problem.isEmpty()) {
    say(problem, true);
    return false;
  }
  return true;
}

std::optional<std::vector<print::JobOption>> PrintDialog::ticketJobOptions(const QString& failure) {
  if (!syncToTicket()) return std::nullopt;
  std::string error;
  std::optional<std::vector<print::JobOption>> jobOptions =
      print::TicketToJobOptions(session_->printSettings(), &error);
  if (!jobOptions) say(tr("%1: the settings cannot become job options: %2").arg(failure, Q(error)), true);
  return jobOptions;
}

void PrintDialog::print() {
  const Printer& printer = printerList_.at(shownPrinter_);
  if (!printer.queue) {
    say(tr("%1 is a printer description, not a printer queue, so nothing can be sent to it. "
           "Choose a printer queue above, or keep these settings with Save Settings...")
            .arg(printer.label), true);
    return;
  }
  if (options_.files.empty()) chooseFiles();
  if (options_.files.empty()) {
    say(tr("Nothing was printed: choose the files to print with Choose Files..."), true);
    return;
  }
  std::optional<std::vector<print::JobOption>> jobOptions = ticketJobOptions(tr("Nothing was printed"));
  if (!jobOptions) return;
  std::string error;
  for (print::JobOption& option : hosts::FrameworkJobOptions(frameworkSettings()))
    jobOptions->push_back(std::move(option));
  const std::string queue = print::SplitDestination(*printer.queue).queue;
  const std::vector<std::filesystem::path> files(options_.files.begin(), options_.files.end());
  const int job = print::SubmitJob(queue, options_.server.value_or(""), files, *jobOptions,
                                   frameworkSettings().jobName.value_or(""), &error);
  if (job == 0) {
    say(tr("Nothing was printed: %1").arg(Q(error)), true);
    return;
  }
  lastJob_ = job;
  // As lp says it, for whoever started the dialog from a terminal or a script.
  std::cout << "request id is " << queue << "-" << job << " (" << files.size() << " file(s))" << std::endl;
  say(tr("Sent to %1: request id is %1-%2 (%3 file(s)).").arg(Q(queue)).arg(job).arg(files.size()));
  if (Control* cancel = frame_->cancelButton()) cancel->setText("Close");
}

void PrintDialog::saveAsDefaults() {
  const Printer& printer = printerList_.at(shownPrinter_);
  if (!printer.queue) {
    say(tr("Defaults belong to a printer queue, and %1 is none. Choose a printer queue above.")
            .arg(printer.label), true);
    return;
  }
  std::optional<std::vector<print::JobOption>> jobOptions = ticketJobOptions(tr("The defaults were not saved"));
  if (!jobOptions) return;
  std::string error;
  if (!print::SaveQueueDefaults(*printer.queue, options_.server.value_or(""), *jobOptions, &error)) {
    say(tr("The defaults were not saved: %1").arg(Q(error)), true);
    return;
  }
  say(tr("These settings are now the defaults of %1 for your jobs.").arg(Q(*printer.queue)));
}

void PrintDialog::saveSettings() {
  const QStringList answer = ask(FileQuestion::SaveSettings);
  if (answer.isEmpty() || !syncToTicket()) return;
  std::string error;
  if (!session_->printSettings().save(answer.front().toStdString(), &error)) {
    say(tr("The settings were not saved: %1").arg(Q(error)), true);
    return;
  }
  say(tr("Settings saved to %1.").arg(answer.front()));
}

void PrintDialog::loadSettings() {
  const QStringList answer = ask(FileQuestion::LoadSettings);
  if (answer.isEmpty()) return;
  std::string error;
  std::optional<print::Ticket> ticket = print::Ticket::load(answer.front().toStdString(), &error);
  if (!ticket) {
    say(tr("The settings were not loaded: %1").arg(Q(error)), true);
    return;
  }
  session_->setDataItem(print::kPrintSettingsTicket, *ticket);
  hosts::AddPrinterDefaults(ppd_, *session_);
  std::int32_t copies = 0;
  if (session_->printSettings().getNumber(print::kCopiesKey, copies) == noErr && copies > 0) copies_->setValue(copies);
  writeFrameworkSettings();
  if (const QString problem = panes_->readAll(); !problem.isEmpty()) {
    say(tr("The settings were loaded, but not shown whole. %1").arg(problem), true);
    return;
  }
  say(tr("Settings loaded from %1.").arg(answer.front()));
}

void PrintDialog::chooseFiles() {
  const QStringList files = ask(FileQuestion::FilesToPrint);
  if (files.isEmpty()) return;
  options_.files.clear();
  for (const QString& file : files) options_.files.push_back(file.toStdString());
  showFiles();
  writeFrameworkSettings();
}

void PrintDialog::showFiles() {
  QStringList names;
  for (const std::string& file : options_.files) names << QFileInfo(Q(file)).fileName();
  files_->setText(names.isEmpty() ? tr("(none chosen)") : names.join(", "));
  files_->setToolTip(names.join("\n"));
}

void PrintDialog::say(const QString& text, bool problem) {
  status_->setText(text);
  status_->setStyleSheet(problem ? "color: #b00020;" : "");
}

QStringList PrintDialog::ask(FileQuestion question) {
  if (chooser_) return chooser_(question);
  switch (question) {
    case FileQuestion::FilesToPrint:
      return QFileDialog::getOpenFileNames(this, tr("Files to Print"), {},
                                           tr("Printable files (*.pdf *.ps *.txt *.png *.jpg);;All files (*)"));
    case FileQuestion::SaveSettings: {
      const QString file = QFileDialog::getSaveFileName(this, tr("Save Settings"), "settings.plist",
                                                        tr("Print settings (*.plist)"));
      return file.isEmpty() ? QStringList() : QStringList{file};
    }
    case FileQuestion::LoadSettings: {
      const QString file = QFileDialog::getOpenFileName(this, tr("Load Settings"), {},
                                                        tr("Print settings (*.plist);;All files (*)"));
      return file.isEmpty() ? QStringList() : QStringList{file};
    }
  }
  return {};
}

}  // namespace varno::qt
