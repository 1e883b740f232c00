#include "ui/clipboard.h"

#include "base/unique_handle.h"

#include <cstring>

namespace girder::ui {
namespace {

struct global_memory {
    using raw_type = HGLOBAL;
    static constexpr raw_type empty() noexcept { return nullptr; }
    static void close(raw_type memory) noexcept { ::GlobalFree(memory); }
};
using unique_global_memory = unique_handle<global_memory>;

unique_global_memory terminated_copy(std::u16string_view text) noexcept
{
    unique_global_memory block{::GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, (text.size() + 1) * sizeof(char16_t))};
    if (void* const bytes = block ? ::GlobalLock(block.get()) : nullptr) {
        std::memcpy(bytes, text.data(), text.size() * sizeof(char16_t));
        ::GlobalUnlock(block.get());
    }
    return block;
}

} // namespace

void copy_to_clipboard(HWND owner, std::u16string_view text) noexcept
{
    unique_global_memory block = terminated_copy(text);
    if (!block || !::OpenClipboard(owner))
        return;
    ::EmptyClipboard();
    // The clipboard owns the memory once it has accepted it.
    if (::SetClipboardData(CF_UNICODETEXT, block.get()))
        static_cast<void>(block.release());
    ::CloseClipboard();
}

} // namespace girder::ui
