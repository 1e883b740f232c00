#pragma once

#include "security/edit_security.h"

#include <windows.h>

#include <string>

namespace tidelink {

/// Who can connect, in words; with a warning where no client can, and where the descriptor cannot be read.
/// \param descriptor  an SDDL string
std::u16string access_words(const std::u16string& descriptor);

/// The Security command. A descriptor that cannot be read is reported, and the default one offered in its place. Where
/// the edited one is without entries that the editor cannot show, that is asked about.
/// \param descriptor  an SDDL string
/// \return what takes its place; empty when everything is to stay as it is
/// \throws girder::system_error
std::u16string edit_access(HWND owner, const std::u16string& descriptor, const access_editor& editor);

} // namespace tidelink
