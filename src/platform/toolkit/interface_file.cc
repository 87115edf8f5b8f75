// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/interface_file.h"

#include <initializer_list>
#include <set>

#include "platform/plist/file.h"
#include "platform/status_text.h"
#include "platform/toolkit/list_view.h"

namespace varno::toolkit {
namespace {

constexpr std::string_view kFileSuffix = ".interface.plist";
constexpr std::string_view kStringTable = "Localizable";
// Coordinates a screen holds; beyond them a layout is damaged, and sums could overflow.
constexpr std::int32_t kMaxCoordinate = 32767;

// Builds one window from its description. Every reader returns false and leaves a
// message naming the place ("window \"Main\", control 3 ...") at the first fault. The
// place is kept as pieces and joined only for a message, so a long window name is never
// copied once per control.
class Builder {
 public:
  Builder(const bundle::BundleRef& bundle, std::string* error) : bundle_(bundle), error_(error) {}

  bool buildWindow(std::string_view name, const plist::Dictionary& description,
                   std::unique_ptr<Window>* out) {
    where_ = {"window \"" + std::string(name) + "\""};
    if (!onlyKeys(description, {"Title", "TitleKey", "Bounds", "Controls"})) return false;
    std::string title;
    Rect bounds;
    if (!readTitle(description, "Title", "TitleKey", &title) ||
        !readBounds(description, &bounds)) {
      return false;
    }
    std::unique_ptr<Window> window = Window::create(bounds, std::move(title));
    if (!buildChildren(description, *window, *window)) return false;
    *out = std::move(window);
    return true;
  }

 private:
  bool fail(const std::string& message) {
    if (!error_) return false;
    error_->clear();
    for (const std::string& piece : where_) *error_ += piece;
    *error_ += ": " + message;
    return false;
  }

  bool onlyKeys(const plist::Dictionary& d, std::initializer_list<std::string_view> allowed) {
    for (const auto& [key, value] : d) {
      bool known = false;
      for (std::string_view a : allowed) known = known || key == a;
      if (!known) return fail("unknown key \"" + key + "\"");
    }
    return true;
  }

  // An absent key leaves `out` alone; a value of another kind is an error.
  bool readString(const plist::Dictionary& d, std::string_view key, std::string* out) {
    const plist::Value* v = d.find(key);
    if (!v) return true;
    if (!v->asString()) return fail("\"" + std::string(key) + "\" must be a string");
    *out = *v->asString();
    return true;
  }
  bool readBool(const plist::Dictionary& d, std::string_view key, bool* out) {
    const plist::Value* v = d.find(key);
    if (!v) return true;
    if (!v->asBoolean()) return fail("\"" + std::string(key) + "\" must be a boolean");
    *out = *v->asBoolean();
    return true;
  }
  template <typename T>
  bool readNumber(const plist::Dictionary& d, std::string_view key, T* out) {
    const plist::Value* v = d.find(key);
    if (!v) return true;
    std::optional<T> n = v->toNumber<T>();
    if (!n) return fail("\"" + std::string(key) + "\" must be an integer in range");
    *out = *n;
    return true;
  }
  bool readCode(const plist::Dictionary& d, std::string_view key, OSType* out) {
    std::string text;
    bool present = d.contains(key);
    if (!readString(d, key, &text)) return false;
    if (!present) return true;
    std::optional<OSType> code = ParseOSType(text);
    if (!code) return fail("\"" + std::string(key) + "\" must be four characters");
    *out = *code;
    return true;
  }
  // A literal text, or a key of the bundle's string table shown as itself when missing.
  bool readTitle(const plist::Dictionary& d, std::string_view literalKey,
                 std::string_view tableKey, std::string* out) {
    if (d.contains(literalKey) && d.contains(tableKey)) {
      return fail("give \"" + std::string(literalKey) + "\" or \"" + std::string(tableKey) +
                  "\", not both");
    }
    std::string key;
    bool localized = d.contains(tableKey);
    if (!readString(d, literalKey, out) || !readString(d, tableKey, &key)) return false;
    if (localized) *out = bundle_ ? bundle_->localizedString(key, kStringTable, key) : key;
    return true;
  }
  // [left, top, width, height], every edge within kMaxCoordinate of the origin.
  bool readBounds(const plist::Dictionary& d, Rect* out) {
    const plist::Value* v = d.find("Bounds");
    if (!v) return true;
    const plist::Array* a = v->asArray();
    std::int32_t n[4];
    bool ok = a && a->size() == 4;
    for (std::size_t i = 0; ok && i < 4; ++i) {
      std::optional<std::int32_t> x = (*a)[i].toNumber<std::int32_t>();
      ok = x.has_value() && *x <= kMaxCoordinate && *x >= (i < 2 ? -kMaxCoordinate : 0);
      if (ok) n[i] = *x;
    }
    // Each term is within kMaxCoordinate, so these sums cannot overflow.
    ok = ok && n[0] + n[2] <= kMaxCoordinate && n[1] + n[3] <= kMaxCoordinate;
    if (!ok) {
      return fail("\"Bounds\" must be [left, top, width, height] in whole numbers from " +
                  std::to_string(-kMaxCoordinate) + " to " + std::to_string(kMaxCoordinate) +
                  ", width and height not negative, right and bottom edges at most " +
                  std::to_string(kMaxCoordinate));
    }
    *out = Rect{n[1], n[0], n[1] + n[3], n[0] + n[2]};
    return true;
  }

