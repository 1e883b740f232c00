#pragma once

#include "base/handles.h"
#include "base/wide.h"
#include "security/access_fixtures.h"
#include "security/edit_security.h"
#include "security/raw_list.h"
#include "security/security_descriptor.h"

#include <aclui.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
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
        load(FALSE);
        EXPECT_EQ(information.GetAccessRights(nullptr, 0, &rights, &count, &first), S_OK);
        right = girder::as_utf16(rights[1].pszName);
        for (tidelink::access_entry& entry : shown)
            EXPECT_EQ(information.MapGeneric(nullptr, &entry.flags, reinterpret_cast<ACCESS_MASK*>(&entry.mask)), S_OK);
    }

    /// What Apply and OK do.
    void apply()
    {
        const auto edited = tidelink::security_descriptor::with_list(raw_list(shown));
        EXPECT_EQ(information_.SetSecurity(DACL_SECURITY_INFORMATION, edited.get()), S_OK);
    }
    void reset() { load(TRUE); }

    tidelink::access_list shown; ///< to be edited
    std::u16string title;
    std::u16string right;

private:
    void load(BOOL default_wanted)
    {
        girder::unique_local_memory descriptor;
        EXPECT_EQ(information_.GetSecurity(DACL_SECURITY_INFORMATION, descriptor.put(), default_wanted), S_OK);
        shown = entries_of(tidelink::security_descriptor::copy_of(descriptor.get())).value();
    }

    ISecurityInformation& information_;
};

/// An editor whose person does what `script` says and then presses OK (true) or Cancel (false).
inline tidelink::access_editor scripted_editor(std::function<bool(open_editor&)> script)
{
    return [script = std::move(script)](HWND, ISecurityInformation& information) {
        open_editor editor(information);
        return script(editor);
    };
}

/// OK after a new list was made.
inline tidelink::access_editor editor_that_sets(std::string notation)
{
    return scripted_editor([notation = std::move(notation)](open_editor& editor) {
        editor.shown = list_of(notation);
        editor.apply();
        return true;
    });
}

} // namespace support
