#pragma once

#include "app/com_apartment.h"
#include "localisation/string_tables.h"
#include "support/scratch_hive.h"

#include <windows.h>

#include <commctrl.h>

namespace support {

/// What the program's dialogs find at their start: the common controls, COM, English texts, and no settings.
class dialog_environment {
protected:
    dialog_environment()
    {
        constexpr INITCOMMONCONTROLSEX classes{.dwSize = sizeof(INITCOMMONCONTROLSEX),
                                               .dwICC = ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS};
        ::InitCommonControlsEx(&classes);
        tidelink::initialise({}, u"en");
    }

private:
    tidelink::com_apartment com_;
    scratch_hive hive_;
};

} // namespace support
