// SPDX-License-Identifier: Apache-2.0
// Number handling of the panel utilities: digit counts, localized numbers with decimals, and
// a length- and character-limited field given pasted text.
#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/toolkit/automation.h"
#include "platform/toolkit/text_editing.h"
#include "platform/toolkit/window.h"
#include "support.h"
#include "ui/panel_ui.h"

using namespace varno;

// CountDigits agrees with the decimal text of the number.
static void CheckDigits(std::int64_t n) {
  std::string text = std::to_string(n);
  if (n < 0) text.erase(0, 1);
  fuzz::Check(ui::CountDigits(n) == static_cast<int>(text.size()), "CountDigits miscounts " + text);
}

// A number formatted with `decimals` decimals in English reads back within half a unit of
// its last place.
static void CheckDecimals(double value, int decimals) {
  const std::string text = ui::CreateLocalizedCFStringFromNumberWithDecimals(value, decimals, "en_US");
  if (decimals < 0 || decimals > 15 || !std::isfinite(value) || std::fabs(value) >= 1e15) return;
  fuzz::Check(!text.empty(), "no text for a plain number");
  char* end = nullptr;
  const double back = std::strtod(text.c_str(), &end);
  fuzz::Check(end && *end == '\0', "the number text has something besides the number: " + text);
  const double tolerance = 0.5 * std::pow(10.0, -decimals) + 1e-12 * std::fmax(1.0, std::fabs(value));
  fuzz::Check(std::fabs(back - value) <= tolerance, "the number text is off: " + text);
}

// A limited field never holds more characters than its maximum, nor a character outside
// its set that was pasted.
static void CheckLimitedField(std::int32_t minLength, std::int32_t maxLength,
                              const std::string& allowed, const std::string& pasted) {
  std::unique_ptr<toolkit::Window> window = toolkit::Window::create({0, 0, 300, 100}, "Field");
  toolkit::Control* field =
      window->embed(toolkit::Control::create(toolkit::ControlKind::EditText, {10, 10, 200, 22}));
  fuzz::Check(field != nullptr, "no edit field");
  const toolkit::CharacterSet set(allowed);
  ui::LimitInputLengthAndCharacters(field, minLength, maxLength, allowed.empty() ? nullptr : &set);
  toolkit::PasteText(*field, pasted);
  const std::string text = field->text();
  if (maxLength > 0)
    fuzz::Check(toolkit::CountCharacters(text) <= maxLength, "the field holds more than its maximum");
  // Text of control characters only (backspace, arrows) edits; any other text is checked.
  bool printable = false;
  for (std::string_view c : toolkit::SplitCharacters(pasted))
    printable = printable || c.size() > 1 || (static_cast<unsigned char>(c[0]) >= 0x20 && c[0] != 0x7F);
  if (!allowed.empty() && printable && text == pasted)
    fuzz::Check(set.containsAll(pasted), "the field took characters outside its set");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  CheckDigits(input.ConsumeIntegral<std::int64_t>());
  CheckDecimals(input.ConsumeFloatingPoint<double>(), input.ConsumeIntegralInRange<int>(-2, 17));
  const std::int32_t minLength = input.ConsumeIntegralInRange<std::int32_t>(-1, 40);
  const std::int32_t maxLength = input.ConsumeIntegralInRange<std::int32_t>(-1, 40);
  const std::string allowed = input.ConsumeRandomLengthString(64);
  CheckLimitedField(minLength, maxLength, allowed, input.ConsumeRemainingBytesAsString());
  return 0;
}
