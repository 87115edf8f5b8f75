// SPDX-License-Identifier: Apache-2.0
#include "window_renderer.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QGroupBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QPoint>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardItemModel>
#include <QTabBar>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/toolkit/automation.h"
#include "platform/toolkit/text_editing.h"

namespace varno::qt {

namespace {

using toolkit::Control;
using toolkit::ControlChange;
using toolkit::ControlKind;
using What = toolkit::ControlChange::What;

QString Q(const std::string& text) { return QString::fromStdString(text); }

// Character positions: the toolkit counts code points, Qt UTF-16 units.
int UnitsForCharacters(const QString& text, int characters) {
  int units = 0;
  for (int c = 0; c < characters && units < text.size(); ++c)
    units += text.at(units).isHighSurrogate() && units + 1 < text.size() ? 2 : 1;
  return units;
}
int CharactersForUnits(const QString& text, int units) {
  return static_cast<int>(text.left(units).toUcs4().size());
}

// Clocks hold seconds since 1904-01-01 of local wall time: every day has 86400 of them.
// Qt's local time would add or drop an hour across a daylight saving change, so the
// widget counts in UTC, where wall time and seconds agree, and shows that wall time.
const QDateTime& Epoch1904() {
  static const QDateTime epoch(QDate(1904, 1, 1), QTime(0, 0), Qt::UTC);
  return epoch;
}
QDateTime FromLongDateTime(toolkit::LongDateTime seconds) { return Epoch1904().addSecs(seconds); }
toolkit::LongDateTime ToLongDateTime(const QDateTime& time) { return Epoch1904().secsTo(time); }

// The two arrows of a spin control.
QWidget* MakeSpinArrows(QWidget* parent, QToolButton** up, QToolButton** down) {
  auto* box = new QWidget(parent);
  auto* layout = new QVBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  *up = new QToolButton(box);
  *down = new QToolButton(box);
  (*up)->setArrowType(Qt::UpArrow);
  (*down)->setArrowType(Qt::DownArrow);
  for (QToolButton* button : {*up, *down}) {
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    layout->addWidget(button);
  }
  return box;
}

// A tab control: the tabs on top; the tab panes are the control's children.
class TabWidget final : public QWidget {
 public:
  explicit TabWidget(QWidget* parent) : QWidget(parent), bar(new QTabBar(this)) {
    bar->setDrawBase(true);
    bar->setExpanding(false);
  }
  QTabBar* bar;

 protected:
  void resizeEvent(QResizeEvent*) override { bar->setGeometry(0, 0, width(), bar->sizeHint().height()); }
};

// Lets clicks on a picture reach the toolkit.
class PictureLabel final : public QLabel {
 public:
  using QLabel::QLabel;
  std::function<void()> clicked;

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (clicked && rect().contains(event->position().toPoint())) clicked();
  }
};

bool IsTextField(ControlKind kind) { return kind == ControlKind::EditText || kind == ControlKind::ComboBox; }

QLineEdit* LineEditOf(QWidget* widget) {
  if (auto* edit = qobject_cast<QLineEdit*>(widget)) return edit;
  if (auto* combo = qobject_cast<QComboBox*>(widget)) return combo->lineEdit();
  return nullptr;
}

// Fills a Qt menu from a toolkit menu. Each action carries where its item is: (item, 0)
// for an item of the top menu, (item, subitem) for an item of that item's submenu.
void FillMenu(QMenu* qmenu, const toolkit::Menu& menu, toolkit::MenuItemIndex parent) {
  for (toolkit::MenuItemIndex i = 1; i <= menu.count(); ++i) {
    const toolkit::MenuItem* item = menu.item(i);
    if (item->text == "-") {
      qmenu->addSeparator();
      continue;
    }
    if (item->submenu && parent == 0) {
      QMenu* sub = qmenu->addMenu(Q(item->text));
      sub->setEnabled(item->enabled && menu.isEnabled());
      FillMenu(sub, *item->submenu, i);
      continue;
    }
    QAction* action = qmenu->addAction(Q(item->text));
    action->setEnabled(item->enabled && menu.isEnabled());
    action->setCheckable(item->checked);
    action->setChecked(item->checked);
    action->setData(parent == 0 ? QPoint(i, 0) : QPoint(parent, i));
  }
}

}  // namespace

