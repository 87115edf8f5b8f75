// SPDX-License-Identifier: Apache-2.0
// Thin wrappers over libcups' PPD functions. libcups marks its whole PPD API deprecated,
// yet it is still the only library that reads, marks and fetches PPD files; every call
// in the project goes through here so that the warning is silenced in one file and
// nowhere else. Reading the
// structures (ppd->groups, option->choices ...) needs no wrapper.
#pragma once

#include <cstddef>
#include <ctime>
#include <filesystem>
#include <memory>
#include <string>

#include <cups/cups.h>
#include <cups/ppd.h>

namespace varno::print::ppdcall {

// ppdOpenFile: the parsed PPD (plain or gzip-compressed), or null.
ppd_file_t* OpenFile(const char* path);
// Why the last OpenFile of this thread failed, as "<libcups message> (line N)".
std::string LastErrorText();
// ppdClose; null is ignored.
void Close(ppd_file_t* ppd);

// ppdMarkDefaults: marks every option's default choice.
void MarkDefaults(ppd_file_t* ppd);
// ppdMarkOption: marks a choice and returns the number of conflicts in the PPD afterwards.
int MarkOption(ppd_file_t* ppd, const char* keyword, const char* choice);
// cupsMarkOptions: marks job options the way a filter does before it writes the job, the
// standard names (media, sides ...) mapped to their PPD options. Returns 1 when a
// conflict remains, 0 otherwise.
int MarkOptions(ppd_file_t* ppd, int count, cups_option_t* options);
// ppdConflicts: the number of conflicts among the marked choices.
int Conflicts(ppd_file_t* ppd);
// cupsGetConflicts: how many options, as marked, forbid `choice` of `keyword`.
int ChoiceConflicts(ppd_file_t* ppd, const char* keyword, const char* choice);

// ppdFirstOption / ppdNextOption: every option of the PPD in order; null at the end.
ppd_option_t* FirstOption(ppd_file_t* ppd);
ppd_option_t* NextOption(ppd_file_t* ppd);

// cupsGetPPD3: fetches a queue's PPD over `http` into the file named in `buffer`.
http_status_t GetPPD(http_t* http, const char* queue, time_t* modified, char* buffer,
                     std::size_t size);

// ppdFindOption / ppdFindChoice / ppdFindMarkedChoice: null when absent.
ppd_option_t* FindOption(ppd_file_t* ppd, const char* keyword);
ppd_choice_t* FindChoice(ppd_option_t* option, const char* choice);
ppd_choice_t* FindMarkedChoice(ppd_file_t* ppd, const char* keyword);

// ppdLocalize: replaces the PPD's texts with its translations for the user's locale.
// Returns 0 on success.
int Localize(ppd_file_t* ppd);

// Owning handle of an open PPD.
struct Closer {
  void operator()(ppd_file_t* ppd) const { Close(ppd); }
};
using FilePtr = std::unique_ptr<ppd_file_t, Closer>;

// OpenFile as an owning handle.
inline FilePtr Open(const std::filesystem::path& path) { return FilePtr(OpenFile(path.c_str())); }

}  // namespace varno::print::ppdcall
