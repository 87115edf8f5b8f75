// SPDX-License-Identifier: Apache-2.0
#include "model/special_page_lists.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace varno::model {
namespace {

// The pages as a span for add, which copies them.
std::vector<const SpecialPage*> PagesOf(const PageSequence& pages) {
  std::vector<const SpecialPage*> view;
  view.reserve(pages.size());
  pages.forEach([&view](const SpecialPage& page) { view.push_back(&page); });
  return view;
}

template <typename Page>
bool AllOfKind(SpecialPageSpan pages) {
  return std::all_of(pages.begin(), pages.end(), [](const SpecialPage* page) {
    return dynamic_cast<const Page*>(page) != nullptr;
  });
}

bool InPageOrder(const PageSequence& pages) {
  std::int32_t previous = std::numeric_limits<std::int32_t>::min();
  const std::size_t descent = pages.findFirst([&previous](const SpecialPage& page) {
    return std::exchange(previous, page.startPage()) > page.startPage();
  });
  return descent == pages.size();
}

}  // namespace

SpecialPage* SpecialPageList::pageAtIndex(std::int32_t index) const {
  if (index < 0 || index >= count()) return nullptr;
  return pages_[static_cast<std::size_t>(index)];
}

std::int32_t SpecialPageList::indexOfPage(const SpecialPage* page) const {
  const std::size_t found =
      pages_.findFirst([page](const SpecialPage& held) { return &held == page; });
  if (found == pages_.size()) return -1;
  return static_cast<std::int32_t>(found);
}

void SpecialPageList::remove(const SpecialPage* page) {
  const std::int32_t index = indexOfPage(page);
  if (index >= 0) pages_.erase(static_cast<std::size_t>(index));
}

OSStatus SpecialPageList::update(const SpecialPage& page, SpecialPageSpan replacements) {
  const std::int32_t index = indexOfPage(&page);
  if (index < 0) return noErr;
  std::unique_ptr<SpecialPage> old = pages_.erase(static_cast<std::size_t>(index));
  if (OSStatus status = add(replacements); status != noErr) {
    pages_.insert(static_cast<std::size_t>(index), std::move(old));
    return status;
  }
  return noErr;
}

std::optional<plist::Array> SpecialPageList::asTicket() const {
  if (pages_.empty()) return std::nullopt;
  plist::Array ticket;
  pages_.forEach([&ticket](const SpecialPage& page) { ticket.append(page.asTicket()); });
  return ticket;
}

InsertList::InsertList(const InsertList& other) { add(PagesOf(other.pages_)); }

Insert* InsertList::pageAtIndex(std::int32_t index) const {
  return dynamic_cast<Insert*>(SpecialPageList::pageAtIndex(index));
}

OSStatus InsertList::add(SpecialPageSpan pages) {
  if (!AllOfKind<Insert>(pages)) return paramErr;
  // Adding never brings a list that is out of page order back into it: one look will do.
  if (!inPageOrder_) inPageOrder_ = InPageOrder(pages_);
  for (const SpecialPage* page : pages) {
    const std::int32_t after = page->startPage();
    auto later = [after](const SpecialPage& held) { return held.startPage() > after; };
    auto notLater = [after](const SpecialPage& held) { return held.startPage() <= after; };
    // In page order the first later page follows the last one that is not later, which
    // halving finds; out of it, the pages are walked from the head.
    const std::size_t index =
        inPageOrder_ ? pages_.partitionPoint(0, notLater) : pages_.findFirst(later);
    pages_.insert(index, page->clone());
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
  swapWithNext(static_cast<std::size_t>(indexOfPage(insert)) - 1);
}

bool InsertList::canDemote(const Insert* insert) const {
  const std::int32_t index = indexOfPage(insert);
  return index >= 0 && index + 1 < count() &&
         pages_[static_cast<std::size_t>(index) + 1]->startPage() != 0;
}

void InsertList::demote(Insert* insert) {
  if (!canDemote(insert)) return;
  swapWithNext(static_cast<std::size_t>(indexOfPage(insert)));
}

void InsertList::swapWithNext(std::size_t index) {
  if (pages_[index]->startPage() != pages_[index + 1]->startPage()) inPageOrder_ = false;
  pages_.swap(index, index + 1);
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
  auto at = [this](std::size_t i) { return static_cast<ExceptionPage*>(pages_[i]); };
  for (const SpecialPage* page : pages) {
    const auto* added = static_cast<const ExceptionPage*>(page);
    const std::int32_t start = added->startPage();
    const std::int32_t end = added->endPage();
    // Sorted ranges that never overlap end in rising order, so those that end before
    // `start` come first and the first one that does not is found by halving.
    auto endsBefore = [start](const SpecialPage& held) {
      return start > static_cast<const ExceptionPage&>(held).endPage();
    };
    std::size_t i = 0;
    for (;;) {
      i = pages_.partitionPoint(i, endsBefore);
      if (i == pages_.size()) {
        pages_.insert(i, added->clone());
        break;
      }
      ExceptionPage* older = at(i);
      if (start > older->startPage()) {
        // The new range starts inside the older one: the older keeps its head, and its
        // tail too when the new range ends inside it.
        if (end < older->endPage()) {
          std::unique_ptr<SpecialPage> tail = older->clone();
          tail->setStartPage(end + 1);
          pages_.insert(i + 1, std::move(tail));
        }
        older->setEndPage(start - 1);
        ++i;
      } else if (start == older->startPage()) {
        if (end < older->endPage())
          older->setStartPage(end + 1);
        else
          pages_.erase(i);
      } else if (end < older->startPage()) {
        pages_.insert(i, added->clone());
        break;
      } else if (end < older->endPage()) {
        older->setStartPage(end + 1);
      } else {
        pages_.erase(i);
      }
    }
  }
  return noErr;
}

std::unique_ptr<SpecialPageList> ExceptionPageList::clone() const {
  return std::make_unique<ExceptionPageList>(*this);
}

}  // namespace varno::model
