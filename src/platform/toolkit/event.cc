// SPDX-License-Identifier: Apache-2.0
#include "platform/toolkit/event.h"

#include <algorithm>
#include <cstring>

namespace varno::toolkit {

const Event::Parameter* Event::find(OSType name) const {
  auto it = std::find_if(parameters_.begin(), parameters_.end(),
                         [name](const Parameter& p) { return p.name == name; });
  return it == parameters_.end() ? nullptr : &*it;
}

void Event::setParameter(OSType name, OSType type, const void* data, std::size_t size) {
  const auto* bytes = static_cast<const unsigned char*>(data);
  std::vector<unsigned char> copy(bytes, bytes + size);
  auto it = std::find_if(parameters_.begin(), parameters_.end(),
                         [name](const Parameter& p) { return p.name == name; });
  if (it == parameters_.end()) {
    parameters_.push_back({name, type, std::move(copy)});
  } else {
    it->type = type;
    it->bytes = std::move(copy);
  }
}

OSStatus Event::getParameter(OSType name, OSType desiredType, OSType* actualType,
                             std::size_t bufferSize, std::size_t* actualSize,
                             void* data) const {
  const Parameter* p = find(name);
  if (!p) return eventParameterNotFoundErr;
  if (p->type != desiredType) return paramErr;
  if (actualType) *actualType = p->type;
  if (actualSize) *actualSize = p->bytes.size();
  if (data) std::memcpy(data, p->bytes.data(), std::min(bufferSize, p->bytes.size()));
  return noErr;
}

std::optional<std::string> Event::text(OSType name) const {
  const Parameter* p = find(name);
  if (!p || p->type != typeUTF8Text) return std::nullopt;
  return std::string(p->bytes.begin(), p->bytes.end());
}

Control* Event::control() const {
  return get<Control*>(kEventParamDirectObject, typeControlRef).value_or(nullptr);
}

std::optional<HICommand> Event::command() const {
  return get<HICommand>(kEventParamDirectObject, typeHICommand);
}

}  // namespace varno::toolkit
