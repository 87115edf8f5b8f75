// SPDX-License-Identifier: Apache-2.0
// The LAN fax set-up dialog, where the user edits a fax job's options and recipients.
#pragma once

#include "platform/bundle/bundle.h"
#include "platform/plist/value.h"
#include "platform/status.h"

namespace varno::fax {

class FaxRecipientList;

// Runs the set-up modally on `faxOptions` and `recipients` and returns when it closes.
// The dialog itself comes with the fax panel's recipients and options; until then it
// shows nothing and leaves both as they are.
OSStatus RunModalLANFaxSetup(const bundle::BundleRef& bundle, plist::Dictionary& faxOptions,
                             FaxRecipientList* recipients);

}  // namespace varno::fax
