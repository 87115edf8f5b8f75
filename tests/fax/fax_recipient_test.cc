// SPDX-License-Identifier: Apache-2.0
// Fax recipients, their lists and ticket forms, and the fax options' send-speed round trip.
#include <gtest/gtest.h>

#include "fax/fax_options.h"
#include "fax/fax_recipient.h"
#include "fax/fax_recipient_list.h"

namespace varno::fax {
namespace {

using plist::Array;
using plist::Dictionary;
using plist::Value;

TEST(FaxRecipientTicket, HoldsOnlyPresentFieldsAsStrings) {
  FaxRecipient recipient("Ada", std::nullopt, "+1 555 0100");
  recipient.setMailbox("12");
  recipient.setUID("ab-12");
  EXPECT_EQ(recipient.toTicket(), (Dictionary{{"FirstName", "Ada"},
                                              {"FaxNumber", "+1 555 0100"},
                                              {"Mailbox", "12"},
                                              {"UID", "ab-12"}}));
  EXPECT_TRUE(FaxRecipient().toTicket().empty());
}

TEST(FaxRecipientTicket, ReadingReplacesEveryFieldSoMissingKeysClear) {
  FaxRecipient recipient("Old", "Name", "111");
  recipient.setUID("person-1");
  recipient.setOrganization("Old Org");

  const Dictionary ticket{{"LastName", "Lovelace"},
                          {"FaxNumber", "555"},
                          {"PhoneNumber", "556"},
                          {"EmailAddress", "ada@example.org"},
                          {"FaxNumberLabel", "work fax"},
                          {"Organization", 7}};  // not a string: cleared like a missing key
  recipient.fromTicket(&ticket);  // FirstName, UID and Organization are gone
  EXPECT_EQ(recipient.toTicket(), (Dictionary{{"LastName", "Lovelace"},
                                              {"FaxNumber", "555"},
                                              {"PhoneNumber", "556"},
                                              {"EmailAddress", "ada@example.org"},
                                              {"FaxNumberLabel", "work fax"}}));

}

TEST(FaxRecipientTicket, DisplayNameJoinsThePresentNames) {
  using Name = std::optional<std::string>;
  const std::tuple<Name, Name, std::string> cases[] = {
      {"Ada", "Lovelace", "Ada Lovelace"}, {std::nullopt, "Lovelace", "Lovelace"}, {"Ada", std::nullopt, "Ada"}};
  for (const auto& [first, last, shown] : cases)
    EXPECT_EQ(DisplayNameFromRecipient(FaxRecipient(first, last, "1")), shown);
}

TEST(FaxRecipientCounting, CopiesCountOnTheirOwnAndFreeReleaseDeletesAtZero) {
  auto* recipient = new FaxRecipient("Ada", "Lovelace", "1");
  EXPECT_EQ(FaxRecipientRetain(recipient), 2);
  FaxRecipient copy(*recipient);
  EXPECT_EQ(copy.referenceCount(), 1);
  copy.retain();
  copy = FaxRecipient("Grace", "Hopper", "2");
  EXPECT_EQ(copy.referenceCount(), 2) << "assignment copies fields, not the count";

  EXPECT_EQ(FaxRecipientRelease(recipient), 1);
  EXPECT_EQ(FaxRecipientRelease(recipient), 0);  // deleted; the sanitizer build checks it
  EXPECT_EQ(FaxRecipientRelease(nullptr), 0);
}

class FaxRecipientListTest : public testing::Test {
 protected:
  FaxRecipientRef ada_ = FaxRecipientRef::Adopt(new FaxRecipient("Ada", "Lovelace", "555"));
  FaxRecipientRef grace_ = FaxRecipientRef::Adopt(new FaxRecipient(std::nullopt, "Hopper", "556"));
};

TEST_F(FaxRecipientListTest, HoldsOneReferencePerEntryAndReleasesOnRemoval) {
  {
    FaxRecipientList list;
    ASSERT_TRUE(list.append(ada_.get()));
    ASSERT_TRUE(list.append(grace_.get()));
    ASSERT_TRUE(list.append(ada_.get()));
    EXPECT_EQ(ada_->referenceCount(), 3);

    list.remove(ada_.get());
    EXPECT_EQ(list.count(), 1);
    EXPECT_EQ(list.recipientAtIndex(0), grace_.get());
    EXPECT_EQ(ada_->referenceCount(), 1);

    EXPECT_FALSE(list.insertAtIndex(ada_.get(), 2));
    EXPECT_TRUE(list.insertAtIndex(ada_.get(), 0));
    EXPECT_EQ(list.recipientAtIndex(0), ada_.get());

    // A copy of the list holds copies of the recipients, not references to them.
    FaxRecipientList copy(list);
    ASSERT_EQ(copy.count(), 2);
    EXPECT_NE(copy.recipientAtIndex(0), ada_.get());
    copy.recipientAtIndex(0)->setFaxNumber("999");
    EXPECT_EQ(ada_->faxNumber(), "555");
    EXPECT_EQ(ada_->referenceCount(), 2);
    EXPECT_EQ(grace_->referenceCount(), 2);
  }
  EXPECT_EQ(ada_->referenceCount(), 1);
  EXPECT_EQ(grace_->referenceCount(), 1);
}

TEST_F(FaxRecipientListTest, ContainsComparesNamesAndNumberExactly) {
  FaxRecipientList list;
  list.append(ada_.get());
  list.append(grace_.get());
  FaxRecipient sameAsAda("Ada", "Lovelace", "555");
  sameAsAda.setOrganization("other fields do not count");
  EXPECT_TRUE(list.containsRecipient(sameAsAda));
  EXPECT_FALSE(list.containsRecipient(FaxRecipient("Ada", "LOVELACE", "555")));
  EXPECT_FALSE(list.containsRecipient(FaxRecipient("", "Hopper", "556")))
      << "an empty first name is not an absent one";
  EXPECT_FALSE(list.containsRecipient(FaxRecipient("Ada", "Lovelace", std::nullopt)));
}

TEST_F(FaxRecipientListTest, TicketIsAnArrayOfRecipientDictionariesInOrder) {
  FaxRecipientList list;
  list.append(grace_.get());
  list.append(ada_.get());
  const Array expected{Value(Dictionary{{"LastName", "Hopper"}, {"FaxNumber", "556"}}),
                       Value(Dictionary{{"FirstName", "Ada"}, {"LastName", "Lovelace"},
                                        {"FaxNumber", "555"}})};
  EXPECT_EQ(list.toTicket(), expected);

  Array stored = expected.mutableCopy();
  stored.insert(1, Value("not a recipient"));
  FaxRecipientList read;
  read.append(ada_.get());
  read.fromTicket(stored);
  EXPECT_EQ(ada_->referenceCount(), 2) << "reading empties the list first; `list` keeps its one";
  EXPECT_EQ(read.count(), 2);
  EXPECT_EQ(read.toTicket(), expected);
}

TEST(FaxSendSpeed, OnlyFixedG3SurvivesARoundTrip) {
  Dictionary options;
  EXPECT_EQ(FaxSendSpeedItemFromOptions(options), 1) << "absent shows G3-Auto";

  SetFaxSendSpeedItemInOptions(options, 1);  // "G3-Auto" selected
  EXPECT_EQ(options, (Dictionary{{"SendSpeed", 1}}));
  EXPECT_EQ(FaxSendSpeedItemFromOptions(options), -1);

  SetFaxSendSpeedItemInOptions(options, 2);
  EXPECT_EQ(FaxSendSpeedItemFromOptions(options), 2);  // Fixed G3 alone survives
  SetFaxSendSpeedItemInOptions(options, 3);
  EXPECT_NE(FaxSendSpeedItemFromOptions(options), 3);

  options.set("SendSpeed", Value(5));  // a value written elsewhere by map value
  EXPECT_EQ(FaxSendSpeedItemFromOptions(options), 3);
}

}  // namespace
}  // namespace varno::fax
