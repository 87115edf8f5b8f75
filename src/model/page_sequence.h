// SPDX-License-Identifier: Apache-2.0
// The pages a special page list owns, in list order. Reaching, putting in and taking out
// the page at a position cost time logarithmic in the count (a tree balanced by random
// priorities that counts the pages under each node), so that a list of many thousand pages
// grows in n log n rather than in n² as a vector filled in the middle does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <utility>

#include "model/special_pages.h"

namespace varno::model {

class PageSequence {
 public:
  PageSequence() = default;
  PageSequence(const PageSequence&) = delete;
  PageSequence& operator=(const PageSequence&) = delete;
  ~PageSequence() = default;

  std::size_t size() const { return Count(root_.get()); }
  bool empty() const { return !root_; }
  // The page at `index`, which must be below size().
  SpecialPage* operator[](std::size_t index) const;

  // Puts `page` at `index` (at most size()); the pages from there on move one place back.
  void insert(std::size_t index, std::unique_ptr<SpecialPage> page);
  // Takes the page at `index` out and hands it back.
  std::unique_ptr<SpecialPage> erase(std::size_t index);
  // Exchanges the pages at two positions.
  void swap(std::size_t first, std::size_t second);
  void clear() { root_.reset(); }

  // The first position at or after `from` whose page does not satisfy `before`, or size().
  // `before` must hold for the pages up to some position and for none after it, as "ends
  // before page p" does in a list sorted by page.
  template <typename Predicate>
  std::size_t partitionPoint(std::size_t from, Predicate before) const;
  // The first position whose page satisfies `found`, or size(); visits the pages in order.
  template <typename Predicate>
  std::size_t findFirst(Predicate found) const;
  // Calls `visit` with each page in order.
  template <typename Visit>
  void forEach(Visit visit) const {
    findFirst([&visit](const SpecialPage& page) { return visit(page), false; });
  }

 private:
  struct Node {
    std::unique_ptr<SpecialPage> page;
    std::unique_ptr<Node> left, right;
    std::uint32_t priority = 0;
    std::size_t count = 1;  // nodes in this subtree, this one included
  };
  using Link = std::unique_ptr<Node>;

  static std::size_t Count(const Node* node) { return node ? node->count : 0; }
  static void Recount(Node& node) {
    node.count = 1 + Count(node.left.get()) + Count(node.right.get());
  }
  static Link Join(Link first, Link second);
  // Cuts `tree` into its first `count` nodes and the rest.
  static std::pair<Link, Link> Cut(Link tree, std::size_t count);
  static void InsertAt(Link& tree, std::size_t index, Link node);
  static std::unique_ptr<SpecialPage> Erase(Link& tree, std::size_t index);
  Node& nodeAt(std::size_t index) const;
  template <typename Predicate>
  static bool FindIn(const Node* node, Predicate& found, std::size_t& index);

  Link root_;
  std::minstd_rand priorities_;
};

template <typename Predicate>
std::size_t PageSequence::partitionPoint(std::size_t from, Predicate before) const {
  std::size_t point = size(), skipped = 0;
  for (const Node* node = root_.get(); node;) {
    const std::size_t index = skipped + Count(node->left.get());
    if (index >= from && !before(static_cast<const SpecialPage&>(*node->page))) {
      point = index;
      node = node->left.get();
    } else {
      skipped = index + 1;
      node = node->right.get();
    }
  }
  return point;
}

template <typename Predicate>
std::size_t PageSequence::findFirst(Predicate found) const {
  std::size_t index = 0;
  FindIn(root_.get(), found, index);
  return index;
}

template <typename Predicate>
bool PageSequence::FindIn(const Node* node, Predicate& found, std::size_t& index) {
  if (!node) return false;
  if (FindIn(node->left.get(), found, index)) return true;
  if (found(static_cast<const SpecialPage&>(*node->page))) return true;
  ++index;
  return FindIn(node->right.get(), found, index);
}

}  // namespace varno::model
