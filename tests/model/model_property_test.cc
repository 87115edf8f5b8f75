// SPDX-License-Identifier: Apache-2.0
// Randomised checks against simple models of the expected result, with fixed seeds so
// that a failure can be replayed.
#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "model/special_page_lists.h"
#include "model/stock.h"
#include "vocabulary/setting_maps.h"

namespace varno::model {

using vocabulary::kUnsetValue;

namespace {

constexpr int kPages = 40;

TEST(ExceptionMergeProperty, ListStaysSortedDisjointAndNewestWins) {
  std::mt19937 random(20261123);
  std::uniform_int_distribution<int> page(1, kPages);
  std::uniform_int_distribution<int> batch(1, 3);
  for (int round = 0; round < 300; ++round) {
    ExceptionPageList list;
    // owner[p]: tag of the newest range covering page p, 0 when none does.
    std::vector<int> owner(kPages + 1, 0);
    int tag = 0;
    for (int step = 0; step < 12; ++step) {
      std::vector<ExceptionPage> ranges(static_cast<std::size_t>(batch(random)));
      std::vector<const SpecialPage*> view;
      for (ExceptionPage& range : ranges) {
        int first = page(random), last = page(random);
        if (first > last) std::swap(first, last);
        range.setStartPage(first);
        range.setEndPage(last);
        range.setLightenDarken(++tag);
        for (int p = first; p <= last; ++p) owner[static_cast<std::size_t>(p)] = tag;
        view.push_back(&range);
      }
      ASSERT_EQ(list.add(view), noErr);

      std::vector<int> seen(kPages + 1, 0);
      for (std::int32_t i = 0; i < list.count(); ++i) {
        const ExceptionPage* range = list.pageAtIndex(i);
        ASSERT_TRUE(range->startPage() <= range->endPage() &&
                    (i == 0 || list.pageAtIndex(i - 1)->endPage() < range->startPage()))
            << "round " << round << ": not sorted and disjoint at " << i;
        for (int p = range->startPage(); p <= range->endPage(); ++p)
          seen[static_cast<std::size_t>(p)] = range->lightenDarken();
      }
      ASSERT_EQ(seen, owner) << "round " << round << ", step " << step;
    }
  }
}

// Both lists against plain vectors that do what their rules say, step by step: the first
// later insert found by walking from the head, the merge walking the ranges one by one.
// Random adds (one page or several), promotes, demotes, updates and removals; the lists
// must hold the same pages in the same order after every step.
struct Model {
  int start, end, tag, id;  // an insert's end is unused; id names the page object
};

// Each page as {start, end, tag}.
template <typename List>
std::vector<std::array<int, 3>> Contents(const List& list) {
  std::vector<std::array<int, 3>> contents;
  for (std::int32_t i = 0; i < list.count(); ++i) {
    const auto* page = list.pageAtIndex(i);
    if constexpr (std::is_same_v<List, InsertList>)
      contents.push_back({page->startPage(), 0, page->quantity()});
    else
      contents.push_back({page->startPage(), page->endPage(), page->lightenDarken()});
  }
  return contents;
}

std::vector<std::array<int, 3>> Contents(const std::vector<Model>& model) {
  std::vector<std::array<int, 3>> contents;
  for (const Model& page : model) contents.push_back({page.start, page.end, page.tag});
  return contents;
}

void ModelAddInsert(std::vector<Model>& model, const Model& insert) {
  auto later = std::find_if(model.begin(), model.end(),
                            [&](const Model& held) { return held.start > insert.start; });
  model.insert(later, insert);
}

void ModelMergeRange(std::vector<Model>& model, const Model& range, int& nextId) {
  std::size_t i = 0;
  for (;;) {
    while (i < model.size() && range.start > model[i].end) ++i;
    if (i == model.size()) {
      model.push_back(range);
      return;
    }
    const Model older = model[i];
    if (range.start > older.start) {
      if (range.end < older.end)
        model.insert(model.begin() + i + 1, {range.end + 1, older.end, older.tag, nextId++});
      model[i].end = range.start - 1;
      ++i;
    } else if (range.end < older.start) {
      model.insert(model.begin() + i, range);
      return;
    } else if (range.end < older.end) {
      model[i].start = range.end + 1;
    } else {
      model.erase(model.begin() + i);
    }
  }
}

template <typename List, typename Page>
void CheckAgainstModel(unsigned seed, int maxPage) {
  constexpr bool kInserts = std::is_same_v<List, InsertList>;
  std::mt19937 random(seed);
  auto uniform = [&random](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  int nextId = 0;
  // New pages; now and then a backwards range, which the exception list refuses.
  auto makePages = [&](int count) {
    std::vector<Page> pages(static_cast<std::size_t>(count));
    for (Page& page : pages) {
      page.setStartPage(uniform(0, maxPage));
      if constexpr (kInserts) {
        page.setQuantity(++nextId);
      } else {
        page.setEndPage(uniform(0, 9) == 0 ? page.startPage() - 1
                                           : std::min(maxPage, page.startPage() + uniform(0, 8)));
        page.setLightenDarken(++nextId);
      }
    }
    return pages;
  };
  // Applies `pages` to the model as add does; false (model unchanged) for a refused batch.
  auto modelAdd = [&](std::vector<Model>& model, const std::vector<Page>& pages) {
    if constexpr (kInserts) {
      for (const Page& page : pages)
        ModelAddInsert(model, {page.startPage(), 0, page.quantity(), nextId++});
    } else {
      for (const Page& page : pages)
        if (page.endPage() < page.startPage()) return false;
      for (const Page& page : pages) {
        const Model range{page.startPage(), page.endPage(), page.lightenDarken(), nextId++};
        ModelMergeRange(model, range, nextId);
      }
    }
    return true;
  };
  auto view = [](const std::vector<Page>& pages) {
    std::vector<const SpecialPage*> view;
    for (const Page& page : pages) view.push_back(&page);
    return view;
  };

  for (int round = 0; round < 150; ++round) {
    List list;
    std::vector<Model> model;
    for (int step = 0; step < 25; ++step) {
      // Which object each model page is, to see that the survivors are the same objects.
      std::vector<std::pair<int, const SpecialPage*>> objects;
      for (std::size_t i = 0; i < model.size(); ++i)
        objects.emplace_back(model[i].id, list.pageAtIndex(static_cast<std::int32_t>(i)));

      // 0, 1: add; 2: update; 3: remove; 4, 5: promote, demote.
      const int action = model.empty() ? 0 : uniform(0, kInserts ? 5 : 3);
      std::size_t at = 0;
      SpecialPage* page = nullptr;
      if (!model.empty()) {
        at = static_cast<std::size_t>(uniform(0, static_cast<int>(model.size()) - 1));
        page = list.pageAtIndex(static_cast<std::int32_t>(at));
      }
      if (action <= 1) {
        const std::vector<Page> pages = makePages(action == 0 ? 1 : uniform(2, 5));
        const bool accepted = modelAdd(model, pages);
        ASSERT_EQ(list.add(view(pages)), accepted ? noErr : paramErr);
      } else if (action == 2) {  // update with up to two pages
        const std::vector<Page> pages = makePages(uniform(0, 2));  // none: a removal
        std::vector<Model> changed = model;
        changed.erase(changed.begin() + static_cast<std::ptrdiff_t>(at));
        const bool accepted = modelAdd(changed, pages);
        if (accepted) model = changed;
        ASSERT_EQ(list.update(*page, view(pages)), accepted ? noErr : paramErr);
      } else if (action == 3) {
        model.erase(model.begin() + static_cast<std::ptrdiff_t>(at));
        list.remove(page);
      } else if constexpr (kInserts) {
        const bool up = action == 4;
        const std::size_t neighbour = up ? at - 1 : at + 1;
        const bool allowed = (up ? at > 0 : at + 1 < model.size()) && model[neighbour].start != 0;
        auto* insert = static_cast<Insert*>(page);
        ASSERT_EQ(up ? list.canPromote(insert) : list.canDemote(insert), allowed);
        if (up)
          list.promote(insert);
        else
          list.demote(insert);
        if (allowed) std::swap(model[at], model[neighbour]);
      }
      ASSERT_EQ(Contents(list), Contents(model)) << "seed " << seed << ", round " << round
                                                 << ", step " << step << ", action " << action;
      for (const auto& [id, object] : objects) {
        auto kept = std::find_if(model.begin(), model.end(),
                                 [id = id](const Model& held) { return held.id == id; });
        if (kept != model.end()) {
          ASSERT_EQ(list.indexOfPage(object), kept - model.begin())
              << "seed " << seed << ", round " << round << ", step " << step;
        }
      }
    }
  }
}

TEST(SpecialPageListModel, InsertsMatchAWalkFromTheHead) {
  // Few page numbers: many inserts share one, and page 0 stops promotes and demotes.
  CheckAgainstModel<InsertList, Insert>(31, 6);
  CheckAgainstModel<InsertList, Insert>(32, 40);
}

TEST(SpecialPageListModel, ExceptionsMatchAStepByStepMerge) {
  CheckAgainstModel<ExceptionPageList, ExceptionPage>(41, 30);
  CheckAgainstModel<ExceptionPageList, ExceptionPage>(42, 120);
}

std::string RandomText(std::mt19937& random) {
  static const std::vector<std::string> texts = {"", "", "Gloss", "gloss", "Straße", "Card 200"};
  return texts[std::uniform_int_distribution<std::size_t>(0, texts.size() - 1)(random)];
}

TEST(StockRoundTripProperty, TicketFormRebuildsAnEqualStock) {
  std::mt19937 random(7);
  std::uniform_int_distribution<std::int32_t> small(-3, 120);
  auto maybe = [&](std::int32_t value) { return random() % 3 == 0 ? kUnsetValue : value; };
  for (int i = 0; i < 400; ++i) {
    Stock stock;
    stock.setSize(maybe(small(random)));
    if (random() % 2) stock.setWidth(maybe(small(random)));
    if (random() % 2) stock.setLength(maybe(small(random)));
    stock.setType(maybe(static_cast<std::int32_t>(random() % 8)));
    // The round trip holds for stocks that keep the ticket form's own rules.
    stock.setColor(static_cast<std::int32_t>(random() % 10));
    if (stock.type() == 2) stock.setColor(6);
    if (stock.type() == 4 || stock.type() == 6) stock.setModulus(maybe(small(random)));
    stock.setSidesCoated(maybe(small(random)));
    if (stock.sidesCoated() != kUnsetValue) stock.setCoatingType(small(random));
    for (auto set : {&Stock::setPunched, &Stock::setWeight, &Stock::setFinish, &Stock::setGrain, &Stock::setSource})
      (stock.*set)(maybe(small(random)));
    stock.setCustomNameOnly(random() % 2);
    for (auto set : {&Stock::setCustomType, &Stock::setCustomColor, &Stock::setDescription,
                     &Stock::setCustomName, &Stock::setComment})
      (stock.*set)(RandomText(random));

    const plist::Dictionary form = stock.asTicket();
    const Stock back(&form);
    ASSERT_EQ(back, stock) << "stock " << i;
    ASSERT_EQ(back.asTicket(), form) << "stock " << i;
    ASSERT_EQ(form.contains("CustomNameOnly"), stock.customNameOnly() != 0);
  }
}

}  // namespace
}  // namespace varno::model
