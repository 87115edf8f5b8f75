// SPDX-License-Identifier: Apache-2.0
// varno-print-dialog driven as a person drives it: real Qt mouse and key events on the
// rendered widgets. The tickets it gives are compared with varno-print's for the same
// choices; every panel and dialog is photographed into <build>/screenshots.
#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDir>
#include <QLineEdit>
#include <QMenu>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>
#include <algorithm>
#include <deque>
#include <memory>
#include <QtTest>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <random>

#include "host/dialog_host.h"
#include "model/special_pages_ticket.h"
#include "panels/image_options/advanced_panel.h"
#include "panels/image_options/image_options_panel.h"
#include "panels/paper_output/delayed_print_setup.h"
#include "panels/paper_output/paper_output_panel.h"
#include "panels/paper_output/secure_print_setup.h"
#include "panels/special_pages/special_pages_ids.h"
#include "platform/plist/text.h"
#include "platform/print/cups_queue.h"
#include "platform/print/framework_keys.h"
#include "platform/print/job_options.h"
#include "platform/print/ticket.h"
#include "platform/toolkit/automation.h"
#include "platform/toolkit/list_view.h"
#include "platform/toolkit/window.h"
#include "print_dialog.h"
#include "support/private_scheduler.h"
#include "ui/custom_stock_size_dialog.h"
#include "ui/panel_ui.h"
#include "vocabulary/setting_maps.h"
#include "vocabulary/plugin_bundle.h"

namespace {

using namespace varno;
using toolkit::ControlID;

const QString kBuild = VARNO_BUILD_DIR;
const QString kVarnoPrint = kBuild + "/bin/varno-print";

// What #5's choices are on the command line, and the same choices made in the window:
// (control, the item's shown text or a check box's state), in the same order.
const QStringList kCommandLineChoices = {"--image-quality", "HighQuality", "--toner-saver", "on",
                                         "--mirror-image",  "on",          "--feed-edge",   "ShortEdge"};
struct WindowChoice {
  ControlID control;
  QString item;  // empty: click the check box
};
const WindowChoice kWindowChoices[] = {
    {{panels::kImageOptionsSignature, panels::kImageQualityPopupID}, "High Quality"},
    {{panels::kImageOptionsSignature, panels::kTonerSaverCheckBoxID}, {}},
    {{panels::kImageOptionsSignature, panels::kMirrorCheckBoxID}, {}},
    {{panels::kAdvancedSignature, panels::kFeedEdgePopupID}, "Short Edge"},
};

QString Screenshots() {
  QDir().mkpath(kBuild + "/screenshots");
  return kBuild + "/screenshots/";
}

void Photograph(QWidget* widget, const QString& name) {
  QVERIFY(widget->grab().save(Screenshots() + name + ".png"));
}

std::map<std::string, plist::Value> EntriesOf(const print::Ticket& ticket) {
  std::map<std::string, plist::Value> entries;
  for (const std::string& key : ticket.keys()) {
    const print::Ticket::Item* item = ticket.item(key);
    entries[key] = item->nested ? plist::Value(item->nested->toPropertyList()) : item->value;
  }
  return entries;
}

print::Ticket Load(const QString& file) {
  std::string error;
  std::optional<print::Ticket> ticket = print::Ticket::load(file.toStdString(), &error);
  if (!ticket) qWarning("%s", error.c_str());
  return ticket.value_or(print::Ticket());
}

// Equal entry by entry, typed; the first difference is named.
void CompareTickets(const print::Ticket& dialog, const print::Ticket& command) {
  const auto a = EntriesOf(dialog), b = EntriesOf(command);
  QVERIFY(!a.empty());
  for (const auto& [key, value] : b) {
    QVERIFY2(a.contains(key), ("the dialog's ticket lacks " + key).c_str());
    QVERIFY2(a.at(key) == value, ("the tickets differ at " + key).c_str());
  }
  for (const auto& [key, value] : a) QVERIFY2(b.contains(key), ("the dialog adds " + key).c_str());
}

// Runs varno-print with the same choices; its ticket.
print::Ticket VarnoPrintTicket(const QString& folder, const QStringList& extra = {"-n", "1"},
                               const QStringList& choices = kCommandLineChoices,
                               const QString& ppd = VARNO_SAMPLE_PPD) {
  QProcess process;
  const QString out = folder + "/varno-print.plist";
  process.start(kVarnoPrint, QStringList{"--ppd", ppd, "--save-ticket", out} +
                                 choices + extra);
  process.waitForFinished(30000);
  if (process.exitCode() != 0) qWarning("%s", process.readAllStandardError().constData());
  return Load(out);
}

// What a person does while menus and modal dialogs hold the event loop: each step waits
// for its moment (`ready`), then acts; an act may itself open a menu or dialog, inside
// which the later steps go on.
class Steps : public QObject {
 public:
  struct Step {
    std::function<bool()> ready;
    std::function<void()> act;
  };
  Steps() {
    QObject::connect(&timer_, &QTimer::timeout, this, [this] {
      if (steps_.empty() || !steps_.front().ready()) return;
      Step step = std::move(steps_.front());
      steps_.pop_front();
      // Posted rather than run here: Qt does not fire a timer inside its own timeout, and
      // the act may hold the loop (a menu, a modal dialog) while later steps must run.
      QMetaObject::invokeMethod(this, std::move(step.act), Qt::QueuedConnection);
    });
    timer_.start(10);
  }
  void then(std::function<bool()> ready, std::function<void()> act) {
    steps_.push_back({std::move(ready), std::move(act)});
  }
  bool done() const { return steps_.empty(); }