  bool buildChildren(const plist::Dictionary& d, Control& parent, Window& window) {
    const plist::Value* v = d.find("Controls");
    if (!v) return true;
    const plist::Array* list = v->asArray();
    if (!list) return fail("\"Controls\" must be an array");
    if (!Traits(parent.kind()).embeds) return fail("a " + std::string(Traits(parent.kind()).name) +
                                                  " holds no controls");
    for (std::size_t i = 0; i < list->size(); ++i) {
      where_.push_back(", control " + std::to_string(i + 1));
      const plist::Dictionary* description = (*list)[i].asDictionary();
      if (!description) return fail("must be a dictionary");
      if (!buildControl(*description, parent, window)) return false;
      where_.pop_back();
    }
    return true;
  }

  bool buildControl(const plist::Dictionary& d, Control& parent, Window& window) {
    if (!onlyKeys(d, {"Kind", "Signature", "ID", "Bounds", "Title", "TitleKey", "Value",
                      "Minimum", "Maximum", "Visible", "Enabled", "Active", "Password",
                      "TimeOnly", "Default", "Cancel", "Command", "Picture", "Items",
                      "Columns", "Controls"})) {
      return false;
    }
    std::string kindName;
    if (!readString(d, "Kind", &kindName)) return false;
    std::optional<ControlKind> kind = KindNamed(kindName);
    if (!kind || *kind == ControlKind::Window) {
      return fail(kindName.empty() ? "\"Kind\" is missing" : "no control kind \"" + kindName + "\"");
    }
    const KindTraits& traits = Traits(*kind);
    where_.back() += " (" + std::string(traits.name) + ")";

    ControlID id;
    if (d.contains("Signature") != d.contains("ID")) {
      return fail("\"Signature\" and \"ID\" go together");
    }
    Rect bounds;
    std::string title;
    if (!readCode(d, "Signature", &id.signature) || !readNumber(d, "ID", &id.id) ||
        !readBounds(d, &bounds) || !readTitle(d, "Title", "TitleKey", &title)) {
      return false;
    }
    if (d.contains("Signature") && !ids_.insert({id.signature, id.id}).second) {
      return fail("control ID '" + OSTypeString(id.signature) + "' " + std::to_string(id.id) +
                  " is used twice");
    }

    std::unique_ptr<Control> owned = Control::create(*kind, bounds, std::move(title));
    Control& control = *owned;
    control.setID(id);

    if (!readItems(d, control) || !readColumns(d, control)) return false;

    std::int32_t minimum = control.minimum(), maximum = control.maximum(),
                 value = control.value();
    if (!readNumber(d, "Minimum", &minimum) || !readNumber(d, "Maximum", &maximum) ||
        !readNumber(d, "Value", &value)) {
      return false;
    }
    if ((d.contains("Minimum") || d.contains("Maximum")) && minimum > maximum) {
      return fail("\"Minimum\" lies above \"Maximum\"");
    }
    control.setMinimum(minimum);
    control.setMaximum(maximum);
    control.setValue(value);

    bool visible = true, enabled = true, active = true, password = false, timeOnly = false;
    bool isDefault = false, isCancel = false;
    MenuCommand command = 0;
    std::string picture;
    if (!readBool(d, "Visible", &visible) || !readBool(d, "Enabled", &enabled) ||
        !readBool(d, "Active", &active) || !readBool(d, "Password", &password) ||
        !readBool(d, "TimeOnly", &timeOnly) ||
        !readBool(d, "Default", &isDefault) || !readBool(d, "Cancel", &isCancel) ||
        !readCode(d, "Command", &command) || !readString(d, "Picture", &picture)) {
      return false;
    }
    if (password && *kind != ControlKind::EditText) return fail("only edit text hides its text");
    if (timeOnly && *kind != ControlKind::Clock) return fail("only a clock shows a time of day");
    if (!picture.empty() && *kind != ControlKind::ImageView && *kind != ControlKind::BevelButton) {
      return fail("only image views and bevel buttons show pictures");
    }
    control.setVisible(visible);
    control.setEnabled(enabled);
    control.setActive(active);
    control.setPassword(password);
    control.setTimeOnly(timeOnly);
    control.setCommand(command);
    control.setPictureName(std::move(picture));

    OSStatus status = noErr;
    Control* embedded = parent.embed(std::move(owned), &status);
    if (!embedded) return fail("cannot be embedded: " + StatusMessage(status));
    if (isDefault) window.setDefaultButton(embedded);
    if (isCancel) window.setCancelButton(embedded);
    return buildChildren(d, *embedded, window);
  }

