// SPDX-License-Identifier: Apache-2.0
#include "model/page_sequence.h"

#include <cassert>

namespace varno::model {

// A treap ordered by position: every node's priority is at least its children's, so the
// shape is that of a tree built in random order and its depth stays logarithmic whatever
// the pages and the order in which they come. Every walk below recurses to that depth only.

PageSequence::Link PageSequence::Join(Link first, Link second) {
  if (!first) return second;
  if (!second) return first;
  if (first->priority >= second->priority) {
    first->right = Join(std::move(first->right), std::move(second));
    Recount(*first);
    return first;
  }
  second->left = Join(std::move(first), std::move(second->left));
  Recount(*second);
  return second;
}

std::pair<PageSequence::Link, PageSequence::Link> PageSequence::Cut(Link tree,
                                                                      std::size_t count) {
  if (!tree) return {};
  const std::size_t left = Count(tree->left.get());
  if (count <= left) {
    auto [head, tail] = Cut(std::move(tree->left), count);
    tree->left = std::move(tail);
    Recount(*tree);
    return {std::move(head), std::move(tree)};
  }
  auto [head, tail] = Cut(std::move(tree->right), count - left - 1);
  tree->right = std::move(head);
  Recount(*tree);
  return {std::move(tree), std::move(tail)};
}

void PageSequence::InsertAt(Link& tree, std::size_t index, Link node) {
  // Down to where the new node's priority puts it, then the subtree there is cut in two
  // under it: one walk, and a short one, where cutting the whole tree would take two.
  if (!tree || node->priority > tree->priority) {
    auto [head, tail] = Cut(std::move(tree), index);
    node->left = std::move(head);
    node->right = std::move(tail);
    Recount(*node);
    tree = std::move(node);
    return;
  }
  const std::size_t left = Count(tree->left.get());
  if (index <= left)
    InsertAt(tree->left, index, std::move(node));
  else
    InsertAt(tree->right, index - left - 1, std::move(node));
  ++tree->count;
}

std::unique_ptr<SpecialPage> PageSequence::Erase(Link& tree, std::size_t index) {
  const std::size_t left = Count(tree->left.get());
  std::unique_ptr<SpecialPage> page;
  if (index < left) {
    page = Erase(tree->left, index);
  } else if (index > left) {
    page = Erase(tree->right, index - left - 1);
  } else {
    page = std::move(tree->page);
    tree = Join(std::move(tree->left), std::move(tree->right));
    return page;
  }
  --tree->count;
  return page;
}

PageSequence::Node& PageSequence::nodeAt(std::size_t index) const {
  assert(index < size());
  Node* node = root_.get();
  for (;;) {
    const std::size_t left = Count(node->left.get());
    if (index == left) return *node;
    if (index < left) {
      node = node->left.get();
    } else {
      index -= left + 1;
      node = node->right.get();
    }
  }
}

SpecialPage* PageSequence::operator[](std::size_t index) const {
  return nodeAt(index).page.get();
}

void PageSequence::insert(std::size_t index, std::unique_ptr<SpecialPage> page) {
  assert(index <= size());
  auto node = std::make_unique<Node>();
  node->page = std::move(page);
  node->priority = static_cast<std::uint32_t>(priorities_());
  InsertAt(root_, index, std::move(node));
}

std::unique_ptr<SpecialPage> PageSequence::erase(std::size_t index) {
  assert(index < size());
  return Erase(root_, index);
}

void PageSequence::swap(std::size_t first, std::size_t second) {
  std::swap(nodeAt(first).page, nodeAt(second).page);
}

}  // namespace varno::model
