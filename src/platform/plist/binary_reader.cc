// SPDX-License-Identifier: Apache-2.0
// Reader for binary property lists ("bplist00"). Every offset, length and object
// reference is checked against the file before use; containers are walked with an
// explicit stack that also detects cycles, and every materialised value counts against
// the budget, so shared references cannot multiply memory.
#include <cstring>
#include <vector>

#include "platform/plist/codec.h"
#include "platform/plist/file.h"
#include "platform/plist/formats.h"

namespace varno::plist::formats {
namespace {

constexpr std::size_t kTrailerSize = 32;

// Big-endian unsigned integer of `size` (1 to 8) bytes.
std::uint64_t ReadBE(const unsigned char* p, std::size_t size) {
  std::uint64_t v = 0;
  for (std::size_t i = 0; i < size; ++i) v = (v << 8) | p[i];
  return v;
}

double ReadDouble(const unsigned char* p) {
  std::uint64_t bits = ReadBE(p, 8);
  double d;
  std::memcpy(&d, &bits, sizeof d);
  return d;
}

class BinaryReader {
 public:
  BinaryReader(std::string_view in, std::string* error)
      : in_(reinterpret_cast<const unsigned char*>(in.data())), size_(in.size()), error_(error) {}

  std::optional<Value> Run() {
    if (size_ < 8 + kTrailerSize) return Damaged("too short for its trailer");
    const unsigned char* t = in_ + size_ - kTrailerSize;
    offsetSize_ = t[6];
    refSize_ = t[7];
    objects_ = ReadBE(t + 8, 8);
    const std::uint64_t top = ReadBE(t + 16, 8);
    tableOffset_ = ReadBE(t + 24, 8);
    if (offsetSize_ < 1 || offsetSize_ > 8 || refSize_ < 1 || refSize_ > 8)
      return Damaged("bad sizes in the trailer");
    const std::uint64_t tableEnd = size_ - kTrailerSize;
    if (tableOffset_ < 8 || tableOffset_ > tableEnd || objects_ == 0 ||
        objects_ > (tableEnd - tableOffset_) / offsetSize_)
      return Damaged("offset table out of range");
    if (top >= objects_) return Damaged("object reference out of range");
    onPath_.assign(static_cast<std::size_t>(objects_), false);

    std::optional<Value> root;
    if (!Materialise(top, &root)) return std::nullopt;
    while (!stack_.empty()) {
      Frame& frame = stack_.back();
      if (frame.next == frame.count) {
        onPath_[frame.object] = false;
        stack_.pop_back();
        continue;
      }
      const std::uint64_t i = frame.next++;
      std::uint64_t valueRef;
      if (!ReadRef(frame.refs, frame.isDict ? frame.count + i : i, &valueRef)) return std::nullopt;
      std::optional<std::string> key;
      if (frame.isDict) {
        std::uint64_t keyRef;
        if (!ReadRef(frame.refs, i, &keyRef)) return std::nullopt;
        key = ReadKey(keyRef);
        if (!key) return std::nullopt;
      }
      // Materialise may grow the stack; keep what is needed of `frame` first.
      Array array = frame.array;
      Dictionary dict = frame.dict;
      const bool isDict = frame.isDict;
      std::optional<Value> child;
      if (!Materialise(valueRef, &child)) return std::nullopt;
      if (isDict) dict.set(*key, std::move(*child));
      else array.append(std::move(*child));
    }
    return root;
  }

 private:
  struct Frame {
    std::uint64_t object;
    bool isDict;
    std::uint64_t count;
    std::uint64_t refs;  // offset of the reference list
    std::uint64_t next;
    Array array;
    Dictionary dict;
  };

  std::nullopt_t Fail(std::string message) {
    if (error_) *error_ = std::move(message);
    return std::nullopt;
  }

  std::nullopt_t Damaged(std::string_view why) {
    return Fail("is a damaged binary property list (" + std::string(why) + ")");
  }

  // True when [offset, offset + length) lies in the object area before the offset table.
  bool Fits(std::uint64_t offset, std::uint64_t length) const {
    return offset >= 8 && offset <= tableOffset_ && length <= tableOffset_ - offset;
  }