WindowRenderer::WindowRenderer(toolkit::Window& window, QWidget* root, bundle::BundleRef pictures)
    : QObject(root), window_(&window), root_(root), pictures_(std::move(pictures)) {
  rendered_[&window].widget = root;
  controls_[root] = &window;
  root->setFixedSize(window.bounds().width(), window.bounds().height());
  subscription_ = window.subscribe([this](const ControlChange& change) { changed(change); });
  for (std::size_t i = 0; i < window.childCount(); ++i) build(*window.child(i));
  updateTabOrder();
  refreshFocus();
}

WindowRenderer::~WindowRenderer() { subscription_.reset(); }

QWidget* WindowRenderer::widgetFor(const Control* control) const {
  auto it = rendered_.find(control);
  return it == rendered_.end() ? nullptr : it->second.widget.data();
}

Control* WindowRenderer::controlFor(const QWidget* widget) const {
  for (; widget; widget = widget->parentWidget()) {
    auto it = controls_.find(widget);
    if (it != controls_.end()) return it->second;
    if (widget == root_) break;
  }
  return nullptr;
}

void WindowRenderer::changed(const ControlChange& change) {
  Control* control = change.control;
  if (!window_ || !control) return;
  ++updating_;
  switch (change.what) {
    case What::Embedded:
      if (!rendered_.count(control) && rendered_.count(control->parent())) {
        build(*control);
        updateTabOrder();
      }
      break;
    case What::Removed:
      if (control == window_) {
        // The window is going: nothing of it may be touched from now on.
        for (auto& [unused, rendered] : rendered_) rendered.menu.reset();
        rendered_.clear();
        controls_.clear();
        window_ = nullptr;
        subscription_.reset();
        if (onWindowGone_) onWindowGone_();
      } else {
        drop(*control);
      }
      break;
    case What::Focus:
      refreshFocus();
      break;
    default:
      if (rendered_.count(control)) refreshAspect(*control, change.what);
      break;
  }
  --updating_;
}

void WindowRenderer::build(Control& control) {
  QWidget* parent = widgetFor(control.parent());
  if (!parent) return;
  QWidget* widget = makeWidget(control, parent);
  rendered_[&control].widget = widget;
  controls_[widget] = &control;
  subscribeMenu(control);
  refresh(control);
  connectActions(control, widget);
  // Return presses the window's default button, in a Qt dialog as in the toolkit.
  if (auto* button = qobject_cast<QPushButton*>(widget)) button->setDefault(window_->defaultButton() == &control);
  for (std::size_t i = 0; i < control.childCount(); ++i) build(*control.child(i));
  // Before it is painted the first time, as a renderer tells every control.
  control.draw();
  widget->show();
  widget->setVisible(control.isVisible());
}

