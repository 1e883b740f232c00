#include "base/win32_error.h"
#include "update/http_session.h"
#include "update/installer_file.h"
#include "update/update_check.h"

#include <utility>

namespace tidelink {
namespace {

using namespace girder;

constexpr char16_t installer_name[] = u"tidelink-setup.exe";

task<prepared_installer> prepare(http::session& session, std::u16string address, Installer promised,
                                 std::u16string publisher, cancellation cancelled)
{
    secured_folder folder;
    std::u16string path = folder.path_of(installer_name);
    co_await session.download_file(address, path, cancelled);
    unique_file file = open_verified(path, promised, publisher);
    prepared_installer prepared{.folder = std::move(folder), .path = std::move(path), .file = std::move(file)};
    co_return std::move(prepared);
}

void open(http::session& session)
{
    if (!session.open())
        throw_last_error("InternetOpenW");
}

} // namespace

task<update_answer> check_for_update(update_source source, std::uint32_t own_version, cancellation cancelled)
{
    // Addresses come complete: what stands in the manifest may be on another host.
    http::session session(u"");
    open(session);
    update_answer answer;
    const std::u16string address = source.host + check_path(own_version);
    const std::string body = co_await session.fetch_document(address, cancelled);
    answer.manifest = read_manifest(body);
    answer.newer = is_newer(answer.manifest.version, own_version);
    if (!answer.newer || !answer.manifest.installer)
        co_return std::move(answer);
    std::optional<std::u16string> file_address = address_below(source.host, answer.manifest.installer->url);
    if (!file_address)
        throw verification_error("The installer is not offered over https.");
    prepared_installer prepared =
        co_await prepare(session, *file_address, *answer.manifest.installer, source.publisher, cancelled);
    answer.installer.emplace(std::move(prepared));
    co_return std::move(answer);
}

} // namespace tidelink
