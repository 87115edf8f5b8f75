// SPDX-License-Identifier: Apache-2.0
#include "ppd_defaults.h"

#include "platform/print/ppd_calls.h"

namespace varno::hosts {

namespace ppdcall = print::ppdcall;

const std::vector<PPDChoice>* PPDDefaults::choicesOf(std::string_view keyword) const {
  for (const auto& [option, list] : options)
    if (option == keyword) return &list;
  return nullptr;
}

bool ReadPPDDefaults(const std::filesystem::path& path, PPDDefaults& out, std::string& error) {
  ppdcall::FilePtr ppd = ppdcall::Open(path);
  if (!ppd) {
    error = path.string() + ": " + ppdcall::LastErrorText();
    return false;
  }
  ppdcall::MarkDefaults(ppd.get());
  out.manufacturer = ppd->manufacturer ? ppd->manufacturer : "";
  out.nickName = ppd->nickname ? ppd->nickname : "";
  out.choices.clear();
  out.options.clear();
  // Collect the options before asking for marked choices: ppdFindMarkedChoice moves the cursor
  // that ppdNextOption follows, and with an option defined twice the walk would start over forever.
  std::vector<ppd_option_t*> walk;
  for (ppd_option_t* option = ppdcall::FirstOption(ppd.get()); option;
       option = ppdcall::NextOption(ppd.get()))
    walk.push_back(option);
  for (ppd_option_t* option : walk) {
    std::vector<PPDChoice> list;
    for (int i = 0; i < option->num_choices; ++i)
      list.push_back({option->choices[i].choice, option->choices[i].text});
    out.options.emplace_back(option->keyword, std::move(list));
    // PageRegion follows PageSize and is not a choice of its own.
    if (std::string_view(option->keyword) == "PageRegion") continue;
    if (ppd_choice_t* choice = ppdcall::FindMarkedChoice(ppd.get(), option->keyword))
      out.choices.emplace_back(option->keyword, choice->choice);
  }
  return true;
}

}  // namespace varno::hosts
