// Message boxes as the component shows them: traced, then handed to the platform in use.
#ifndef VANTOREL_HOST_MESSAGES_H_
#define VANTOREL_HOST_MESSAGES_H_

#include <string>

#include "vantorel/platform.h"

namespace vantorel {

// Shows a modal message box with an OK button and returns when it is closed.
void ShowMessage(const std::string& text, MessageIcon icon);

// Installs the dialog the system platform uses when a desktop session is there; the graphical
// front end calls this once it has initialised. nullptr removes it.
void SetDesktopMessageBox(MessageBoxHandler handler);

}  // namespace vantorel

#endif  // VANTOREL_HOST_MESSAGES_H_
