// SPDX-License-Identifier: Apache-2.0
// Reader for XML property lists: one pass over the bytes with an explicit stack of open
// containers, so hostile nesting costs a refusal, never the process's stack.
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

#include "platform/plist/codec.h"
#include "platform/plist/file.h"
#include "platform/plist/formats.h"

namespace varno::plist::formats {
namespace {

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

std::string_view Trim(std::string_view s) {
  while (!s.empty() && IsSpace(s.front())) s.remove_prefix(1);
  while (!s.empty() && IsSpace(s.back())) s.remove_suffix(1);
  return s;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    char x = a[i], y = b[i];
    if (x >= 'A' && x <= 'Z') x = static_cast<char>(x - 'A' + 'a');
    if (y >= 'A' && y <= 'Z') y = static_cast<char>(y - 'A' + 'a');
    if (x != y) return false;
  }
  return true;
}

// Signed 64-bit integer in decimal or "0x" hexadecimal; nullopt when malformed, and
// *overflow set when well-formed but out of range.
std::optional<std::int64_t> ParseInteger(std::string_view t, bool* overflow) {
  *overflow = false;
  bool negative = false;
  if (!t.empty() && (t.front() == '-' || t.front() == '+')) {
    negative = t.front() == '-';
    t.remove_prefix(1);
  }
  int base = 10;
  if (t.size() > 2 && t[0] == '0' && (t[1] == 'x' || t[1] == 'X')) {
    base = 16;
    t.remove_prefix(2);
  }
  if (t.empty()) return std::nullopt;
  std::uint64_t magnitude = 0;
  auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), magnitude, base);
  if (end != t.data() + t.size()) {
    if (ec == std::errc::result_out_of_range) *overflow = true;
    return std::nullopt;
  }
  if (ec == std::errc::result_out_of_range) {
    *overflow = true;
    return std::nullopt;
  }
  constexpr std::uint64_t kMax = std::numeric_limits<std::int64_t>::max();
  if (negative) {
    if (magnitude > kMax + 1) {
      *overflow = true;
      return std::nullopt;
    }
    return magnitude == kMax + 1 ? std::numeric_limits<std::int64_t>::min()
                                 : -static_cast<std::int64_t>(magnitude);
  }
  if (magnitude > kMax) {
    *overflow = true;
    return std::nullopt;
  }
  return static_cast<std::int64_t>(magnitude);
}

// A real in decimal or exponent form, or one of the spellings of NaN and infinity that
// property-list writers use ("nan", "inf", "+infinity", "-Infinity", ...).
std::optional<double> ParseReal(std::string_view t) {
  bool negative = false;
  std::string_view body = t;
  if (!body.empty() && (body.front() == '-' || body.front() == '+')) {
    negative = body.front() == '-';
    body.remove_prefix(1);
  }
  if (EqualsIgnoringCase(body, "nan")) return std::numeric_limits<double>::quiet_NaN();
  if (EqualsIgnoringCase(body, "inf") || EqualsIgnoringCase(body, "infinity"))
    return negative ? -std::numeric_limits<double>::infinity()
                    : std::numeric_limits<double>::infinity();
  if (body.empty() || !((body.front() >= '0' && body.front() <= '9') || body.front() == '.'))
    return std::nullopt;
  double d = 0;
  auto [end, ec] = std::from_chars(body.data(), body.data() + body.size(), d);
  if (end != body.data() + body.size()) return std::nullopt;
  // Out of range: from_chars leaves d alone; the nearest double is infinity or zero.
  if (ec == std::errc::result_out_of_range) {
    bool tiny = body.find_first_of("eE") != std::string_view::npos &&
                body[body.find_first_of("eE") + 1] == '-';
    d = tiny ? 0.0 : std::numeric_limits<double>::infinity();
  }
  return negative ? -d : d;
}

class XMLReader {
 public:
  XMLReader(std::string_view in, std::string* error) : in_(in), error_(error) {}

