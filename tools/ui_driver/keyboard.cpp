#include "ui_driver/keyboard.h"

#include "base/win32_error.h"

#include <ranges>
#include <vector>

namespace ui_driver {
namespace {

INPUT key_input(WORD key, DWORD flags)
{
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.wScan = static_cast<WORD>(::MapVirtualKeyW(key, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = flags;
    return input;
}

} // namespace

void press_key(WORD key, std::initializer_list<WORD> modifiers)
{
    std::vector<INPUT> inputs;
    for (const WORD modifier : modifiers)
        inputs.push_back(key_input(modifier, 0));
    inputs.push_back(key_input(key, 0));
    inputs.push_back(key_input(key, KEYEVENTF_KEYUP));
    for (const WORD modifier : std::views::reverse(modifiers))
        inputs.push_back(key_input(modifier, KEYEVENTF_KEYUP));
    if (::SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT)) != inputs.size())
        girder::throw_last_error("SendInput");
}

} // namespace ui_driver
