#include "app/update_offer.h"

#include "app/error_log.h"
#include "app/message_texts.h"
#include "base/file_time.h"
#include "base/product_version.h"
#include "base/win32_error.h"
#include "format/compile.h"
#include "format/format.h"
#include "localisation/string_tables.h"
#include "string_ids.h"
#include "ui/message_box.h"
#include "ui/rich_text.h"
#include "update/announcements.h"
#include "update/encoded_version.h"
#include "update/installer_file.h"

#include <utility>

namespace tidelink {
namespace {

constexpr UINT_PTR timer_id = 0x5550;
constexpr UINT delay_ms = 2000;
/// How often an answer is tried to be shown while another box stands before the dialog.
constexpr UINT retry_ms = 500;

template <typename... More>
std::u16string text_with_version(std::uint32_t string, std::uint32_t version, const More&... more)
{
    const girder::product_version parts = decode(version);
    return fmtkit::format(fmtkit::compile(text(string)), parts.major, parts.minor, parts.build, parts.revision,
                          more...);
}

std::u16string link_line(std::u16string_view address, std::u16string_view text)
{
    const std::u16string markup = girder::ui::link_markup(address, text);
    return markup.empty() ? markup : u'\n' + markup;
}

} // namespace

update_offer::update_offer(girder::ui_thread& thread, girder::ui::dialog& dialog, settings settings, changes changes)
    : thread_(thread), dialog_(dialog), settings_(std::move(settings)), changes_(std::move(changes))
{}

update_offer::~update_offer()
{
    cancel_.request();
    if (!result_)
        return;
    result_->do_not_call();
    // A cancelled check ends at once; what it has downloaded is deleted before the process ends.
    result_->wait_briefly();
}

void update_offer::start_later()
{
    if (!settings_.source.host.empty())
        ::SetTimer(dialog_.window(), timer_id, delay_ms, nullptr);
}

std::u16string update_offer::announcements() const
{
    std::u16string lines;
    if (!manifest_)
        return lines;
    if (const Promo* const promo = current_promo(*manifest_, day_of(girder::system_now())))
        lines += link_line(promo->url, single_line(promo->title));
    const std::u16string packs = newer_packs(*manifest_, language_packs(), encode(girder::read_product_version()));
    if (!packs.empty())
        lines +=
            link_line(settings_.page, fmtkit::format(fmtkit::compile(text(string_id::newer_language_packs)), packs));
    return lines;
}

bool update_offer::on_timer(WPARAM timer)
{
    if (timer != timer_id)
        return false;
    ::KillTimer(dialog_.window(), timer_id);
    if (result_)
        on_checked();
    else if (!manifest_)
        start();
    return true;
}

void update_offer::start()
{
    result_ = std::make_shared<check_result>();
    details::run(result_, check_for_update(settings_.source, encode(girder::read_product_version()), cancel_.get()));
    const auto notice = [&thread = thread_, weak = std::weak_ptr(alive_)] {
        thread.post([weak] {
            if (const auto self = weak.lock())
                (*self)->on_checked();
        });
    };
    if (!result_->call_at_end(notice))
        notice();
}

void update_offer::on_checked() noexcept
{
    const HWND window = dialog_.window();
    // A timer message may be another program's, and come before the end of the check or after its answer.
    if (!window || !result_ || !result_->told())
        return;
    if (!::IsWindowEnabled(window)) {
        ::SetTimer(window, timer_id, retry_ms, nullptr);
        return;
    }
    const std::shared_ptr<check_result> result = std::move(result_);
    if (const std::exception_ptr error = result->error()) {
        log_error(error);
        return;
    }
    try {
        update_answer answer = result->take();
        const Manifest& manifest = manifest_.emplace(std::move(answer.manifest));
        offer(answer, manifest.version);
    } catch (const std::exception& error) {
        log_error(std::current_exception());
        report_operation_error(dialog_.window(), error);
    }
}

void update_offer::offer(update_answer& answer, std::uint32_t version)
{
    if (!answer.newer)
        return;
    if (!answer.installer) {
        show_page(version);
    } else if (ask_yes_no(dialog_.window(), text(string_id::product_name),
                          text_with_version(string_id::update_offer, version), girder::ui::message_icon::question)) {
        upgrade(*answer.installer);
    }
}

void update_offer::upgrade(prepared_installer& installer)
{
    if (changes_.pending() &&
        ask_yes_no(dialog_.window(), text(string_id::product_name), text(string_id::apply_before_upgrade),
                   girder::ui::message_icon::question) &&
        !changes_.apply())
        return;
    // While a question waits for its answer, the window may have been closed.
    if (!dialog_.window())
        return;
    start_installer(installer.path);
    installer.folder.keep_until_restart();
    if (!::PostMessageW(dialog_.window(), WM_CLOSE, 0, 0))
        girder::throw_last_error("PostMessageW");
}

void update_offer::show_page(std::uint32_t version)
{
    const girder::ui::message_button ok[] = {{.id = IDOK, .text = text(string_id::ok)}};
    const std::u16string message = text_with_version(string_id::update_page, version, settings_.page);
    girder::ui::show_message_box(dialog_.window(), {.title = text(string_id::product_name),
                                                    .text = message,
                                                    .icon = girder::ui::message_icon::information,
                                                    .buttons = ok});
}

} // namespace tidelink