QWidget* WindowRenderer::makeWidget(Control& control, QWidget* parent) {
  switch (control.kind()) {
    case ControlKind::Group: return new QGroupBox(parent);
    case ControlKind::StaticText: {
      auto* label = new QLabel(parent);
      label->setWordWrap(true);
      label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
      return label;
    }
    case ControlKind::EditText: {
      auto* edit = new QLineEdit(parent);
      edit->installEventFilter(this);
      return edit;
    }
    case ControlKind::PushButton: {
      auto* button = new QPushButton(parent);
      button->setAutoDefault(false);
      return button;
    }
    case ControlKind::CheckBox: return new QCheckBox(parent);
    case ControlKind::RadioButton: {
      auto* radio = new QRadioButton(parent);
      radio->setAutoExclusive(false);  // the toolkit turns the siblings off
      return radio;
    }
    case ControlKind::PopupButton: return new QComboBox(parent);
    case ControlKind::ComboBox: {
      auto* combo = new QComboBox(parent);
      combo->setEditable(true);
      combo->setInsertPolicy(QComboBox::NoInsert);
      combo->lineEdit()->installEventFilter(this);
      controls_[combo->lineEdit()] = &control;
      return combo;
    }
    case ControlKind::BevelButton: {
      auto* button = new QToolButton(parent);
      button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
      return button;
    }
    case ControlKind::SpinControl: {
      QToolButton* up = nullptr;
      QToolButton* down = nullptr;
      QWidget* box = MakeSpinArrows(parent, &up, &down);
      Control* target = &control;
      connect(up, &QToolButton::clicked, this, [this, target] {
        act(*target, [](Control& c) { toolkit::Click(c, toolkit::kControlUpButtonPart); });
      });
      connect(down, &QToolButton::clicked, this, [this, target] {
        act(*target, [](Control& c) { toolkit::Click(c, toolkit::kControlDownButtonPart); });
      });
      return box;
    }
    case ControlKind::Clock: {
      auto* clock = new QDateTimeEdit(parent);
      clock->setTimeSpec(Qt::UTC);
      clock->installEventFilter(this);  // focus, and the keys that end or leave the dialog
      return clock;
    }
    case ControlKind::ImageView: {
      auto* label = new PictureLabel(parent);
      label->setAlignment(Qt::AlignCenter);
      return label;
    }
    case ControlKind::ListView: {
      auto* tree = new QTreeWidget(parent);
      tree->setRootIsDecorated(false);
      tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
      tree->setUniformRowHeights(true);
      return tree;
    }
    case ControlKind::TabControl: return new TabWidget(parent);
    case ControlKind::Window:
    case ControlKind::UserPane: break;
  }
  return new QWidget(parent);
}

void WindowRenderer::drop(Control& control) {
  auto it = rendered_.find(&control);
  if (it == rendered_.end()) return;
  QPointer<QWidget> widget = it->second.widget;
  // The subtree's entries go first; its widgets go with the top one.
  std::vector<Control*> stack{&control};
  while (!stack.empty()) {
    Control* c = stack.back();
    stack.pop_back();
    for (std::size_t i = 0; i < c->childCount(); ++i) stack.push_back(c->child(i));
    auto entry = rendered_.find(c);
    if (entry == rendered_.end()) continue;
    if (entry->second.widget) {
      controls_.erase(entry->second.widget.data());
      if (QLineEdit* edit = LineEditOf(entry->second.widget)) controls_.erase(edit);
    }
    rendered_.erase(entry);
  }
  if (widget) {
    widget->hide();
    widget->deleteLater();
  }
}

void WindowRenderer::refresh(Control& control) {
  for (What what : {What::Bounds, What::Text, What::Password, What::Menu, What::Value,
                    What::Picture, What::DateTime, What::Enabled, What::Visible, What::ListColumns})
    refreshAspect(control, what);
}