  bool readItems(const plist::Dictionary& d, Control& control) {
    const plist::Value* v = d.find("Items");
    if (!v) return true;
    if (!control.menu()) return fail("a " + std::string(Traits(control.kind()).name) +
                                     " has no menu items");
    return fillMenu(*v, *control.menu());
  }

  bool fillMenu(const plist::Value& items, Menu& menu) {
    const plist::Array* list = items.asArray();
    if (!list) return fail("\"Items\" must be an array");
    for (std::size_t i = 0; i < list->size(); ++i) {
      where_.push_back(", item " + std::to_string(i + 1));
      const plist::Value& entry = (*list)[i];
      if (const std::string* text = entry.asString()) {
        menu.appendItem(*text);
        where_.pop_back();
        continue;
      }
      const plist::Dictionary* item = entry.asDictionary();
      if (!item) return fail("must be a string or a dictionary");
      if (!onlyKeys(*item, {"Title", "TitleKey", "Command", "RefCon", "Enabled", "Checked",
                            "Items"})) {
        return false;
      }
      std::string text;
      MenuCommand command = 0;
      std::int64_t refCon = 0;
      bool enabled = true, checked = false;
      if (!readTitle(*item, "Title", "TitleKey", &text) || !readCode(*item, "Command", &command) ||
          !readNumber(*item, "RefCon", &refCon) || !readBool(*item, "Enabled", &enabled) ||
          !readBool(*item, "Checked", &checked)) {
        return false;
      }
      MenuItemIndex index = menu.appendItem(std::move(text), command);
      menu.setItemRefCon(index, static_cast<URefCon>(refCon));
      menu.setItemEnabled(index, enabled);
      menu.setItemChecked(index, checked);
      if (const plist::Value* sub = item->find("Items")) {
        MenuPtr submenu = Menu::create();
        if (!fillMenu(*sub, *submenu)) return false;
        menu.setItemSubmenu(index, std::move(submenu));
      }
      where_.pop_back();
    }
    return true;
  }

