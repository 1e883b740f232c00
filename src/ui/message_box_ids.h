#pragma once

// Numbers of the message box template, for the resource script and the code. Buttons have the system's numbers (IDOK,
// IDYES, ...), fixed by the tools that answer the box from outside.

// NOLINTBEGIN(modernize-macro-to-enum): the resource compiler knows macros only.
#define IDD_MESSAGE_BOX 149

#define IDC_MESSAGE_DO_NOT_SHOW 1020
#define IDC_MESSAGE_ICON 1021
#define IDC_MESSAGE_TEXT 1022
// NOLINTEND(modernize-macro-to-enum)