void WindowRenderer::refreshAspect(Control& control, What what) {
  QWidget* widget = widgetFor(&control);
  if (!widget) return;
  ++updating_;
  const QSignalBlocker blocker(widget);
  switch (what) {
    case What::Bounds:
      if (&control != window_) {
        const toolkit::Rect& b = control.bounds();
        widget->setGeometry(b.left, b.top, b.width(), b.height());
      } else {
        root_->setFixedSize(control.bounds().width(), control.bounds().height());
      }
      break;
    case What::Text:
    case What::Selection:
    case What::Password: {
      const QString text = Q(control.text());
      if (QLineEdit* edit = LineEditOf(widget)) {
        const QSignalBlocker editBlocker(edit);
        edit->setEchoMode(control.isPassword() ? QLineEdit::Password : QLineEdit::Normal);
        if (edit->text() != text) edit->setText(text);
        const toolkit::TextRange range = control.selection();
        const int start = UnitsForCharacters(text, range.start);
        const int end = UnitsForCharacters(text, range.end);
        if (start == end) edit->setCursorPosition(start);
        else edit->setSelection(start, end - start);
      } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        button->setText(text);
      } else if (auto* label = qobject_cast<QLabel*>(widget); label && control.kind() == ControlKind::StaticText) {
        label->setText(text);
      } else if (auto* group = qobject_cast<QGroupBox*>(widget)) {
        group->setTitle(text);
      } else if (&control == window_ && root_->isWindow()) {
        root_->setWindowTitle(text);
      }
      refreshAccessibleName(control);
      break;
    }
    case What::Value:
    case What::Range:
    case What::MenuValue:
      if (auto* check = qobject_cast<QCheckBox*>(widget)) {
        check->setCheckState(control.value() == 0 ? Qt::Unchecked
                             : control.value() == 1 ? Qt::Checked : Qt::PartiallyChecked);
      } else if (auto* radio = qobject_cast<QRadioButton*>(widget)) {
        radio->setChecked(control.value() != 0);
      } else if (auto* combo = qobject_cast<QComboBox*>(widget); combo && !combo->isEditable()) {
        combo->setCurrentIndex(control.value() - 1);
      } else if (auto* tabs = dynamic_cast<TabWidget*>(widget)) {
        tabs->bar->setCurrentIndex(control.value() - 1);
      } else if (control.kind() == ControlKind::BevelButton) {
        refreshMenu(control);  // the chosen item is marked in the menu
      } else if (control.kind() == ControlKind::SpinControl) {
        widget->setToolTip(QString::number(control.value()));
      }
      break;
    case What::Visible:
      if (&control != window_) widget->setVisible(control.isVisible());
      break;
    case What::Enabled:
    case What::Active:
      // Qt passes a disabled parent on to its children, as the toolkit does.
      widget->setEnabled(control.isEnabled() && control.isActive());
      break;
    case What::Menu:
      refreshMenu(control);
      break;
    case What::Picture: {
      QPixmap picture;
      std::optional<std::filesystem::path> file;
      if (!control.pictureName().empty() && pictures_) file = pictures_->resourcePath(control.pictureName());
      if (file) picture.load(Q(file->string()));
      if (auto* label = dynamic_cast<PictureLabel*>(widget)) {
        label->setPixmap(picture.isNull() ? QPixmap()
                                          : picture.scaled(widget->size(), Qt::KeepAspectRatio,
                                                           Qt::SmoothTransformation));
      } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        button->setIcon(QIcon(picture));
        button->setIconSize(QSize(control.bounds().width() - 6, control.bounds().height() - 6));
      }
      break;
    }
    case What::DateTime:
      if (auto* clock = qobject_cast<QDateTimeEdit*>(widget)) {
        const QString format = control.isTimeOnly()
                                   ? QStringLiteral("HH:mm")
                                   : QLocale().dateTimeFormat(QLocale::ShortFormat);
        if (clock->displayFormat() != format) clock->setDisplayFormat(format);
        // Rewriting an unchanged value would move the caret of a person still typing.
        const QDateTime shown = FromLongDateTime(control.dateTime());
        if (clock->dateTime() != shown) clock->setDateTime(shown);
      }
      break;
    case What::ListColumns:
    case What::ListItems:
      if (toolkit::ListView* list = toolkit::AsListView(&control)) refreshList(*list);
      break;
    case What::ListSelection:
      // The rows stay: a click in a long list does not make every row again.
      if (toolkit::ListView* list = toolkit::AsListView(&control)) refreshListSelection(*list);
      break;
    case What::Embedded:
    case What::Removed:
    case What::Focus:
      break;
  }
  --updating_;
}

