// SPDX-License-Identifier: Apache-2.0
#include "model/special_page_lists.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace varno::model {
namespace {

// The pages as a span for add, which copies them.
std::vector<const SpecialPage*> PagesOf(const std::vector<std::unique_ptr<SpecialPage>>& pages) {
  std::vector<const SpecialPage*> view;
  view.reserve(pages.size());
  for (const auto& page : pages) view.push_back(page.get());
  return view;
}

template <typename Page>
bool AllOfKind(SpecialPageSpan pages) {
  return std::all_of(pages.begin(), pages.end(), [](const SpecialPage* page) {
    return dynamic_cast<const Page*>(page) != nullptr;
  });
}

}  // namespace

SpecialPage* SpecialPageList::pageAtIndex(std::int32_t index) const {
  if (index < 0 || index >= count()) return nullptr;
  return pages_[static_cast<std::size_t>(index)].get();
}

std::int32_t SpecialPageList::indexOfPage(const SpecialPage* page) const {
  auto found = std::find_if(pages_.begin(), pages_.end(),
                            [page](const auto& held) { return held.get() == page; });
  if (found == pages_.end()) return -1;
  return static_cast<std::int32_t>(found - pages_.begin());
}

void SpecialPageList::remove(const SpecialPage* page) {
  const std::int32_t index = indexOfPage(page);
  if (index >= 0) pages_.erase(pages_.begin() + index);
}

OSStatus SpecialPageList::update(const SpecialPage& page, SpecialPageSpan replacements) {
  const std::int32_t index = indexOfPage(&page);
  if (index < 0) return noErr;
  std::unique_ptr<SpecialPage> old = std::move(pages_[static_cast<std::size_t>(index)]);
  pages_.erase(pages_.begin() + index);
  if (OSStatus status = add(replacements); status != noErr) {
    pages_.insert(pages_.begin() + index, std::move(old));
    return status;
  }
  return noErr;
}

std::optional<plist::Array> SpecialPageList::asTicket() const {
  if (pages_.empty()) return std::nullopt;
  plist::Array ticket;
  for (const auto& page : pages_) ticket.append(page->asTicket());
  return ticket;
}

InsertList::InsertList(const InsertList& other) { add(PagesOf(other.pages_)); }

Insert* InsertList::pageAtIndex(std::int32_t index) const {
  return dynamic_cast<Insert*>(SpecialPageList::pageAtIndex(index));
}

OSStatus InsertList::add(SpecialPageSpan pages) {
  if (!AllOfKind<Insert>(pages)) return paramErr;
  for (const SpecialPage* page : pages) {
    // A linear search, not a binary one: promote and demote may leave the list out of
    // page order, and an insert still goes before the first later page.
    auto later = std::find_if(pages_.begin(), pages_.end(), [page](const auto& held) {
      return held->startPage() > page->startPage();
    });
    pages_.insert(later, page->clone());
  }
  return noErr;
}

std::unique_ptr<SpecialPageList> InsertList::clone() const {
  return std::make_unique<InsertList>(*this);
}

bool InsertList::canPromote(const Insert* insert) const {
  const std::int32_t index = indexOfPage(insert);
  return index > 0 && pages_[static_cast<std::size_t>(index) - 1]->startPage() != 0;
}

void InsertList::promote(Insert* insert) {
  if (!canPromote(insert)) return;
  const auto index = static_cast<std::size_t>(indexOfPage(insert));
  std::swap(pages_[index - 1], pages_[index]);
}

bool InsertList::canDemote(const Insert* insert) const {
  const std::int32_t index = indexOfPage(insert);
  return index >= 0 && index + 1 < count() &&
         pages_[static_cast<std::size_t>(index) + 1]->startPage() != 0;
}

void InsertList::demote(Insert* insert) {
  if (!canDemote(insert)) return;
  const auto index = static_cast<std::size_t>(indexOfPage(insert));
  std::swap(pages_[index], pages_[index + 1]);
}

ExceptionPageList::ExceptionPageList(const ExceptionPageList& other) {
  add(PagesOf(other.pages_));
}

ExceptionPage* ExceptionPageList::pageAtIndex(std::int32_t index) const {
  return dynamic_cast<ExceptionPage*>(SpecialPageList::pageAtIndex(index));
}

OSStatus ExceptionPageList::add(SpecialPageSpan pages) {
  if (!AllOfKind<ExceptionPage>(pages)) return paramErr;
  for (const SpecialPage* page : pages)
    if (static_cast<const ExceptionPage*>(page)->endPage() < page->startPage()) return paramErr;

  // The list holds only ExceptionPages: add is the one way in and checks every page.
  auto at = [this](std::size_t i) { return static_cast<ExceptionPage*>(pages_[i].get()); };
  for (const SpecialPage* page : pages) {
    const auto* added = static_cast<const ExceptionPage*>(page);
    const std::int32_t start = added->startPage();
    const std::int32_t end = added->endPage();
    std::size_t i = 0;
    for (;;) {
      while (i < pages_.size() && start > at(i)->endPage()) ++i;
      if (i == pages_.size()) {
        pages_.push_back(added->clone());
        break;
      }
      ExceptionPage* older = at(i);
      if (start > older->startPage()) {
        // The new range starts inside the older one: the older keeps its head, and its
        // tail too when the new range ends inside it.
        if (end < older->endPage()) {
          std::unique_ptr<SpecialPage> tail = older->clone();
          tail->setStartPage(end + 1);
          pages_.insert(pages_.begin() + static_cast<std::ptrdiff_t>(i) + 1, std::move(tail));
        }
        older->setEndPage(start - 1);
        ++i;
      } else if (start == older->startPage()) {
        if (end < older->endPage())
          older->setStartPage(end + 1);
        else
          pages_.erase(pages_.begin() + static_cast<std::ptrdiff_t>(i));
      } else if (end < older->startPage()) {
        pages_.insert(pages_.begin() + static_cast<std::ptrdiff_t>(i), added->clone());
        break;
      } else if (end < older->endPage()) {
        older->setStartPage(end + 1);
      } else {
        pages_.erase(pages_.begin() + static_cast<std::ptrdiff_t>(i));
      }
    }
  }
  return noErr;
}

std::unique_ptr<SpecialPageList> ExceptionPageList::clone() const {
  return std::make_unique<ExceptionPageList>(*this);
}

}  // namespace varno::model
