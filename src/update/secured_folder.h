#pragma once

#include <string>
#include <string_view>

namespace tidelink {

/// A fresh folder in the Windows folder's "Temp", created so that only administrators and the system may write to it,
/// and with it what lies in it. Deleted with this object, with its files, unless it was kept. It has no subfolders. A
/// program that is ended by force leaves it behind.
class secured_folder {
public:
    /// \throws girder::system_error
    secured_folder();
    secured_folder(const secured_folder&) = delete;
    secured_folder& operator=(const secured_folder&) = delete;
    secured_folder(secured_folder&& other) noexcept;
    secured_folder& operator=(secured_folder&&) = delete;
    ~secured_folder();

    const std::u16string& path() const noexcept { return path_; }
    std::u16string path_of(std::u16string_view name) const;

    /// The folder stays until the system is restarted, which then deletes it: what runs from it cannot do that.
    void keep_until_restart();

private:
    std::u16string path_;
};

} // namespace tidelink