  bool readColumns(const plist::Dictionary& d, Control& control) {
    const plist::Value* v = d.find("Columns");
    if (!v) return true;
    ListView* list = AsListView(&control);
    if (!list) return fail("only list views have columns");
    const plist::Array* columns = v->asArray();
    if (!columns) return fail("\"Columns\" must be an array");
    for (std::size_t i = 0; i < columns->size(); ++i) {
      where_.push_back(", column " + std::to_string(i + 1));
      const plist::Dictionary* c = (*columns)[i].asDictionary();
      if (!c) return fail("must be a dictionary");
      ListColumn column;
      if (!onlyKeys(*c, {"Property", "Title", "TitleKey", "Width"}) ||
          !readCode(*c, "Property", &column.property) ||
          !readTitle(*c, "Title", "TitleKey", &column.title) ||
          !readNumber(*c, "Width", &column.width)) {
        return false;
      }
      if (column.property == 0) return fail("\"Property\" is missing");
      list->addColumn(std::move(column));
      where_.pop_back();
    }
    return true;
  }

  const bundle::BundleRef& bundle_;
  std::string* error_;
  std::vector<std::string> where_;
  std::set<std::pair<OSType, std::int32_t>> ids_;
};

OSStatus Load(const std::filesystem::path& path, bundle::BundleRef bundle,
              std::unique_ptr<InterfaceFile>* out, std::string* error,
              InterfaceFile* (*make)(std::filesystem::path, plist::Dictionary, bundle::BundleRef)) {
  std::string why;
  std::optional<plist::Dictionary> root = plist::ReadDictionaryFile(path, &why);
  if (!root) {
    if (error) *error = why;
    return kInterfaceFileDamaged;
  }
  std::optional<plist::Dictionary> windows = root->getDictionary("Windows");
  if (!windows || root->size() != 1) {
    if (error) *error = path.string() + ": the root must hold only \"Windows\", a dictionary";
    return kInterfaceFileDamaged;
  }
  for (const auto& [name, description] : *windows) {
    if (!description.asDictionary()) {
      if (error) *error = path.string() + ": window \"" + name + "\" must be a dictionary";
      return kInterfaceFileDamaged;
    }
  }
  out->reset(make(path, *windows, std::move(bundle)));
  return noErr;
}

}  // namespace

OSStatus InterfaceFile::open(const bundle::BundleRef& bundle, std::string_view name,
                             std::unique_ptr<InterfaceFile>* out, std::string* error) {
  if (!out) return paramErr;
  out->reset();
  if (!bundle || name.empty()) return paramErr;
  std::optional<std::filesystem::path> path =
      bundle->resourcePath(std::string(name) + std::string(kFileSuffix));
  if (!path) {
    if (error) {
      *error = "no interface file \"" + std::string(name) + "\" in " + bundle->path().string();
    }
    return kInterfaceFileNotFound;
  }
  return Load(*path, bundle, out, error, &InterfaceFile::make);
}

OSStatus InterfaceFile::openFile(const std::filesystem::path& path,
                                 std::unique_ptr<InterfaceFile>* out, std::string* error) {
  if (!out) return paramErr;
  out->reset();
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec)) {
    if (error) *error = "no interface file " + path.string();
    return kInterfaceFileNotFound;
  }
  return Load(path, nullptr, out, error, &InterfaceFile::make);
}

InterfaceFile* InterfaceFile::make(std::filesystem::path path, plist::Dictionary windows,
                                   bundle::BundleRef bundle) {
  return new InterfaceFile(std::move(path), std::move(windows), std::move(bundle));
}

std::vector<std::string> InterfaceFile::windowNames() const {
  std::vector<std::string> names;
  for (const auto& entry : windows_) names.push_back(entry.first);
  return names;
}

OSStatus InterfaceFile::createWindow(std::string_view name, std::unique_ptr<Window>* out,
                                     std::string* error) const {
  if (!out) return paramErr;
  out->reset();
  const plist::Value* description = windows_.find(name);
  if (!description) {
    if (error) *error = path_.string() + ": no window \"" + std::string(name) + "\"";
    return kInterfaceObjectNotFound;
  }
  std::string why;
  Builder builder(bundle_, &why);
  if (!builder.buildWindow(name, *description->asDictionary(), out)) {
    if (error) *error = path_.string() + ": " + why;
    return kInterfaceFileDamaged;
  }
  return noErr;
}

}  // namespace varno::toolkit
