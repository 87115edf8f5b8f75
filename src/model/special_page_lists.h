// SPDX-License-Identifier: Apache-2.0
// Lists of special pages: inserts kept in page order, and exception ranges kept sorted and
// free of overlaps, the newest range winning where two meet. A list owns its pages and
// stores clones of what it is given. Adding a page finds its place by halving (as long as
// the list is in page order) and puts it in without moving the others, so adding n pages
// costs about n log n. For that a list takes its own order as it left it: the page numbers
// of pages it holds change through update, not in place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "model/page_sequence.h"
#include "model/special_pages.h"
#include "platform/plist/value.h"
#include "platform/status.h"

namespace varno::model {

// Pages handed to a list's add; the caller keeps them.
using SpecialPageSpan = std::span<const SpecialPage* const>;

class SpecialPageList {
 public:
  SpecialPageList() = default;
  SpecialPageList(const SpecialPageList&) = delete;
  SpecialPageList& operator=(const SpecialPageList&) = delete;
  virtual ~SpecialPageList() = default;

  std::int32_t count() const { return static_cast<std::int32_t>(pages_.size()); }
  // The page at `index`, or null when out of range. The list's constness covers its order,
  // not its pages, which dialogs edit in place (all but their page numbers).
  virtual SpecialPage* pageAtIndex(std::int32_t index) const;
  // Position of that very object (not an equal one), or -1.
  virtual std::int32_t indexOfPage(const SpecialPage* page) const;
  // Stores clones of `pages`. Returns noErr, or paramErr (list unchanged) when a page is
  // null or of the wrong kind for the list.
  virtual OSStatus add(SpecialPageSpan pages) = 0;
  virtual std::unique_ptr<SpecialPageList> clone() const = 0;

  // Deletes `page` if it is in the list; anything else is left alone.
  void remove(const SpecialPage* page);
  void clear() { pages_.clear(); }
  // Replaces `page` by the pages of `replacements` through add. A page not in the list
  // gives noErr and no change; when add fails, `page` goes back where it was and add's
  // status is returned.
  OSStatus update(const SpecialPage& page, SpecialPageSpan replacements);
  // The pages' ticket forms in list order; nullopt for an empty list, whose key is removed.
  std::optional<plist::Array> asTicket() const;

 protected:
  PageSequence pages_;
};

class InsertList : public SpecialPageList {
 public:
  InsertList() = default;
  InsertList(const InsertList& other);

  Insert* pageAtIndex(std::int32_t index) const override;
  // Each insert goes before the first page with a later startPage, so inserts after the
  // same page keep the order in which they were added. Once promote or demote has put the
  // list out of page order, that page is looked for from the head, in linear time, until
  // the order is back.
  OSStatus add(SpecialPageSpan pages) override;
  std::unique_ptr<SpecialPageList> clone() const override;

  // Moving up is allowed only past a neighbour whose startPage is not 0: inserts before
  // the first page stay at the head. The neighbour's page number is all that is checked.
  bool canPromote(const Insert* insert) const;
  void promote(Insert* insert);
  bool canDemote(const Insert* insert) const;
  void demote(Insert* insert);

 private:
  void swapWithNext(std::size_t index);
  // False once promote or demote has swapped two inserts after different pages; add then
  // looks again before it relies on the order.
  bool inPageOrder_ = true;
};

class ExceptionPageList : public SpecialPageList {
 public:
  ExceptionPageList() = default;
  ExceptionPageList(const ExceptionPageList& other);

  ExceptionPage* pageAtIndex(std::int32_t index) const override;
  // Merges each range in turn: where it meets older ranges it wins, and the older ranges
  // keep the parts outside it (one that contains it is split in two). A range that ends
  // before it starts is refused with paramErr: merging it could never finish.
  OSStatus add(SpecialPageSpan pages) override;
  std::unique_ptr<SpecialPageList> clone() const override;
};

}  // namespace varno::model
