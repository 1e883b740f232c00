#pragma once

#include "base/handles.h"
#include "base/wide.h"
#include "security/access_notation.h"
#include "security/edit_security.h"
#include "security/security_descriptor.h"

#include <aclui.h>
#include <gtest/gtest.h>

#include <utility>

namespace support {

/// An open access editor: uses the object that it is given as the system's editor does, with a script in the place of
/// the person before it.
class open_editor {
public:
    explicit open_editor(ISecurityInformation& information) : information_(information)
    {
        SI_OBJECT_INFO info{};
        SI_ACCESS* rights = nullptr;
        ULONG count = 0;
        ULONG first = 0;
        EXPECT_EQ(information.GetObjectInformation(&info), S_OK);
        title = girder::as_utf16(info.pszObjectName);
        reload(FALSE);
        EXPECT_EQ(information.GetAccessRights(nullptr, 0, &rights, &count, &first), S_OK);
        right = girder::as_utf16(rights[1].pszName);
    }

    /// What Reset does, with TRUE.
    void reload(BOOL default_wanted)
    {
        girder::unique_local_memory descriptor;
        EXPECT_EQ(information_.GetSecurity(DACL_SECURITY_INFORMATION, descriptor.put(), default_wanted), S_OK);
        shown = entries_of(tidelink::security_descriptor::copy_of(descriptor.get())).value();
    }

    /// What Apply and OK do after a change.
    void apply(const std::string& notation)
    {
        const auto edited = tidelink::security_descriptor::with_entries(list_of(notation, in_editor));
        EXPECT_EQ(information_.SetSecurity(DACL_SECURITY_INFORMATION, edited.get()), S_OK);
    }

    tidelink::access_list shown;
    std::u16string title;
    std::u16string right;

private:
    ISecurityInformation& information_;
};

/// An editor whose person does what `script` says and then presses OK (true) or Cancel (false).
template <typename Script>
tidelink::access_editor scripted_editor(Script script)
{
    return [script = std::move(script)](HWND, ISecurityInformation& information) {
        open_editor editor(information);
        return script(editor);
    };
}

} // namespace support
