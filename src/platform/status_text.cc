// SPDX-License-Identifier: Apache-2.0
#include "platform/status_text.h"

#include <iterator>

namespace varno {
namespace {

struct StatusSentence {
  OSStatus status;
  const char* text;
};

constexpr StatusSentence kSentences[] = {
    {noErr, "no error"},
    {paramErr, "a value it was given is missing or out of range"},
    {fnfErr, "a file or folder it needs is missing"},
    {memFullErr, "the computer ran out of memory"},
    {kPMInvalidPDEContext,
     "it could not set up its panels for this printer (is it a printer of the plug-in's maker, "
     "with a readable PPD?)"},
    {eventNotHandledErr, "nothing handled the request"},
    {kPMInvalidTicket, "the print settings are missing or damaged"},
    {kPMInvalidKey, "a print setting it needs is not in the print settings"},
    {kPMInvalidValue, "a print setting holds a value of the wrong kind"},
    {kPMItemIsLocked, "a print setting is locked and cannot be changed"},
    {kPMInvalidPrintSession, "it was given no print session to work on"},
    {kPMOutOfScope, "it was called out of the order the Print dialog keeps"},
    {kPMIOError, "a file could not be read or written"},
    {kPMPrinterNotFound, "the printer or its PPD cannot be found"},
    {kPMCancel, "the person cancelled"},
    {userCanceledErr, "the person cancelled"},
    {errDataBrowserNotConfigured, "a list is not set up to show its rows"},
    {errDataBrowserItemNotFound, "a list has no such row"},
    {errDataBrowserPropertyNotSupported, "a list cannot show that column"},
    {controlPropertyNotFoundErr, "a control keeps no such property"},
    {menuItemNotFoundErr, "a menu has no such item"},
    {eventParameterNotFoundErr, "an event lacks a value it should carry"},
    {kInterfaceFileNotFound, "an interface file is missing from the plug-in bundle (reinstall it)"},
    {kInterfaceFileDamaged, "an interface file of the plug-in bundle is damaged (reinstall it)"},
    {kInterfaceObjectNotFound, "an interface file lacks a window the plug-in needs (reinstall it)"},
    {errDataNotSupported, "a control keeps no data of that kind"},
    {errControlDoesntSupportFocus, "that control cannot take the keyboard"},
    {errUnknownControl, "the panel has no such control"},
    {errControlIsNotEmbedder, "that control cannot hold other controls"},
    {errDataSizeMismatch, "a value has the wrong size"},
    {errControlHiddenOrDisabled, "the control is hidden or disabled, so a person could not use it"},
    {errCantEmbedIntoSelf, "a control cannot hold one of its own containers"},
    {errCantEmbedRoot, "a window cannot be put inside a control"},
    {E_NOINTERFACE, "the plug-in does not offer the interface asked for"},
};

}  // namespace

const char* StatusString(OSStatus status) {
  for (const StatusSentence& sentence : kSentences)
    if (sentence.status == status) return sentence.text;
  return "an unexpected error";
}

std::string StatusMessage(OSStatus status) {
  return std::string(StatusString(status)) + " (status " + std::to_string(status) + ")";
}

}  // namespace varno