  bool ReadRef(std::uint64_t refs, std::uint64_t index, std::uint64_t* ref) {
    *ref = ReadBE(in_ + refs + index * refSize_, refSize_);
    if (*ref >= objects_) return Damaged("object reference out of range"), false;
    return true;
  }

  // The file offset of object `ref` (already known to be < objects_).
  bool ObjectOffset(std::uint64_t ref, std::uint64_t* offset) {
    *offset = ReadBE(in_ + tableOffset_ + ref * offsetSize_, offsetSize_);
    if (!Fits(*offset, 1)) return Damaged("object offset out of range"), false;
    return true;
  }

  // Reads the count in a marker's low nibble, or the integer object after it when the
  // nibble is 0xF. *at moves past the marker and any such integer.
  bool ReadCount(std::uint64_t* at, unsigned nibble, std::uint64_t* count) {
    ++*at;
    if (nibble != 0xF) {
      *count = nibble;
      return true;
    }
    if (!Fits(*at, 1) || (in_[*at] & 0xF0) != 0x10 || (in_[*at] & 0x0F) > 3)
      return Damaged("bad length"), false;
    const std::uint64_t bytes = 1u << (in_[*at] & 0x0F);
    if (!Fits(*at + 1, bytes)) return Damaged("length out of range"), false;
    *count = ReadBE(in_ + *at + 1, bytes);
    *at += 1 + bytes;
    return true;
  }