void WindowRenderer::refreshMenu(Control& control) {
  QWidget* widget = widgetFor(&control);
  toolkit::Menu* menu = control.menu();
  if (!widget) return;
  const QSignalBlocker blocker(widget);
  if (auto* combo = qobject_cast<QComboBox*>(widget)) {
    combo->clear();
    if (menu) {
      for (toolkit::MenuItemIndex i = 1; i <= menu->count(); ++i) {
        const toolkit::MenuItem* item = menu->item(i);
        combo->addItem(Q(item->text));
        if (auto* model = qobject_cast<QStandardItemModel*>(combo->model()))
          model->item(i - 1)->setEnabled(item->enabled && menu->isEnabled());
      }
    }
    if (combo->isEditable()) combo->setEditText(Q(control.text()));
    else combo->setCurrentIndex(control.value() - 1);
  } else if (auto* tabs = dynamic_cast<TabWidget*>(widget)) {
    while (tabs->bar->count() > 0) tabs->bar->removeTab(0);
    if (menu)
      for (toolkit::MenuItemIndex i = 1; i <= menu->count(); ++i) {
        tabs->bar->addTab(Q(menu->item(i)->text));
        tabs->bar->setTabEnabled(i - 1, menu->item(i)->enabled);
      }
    tabs->bar->setCurrentIndex(control.value() - 1);
    tabs->bar->setGeometry(0, 0, tabs->width(), tabs->bar->sizeHint().height());
  } else if (auto* button = qobject_cast<QToolButton*>(widget)) {
    QMenu* old = button->menu();
    button->setMenu(nullptr);
    if (old) old->deleteLater();
    if (menu && menu->count() > 0) {
      auto* qmenu = new QMenu(button);
      FillMenu(qmenu, *menu, 0);
      // The chosen item shows as checked, as the bevel button's menu value says.
      const auto actions = qmenu->actions();
      for (QAction* action : actions)
        if (action->data().toPoint() == QPoint(control.menuValue(), 0) && control.menuValue() != 0) {
          action->setCheckable(true);
          action->setChecked(true);
        }
      // Submenus' actions reach this too: QMenu passes its submenus' triggers up.
      connect(qmenu, &QMenu::triggered, this, [this, target = &control](QAction* action) {
        const QPoint where = action->data().toPoint();
        const auto item = static_cast<toolkit::MenuItemIndex>(where.x());
        const auto subitem = static_cast<toolkit::MenuItemIndex>(where.y());
        if (item == 0) return;
        act(*target, [item, subitem](Control& c) {
          if (subitem == 0)
            toolkit::ChooseMenuItem(c, item);
          else
            toolkit::ChooseSubmenuItem(c, item, subitem);
        });
      });
      button->setMenu(qmenu);
      button->setPopupMode(QToolButton::InstantPopup);
    }
  }
}

void WindowRenderer::refreshList(toolkit::ListView& list) {
  auto* tree = qobject_cast<QTreeWidget*>(widgetFor(&list));
  if (!tree) return;
  const QSignalBlocker blocker(tree);
  QStringList titles;
  for (const toolkit::ListColumn& column : list.columns()) titles << Q(column.title);
  tree->setColumnCount(std::max<int>(1, titles.size()));
  tree->setHeaderLabels(titles);
  tree->setHeaderHidden(titles.isEmpty());
  for (std::size_t c = 0; c < list.columns().size(); ++c)
    if (list.columns()[c].width > 0) tree->setColumnWidth(static_cast<int>(c), list.columns()[c].width);
  tree->clear();
  // The rows are filled before the tree has them and handed over in one call, and the
  // selection is set once as runs of rows: row by row, Qt's model and selection model do
  // work for every row that grows with the list.
  QList<QTreeWidgetItem*> rows;
  rows.reserve(static_cast<qsizetype>(list.items().size()));
  for (toolkit::DataBrowserItemID id : list.items()) {
    auto* row = new QTreeWidgetItem();
    row->setData(0, Qt::UserRole, QVariant::fromValue<qulonglong>(id));
    for (std::size_t c = 0; c < list.columns().size(); ++c) {
      std::string text;
      if (list.cellText(id, list.columns()[c].property, &text) == noErr) {
        const QString shown = Q(text);
        row->setText(static_cast<int>(c), shown);
        row->setToolTip(static_cast<int>(c), shown);  // the whole text of a cell cut short
      }
    }
    rows.append(row);
  }
  tree->addTopLevelItems(rows);
  refreshListSelection(list);
}

