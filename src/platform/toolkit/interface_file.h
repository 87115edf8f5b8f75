// SPDX-License-Identifier: Apache-2.0
// Interface files: windows and their controls described in XML property lists.
//
// A bundle keeps them in its resources as "<name>.interface.plist" (a localized folder
// first, then the shared one). The root dictionary has one key, "Windows": window name
// -> window. A window has "Title" or "TitleKey", "Bounds" and "Controls"; a control has:
//
//   Kind        required: a kind name of control_kinds.h ("PushButton" ...)
//   Signature   four characters, with ID (an integer): the control ID
//   Bounds      [left, top, width, height] in the parent's coordinates
//   Title       the text; or TitleKey, looked up in the bundle's "Localizable" table
//   Value Minimum Maximum            integers
//   Visible Enabled Active Password  booleans (the first three default to true)
//   TimeOnly    boolean: a clock that shows the time of day (hours and minutes) only
//   Default Cancel                   booleans: the window's default or cancel button
//   Command     four characters
//   Picture     a picture's file name
//   Items       menu items: a string (the text) or a dictionary of Title or TitleKey,
//               Command, RefCon, Enabled, Checked, Items (a submenu)
//   Columns     list view columns: dictionaries of Property, Title or TitleKey, Width
//   Controls    the children (kinds that hold controls only)
//
// Reading is strict: an unknown key, a value of the wrong type or a misplaced entry is
// an error naming where it is, so a typing mistake in a layout never goes unnoticed.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/bundle/bundle.h"
#include "platform/plist/value.h"
#include "platform/toolkit/window.h"

namespace varno::toolkit {

class InterfaceFile {
 public:
  // Reads the interface file `name` of the bundle. kInterfaceFileNotFound when there is
  // none, kInterfaceFileDamaged when it is no interface file, paramErr for a null
  // bundle; `error` says why.
  static OSStatus open(const bundle::BundleRef& bundle, std::string_view name,
                       std::unique_ptr<InterfaceFile>* out, std::string* error = nullptr);
  // Reads an interface file by path; without a bundle a TitleKey shows as itself.
  static OSStatus openFile(const std::filesystem::path& path,
                           std::unique_ptr<InterfaceFile>* out, std::string* error = nullptr);

  // The window names in file order.
  std::vector<std::string> windowNames() const;
  // Builds the named window, hidden. kInterfaceObjectNotFound when the file has no such
  // window, kInterfaceFileDamaged when its description is wrong (`error` says where).
  OSStatus createWindow(std::string_view name, std::unique_ptr<Window>* out,
                        std::string* error = nullptr) const;

 private:
  static InterfaceFile* make(std::filesystem::path path, plist::Dictionary windows,
                             bundle::BundleRef bundle);
  InterfaceFile(std::filesystem::path path, plist::Dictionary windows, bundle::BundleRef bundle)
      : path_(std::move(path)), windows_(std::move(windows)), bundle_(std::move(bundle)) {}

  std::filesystem::path path_;
  plist::Dictionary windows_;
  bundle::BundleRef bundle_;
};

}  // namespace varno::toolkit
