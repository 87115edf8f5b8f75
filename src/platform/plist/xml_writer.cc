// SPDX-License-Identifier: Apache-2.0
// Writer for XML property lists, in the layout this system has always written (header
// lines, tab indentation, base64 lines narrowing with depth), so saved files stay
// byte-for-byte comparable between versions. Iterative: an explicit stack of containers.
#include <algorithm>
#include <vector>

#include "platform/plist/codec.h"
#include "platform/plist/file.h"
#include "platform/plist/formats.h"

namespace varno::plist::formats {
namespace {

// Escapes the characters XML reserves; CR is written as a reference so that no reader's
// line-end normalisation turns it into LF.
void AppendEscaped(std::string& out, std::string_view text) {
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '\r': out += "&#13;"; break;
      default: out += c;
    }
  }
}

class XMLWriter {
 public:
  explicit XMLWriter(std::string* error) : error_(error) {}

  // The whole document, or nullopt with *error_ set.
  std::optional<std::string> Run(const Value& root) {
    out_ =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n";
    if (!Emit(root, 0)) return std::nullopt;
    while (!stack_.empty()) {
      Frame& frame = stack_.back();
      const int depth = static_cast<int>(stack_.size());  // of the children
      if (const Array* array = frame.container->asArray()) {
        if (frame.index < array->size()) {
          if (!Emit((*array)[frame.index++], depth)) return std::nullopt;
          continue;
        }
      } else {
        const auto& entries = frame.container->asDictionary()->entries();
        if (frame.index < entries.size()) {
          const auto& [key, value] = entries[frame.index++];
          if (!CheckString(key)) return std::nullopt;
          Indent(depth);
          out_ += "<key>";
          AppendEscaped(out_, key);
          out_ += "</key>\n";
          if (!Emit(value, depth)) return std::nullopt;
          continue;
        }
      }
      Indent(depth - 1);
      out_ += frame.container->asArray() ? "</array>\n" : "</dict>\n";
      stack_.pop_back();
    }
    out_ += "</plist>\n";
    return std::move(out_);
  }

 private:
  struct Frame {
    const Value* container;
    std::size_t index;
  };

  void Indent(int depth) { out_.append(static_cast<std::size_t>(depth), '\t'); }

  bool Fail(std::string message) {
    if (error_) *error_ = std::move(message);
    return false;
  }

  bool CheckString(std::string_view text) {
    std::string why = codec::CheckStringForWriting(text);
    return why.empty() || Fail(std::move(why));
  }

  // Writes a scalar, or the opening of a container (pushed for its children).
  bool Emit(const Value& value, int depth) {
    if (depth > kMaxDepth)
      return Fail("value nested deeper than " + std::to_string(kMaxDepth) + " levels");
    Indent(depth);
    switch (value.kind()) {
      case Kind::String:
        if (!CheckString(*value.asString())) return false;
        out_ += "<string>";
        AppendEscaped(out_, *value.asString());
        out_ += "</string>\n";
        return true;
      case Kind::Integer:
        out_ += "<integer>" + std::to_string(*value.asInteger()) + "</integer>\n";
        return true;
      case Kind::Real:
        out_ += "<real>" + codec::FormatReal(*value.asReal()) + "</real>\n";
        return true;
      case Kind::Boolean:
        out_ += *value.asBoolean() ? "<true/>\n" : "<false/>\n";
        return true;
      case Kind::Date:
        // The XML form has no fractions of a second: the whole second at or before is kept.
        if (!codec::DateInRange(value.asDate()->seconds)) return Fail(codec::kDateRangeMessage);
        out_ += "<date>" + codec::FormatDate(value.asDate()->seconds) + "</date>\n";
        return true;
      case Kind::Data: {
        out_ += "<data>\n";
        const std::string text = codec::EncodeBase64(*value.asData());
        const int indent = std::min(depth, 8);
        const std::size_t width = static_cast<std::size_t>(76 - 8 * indent);
        for (std::size_t at = 0; at < text.size(); at += width) {
          Indent(indent);
          out_.append(text, at, width);
          out_ += '\n';
        }
        Indent(depth);
        out_ += "</data>\n";
        return true;
      }
      case Kind::Array:
        if (value.asArray()->empty()) {
          out_ += "<array/>\n";
          return true;
        }
        out_ += "<array>\n";
        stack_.push_back({&value, 0});
        return true;
      case Kind::Dictionary:
        if (value.asDictionary()->empty()) {
          out_ += "<dict/>\n";
          return true;
        }
        out_ += "<dict>\n";
        stack_.push_back({&value, 0});
        return true;
    }
    return Fail("holds a value of an unknown kind");
  }

  std::string* error_;
  std::string out_;
  std::vector<Frame> stack_;
};

}  // namespace

std::optional<std::string> WriteXML(const Value& value, std::string* error) {
  return XMLWriter(error).Run(value);
}

}  // namespace varno::plist::formats