 private:
  QTimer timer_;
  std::deque<Step> steps_;
};

// The menu that popped up last, once it is on screen.
QMenu* OpenMenu() {
  auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  return menu && menu->isVisible() ? menu : nullptr;
}

// In an open menu, the down arrow until `text` is the active item, then `last` (return to
// choose it, right to open its submenu; Qt::Key_unknown: nothing more).
void KeyTo(QMenu* menu, const QString& text, Qt::Key last) {
  for (int i = 0; i < 64 && !(menu->activeAction() && menu->activeAction()->text() == text); ++i)
    QTest::keyClick(menu, Qt::Key_Down);
  QVERIFY2(menu->activeAction() && menu->activeAction()->text() == text, qPrintable("no item " + text));
  if (last != Qt::Key_unknown) QTest::keyClick(menu, last);
}

// Opens `button`'s menu with the mouse and chooses `path` (an item, or a submenu and its
// item) with the keys; the steps run while the menu holds the event loop. With `photo`,
// the menu and its submenu are photographed on the way.
void ScriptMenuChoice(Steps& steps, const QStringList& path, const QString& photo = {}) {
  auto top = std::make_shared<QMenu*>(nullptr);
  steps.then([top] { return (*top = OpenMenu()) != nullptr; }, [top, path, photo] {
    if (!photo.isEmpty()) Photograph(*top, photo);
    KeyTo(*top, path[0], path.size() > 1 ? Qt::Key_Right : Qt::Key_Return);
  });
  if (path.size() > 1)
    steps.then([top] { QMenu* sub = OpenMenu(); return sub && sub != *top; }, [path, photo] {
      KeyTo(OpenMenu(), path[1], Qt::Key_unknown);
      if (!photo.isEmpty()) Photograph(OpenMenu(), photo + "-" + path[0].toLower());
      QTest::keyClick(OpenMenu(), Qt::Key_Return);
    });
}

QWidget* ModalDialog(QWidget* main) {
  QWidget* modal = QApplication::activeModalWidget();
  return modal && modal != main && modal->isVisible() ? modal : nullptr;
}

// Clicks the push button of `dialog` that reads `text`.
void ClickButton(QWidget* dialog, const QString& text) {
  for (QPushButton* b : dialog->findChildren<QPushButton*>())
    if (b->text() == text && b->isVisible()) return QTest::mouseClick(b, Qt::LeftButton);
  QFAIL(qPrintable("no button " + text));
}

// The pop-up of a modal dialog that offers `item`, the `n`th such (0: the first).
QComboBox* PopupOffering(QWidget* dialog, const QString& item, int n = 0) {
  for (QComboBox* combo : dialog->findChildren<QComboBox*>())
    if (combo->isVisible() && combo->findText(item) >= 0 && n-- == 0) return combo;
  return nullptr;
}

}  // namespace

class PrintDialogTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<qt::PrintDialog> dialog_;
  QTemporaryDir folder_;
  QTemporaryDir home_;
  std::vector<std::string> urls_;

  void open(qt::DialogOptions options) {
    dialog_ = std::make_unique<qt::PrintDialog>(std::move(options));
    dialog_->alertBoxes().setOpenURL([this](const std::string& url) {
      urls_.push_back(url);
      return true;
    });
    dialog_->show();
    QVERIFY(QTest::qWaitForWindowExposed(dialog_.get()));
  }
  QWidget* widget(ControlID id) {
    toolkit::Control* control = dialog_->frameWindow().findByID(id);
    return control ? dialog_->renderer().widgetFor(control) : nullptr;
  }
  // The dialog's own button (not one of a modal dialog it has made).
  QPushButton* button(const char* text) {
    for (QPushButton* button : dialog_->findChildren<QPushButton*>())
      if (button->text() == text && button->window() == dialog_.get()) return button;
    return nullptr;
  }
  // Moves a pop-up to the item with the arrow keys, one step at a time, as a person does.
  static void ChooseByKeys(QComboBox* combo, const QString& text) {
    const int target = combo->findText(text);
    QVERIFY2(target >= 0, qPrintable("no item " + text));
    combo->setFocus();
    while (combo->currentIndex() != target) {
      const int before = combo->currentIndex();
      QTest::keyClick(combo, combo->currentIndex() < target ? Qt::Key_Down : Qt::Key_Up);
      QVERIFY2(combo->currentIndex() != before, "the pop-up did not move");
    }
  }
  void showPanel(int tabIndex) {
    auto* selector = qobject_cast<QComboBox*>(widget({host::kHostSignature, host::kSelectorID}));
    QVERIFY(selector);
    ChooseByKeys(selector, selector->itemText(tabIndex - 1));
    toolkit::Control* pane = dialog_->frameWindow().findByID({host::kPanelPaneSignature, tabIndex});
    QVERIFY(pane && pane->isVisible());
    QVERIFY(dialog_->renderer().widgetFor(pane)->isVisible());
  }
  void showPanelOf(ControlID id) {
    toolkit::Control* pane = dialog_->frameWindow().findByID(id);
    while (pane && pane->id().signature != host::kPanelPaneSignature) pane = pane->parent();
    QVERIFY(pane);
    showPanel(pane->id().id);
  }
  // Shows the panel that holds the control, then makes the choice on its widget.
  void make(const WindowChoice& choice) {
    toolkit::Control* control = dialog_->frameWindow().findByID(choice.control);
    QVERIFY(control);
    showPanelOf(choice.control);
    QWidget* target = dialog_->renderer().widgetFor(control);
    if (choice.item.isEmpty()) {
      auto* box = qobject_cast<QCheckBox*>(target);
      const bool before = box->isChecked();
      QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(6, box->height() / 2));
      QCOMPARE(box->isChecked(), !before);
      QCOMPARE(control->value(), before ? 0 : 1);
    } else {
      ChooseByKeys(qobject_cast<QComboBox*>(target), choice.item);
    }
  }
  void makeAllChoices() {
    for (const WindowChoice& choice : kWindowChoices) make(choice);
  }
  QAbstractButton* specialPagesButton(std::int32_t id) {
    return qobject_cast<QAbstractButton*>(widget({panels::kSpecialPagesSignature, id}));
  }
  // The Special Pages list as "PAGE TYPE" rows.
  QStringList specialPageRows() {
    auto* list = qobject_cast<QTreeWidget*>(widget({panels::kSpecialPagesSignature, panels::kSpecialPagesListID}));
    QStringList rows;
    for (int i = 0; list && i < list->topLevelItemCount(); ++i)
      rows << list->topLevelItem(i)->text(0) + " " + list->topLevelItem(i)->text(1);
    return rows;
  }
  QString saveSettings(const QString& name) {
    const QString file = folder_.path() + "/" + name;
    dialog_->setFileChooser([file](qt::FileQuestion) { return QStringList{file}; });
    QTest::mouseClick(button("Save Settings..."), Qt::LeftButton);
    return file;
  }

 private Q_SLOTS:
  // libcups reads HOME once, at its first call: a home of the test's own, set before any,
  // keeps saved defaults (~/.cups/lpoptions) out of the user's.
  void initTestCase() {
    QVERIFY(home_.isValid());
    qputenv("HOME", home_.path().toUtf8());
  }
  void cleanup() {
    dialog_.reset();
    urls_.clear();
  }

  void everyPanelIsShownAndPhotographed() {
    open({.ppd = VARNO_SAMPLE_PPD});
    auto* selector = qobject_cast<QComboBox*>(widget({host::kHostSignature, host::kSelectorID}));
    QVERIFY(selector && selector->count() >= 2);
    for (int tab = 1; tab <= selector->count(); ++tab) {
      showPanel(tab);
      Photograph(dialog_.get(), "panel-" + selector->itemText(tab - 1).toLower().replace(QRegularExpression("[^a-z]+"), "-"));
    }
    // The previous and next arrows go round the panels.
    const int before = selector->currentIndex();
    QTest::mouseClick(qobject_cast<QAbstractButton*>(widget({host::kHostSignature, host::kDownButtonID})),
                      Qt::LeftButton);
    QCOMPARE(selector->currentIndex(), (before + 1) % selector->count());
    // Every control of the window has a name a screen reader can say.
    for (QWidget* child : dialog_->findChildren<QWidget*>())
      if (toolkit::Control* control = dialog_->renderer().controlFor(child);
          control && dialog_->renderer().widgetFor(control) == child && child->isVisible() &&
          control->kind() != toolkit::ControlKind::UserPane && control->kind() != toolkit::ControlKind::Window)
        QVERIFY2(!child->accessibleName().isEmpty(), toolkit::Traits(control->kind()).name);
  }

  void choicesInTheWindowGiveVarnoPrintsTicket() {
    open({.ppd = VARNO_SAMPLE_PPD});
    makeAllChoices();
    const QString saved = saveSettings("dialog.plist");
    QVERIFY2(QFileInfo::exists(saved), qPrintable(dialog_->statusText()));
    CompareTickets(Load(saved), VarnoPrintTicket(folder_.path()));

    // Loading a ticket shows it in the controls: the saved settings come back whole.
    open({.ppd = VARNO_SAMPLE_PPD});
    dialog_->setFileChooser([saved](qt::FileQuestion) { return QStringList{saved}; });
    QTest::mouseClick(button("Load Settings..."), Qt::LeftButton);
    auto* mirror = qobject_cast<QCheckBox*>(widget({panels::kImageOptionsSignature, panels::kMirrorCheckBoxID}));
    QVERIFY(mirror->isChecked());
    CompareTickets(Load(saveSettings("again.plist")), Load(saved));
  }

  void modalDialogsTakeRealEvents() {
    open({.ppd = VARNO_SAMPLE_PPD});
    // The About dialog of the Advanced panel: modal, photographed, closed with its button.
    const ControlID about{panels::kAdvancedSignature, panels::kAboutButtonID};
    showPanelOf(about);
    bool sawModal = false;
    QTimer::singleShot(0, this, [&] {
      QWidget* modal = QApplication::activeModalWidget();
      sawModal = modal && modal != dialog_.get();
      if (!sawModal) return;
      if (!QTest::qWaitForWindowExposed(modal)) return;
      Photograph(modal, "dialog-about");
      QPushButton* ok = nullptr;
      for (QPushButton* b : modal->findChildren<QPushButton*>()) ok = b;
      QTest::mouseClick(ok, Qt::LeftButton);
    });
    QTest::mouseClick(qobject_cast<QAbstractButton*>(widget(about)), Qt::LeftButton);
    QVERIFY(sawModal);
    QTRY_VERIFY(QApplication::activeModalWidget() == dialog_.get() || !QApplication::activeModalWidget());

    // The custom value dialog: typed characters go through the field's limits, Return is OK,
    // and its help button opens its page of the help book.
    const bundle::BundleRef bundle = bundle::Bundle::FindByIdentifier(vocabulary::kPlugInBundleIdentifier);
    QVERIFY(bundle);
    struct Case {
      const char* typed;
      Qt::Key close;
      std::uint16_t result;
      std::optional<std::string> text;
    } cases[] = {{"123456789", Qt::Key_Return, 1, "12345678"}, {"99", Qt::Key_Escape, 2, std::nullopt}};
    for (const Case& c : cases) {
      QTimer::singleShot(0, this, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        QLineEdit* field = modal ? modal->findChild<QLineEdit*>() : nullptr;
        if (!field) return;
        QTest::keyClicks(field, c.typed);
        if (c.close == Qt::Key_Return) {
          Photograph(modal, "dialog-custom-value");
          for (QPushButton* b : modal->findChildren<QPushButton*>())
            if (b->text() == "?") QTest::mouseClick(b, Qt::LeftButton);
        }
        QTest::keyClick(field, c.close);
      });
      std::optional<std::string> text;
      std::uint16_t result = 0;
      QCOMPARE(ui::RunModalCustomValueDialog(bundle, 1, 8, &text, &result), noErr);
      QCOMPARE(result, c.result);
      QCOMPARE(text, c.text);
    }
    QVERIFY(!urls_.empty() && QString::fromStdString(urls_.back()).endsWith("image_options/db_custom_color_d.htm"));

    // The custom paper size dialog of the stock menus: millimetres chosen with the keys, a
    // size typed into its fields, Return to confirm.
    QTimer::singleShot(0, this, [&] {
      QWidget* modal = QApplication::activeModalWidget();
      QList<QLineEdit*> fields = modal ? modal->findChildren<QLineEdit*>() : QList<QLineEdit*>();
      QComboBox* unit = modal ? modal->findChild<QComboBox*>() : nullptr;
      if (fields.size() != 2 || !unit) return;
      ChooseByKeys(unit, "millimeters");
      QTest::keyClicks(fields[0], "210");
      QTest::keyClicks(fields[1], "297");
      Photograph(modal, "dialog-custom-paper-size");
      QTest::keyClick(fields[1], Qt::Key_Return);
    });
    std::int32_t width = vocabulary::kUnsetValue, length = vocabulary::kUnsetValue;
    bool confirmed = false;
    QCOMPARE(ui::RunModalCustomStockSizeDialog(bundle, &width, &length, &confirmed), noErr);
    QVERIFY(confirmed);
    QCOMPARE(std::make_pair(width, length), std::make_pair(595, 842));  // A4 in points

    // The delayed print clock shows hours and minutes; the arrow key sets it, OK takes it.
    constexpr std::int64_t kMidnight = 3786998400;  // 2 January 2024, in seconds since 1904
    QString format;
    QTimer::singleShot(0, this, [&] {
      QWidget* modal = QApplication::activeModalWidget();
      auto* clock = modal ? modal->findChild<QDateTimeEdit*>() : nullptr;
      if (!clock) return;
      format = clock->displayFormat();
      clock->setFocus();
      clock->setCurrentSection(QDateTimeEdit::HourSection);
      for (int hour = 0; hour < 18; ++hour) QTest::keyClick(clock, Qt::Key_Up);
      Photograph(modal, "dialog-delayed-print");
      for (QPushButton* b : modal->findChildren<QPushButton*>())
        if (b->text() == "OK") QTest::mouseClick(b, Qt::LeftButton);
    });
    std::int64_t time = kMidnight;
    QCOMPARE(panels::RunModalDelayedPrintSetup(bundle, &time, kMidnight + 12 * 3600), noErr);
    QCOMPARE(format, QString("HH:mm"));
    QCOMPARE(time - kMidnight, std::int64_t{18 * 3600});  // today, 18:00

    // The secure print fields hide the typed digits; the confirm field opens with the first.
    bool hidden = false;
    QTimer::singleShot(0, this, [&] {
      QWidget* modal = QApplication::activeModalWidget();
      QList<QLineEdit*> fields = modal ? modal->findChildren<QLineEdit*>() : QList<QLineEdit*>();
      if (fields.size() != 2 || fields[1]->isEnabled()) return;
      hidden = fields[0]->echoMode() == QLineEdit::Password && fields[1]->echoMode() == QLineEdit::Password;
      QTest::keyClicks(fields[0], "12x34");
      QTest::keyClicks(fields[1], "1234");
      Photograph(modal, "dialog-secure-print");
      QTest::keyClick(fields[1], Qt::Key_Return);
    });
    std::optional<std::string> passcode;
    QCOMPARE(panels::RunModalSecurePrintSetup(bundle, &passcode), noErr);
    QVERIFY(hidden);
    QCOMPARE(passcode, std::optional<std::string>("1234"));
  }

  // The paper menu, its separators and covers dialogs, all with the mouse and the keys;
  // the ticket is varno-print's for the same choices.
  void paperDialogsGiveVarnoPrintsTicket() {
    open({.ppd = VARNO_SAMPLE_PPD});
    auto* paper = qobject_cast<QToolButton*>(widget({panels::kPaperOutputSignature, panels::kStockMenuButtonID}));
    QVERIFY(paper && paper->isVisible());
    Steps steps;
    ScriptMenuChoice(steps, {"Type", "Transparency"}, "menu-paper");
    QTest::mouseClick(paper, Qt::LeftButton);
    QTRY_VERIFY(steps.done());
    toolkit::Control* summary = dialog_->frameWindow().findByID({panels::kPaperOutputSignature, panels::kStockSummaryViewID});
    QCOMPARE(summary->text(), std::string("- Clear\n- Transparency"));

    ScriptMenuChoice(steps, {"Transparency Separators…"});
    steps.then([this] { return ModalDialog(dialog_.get()) != nullptr; }, [this] {
      QWidget* modal = ModalDialog(dialog_.get());
      QVERIFY(QTest::qWaitForWindowExposed(modal));
      ChooseByKeys(PopupOffering(modal, "Printed"), "Printed");
      ChooseByKeys(PopupOffering(modal, "Tray 2"), "Tray 2");
      Photograph(modal, "dialog-separators");
      for (QPushButton* b : modal->findChildren<QPushButton*>())
        if (b->text() == "OK") QTest::mouseClick(b, Qt::LeftButton);
    });
    QTest::mouseClick(paper, Qt::LeftButton);
    QTRY_VERIFY(steps.done());
    QCOMPARE(summary->text(), std::string("- Clear\n- Transparency\n- Separators: Tray 2"));

    // Covers: both, each made blue from its own paper menu and printed on its front.
    ScriptMenuChoice(steps, {"Covers…"});
    steps.then([this] { return ModalDialog(dialog_.get()) != nullptr; }, [this] {
      QWidget* modal = ModalDialog(dialog_.get());
      QVERIFY(QTest::qWaitForWindowExposed(modal));
      ChooseByKeys(PopupOffering(modal, "Front and Back Covers"), "Front and Back Covers");
    });
    for (int cover = 0; cover < 2; ++cover) {
      steps.then([] { return true; }, [this, cover] {
        QWidget* modal = ModalDialog(dialog_.get());
        QList<QToolButton*> buttons;
        for (QToolButton* b : modal->findChildren<QToolButton*>())
          if (b->isVisible() && b->menu()) buttons.push_back(b);
        QCOMPARE(buttons.size(), 2);
        QTest::mouseClick(buttons[cover], Qt::LeftButton);  // holds the loop while its menu is open
      });
      ScriptMenuChoice(steps, {"Other Color", "Blue"});
      steps.then([] { return !OpenMenu(); }, [this, cover] {
        ChooseByKeys(PopupOffering(ModalDialog(dialog_.get()), "Front Side", cover), "Front Side");
      });
    }
    steps.then([] { return true; }, [this] {
      QWidget* modal = ModalDialog(dialog_.get());
      Photograph(modal, "dialog-covers");
      for (QPushButton* b : modal->findChildren<QPushButton*>())
        if (b->text() == "OK") QTest::mouseClick(b, Qt::LeftButton);
    });
    QTest::mouseClick(paper, Qt::LeftButton);
    QTRY_VERIFY(steps.done());
    Photograph(dialog_.get(), "panel-paper-output-chosen");

    // The advanced paper dialog, looked at and cancelled: nothing changes.
    ScriptMenuChoice(steps, {"Advanced Paper…"});
    steps.then([this] { return ModalDialog(dialog_.get()) != nullptr; }, [this] {
      QWidget* modal = ModalDialog(dialog_.get());
      QVERIFY(QTest::qWaitForWindowExposed(modal));
      Photograph(modal, "dialog-advanced-paper");
      for (QPushButton* b : modal->findChildren<QPushButton*>())
        if (b->text() == "Cancel") QTest::mouseClick(b, Qt::LeftButton);
    });
    QTest::mouseClick(paper, Qt::LeftButton);
    QTRY_VERIFY(steps.done());

    const QString saved = saveSettings("paper.plist");
    QVERIFY2(QFileInfo::exists(saved), qPrintable(dialog_->statusText()));
    CompareTickets(Load(saved), VarnoPrintTicket(folder_.path(), {"-n", "1"},
                                                 {"--paper-type", "Transparency", "--separators",
                                                  "printed:Tray2", "--covers", "both:,Blue,:front"}));
  }

  // The finishing menu of a booklet maker and its dialogs, with the mouse and the keys; the
  // ticket is varno-print's for the same choices in the same order.
  void finishingChoicesGiveVarnoPrintsTicket() {
    const QString folder = VARNO_TEST_DATA_DIR "/ppd/Varno-BookletFolder.ppd";
    open({.ppd = folder.toStdString()});
    auto* finishing =
        qobject_cast<QToolButton*>(widget({panels::kPaperOutputSignature, panels::kFinishingMenuButtonID}));
    QVERIFY(finishing && finishing->isVisible());
    Steps steps;
    ScriptMenuChoice(steps, {"Offset/Subset…"});
    steps.then([this] { return ModalDialog(dialog_.get()) != nullptr; }, [this] {
      QWidget* modal = ModalDialog(dialog_.get());
      QVERIFY(QTest::qWaitForWindowExposed(modal));
      ChooseByKeys(PopupOffering(modal, "Offset Each Subset"), "Offset Each Subset");
      QLineEdit* pages = nullptr;
      for (QLineEdit* field : modal->findChildren<QLineEdit*>())
        if (field->isVisible() && field->isEnabled()) pages = field;
      QVERIFY(pages);
      pages->setFocus();
      QTest::keyClick(pages, Qt::Key_Backspace);
      QTest::keyClicks(pages, "5");
      Photograph(modal, "dialog-offset");
      ClickButton(modal, "OK");
    });
    QTest::mouseClick(finishing, Qt::LeftButton);
    QTRY_VERIFY(steps.done());

    ScriptMenuChoice(steps, {"Custom…"});
    steps.then([this] { return ModalDialog(dialog_.get()) != nullptr; }, [this] {
      QWidget* modal = ModalDialog(dialog_.get());
      QVERIFY(QTest::qWaitForWindowExposed(modal));
      auto* field = modal->findChild<QLineEdit*>();
      QVERIFY(field);
      QTest::keyClicks(field, "Tape bind");
      Photograph(modal, "dialog-custom-finishing");
      ClickButton(modal, "OK");
    });
    QTest::mouseClick(finishing, Qt::LeftButton);
    QTRY_VERIFY(steps.done());

    // Multiple staples, then holes, which take the staples off again (the booklet maker
    // folds only unstapled sets).
    for (const char* item : {"Multiple Staples", "3-Hole Punch"}) {
      ScriptMenuChoice(steps, {item}, item == QString("3-Hole Punch") ? "menu-finishing" : "");
      QTest::mouseClick(finishing, Qt::LeftButton);
      QTRY_VERIFY(steps.done());
    }
    toolkit::Control* summary =
        dialog_->frameWindow().findByID({panels::kPaperOutputSignature, panels::kFinishingSummaryViewID});
    QCOMPARE(summary->text(), std::string("- No Staple\n- 3-Hole Punch\n- No Fold\n"));

    ScriptMenuChoice(steps, {"Booklet Creation…"});
    steps.then([this] { return ModalDialog(dialog_.get()) != nullptr; }, [this] {
      QWidget* modal = ModalDialog(dialog_.get());
      QVERIFY(QTest::qWaitForWindowExposed(modal));
      QRadioButton* staple = nullptr;
      for (QRadioButton* radio : modal->findChildren<QRadioButton*>())
        if (radio->text() == "Booklet Crease and Staple") staple = radio;
      QVERIFY(staple);
      QTest::mouseClick(staple, Qt::LeftButton, {}, QPoint(6, staple->height() / 2));
      Photograph(modal, "dialog-booklet-creation");
      ClickButton(modal, "OK");
    });
    QTest::mouseClick(finishing, Qt::LeftButton);
    QTRY_VERIFY(steps.done());
    QCOMPARE(summary->text(), std::string("- Booklet Crease and Staple\n- Booklet Layout\n"));
    Photograph(dialog_.get(), "panel-paper-output-finishing");

    const QString saved = saveSettings("finishing.plist");
    QVERIFY2(QFileInfo::exists(saved), qPrintable(dialog_->statusText()));
    CompareTickets(Load(saved),
                   VarnoPrintTicket(folder_.path(), {"-n", "1"},
                                    {"--offset", "subsets,subset=5", "--custom-finishing", "Tape bind",
                                     "--staple", "multiple", "--punch", "3", "--booklet", "fold-staple,layout"},
                                    folder));
  }

  // Coil binding on a printer with the coil punch: its dialog, and the summary line.
  void coilBindingDialogIsOnTheMenu() {
    open({.ppd = VARNO_TEST_DATA_DIR "/ppd/Varno-CoilSquareFold.ppd"});
    auto* finishing =
        qobject_cast<QToolButton*>(widget({panels::kPaperOutputSignature, panels::kFinishingMenuButtonID}));
    QVERIFY(finishing);
    Steps steps;
    ScriptMenuChoice(steps, {"Coil Binding…"}, "menu-finishing-coil");
    steps.then([this] { return ModalDialog(dialog_.get()) != nullptr; }, [this] {
      QWidget* modal = ModalDialog(dialog_.get());
      QVERIFY(QTest::qWaitForWindowExposed(modal));
      ChooseByKeys(PopupOffering(modal, "Top Edge"), "Top Edge");
      Photograph(modal, "dialog-coil-binding");
      ClickButton(modal, "OK");
    });
    QTest::mouseClick(finishing, Qt::LeftButton);
    QTRY_VERIFY(steps.done());
    toolkit::Control* summary =
        dialog_->frameWindow().findByID({panels::kPaperOutputSignature, panels::kFinishingSummaryViewID});
    QVERIFY2(summary->text().find("Coil Binding: Top Edge") != std::string::npos, summary->text().c_str());
  }

  // Choosing "Save to Mailbox" opens its set-up at once; the folder, name and passcode are
  // typed as a person types them, and the ticket is varno-print's for the same values.
  void jobTypeSetUpGivesVarnoPrintsTicket() {
    open({.ppd = VARNO_SAMPLE_PPD});
    auto* jobType = qobject_cast<QComboBox*>(widget({panels::kPaperOutputSignature, panels::kJobTypePopupID}));
    QVERIFY(jobType);
    Steps steps;
    steps.then([this] { return ModalDialog(dialog_.get()) != nullptr; }, [this] {
      QWidget* modal = ModalDialog(dialog_.get());
      QVERIFY(QTest::qWaitForWindowExposed(modal));
      QList<QLineEdit*> fields;
      for (QLineEdit* field : modal->findChildren<QLineEdit*>())
        if (field->isVisible()) fields.push_back(field);
      // The two combo boxes' fields first (name, folder), then the two passcode fields.
      std::sort(fields.begin(), fields.end(), [](QLineEdit* a, QLineEdit* b) {
        return a->mapToGlobal(QPoint()).y() < b->mapToGlobal(QPoint()).y();
      });
      QCOMPARE(fields.size(), 4);
      QTest::keyClicks(fields[0], "Minutes");
      QTest::keyClicks(fields[1], "12");
      auto* secure = modal->findChild<QCheckBox*>();
      QVERIFY(secure);
      QTest::mouseClick(secure, Qt::LeftButton, {}, QPoint(6, secure->height() / 2));
      QTest::keyClicks(fields[2], "2468");
      QTest::keyClicks(fields[3], "2468");
      QCOMPARE(fields[2]->echoMode(), QLineEdit::Password);
      QCOMPARE(fields[3]->echoMode(), QLineEdit::Password);
      Photograph(modal, "dialog-saved-job");
      ClickButton(modal, "OK");
    });
    // The pop-up's list, opened; the arrow keys move in it without choosing, Return chooses.
    jobType->setFocus();
    jobType->showPopup();
    const int target = jobType->findText("Save to Mailbox");
    QVERIFY(target >= 0);
    QAbstractItemView* list = jobType->view();
    while (list->currentIndex().row() != target) QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Return);
    QTRY_VERIFY(steps.done());
    QTRY_VERIFY(!ModalDialog(dialog_.get()));
    QCOMPARE(jobType->currentText(), QString("Save to Mailbox"));

    const QString saved = saveSettings("mailbox.plist");
    QVERIFY2(QFileInfo::exists(saved), qPrintable(dialog_->statusText()));
    CompareTickets(Load(saved), VarnoPrintTicket(folder_.path(), {"-n", "1"},
                                                 {"--job-type", "mailbox", "--mailbox", "12", "--job-name",
                                                  "Minutes", "--passcode", "2468"}));
  }

  void helpOpensTheBundlesPages() {
    open({.ppd = VARNO_SAMPLE_PPD});
    QTest::mouseClick(button("?"), Qt::LeftButton);
    QCOMPARE(urls_.size(), std::size_t{1});
    const QUrl url(QString::fromStdString(urls_.front()));
    QVERIFY(url.toLocalFile().endsWith("/Help/index.html"));
    QVERIFY(QFileInfo::exists(url.toLocalFile()));
  }

  // A person trying everything in any order: the window stays a true picture of the
  // toolkit's tree after every action (with the sanitizers, nothing is used after it went).
  void randomActionsKeepTheWindowInStep() {
    open({.ppd = VARNO_SAMPLE_PPD});
    const QString file = folder_.path() + "/random.plist";
    dialog_->setFileChooser([file](qt::FileQuestion) { return QStringList{file}; });
    // Modal dialogs opened on the way are closed with their close box, menus that popped
    // up by pressing escape.
    QTimer dismiss;
    connect(&dismiss, &QTimer::timeout, this, [this] {
      if (QWidget* popup = QApplication::activePopupWidget()) {
        QTest::keyClick(popup, Qt::Key_Escape);
        return;
      }
      QWidget* modal = QApplication::activeModalWidget();
      if (modal && modal != dialog_.get()) modal->close();
    });
    dismiss.start(20);
    std::mt19937 random(20261125);
    for (int step = 0; step < 300; ++step) {
      std::vector<QWidget*> reachable;
      for (QWidget* child : dialog_->findChildren<QWidget*>()) {
        toolkit::Control* control = dialog_->renderer().controlFor(child);
        if (control && dialog_->renderer().widgetFor(control) == child && child->isVisible() &&
            child->isEnabled() && control->kind() != toolkit::ControlKind::UserPane &&
            control->kind() != toolkit::ControlKind::Window && child != button("Cancel"))
          reachable.push_back(child);
      }
      QVERIFY(!reachable.empty());
      QWidget* target = reachable[random() % reachable.size()];
      if (auto* combo = qobject_cast<QComboBox*>(target)) {
        combo->setFocus();
        QTest::keyClick(combo, random() % 2 ? Qt::Key_Down : Qt::Key_Up);
      } else if (auto* edit = qobject_cast<QLineEdit*>(target)) {
        QTest::keyClicks(edit, "7a");
      } else {
        QTest::mouseClick(target, Qt::LeftButton, {}, QPoint(4, target->height() / 2));
      }
      // Every control has its widget, shown and enabled as the toolkit says.
      std::vector<toolkit::Control*> stack{&dialog_->frameWindow()};
      while (!stack.empty()) {
        toolkit::Control* control = stack.back();
        stack.pop_back();
        for (std::size_t i = 0; i < control->childCount(); ++i) stack.push_back(control->child(i));
        QWidget* widget = dialog_->renderer().widgetFor(control);
        QVERIFY2(widget, toolkit::Traits(control->kind()).name);
        const std::string which = std::string(toolkit::Traits(control->kind()).name) + " " +
                                  std::to_string(control->id().id) + " after step " + std::to_string(step);
        QVERIFY2(widget->isVisible() == control->isShown(), which.c_str());
        if (control->isShown())
          QCOMPARE(widget->isEnabled(), control->isEffectivelyEnabled() && control->isEffectivelyActive());
      }
    }
    QVERIFY(dialog_->isVisible());
  }

  void closingNeverSubmitsNorSaves() {
    const QString ticket = folder_.path() + "/kept.plist";
    VarnoPrintTicket(folder_.path()).save(ticket.toStdString());
    const QByteArray before = [&] { QFile f(ticket); f.open(QIODevice::ReadOnly); return f.readAll(); }();
    for (bool byCloseBox : {false, true}) {
      open({.ppd = VARNO_SAMPLE_PPD, .ticket = ticket.toStdString()});
      make(kWindowChoices[2]);  // a change the dialog then drops
      if (byCloseBox) dialog_->close();
      else QTest::mouseClick(button("Cancel"), Qt::LeftButton);
      QVERIFY(!dialog_->isVisible());
      QCOMPARE(dialog_->result(), int(QDialog::Rejected));
      QCOMPARE(dialog_->lastJob(), 0);
    }
    QFile f(ticket);
    QVERIFY(f.open(QIODevice::ReadOnly));
    QCOMPARE(f.readAll(), before);
  }

  // The Special Pages pane beside the plug-in's: chosen in the pane chooser, it shows in the
  // same place; the covers both panes keep go from one to the other through the ticket, and
  // whichever pane is shown is written last, so what the person sees is what is saved.
  void specialPagesPaneSharesTheTicket() {
    open({.ppd = VARNO_SAMPLE_PPD});
    QWidget* plugInPane = widget({host::kHostSignature, host::kSelectorID});
    auto* paper = qobject_cast<QToolButton*>(widget({panels::kPaperOutputSignature, panels::kStockMenuButtonID}));
    Steps steps;
    struct Case {
      bool inSpecialPages;  // the pane the covers are chosen in
      const char* covers;
      QStringList rows;  // the Special Pages list after
    } cases[] = {
        {false, "Front and Back Covers", {"Front Cover", "Back Cover"}},
        {true, "Front Cover Only", {"Front Cover"}},
        {false, "No Covers", {}},
        {true, "Front Cover Only", {"Front Cover"}},
    };
    for (const Case& c : cases) {
      ChooseByKeys(dialog_->paneChooser(), dialog_->paneChooser()->itemText(c.inSpecialPages ? 1 : 0));
      QCOMPARE(plugInPane->isVisible(), !c.inSpecialPages);
      QCOMPARE(specialPagesButton(panels::kAddCoversButtonID)->isVisible(), c.inSpecialPages);
      if (!c.inSpecialPages) ScriptMenuChoice(steps, {"Covers…"});
      steps.then([this] { return ModalDialog(dialog_.get()) != nullptr; }, [this, c] {
        ChooseByKeys(PopupOffering(ModalDialog(dialog_.get()), c.covers), c.covers);
        ClickButton(ModalDialog(dialog_.get()), "OK");
      });
      QTest::mouseClick(c.inSpecialPages ? specialPagesButton(panels::kAddCoversButtonID) : paper, Qt::LeftButton);
      QTRY_VERIFY(steps.done());
      // Saved from the pane the choice was made in, while the other still holds the old covers.
      const QString file = saveSettings("covers.plist");
      QVERIFY2(QFileInfo::exists(file), qPrintable(dialog_->statusText()));
      const print::Ticket saved = Load(file);
      QCOMPARE(saved.item(model::kFrontCoverKey) != nullptr, !c.rows.empty());
      QCOMPARE(saved.item(model::kBackCoverKey) != nullptr, c.rows.size() == 2);
      ChooseByKeys(dialog_->paneChooser(), "Special Pages");
      QCOMPARE(specialPageRows(), c.rows);
    }

    // Inserts after pages 2 and 5, and pages 3 to 4 printed on one side, typed into their
    // dialogs; the plug-in's pane, shown and written last, keeps them in the ticket.
    struct Typed {
      std::int32_t button;
      const char* pages;
      const char* sides;  // the exception's 2-sided printing, or null
      const char* photo;
    } typed[] = {{panels::kAddInsertsButtonID, "2,5", nullptr, "dialog-inserts"},
                 {panels::kAddExceptionsButtonID, "3-4", "Off", "dialog-exceptions"}};
    for (const Typed& t : typed) {
      steps.then([this] { return ModalDialog(dialog_.get()) != nullptr; }, [this, t] {
        QWidget* modal = ModalDialog(dialog_.get());
        QVERIFY(QTest::qWaitForWindowExposed(modal));
        QTest::keyClicks(modal->findChildren<QLineEdit*>().front(), t.pages);  // the first field
        if (t.sides) ChooseByKeys(PopupOffering(modal, t.sides), t.sides);
        Photograph(modal, t.photo);
        ClickButton(modal, "OK");
      });
      QTest::mouseClick(specialPagesButton(t.button), Qt::LeftButton);
      QTRY_VERIFY(steps.done());
    }
    QCOMPARE(specialPageRows(), (QStringList{"Front Cover", "2 Insert", "3-4 Exception", "5 Insert"}));
    Photograph(dialog_.get(), "pane-special-pages");

    // Rows clicked apart reach the panel, which then counts two rows; rows the panel
    // selects, in a run and apart, are the rows the list shows selected.
    auto* tree = qobject_cast<QTreeWidget*>(widget({panels::kSpecialPagesSignature, panels::kSpecialPagesListID}));
    auto* list = toolkit::AsListView(
        dialog_->frameWindow().findByID({panels::kSpecialPagesSignature, panels::kSpecialPagesListID}));
    QVERIFY(tree && list);
    auto click = [tree](int row, Qt::KeyboardModifiers keys) {
      QTest::mouseClick(tree->viewport(), Qt::LeftButton, keys, tree->visualItemRect(tree->topLevelItem(row)).center());
    };
    click(1, {});
    click(3, Qt::ControlModifier);
    QCOMPARE(list->selection(), (std::vector{list->items()[1], list->items()[3]}));
    QVERIFY(!specialPagesButton(panels::kEditSpecialPageButtonID)->isEnabled());
    QVERIFY(specialPagesButton(panels::kDeleteSpecialPagesButtonID)->isEnabled());
    auto shownSelected = [tree] {
      QList<int> rows;
      for (QTreeWidgetItem* row : tree->selectedItems()) rows << tree->indexOfTopLevelItem(row);
      std::sort(rows.begin(), rows.end());
      return rows;
    };
    QCOMPARE(shownSelected(), (QList<int>{1, 3}));
    QCOMPARE(toolkit::SelectListItems(*list, std::vector{list->items()[3], list->items()[0], list->items()[1]}),
             noErr);
    QCOMPARE(shownSelected(), (QList<int>{0, 1, 3}));
    // Leaving the pane wrote them into the session's ticket; saving writes them again.
    ChooseByKeys(dialog_->paneChooser(), dialog_->paneChooser()->itemText(0));
    QVERIFY(dialog_->session()->printSettings().item(model::kInsertListKey));
    const print::Ticket saved = Load(saveSettings("special.plist"));
    for (auto [key, count] : {std::pair{model::kInsertListKey, 2}, std::pair{model::kExceptionListKey, 1}}) {
      const print::Ticket::Item* list = saved.item(key);
      QVERIFY2(list && list->value.asArray() && int(list->value.asArray()->size()) == count, key);
    }

    // The framework's help goes to the pane shown, which opens its own page.
    for (auto [pane, page] : {std::pair{0, "/Help/index.html"}, std::pair{1, "/Special_Pages/m_special_pages.htm"}}) {
      ChooseByKeys(dialog_->paneChooser(), dialog_->paneChooser()->itemText(pane));
      urls_.clear();
      QTest::mouseClick(button("?"), Qt::LeftButton);
      QVERIFY2(urls_.size() == 1 && QString::fromStdString(urls_.back()).endsWith(page), page);
    }
  }

  // Needs root and cupsd, as the printing test does (label cups).
  void printsThroughTheScheduler() {
    testing::PrivateScheduler scheduler;
    std::string error;
    QVERIFY2(scheduler.start(&error) && scheduler.addQueue("varno", VARNO_SAMPLE_PPD, &error), error.c_str());
    const std::string document = (scheduler.root() / "doc.ps").string();
    std::ofstream(document) << "%!PS\nshowpage\n";
    auto defaults = [&] {
      std::vector<std::pair<std::string, std::string>> list;
      for (const print::JobOption& option :
           print::ReadQueueDefaults("varno", scheduler.server(), &error).value_or(std::vector<print::JobOption>{}))
        list.emplace_back(option.name, option.value);
      return list;
    };
    const auto defaultsBefore = defaults();

    // Switching printers closes the plug-in and opens it for the next Varno printer; another
    // maker's printer gets no pane, only a line that says why.
    QVERIFY2(scheduler.addQueue("other", VARNO_TEST_DATA_DIR "/ppd/Other-Maker.ppd", &error), error.c_str());
    open({.server = scheduler.server()});
    const ControlID selector{host::kHostSignature, host::kSelectorID};
    for (const char* queue : {"other", "varno", "other"}) {
      ChooseByKeys(dialog_->printerChooser(), queue);
      const bool varno = std::string_view(queue) == "varno";
      QCOMPARE(widget(selector) != nullptr, varno);
      bool said = false;
      for (QLabel* label : dialog_->findChildren<QLabel*>())
        said |= label->isVisible() && label->text().contains("not a Varno printer");
      QCOMPARE(said, !varno);
    }

    // Cancel sends nothing and leaves the queue's defaults alone.
    open({.queue = "varno", .server = scheduler.server(), .files = {document}});
    makeAllChoices();
    QTest::mouseClick(button("Cancel"), Qt::LeftButton);
    QCOMPARE(dialog_->lastJob(), 0);
    QVERIFY(defaults() == defaultsBefore);

    open({.queue = "varno", .server = scheduler.server(), .files = {document}});
    makeAllChoices();
    // The dialog's own settings, typed and chosen as a person does.
    dialog_->copiesBox()->selectAll();
    QTest::keyClicks(dialog_->copiesBox(), "2");
    ChooseByKeys(dialog_->orientationChooser(), "Landscape");
    const print::Ticket saved = Load(saveSettings("printed.plist"));
    // An OK that the plug-in's check refuses (as it refuses a secure job without its
    // passcode) keeps the dialog open and sends nothing.
    static const std::vector<toolkit::EventTypeSpec> kCommands = {
        {toolkit::kEventClassCommand, toolkit::kEventCommandProcess}};
    toolkit::EventHandlerRef refusal = dialog_->frameWindow().installHandler(
        kCommands, [](toolkit::EventHandlerCallRef, toolkit::Event& event) {
          return event.command()->commandID == toolkit::kHICommandOK ? host::kOKSwallowed : eventNotHandledErr;
        });
    QTest::mouseClick(button("Print"), Qt::LeftButton);
    QVERIFY(dialog_->isVisible());
    QCOMPARE(dialog_->lastJob(), 0);
    QCOMPARE(toolkit::RemoveEventHandler(refusal), noErr);
    QTest::mouseClick(button("Print"), Qt::LeftButton);
    QVERIFY2(dialog_->lastJob() > 0, qPrintable(dialog_->statusText()));
    QVERIFY(dialog_->statusText().contains(QString("varno-%1").arg(dialog_->lastJob())));
    Photograph(dialog_.get(), "dialog-printed");
    const std::optional<std::string> argument = scheduler.recordedOptions(dialog_->lastJob());
    QVERIFY2(argument, scheduler.errorLogDigest().c_str());
    const std::vector<print::JobOption> options = print::ParseJobOptionsArgument(*argument);
    auto decoded = print::DecodeTicketEntries(options, &error);
    QVERIFY2(decoded, error.c_str());
    // What reached the printer is the dialog's ticket, entry by entry.
    std::map<std::string, plist::Value> arrived(decoded->begin(), decoded->end());
    QVERIFY(arrived == EntriesOf(saved));
    // Copies and orientation are the scheduler's to apply.
    std::ifstream titleAndCopies(scheduler.recordedTitleAndCopies(dialog_->lastJob()));
    std::string title, copies;
    std::getline(titleAndCopies, title);
    std::getline(titleAndCopies, copies);
    QCOMPARE(copies, std::string("2"));
    QVERIFY2(argument->find("orientation-requested=4") != std::string::npos, argument->c_str());
    std::int32_t orientation = 0;
    QCOMPARE(dialog_->session()->pageFormat().getNumber(print::kOrientationKey, orientation), noErr);
    QCOMPARE(orientation, 2);
    // And that is varno-print's for the same choices and job name.
    CompareTickets(saved, VarnoPrintTicket(folder_.path(), {"-t", "doc.ps", "-n", "2"}));

    // Saved as the queue's defaults, the choices are where the next dialog on it starts.
    QTest::mouseClick(button("Save as Defaults"), Qt::LeftButton);
    QVERIFY2(dialog_->statusText().contains("now the defaults"), qPrintable(dialog_->statusText()));
    open({.queue = "varno", .server = scheduler.server()});
    for (const WindowChoice& choice : kWindowChoices)
      if (choice.item.isEmpty()) QVERIFY(qobject_cast<QCheckBox*>(widget(choice.control))->isChecked());
  }
};

QTEST_MAIN(PrintDialogTest)
#include "print_dialog_test.moc"
