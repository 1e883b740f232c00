#include "app/messages.h"

namespace tidelink {
namespace {

const registered_messages registered{.ui_return = ::RegisterWindowMessageW(L"ZELWM_UIRETURN"),
                                     .process_command = ::RegisterWindowMessageW(L"ZEL_WM_PROCESSCOMMAND")};

} // namespace

const registered_messages& messages() noexcept
{
    return registered;
}

} // namespace tidelink