  // Reads the whole document; nullopt with *error_ set on the first fault.
  std::optional<Value> Run() {
    if (in_.starts_with("\xEF\xBB\xBF")) pos_ = 3;  // a byte-order mark says "UTF-8"
    for (;;) {
      while (pos_ < in_.size() && IsSpace(in_[pos_])) ++pos_;
      if (pos_ >= in_.size()) break;
      if (in_[pos_] != '<') return Malformed("text outside any element");
      if (At("<?")) {
        if (!SkipProcessingInstruction()) return std::nullopt;
      } else if (At("<!--")) {
        if (!SkipComment()) return std::nullopt;
      } else if (At("<!DOCTYPE")) {
        if (!SkipDoctype()) return std::nullopt;
      } else if (At("</")) {
        if (!CloseContainer()) return std::nullopt;
      } else if (!OpenElement()) {
        return std::nullopt;
      }
    }
    if (!stack_.empty())
      return Malformed("the file ends before every element is closed; it may be truncated");
    if (!root_) return Malformed("no value in the file");
    return std::move(root_);
  }

 private:
  enum class FrameType { Plist, Array, Dict };
  struct Frame {
    FrameType type;
    std::optional<Array> array;
    std::optional<Dictionary> dict;
    std::optional<std::string> key;  // a key waiting for its value
  };

  bool At(std::string_view s) const { return in_.substr(pos_).starts_with(s); }

  std::nullopt_t Fail(std::string message) {
    if (error_) *error_ = std::move(message);
    return std::nullopt;
  }

  std::nullopt_t Malformed(std::string_view what) {
    return Fail("is not a well-formed XML property list (" + std::string(what) + ", at offset " +
                std::to_string(pos_) + ")");
  }

  // Skips "<?...?>"; an XML declaration must not name an encoding other than UTF-8.
  bool SkipProcessingInstruction() {
    std::size_t end = in_.find("?>", pos_ + 2);
    if (end == std::string_view::npos) return Malformed("unterminated processing instruction"), false;
    std::string_view pi = in_.substr(pos_ + 2, end - pos_ - 2);
    if (pi.starts_with("xml") && (pi.size() == 3 || IsSpace(pi[3]))) {
      std::size_t at = pi.find("encoding");
      if (at != std::string_view::npos) {
        std::string_view rest = pi.substr(at + 8);
        std::size_t quote = rest.find_first_of("\"'");
        std::size_t close = quote == std::string_view::npos
                                ? std::string_view::npos
                                : rest.find(rest[quote], quote + 1);
        if (close == std::string_view::npos) return Malformed("bad XML declaration"), false;
        std::string_view name = rest.substr(quote + 1, close - quote - 1);
        if (!EqualsIgnoringCase(name, "utf-8") && !EqualsIgnoringCase(name, "utf8")) {
          Fail("declares the encoding \"" + std::string(name) +
               "\"; only UTF-8 property lists are read (save it as UTF-8)");
          return false;
        }
      }
    }
    pos_ = end + 2;
    return true;
  }

  bool SkipComment() {
    std::size_t end = in_.find("-->", pos_ + 4);
    if (end == std::string_view::npos) return Malformed("unterminated comment"), false;
    pos_ = end + 3;
    return true;
  }

  // Skips "<!DOCTYPE ...>", including an internal subset in brackets.
  bool SkipDoctype() {
    int brackets = 0;
    char quote = 0;
    for (std::size_t i = pos_ + 9; i < in_.size(); ++i) {
      char c = in_[i];
      if (quote) {
        if (c == quote) quote = 0;
      } else if (c == '"' || c == '\'') {
        quote = c;
      } else if (c == '[') {
        ++brackets;
      } else if (c == ']') {
        --brackets;
      } else if (c == '>' && brackets <= 0) {
        pos_ = i + 1;
        return true;
      }
    }
    return Malformed("unterminated document type declaration"), false;
  }

  // Reads a tag name at pos_ (just after "<" or "</").
  std::string_view ReadName() {
    std::size_t start = pos_;
    while (pos_ < in_.size()) {
      char c = in_[pos_];
      bool nameChar = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                      c == '_' || c == ':' || c == '-' || c == '.';
      if (!nameChar) break;
      ++pos_;
    }
    return in_.substr(start, pos_ - start);
  }

  // Handles "</dict>", "</array>", "</plist>" closing the innermost open container.
  bool CloseContainer() {
    pos_ += 2;
    std::string_view name = ReadName();
    while (pos_ < in_.size() && IsSpace(in_[pos_])) ++pos_;
    if (pos_ >= in_.size() || in_[pos_] != '>') return Malformed("bad closing tag"), false;
    static const char* const kNames[] = {"plist", "array", "dict"};
    if (stack_.empty() || name != kNames[static_cast<int>(stack_.back().type)])
      return Malformed("unexpected </" + std::string(name) + ">"), false;
    if (stack_.back().key) return Malformed("a key without a value"), false;
    if (stack_.back().type != FrameType::Plist) --depth_;
    stack_.pop_back();
    ++pos_;
    return true;
  }

