#pragma once

#include <windows.h>

#include <functional>
#include <string>

struct ISecurityInformation;

namespace tidelink {

/// Lets somebody edit what `information` describes, modally to `owner`, and returns false when that was cancelled or
/// failed. The system's editor is one; tests bring others.
using access_editor = std::function<bool(HWND owner, ISecurityInformation& information)>;

/// The system's access editor (EditSecurity). Its library is loaded from the system's folder for the call.
/// \throws girder::system_error when there is no such library or function
bool run_system_access_editor(HWND owner, ISecurityInformation& information);

/// Lets the administrator edit who can connect to the server.
/// \param owner       disabled while the editor is open
/// \param sddl        the stored descriptor
/// \param object_name what the editor's title names
/// \param right_name  the name of the right to connect
/// \return the descriptor to store, also when nothing was changed; empty when the editor was cancelled
/// \throws girder::system_error; before the editor opens when `sddl` cannot be parsed
std::u16string EditServerSecurity(HWND owner, const std::u16string& sddl, std::u16string object_name,
                                  std::u16string right_name, const access_editor& editor = run_system_access_editor);

} // namespace tidelink
