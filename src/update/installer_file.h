#pragma once

#include "base/handles.h"
#include "update/manifest.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace tidelink {

/// The file is not the one that the manifest promises, or nobody vouches for it.
class verification_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Opens a downloaded installer so that nobody can write, rename or delete it while it is open, and verifies it: its
/// size, its SHA-256 digest, its Authenticode signature with a chain to an authority that this machine trusts, and the
/// name of who has signed. Nothing is asked from the network for it, so revocation is not checked.
/// \param publisher  the name in the signer's certificate, as written there
/// \return the open file
/// \throws verification_error, girder::system_error
girder::unique_file open_verified(const std::u16string& path, const Installer& promised, std::u16string_view publisher);

/// What starts an installer that first waits for the process of that handle, which it inherits.
std::u16string installer_command_line(std::u16string_view path, std::uintptr_t process_handle);

/// Starts the installer, which waits for this process to end before it replaces its files.
/// \throws girder::system_error
void start_installer(const std::u16string& path);

} // namespace tidelink