  // Places a finished value in the open container (or as the root); containers are placed
  // when they open, as they are shared handles filled afterwards.
  bool Place(Value value, std::size_t payload) {
    if (depth_ > kMaxDepth) {
      Fail("is nested deeper than " + std::to_string(kMaxDepth) + " levels");
      return false;
    }
    if (!budget_.take(payload, error_)) return false;
    if (stack_.empty() || stack_.back().type == FrameType::Plist) {
      if (root_) return Malformed("more than one value at the top"), false;
      root_ = std::move(value);
    } else if (stack_.back().type == FrameType::Array) {
      stack_.back().array->append(std::move(value));
    } else {
      Frame& frame = stack_.back();
      if (!frame.key) return Malformed("a value without a key in a dictionary"), false;
      frame.dict->set(*frame.key, std::move(value));
      frame.key.reset();
    }
    return true;
  }

  // Handles an opening tag at pos_ and, for text elements, their contents and end tag.
  bool OpenElement() {
    const std::size_t tagStart = pos_;
    ++pos_;
    std::string_view name = ReadName();
    if (name.empty()) return Malformed("a stray '<'"), false;
    // Attributes are not used by any element here; skip them, respecting quotes.
    char quote = 0;
    while (pos_ < in_.size() && (quote || in_[pos_] != '>')) {
      if (quote && in_[pos_] == quote) quote = 0;
      else if (!quote && (in_[pos_] == '"' || in_[pos_] == '\'')) quote = in_[pos_];
      ++pos_;
    }
    if (pos_ >= in_.size()) return Malformed("the file ends inside a tag; it may be truncated"), false;
    const bool empty = in_[pos_ - 1] == '/' && pos_ - 1 > tagStart + name.size();
    ++pos_;

    if (name == "plist") {
      if (!stack_.empty() || root_) return Malformed("a <plist> inside the document"), false;
      if (!empty) stack_.push_back(Frame{FrameType::Plist, {}, {}, {}});
      return true;
    }
    if (name == "array" || name == "dict") {
      Frame frame{name == "array" ? FrameType::Array : FrameType::Dict, {}, {}, {}};
      Value handle;
      if (frame.type == FrameType::Array) {
        frame.array.emplace();
        handle = Value(*frame.array);
      } else {
        frame.dict.emplace();
        handle = Value(*frame.dict);
      }
      if (!Place(std::move(handle), 0)) return false;
      if (!empty) {
        stack_.push_back(std::move(frame));
        ++depth_;
      }
      return true;
    }
    if (name == "true" || name == "false") {
      if (!empty) {
        std::optional<std::string> text = ReadText(name);
        if (!text) return false;
        if (!Trim(*text).empty()) return Malformed("text inside <" + std::string(name) + ">"), false;
      }
      return Place(Value(name == "true"), 0);
    }
    const bool known = name == "key" || name == "string" || name == "integer" ||
                       name == "real" || name == "date" || name == "data";
    if (!known) return Malformed("unknown element <" + std::string(name) + ">"), false;
    std::string text;
    if (!empty) {
      std::optional<std::string> read = ReadText(name);
      if (!read) return false;
      text = std::move(*read);
    }
    if (name == "key") {
      if (stack_.empty() || stack_.back().type != FrameType::Dict || stack_.back().key)
        return Malformed("a key outside a dictionary or two keys in a row"), false;
      if (!budget_.take(text.size(), error_)) return false;
      stack_.back().key = std::move(text);
      return true;
    }
    if (name == "string") {
      std::size_t size = text.size();
      return Place(Value(std::move(text)), size);
    }
    std::string_view trimmed = Trim(text);
    if (name == "integer") {
      bool overflow = false;
      std::optional<std::int64_t> i = ParseInteger(trimmed, &overflow);
      if (overflow) {
        Fail("holds an integer that does not fit in 64 bits (" + std::string(trimmed) + ")");
        return false;
      }
      if (!i) return Malformed("<integer> holds \"" + std::string(trimmed.substr(0, 40)) + "\""), false;
      return Place(Value(*i), 0);
    }
    if (name == "real") {
      std::optional<double> d = ParseReal(trimmed);
      if (!d) return Malformed("<real> holds \"" + std::string(trimmed.substr(0, 40)) + "\""), false;
      return Place(Value(*d), 0);
    }
    if (name == "date") {
      std::optional<Date> date = codec::ParseDate(trimmed);
      if (!date) {
        Fail("holds a date that is not of the form YYYY-MM-DDTHH:MM:SSZ (years 0001 to 9999): \"" +
             std::string(trimmed.substr(0, 40)) + "\"");
        return false;
      }
      return Place(Value(*date), 0);
    }
    std::optional<Data> data = codec::DecodeBase64(text);
    if (!data) return Malformed("<data> that is not base64"), false;
    std::size_t size = data->size();
    return Place(Value(std::move(*data)), size);
  }