  // Reads a string object (ASCII or UTF-16BE) as UTF-8.
  std::optional<std::string> ReadString(std::uint64_t offset) {
    const unsigned type = in_[offset] >> 4;
    std::uint64_t at = offset, count;
    if (!ReadCount(&at, in_[offset] & 0x0F, &count)) return std::nullopt;
    std::string out;
    if (type == 0x5) {
      if (!Fits(at, count)) return Damaged("string out of range");
      out.assign(reinterpret_cast<const char*>(in_ + at), static_cast<std::size_t>(count));
      for (std::size_t i = 0; i < out.size(); ++i) {
        if (static_cast<unsigned char>(out[i]) >= 0x80)
          return Fail(codec::InvalidUTF8Message(static_cast<unsigned char>(out[i]), at + i));
      }
    } else {
      if (count > tableOffset_ / 2 || !Fits(at, count * 2)) return Damaged("string out of range");
      out.reserve(static_cast<std::size_t>(count));
      for (std::uint64_t i = 0; i < count; ++i) {
        char32_t unit = static_cast<char32_t>(ReadBE(in_ + at + 2 * i, 2));
        if (unit >= 0xD800 && unit <= 0xDBFF && i + 1 < count) {
          char32_t low = static_cast<char32_t>(ReadBE(in_ + at + 2 * (i + 1), 2));
          if (low >= 0xDC00 && low <= 0xDFFF) {
            codec::AppendUTF8(out, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
            ++i;
            continue;
          }
        }
        if (unit >= 0xD800 && unit <= 0xDFFF)
          return Fail("holds a string with an unpaired UTF-16 surrogate (at offset " +
                      std::to_string(at + 2 * i) + ")");
        codec::AppendUTF8(out, unit);
      }
    }
    if (out.find('\0') != std::string::npos) return Fail("holds a string with a NUL character");
    return out;
  }

  std::optional<std::string> ReadKey(std::uint64_t ref) {
    std::uint64_t offset;
    if (!ObjectOffset(ref, &offset)) return std::nullopt;
    const unsigned type = in_[offset] >> 4;
    if (type != 0x5 && type != 0x6) return Fail("holds a dictionary key that is not a string");
    std::optional<std::string> key = ReadString(offset);
    if (key && !budget_.take(key->size(), error_)) return std::nullopt;
    return key;
  }

  // Builds object `ref`. Scalars are complete on return; a container is returned empty
  // and pushed, to be filled by the loop in Run.
  bool Materialise(std::uint64_t ref, std::optional<Value>* out) {
    if (stack_.size() > static_cast<std::size_t>(kMaxDepth)) {
      Fail("is nested deeper than " + std::to_string(kMaxDepth) + " levels");
      return false;
    }
    std::uint64_t offset;
    if (!ObjectOffset(ref, &offset)) return false;
    const unsigned marker = in_[offset], type = marker >> 4, nibble = marker & 0x0F;
    std::size_t payload = 0;
    switch (type) {
      case 0x0:
        if (marker == 0x08 || marker == 0x09) {
          *out = Value(marker == 0x09);
          break;
        }
        return Fail("holds a null or fill object, which property lists here do not use"), false;
      case 0x1: {
        if (nibble > 4) return Damaged("bad integer size"), false;
        const std::uint64_t bytes = 1u << nibble;
        if (!Fits(offset + 1, bytes)) return Damaged("integer out of range"), false;
        const unsigned char* p = in_ + offset + 1;
        if (bytes == 16) {
          // 128 bits: accepted only when the value fits a signed 64-bit integer.
          const std::uint64_t high = ReadBE(p, 8), low = ReadBE(p + 8, 8);
          const bool negative = (low >> 63) != 0;
          if (high != (negative ? ~std::uint64_t{0} : 0))
            return Fail("holds an integer that does not fit in 64 bits"), false;
          *out = Value(static_cast<std::int64_t>(low));
        } else {
          // 1, 2 and 4 bytes are unsigned; 8 bytes are two's complement.
          *out = Value(static_cast<std::int64_t>(ReadBE(p, bytes)));
        }
        break;
      }
      case 0x2: {
        if (nibble != 2 && nibble != 3) return Damaged("bad real size"), false;
        const std::uint64_t bytes = 1u << nibble;
        if (!Fits(offset + 1, bytes)) return Damaged("real out of range"), false;
        if (bytes == 8) {
          *out = Value(ReadDouble(in_ + offset + 1));
        } else {
          std::uint32_t bits = static_cast<std::uint32_t>(ReadBE(in_ + offset + 1, 4));
          float f;
          std::memcpy(&f, &bits, sizeof f);
          *out = Value(static_cast<double>(f));
        }
        break;
      }
      case 0x3: {
        if (marker != 0x33 || !Fits(offset + 1, 8)) return Damaged("bad date"), false;
        const double seconds = ReadDouble(in_ + offset + 1);
        if (!codec::DateInRange(seconds)) return Fail(codec::kDateRangeMessage), false;
        *out = Value(Date{seconds});
        break;
      }
      case 0x4: {
        std::uint64_t at = offset, count;
        if (!ReadCount(&at, nibble, &count)) return false;
        if (!Fits(at, count)) return Damaged("data out of range"), false;
        payload = static_cast<std::size_t>(count);
        if (!budget_.take(payload, error_)) return false;
        *out = Value(Data(in_ + at, in_ + at + count));
        return true;
      }
      case 0x5:
      case 0x6: {
        std::optional<std::string> s = ReadString(offset);
        if (!s) return false;
        payload = s->size();
        if (!budget_.take(payload, error_)) return false;
        *out = Value(std::move(*s));
        return true;
      }
      case 0x8:
        return Fail("holds a UID (a keyed-archive reference), which property lists here do not use"), false;
      case 0xA:
      case 0xD: {
        std::uint64_t at = offset, count;
        if (!ReadCount(&at, nibble, &count)) return false;
        const std::uint64_t refs = type == 0xD ? 2 * count : count;
        if (count > tableOffset_ || !Fits(at, refs * refSize_))
          return Damaged("container out of range"), false;
        if (onPath_[ref]) return Damaged("a container contains itself"), false;
        if (!budget_.take(0, error_)) return false;
        onPath_[ref] = true;
        Frame frame{ref, type == 0xD, count, at, 0, Array(), Dictionary()};
        *out = frame.isDict ? Value(frame.dict) : Value(frame.array);
        stack_.push_back(std::move(frame));
        return true;
      }
      case 0xB:
      case 0xC:
        return Fail("holds a set, which property lists here do not use"), false;
      default:
        return Damaged("unknown object type"), false;
    }
    return budget_.take(payload, error_);
  }

  const unsigned char* in_;
  std::size_t size_;
  std::string* error_;
  std::size_t offsetSize_ = 0, refSize_ = 0;
  std::uint64_t objects_ = 0, tableOffset_ = 0;
  std::vector<bool> onPath_;  // containers open on the stack, to refuse cycles
  std::vector<Frame> stack_;
  codec::Budget budget_;
};

}  // namespace

std::optional<Value> ReadBinary(std::string_view bytes, std::string* error) {
  return BinaryReader(bytes, error).Run();
}

}  // namespace varno::plist::formats