void WindowRenderer::refreshListSelection(toolkit::ListView& list) {
  auto* tree = qobject_cast<QTreeWidget*>(widgetFor(&list));
  if (!tree) return;
  if (tree->topLevelItemCount() != static_cast<int>(list.items().size())) {
    refreshList(list);  // rows out of step: make them again, selection included
    return;
  }
  const QSignalBlocker blocker(tree);
  std::vector<int> selected;
  for (toolkit::DataBrowserItemID id : list.selection())
    if (std::optional<std::size_t> row = list.rowOf(id)) selected.push_back(static_cast<int>(*row));
  std::sort(selected.begin(), selected.end());
  QItemSelection runs;
  for (std::size_t i = 0; i < selected.size();) {
    std::size_t last = i;
    while (last + 1 < selected.size() && selected[last + 1] == selected[last] + 1) ++last;
    runs.select(tree->model()->index(selected[i], 0), tree->model()->index(selected[last], 0));
    i = last + 1;
  }
  tree->selectionModel()->select(runs, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void WindowRenderer::refreshFocus() {
  if (!window_) return;
  QWidget* widget = widgetFor(window_->focus());
  if (!widget) return;
  if (QLineEdit* edit = LineEditOf(widget)) widget = edit;
  if (!widget->hasFocus()) widget->setFocus(Qt::OtherFocusReason);
}

void WindowRenderer::refreshAccessibleName(Control& control) {
  QWidget* widget = widgetFor(&control);
  if (!widget) return;
  // A field or a pop-up is named by the label that comes before it, as a person reads it.
  std::string name = control.text();
  if (IsTextField(control.kind()) || control.kind() == ControlKind::PopupButton ||
      control.kind() == ControlKind::ListView || control.kind() == ControlKind::SpinControl) {
    name.clear();
    Control* parent = control.parent();
    for (std::size_t i = 0; parent && i < parent->childCount(); ++i) {
      Control* sibling = parent->child(i);
      if (sibling == &control) break;
      if (sibling->kind() == ControlKind::StaticText && !sibling->text().empty()) name = sibling->text();
    }
    if (!name.empty() && name.back() == ':') name.pop_back();
  }
  if (name == "?") name = "Help";
  if (name.empty()) name = toolkit::Traits(control.kind()).name;
  widget->setAccessibleName(Q(name));
}

void WindowRenderer::subscribeMenu(Control& control) {
  Rendered& rendered = rendered_[&control];
  rendered.menu.reset();
  if (!control.menu()) return;
  rendered.menu = control.menu()->subscribe([this, target = &control](const toolkit::MenuChange&) {
    if (!rendered_.count(target)) return;
    ++updating_;
    refreshMenu(*target);
    --updating_;
  });
}

template <typename Action>
void WindowRenderer::act(Control& control, Action action) {
  if (updating_ || !window_) return;
  // The handlers may dispose of the control, or of the whole window.
  const QPointer<QWidget> widget = widgetFor(&control);
  action(control);
  // Only when the control is still the one shown by that widget: a control disposed of
  // by the handlers may have left its address to a new one.
  if (!window_ || !widget || widgetFor(&control) != widget) return;
  // A person changes only a list's selection; its rows follow the toolkit's notices, so
  // a click in a long list does not make every row again.
  if (control.kind() == ControlKind::ListView) {
    refreshAspect(control, What::ListSelection);
  } else {
    refresh(control);
  }
}

void WindowRenderer::connectActions(Control& control, QWidget* widget) {
  Control* target = &control;
  auto click = [this, target] { act(*target, [](Control& c) { toolkit::Click(c); }); };
  switch (control.kind()) {
    case ControlKind::PushButton:
    case ControlKind::CheckBox:
    case ControlKind::RadioButton:
      connect(qobject_cast<QAbstractButton*>(widget), &QAbstractButton::clicked, this, click);
      break;
    case ControlKind::BevelButton:
      connect(qobject_cast<QAbstractButton*>(widget), &QAbstractButton::clicked, this, [this, target, click] {
        if (!target->menu() || target->menu()->count() == 0) click();
      });
      break;
    case ControlKind::PopupButton:
    case ControlKind::ComboBox:
      connect(qobject_cast<QComboBox*>(widget), &QComboBox::activated, this, [this, target](int index) {
        act(*target, [index](Control& c) {
          toolkit::ChooseMenuItem(c, static_cast<toolkit::MenuItemIndex>(index + 1));
        });
      });
      break;
    case ControlKind::ImageView:
      static_cast<PictureLabel*>(widget)->clicked = click;
      break;
    case ControlKind::Clock:
      connect(qobject_cast<QDateTimeEdit*>(widget), &QDateTimeEdit::dateTimeChanged, this,
              [this, target](const QDateTime& time) {
                act(*target, [time](Control& c) { toolkit::SetDateTime(c, ToLongDateTime(time)); });
              });
      break;
    case ControlKind::TabControl:
      connect(static_cast<TabWidget*>(widget)->bar, &QTabBar::tabBarClicked, this, [this, target](int index) {
        if (index >= 0)
          act(*target, [index](Control& c) {
            toolkit::ChooseMenuItem(c, static_cast<toolkit::MenuItemIndex>(index + 1));
          });
      });
      break;
    case ControlKind::ListView: {
      auto* tree = qobject_cast<QTreeWidget*>(widget);
      connect(tree, &QTreeWidget::itemSelectionChanged, this, [this, target, tree] {
        toolkit::ListView* list = toolkit::AsListView(target);
        // The toolkit keeps the order of selecting: rows still selected keep their place,
        // new ones follow in row order.
        std::set<toolkit::DataBrowserItemID> chosen;
        for (QTreeWidgetItem* row : tree->selectedItems())
          chosen.insert(row->data(0, Qt::UserRole).value<qulonglong>());
        std::vector<toolkit::DataBrowserItemID> ordered;
        for (toolkit::DataBrowserItemID id : list->selection())
          if (chosen.count(id)) ordered.push_back(id);
        for (toolkit::DataBrowserItemID id : list->items())
          if (chosen.count(id) && !list->isSelected(id)) ordered.push_back(id);
        act(*target, [&ordered](Control& c) {
          toolkit::SelectListItems(*toolkit::AsListView(&c), ordered, toolkit::kDataBrowserItemsAssign);
        });
      });
      connect(tree, &QTreeWidget::itemDoubleClicked, this, [this, target](QTreeWidgetItem* row) {
        const auto id = row->data(0, Qt::UserRole).value<qulonglong>();
        act(*target, [id](Control& c) { toolkit::DoubleClickListItem(*toolkit::AsListView(&c), id); });
      });
      break;
    }
    default:
      break;
  }
  if (QLineEdit* edit = LineEditOf(widget)) {
    // Moving the caret or selecting with the mouse or the arrows is the person's own; the
    // toolkit learns the selection so that typing replaces it.
    connect(edit, &QLineEdit::selectionChanged, this, [this, target, edit] {
      if (updating_ || !rendered_.count(target)) return;
      const QString text = edit->text();
      const int start = edit->hasSelectedText() ? edit->selectionStart() : edit->cursorPosition();
      const int end = edit->hasSelectedText() ? edit->selectionEnd() : start;
      ++updating_;
      target->setSelection({CharactersForUnits(text, start), CharactersForUnits(text, end)});
      --updating_;
    });
    connect(edit, &QLineEdit::cursorPositionChanged, this, [this, target, edit](int, int position) {
      if (updating_ || !rendered_.count(target) || edit->hasSelectedText()) return;
      ++updating_;
      const int at = CharactersForUnits(edit->text(), position);
      target->setSelection({at, at});
      --updating_;
    });
  }
}

bool WindowRenderer::eventFilter(QObject* watched, QEvent* event) {
  auto* widget = qobject_cast<QWidget*>(watched);
  Control* control = widget ? controlFor(widget) : nullptr;
  if (!control || !window_) return false;
  if (event->type() == QEvent::KeyPress) return typed(*control, static_cast<QKeyEvent*>(event));
  if (event->type() == QEvent::FocusIn && !updating_ && !control->hasFocus()) {
    act(*control, [](Control& c) { toolkit::SetFocus(c); });
  }
  return false;
}

bool WindowRenderer::typed(Control& control, QKeyEvent* key) {
  if (updating_) return false;
  toolkit::Window& window = *window_;
  char code = 0;
  switch (key->key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab: code = toolkit::kTabCharCode; break;
    case Qt::Key_Return:
    case Qt::Key_Enter: code = toolkit::kReturnCharCode; break;
    case Qt::Key_Escape: code = toolkit::kEscapeCharCode; break;
    case Qt::Key_Backspace: code = toolkit::kBackspaceCharCode; break;
    case Qt::Key_Delete: code = toolkit::kDeleteCharCode; break;
    default: break;
  }
  // A clock edits its own digits; only the keys that move on or end the dialog are the
  // toolkit's.
  if (control.kind() == ControlKind::Clock && code != toolkit::kTabCharCode &&
      code != toolkit::kReturnCharCode && code != toolkit::kEscapeCharCode)
    return false;
  if (code != 0) {
    act(control, [&window, code](Control&) { toolkit::PressKey(window, code); });
    return true;
  }
  if (key->matches(QKeySequence::Paste)) {
    const std::string text = QApplication::clipboard()->text().toStdString();
    act(control, [&text](Control& c) { toolkit::PasteText(c, text); });
    return true;
  }
  if (key->matches(QKeySequence::Cut)) {
    if (QLineEdit* edit = LineEditOf(widgetFor(&control)); edit && !control.isPassword())
      QApplication::clipboard()->setText(edit->selectedText());
    act(control, [&window](Control&) { toolkit::PressKey(window, toolkit::kBackspaceCharCode); });
    return true;
  }
  if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) return true;
  const QString text = key->text();
  if (!text.isEmpty() && text.at(0).isPrint() && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
    const std::string utf8 = text.toStdString();
    act(control, [&utf8](Control& c) { toolkit::TypeText(c, utf8); });
    return true;
  }
  return false;  // moving the caret, selecting, copying: Qt's own
}

void WindowRenderer::updateTabOrder() {
  if (!window_) return;
  // The toolkit's focus order is the tree's order.
  QWidget* previous = nullptr;
  std::vector<Control*> stack{window_};
  std::vector<Control*> order;
  while (!stack.empty()) {
    Control* c = stack.back();
    stack.pop_back();
    order.push_back(c);
    for (std::size_t i = c->childCount(); i-- > 0;) stack.push_back(c->child(i));
  }
  for (Control* c : order) {
    QWidget* widget = c == window_ ? nullptr : widgetFor(c);
    if (!widget || widget->focusPolicy() == Qt::NoFocus) continue;
    if (QLineEdit* edit = LineEditOf(widget)) widget = edit;
    if (previous) QWidget::setTabOrder(previous, widget);
    previous = widget;
  }
}

}  // namespace varno::qt
