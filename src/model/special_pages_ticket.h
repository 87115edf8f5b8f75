// SPDX-License-Identifier: Apache-2.0
// Where the Special Pages panel keeps its pages in the print-settings ticket: the insert
// and exception lists as arrays of page dictionaries, each cover as one dictionary.
#pragma once

#include <string_view>

#include "model/special_page_lists.h"
#include "model/special_pages.h"
#include "platform/print/ticket.h"
#include "platform/status.h"

namespace varno::model {

inline constexpr const char* kSpecialPagesTicketClient = "com.varno.print";
inline constexpr const char* kInsertListKey = "com.varno.print.SpecialPages.InsertList";
inline constexpr const char* kExceptionListKey = "com.varno.print.SpecialPages.ExceptionList";
inline constexpr const char* kFrontCoverKey = "com.varno.print.SpecialPages.FrontCover";
inline constexpr const char* kBackCoverKey = "com.varno.print.SpecialPages.BackCover";

// Writes the list's ticket form under `key`, or removes the key when the list is empty.
// Returns the ticket's status (kPMInvalidKey when an empty list's key was not there).
OSStatus WriteSpecialPageList(print::Ticket& ticket, std::string_view key,
                              const SpecialPageList& list);
// Writes the cover's dictionary under `key`, or removes the key when there is no cover.
OSStatus WriteCover(print::Ticket& ticket, std::string_view key, const Cover* cover);

// Empty `list` and refill it from the array under its key in one add, so inserts are
// re-sorted and exception ranges merged. An element that is not a dictionary becomes a
// default page; an exception range that ends before it starts (or has no end page) is
// left out and the rest kept, with paramErr. Returns noErr, or the ticket's status when
// there is no array to read.
OSStatus ReadInsertList(const print::Ticket& ticket, InsertList& list);
OSStatus ReadExceptionList(const print::Ticket& ticket, ExceptionPageList& list);

}  // namespace varno::model
