#include "ppd_defaults.h"

// libcups marks its whole PPD API deprecated; it is still the API that reads PPD files.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <cups/ppd.h>

#include <memory>

namespace varno::cli {
namespace {

struct PPDClose {
  void operator()(ppd_file_t* ppd) const { ppdClose(ppd); }
};

}  // namespace

bool ReadPPDDefaults(const std::filesystem::path& path, PPDDefaults& out, std::string& error) {
  std::unique_ptr<ppd_file_t, PPDClose> ppd(ppdOpenFile(path.c_str()));
  if (!ppd) {
    int line = 0;
    ppd_status_t status = ppdLastError(&line);
    error = path.string() + ": " + ppdErrorString(status);
    if (line > 0) error += " (line " + std::to_string(line) + ")";
    return false;
  }
  ppdMarkDefaults(ppd.get());
  out.manufacturer = ppd->manufacturer ? ppd->manufacturer : "";
  out.nickName = ppd->nickname ? ppd->nickname : "";
  out.choices.clear();
  for (ppd_option_t* option = ppdFirstOption(ppd.get()); option; option = ppdNextOption(ppd.get())) {
    // PageRegion follows PageSize and is not a choice of its own.
    if (std::string_view(option->keyword) == "PageRegion") continue;
    if (ppd_choice_t* choice = ppdFindMarkedChoice(ppd.get(), option->keyword))
      out.choices.emplace_back(option->keyword, choice->choice);
  }
  return true;
}

}  // namespace varno::cli

#pragma GCC diagnostic pop