  // Appends raw text after checking it is UTF-8 without NUL; offsets name the input byte.
  bool AppendRaw(std::string& out, std::size_t from, std::size_t to) {
    std::string_view run = in_.substr(from, to - from);
    std::size_t bad = codec::FindInvalidUTF8(run);
    if (bad != std::string_view::npos) {
      Fail(codec::InvalidUTF8Message(static_cast<unsigned char>(run[bad]), from + bad));
      return false;
    }
    if (run.find('\0') != std::string_view::npos) {
      Fail("holds a string with a NUL character");
      return false;
    }
    out.append(run);
    return true;
  }

  // Decodes "&...;" at pos_ into out.
  bool AppendEntity(std::string& out) {
    std::size_t end = in_.find(';', pos_);
    if (end == std::string_view::npos || end - pos_ > 12) return Malformed("a bad '&' reference"), false;
    std::string_view name = in_.substr(pos_ + 1, end - pos_ - 1);
    static const std::pair<std::string_view, char> kNamed[] = {
        {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}};
    for (const auto& [entity, c] : kNamed) {
      if (name == entity) {
        out += c;
        pos_ = end + 1;
        return true;
      }
    }
    if (name.size() < 2 || name[0] != '#') return Malformed("an unknown entity &" + std::string(name) + ";"), false;
    std::string_view digits = name.substr(1);
    int base = 10;
    if (digits[0] == 'x') {
      base = 16;
      digits.remove_prefix(1);
    }
    std::uint32_t code = 0;
    auto [p, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), code, base);
    if (digits.empty() || ec != std::errc() || p != digits.data() + digits.size() ||
        code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
      return Malformed("a bad character reference &" + std::string(name) + ";"), false;
    if (code == 0) {
      Fail("holds a string with a NUL character");
      return false;
    }
    codec::AppendUTF8(out, code);
    pos_ = end + 1;
    return true;
  }

  // Reads the contents of a text element up to its end tag "</name>", which it consumes.
  std::optional<std::string> ReadText(std::string_view name) {
    std::string out;
    for (;;) {
      std::size_t next = in_.find_first_of("<&", pos_);
      if (next == std::string_view::npos)
        return Malformed("the file ends inside <" + std::string(name) + ">; it may be truncated");
      if (!AppendRaw(out, pos_, next)) return std::nullopt;
      pos_ = next;
      if (in_[pos_] == '&') {
        if (!AppendEntity(out)) return std::nullopt;
      } else if (At("<!--")) {
        if (!SkipComment()) return std::nullopt;
      } else if (At("<![CDATA[")) {
        std::size_t end = in_.find("]]>", pos_ + 9);
        if (end == std::string_view::npos) return Malformed("unterminated CDATA section");
        if (!AppendRaw(out, pos_ + 9, end)) return std::nullopt;
        pos_ = end + 3;
      } else if (At("</")) {
        pos_ += 2;
        std::string_view closing = ReadName();
        while (pos_ < in_.size() && IsSpace(in_[pos_])) ++pos_;
        if (closing != name || pos_ >= in_.size() || in_[pos_] != '>')
          return Malformed("<" + std::string(name) + "> is not closed by </" + std::string(name) + ">");
        ++pos_;
        return out;
      } else {
        return Malformed("an element inside <" + std::string(name) + ">");
      }
    }
  }

  std::string_view in_;
  std::size_t pos_ = 0;
  std::string* error_;
  codec::Budget budget_;
  std::vector<Frame> stack_;
  int depth_ = 0;  // open arrays and dictionaries
  std::optional<Value> root_;
};

}  // namespace

std::optional<Value> ReadXML(std::string_view bytes, std::string* error) {
  return XMLReader(bytes, error).Run();
}

}  // namespace varno::plist::formats
