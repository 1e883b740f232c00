#include "base/system_library.h"
#include "security/edit_security.h"
#include "security/security_descriptor.h"
#include "security/server_security_information.h"

#include <utility>

namespace tidelink {

bool run_system_access_editor(HWND owner, ISecurityInformation& information)
{
    constexpr WORD edit_security_ordinal = 2;
    const girder::system_library library(u"aclui.dll");
    auto* const edit = library.function<decltype(::EditSecurity)>(MAKEINTRESOURCEA(edit_security_ordinal));
    return edit(owner, &information) != FALSE;
}

std::u16string EditServerSecurity(HWND owner, const std::u16string& sddl, std::u16string object_name,
                                  std::u16string right_name, const access_editor& editor)
{
    ServerSecurityInformation information(ToEditorForm(ParseDescriptor(sddl)), std::move(object_name),
                                          std::move(right_name));
    if (!editor(owner, information))
        return {};
    return FormatDescriptor(FromEditorForm(information.edited())).value_or(std::u16string());
}

} // namespace tidelink
