// SPDX-License-Identifier: Apache-2.0
#include "platform/print/ppd_calls.h"

// Deliberately not _CUPS_NO_DEPRECATED: with clang that turns the declarations into
// errors instead of hiding them.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace varno::print::ppdcall {

ppd_file_t* OpenFile(const char* path) { return path ? ppdOpenFile(path) : nullptr; }

std::string LastErrorText() {
  int line = 0;
  ppd_status_t status = ppdLastError(&line);
  std::string text = ppdErrorString(status);
  if (line > 0) text += " (line " + std::to_string(line) + ")";
  return text;
}

void Close(ppd_file_t* ppd) {
  if (ppd) ppdClose(ppd);
}

void MarkDefaults(ppd_file_t* ppd) { ppdMarkDefaults(ppd); }

int MarkOption(ppd_file_t* ppd, const char* keyword, const char* choice) {
  return ppdMarkOption(ppd, keyword, choice);
}

int MarkOptions(ppd_file_t* ppd, int count, cups_option_t* options) {
  return cupsMarkOptions(ppd, count, options);
}

int Conflicts(ppd_file_t* ppd) { return ppdConflicts(ppd); }

int ChoiceConflicts(ppd_file_t* ppd, const char* keyword, const char* choice) {
  cups_option_t* options = nullptr;
  const int count = cupsGetConflicts(ppd, keyword, choice, &options);
  cupsFreeOptions(count, options);
  return count;
}

ppd_option_t* FirstOption(ppd_file_t* ppd) { return ppdFirstOption(ppd); }

ppd_option_t* NextOption(ppd_file_t* ppd) { return ppdNextOption(ppd); }

http_status_t GetPPD(http_t* http, const char* queue, time_t* modified, char* buffer,
                     std::size_t size) {
  return cupsGetPPD3(http, queue, modified, buffer, size);
}

ppd_option_t* FindOption(ppd_file_t* ppd, const char* keyword) {
  return ppdFindOption(ppd, keyword);
}

ppd_choice_t* FindChoice(ppd_option_t* option, const char* choice) {
  return ppdFindChoice(option, choice);
}

ppd_choice_t* FindMarkedChoice(ppd_file_t* ppd, const char* keyword) {
  return ppdFindMarkedChoice(ppd, keyword);
}

int Localize(ppd_file_t* ppd) { return ppdLocalize(ppd); }

}  // namespace varno::print::ppdcall

#pragma GCC diagnostic pop
