// SPDX-License-Identifier: Apache-2.0
// The saved job set-up of the Paper/Output panel ("store file in folder"): the name the job
// is stored under, the number of the printer's folder that keeps it, and an optional
// passcode that the printer asks for before it prints the stored job.
#pragma once

#include <cstdint>

#include "panels/paper_output/paper_output_panel.h"
#include "platform/status.h"
#include "platform/toolkit/types.h"

namespace varno::panels {

// Controls of the window "withPasscode" in the interface file "SavedJob".
inline constexpr toolkit::ControlID kSavedJobFolderNameLabelID{kPaperOutputSignature, 2000};
inline constexpr toolkit::ControlID kSavedJobNameLabelID{kPaperOutputSignature, 2001};
inline constexpr toolkit::ControlID kSavedJobNameBoxID{kPaperOutputSignature, 2002};
inline constexpr toolkit::ControlID kSavedJobSecureCheckBoxID{kPaperOutputSignature, 2005};
inline constexpr toolkit::ControlID kSavedJobPasscodeLabelID{kPaperOutputSignature, 2006};
inline constexpr toolkit::ControlID kSavedJobPasscodeFieldID{kPaperOutputSignature, 2007};
inline constexpr toolkit::ControlID kSavedJobPasscodeNoteID{kPaperOutputSignature, 2008};
inline constexpr toolkit::ControlID kSavedJobConfirmLabelID{kPaperOutputSignature, 2009};
inline constexpr toolkit::ControlID kSavedJobConfirmFieldID{kPaperOutputSignature, 2010};
inline constexpr toolkit::ControlID kSavedJobConfirmNoteID{kPaperOutputSignature, 2011};
inline constexpr toolkit::ControlID kSavedJobFolderNamePopupID{kPaperOutputSignature, 2012};
inline constexpr toolkit::ControlID kSavedJobNameIconID{kPaperOutputSignature, 2013};
inline constexpr toolkit::ControlID kSavedJobFolderLabelID{kPaperOutputSignature, 2014};
inline constexpr toolkit::ControlID kSavedJobFolderBoxID{kPaperOutputSignature, 2015};
inline constexpr toolkit::ControlID kSavedJobFolderIconID{kPaperOutputSignature, 2016};
inline constexpr toolkit::ControlID kSavedJobPasscodeIconID{kPaperOutputSignature, 2017};
inline constexpr toolkit::ControlID kSavedJobOKButtonID{kPaperOutputSignature, 1};
inline constexpr toolkit::ControlID kSavedJobCancelButtonID{kPaperOutputSignature, 2};

inline constexpr toolkit::MenuCommand kSavedJobSecureCommand = MakeOSType("Vsjp");
inline constexpr toolkit::MenuCommand kSavedJobHelpCommand = MakeOSType("Vhlp");
inline constexpr const char* kSavedJobHelpPage = "Paper_Output/Job_Type/db_save_to_mailbox_e.htm";

// The two histories of the dialog in the user's input history.
inline constexpr const char* kSavedJobNameHistoryKey = "savedJobNames";
inline constexpr const char* kSavedJobFolderHistoryKey = "mailboxNumbers";
inline constexpr std::int32_t kSavedJobHistorySize = 10;

// What the fields take.
inline constexpr std::int32_t kMaxSavedJobNameLength = 24;     // characters 32 to 126
inline constexpr std::int32_t kMaxSavedJobFolderLength = 3;    // decimal digits
inline constexpr std::int32_t kMinSavedJobFolder = 1;          // as the label states it
inline constexpr std::int32_t kMaxSavedJobFolder = 200;        // OK refuses a higher number
inline constexpr std::int32_t kMinSavedJobPasscodeLength = 1;  // decimal digits
inline constexpr std::int32_t kMaxSavedJobPasscodeLength = 20;
// Checking the box shows the confirm field at once only for a passcode this long.
inline constexpr std::int32_t kSavedJobConfirmAfterLength = 4;

// Runs the window "withPasscode" of the interface file "SavedJob" on the context's saved
// job fields: savedJobName and useJobName (the job-name box shows "Use Document Name" for
// the latter), savedJobLocation and noLocation, hasPasscode and passcode. OK is enabled
// while both boxes hold something; it refuses a folder above 200 and passcodes that differ,
// and makes up a four-digit passcode (and says so) when the box is checked and the passcode
// field is empty. OK stores the fields and remembers what was typed into both boxes in the
// user's input history; Cancel changes nothing. Returns paramErr for a null context or one
// without a bundle, the status of loading the window (nothing changes then), else noErr.
OSStatus RunModalSavedJobDialog(PaperOutputContext* context);

}  // namespace varno::panels
