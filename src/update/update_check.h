#pragma once

#include "async/cancellation.h"
#include "async/task.h"
#include "base/handles.h"
#include "update/manifest.h"
#include "update/secured_folder.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tidelink {

/// Who is asked for updates, and who must have signed them.
struct update_source {
    std::u16string host;      ///< an https address without a path, e.g. u"https://updates.example"
    std::u16string publisher; ///< the name in the signer's certificate
};

/// A verified installer, protected against changes until it has been started. Deleted with this object unless it was.
struct prepared_installer {
    secured_folder folder;
    std::u16string path;
    girder::unique_file file; ///< open without sharing writing and deleting; closed before the folder is deleted
};

struct update_answer {
    Manifest manifest;
    bool newer = false; ///< than the own version
    /// Of a newer release that names one.
    std::optional<prepared_installer> installer;
};

/// Asks for the newest release and, when it is newer, downloads and verifies its installer. Resumes on a pool thread;
/// what was downloaded is gone when this throws.
/// \throws girder::system_error, girder::nsm::details::load_exception, verification_error, operation_cancelled
girder::task<update_answer> check_for_update(update_source source, std::uint32_t own_version,
                                             girder::cancellation cancelled);

} // namespace tidelink
