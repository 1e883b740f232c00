#include "service/service_status.h"

namespace tidelink {

bool may_run_standalone(const service_finding& finding) noexcept
{
    return finding.lookup == service_lookup::no_such_name ||
           (finding.lookup == service_lookup::found &&
            (finding.state == service_state::stopped || finding.state == service_state::stop_pending));
}

std::optional<service_view> view_of(const service_finding& finding) noexcept
{
    constexpr service_view standalone{.status = service_text::standalone};
    if (finding.lookup == service_lookup::failed)
        return standalone;
    if (may_run_standalone(finding)) {
        const bool absent = finding.lookup == service_lookup::no_such_name;
        if (finding.server_listens)
            return service_view{.status = service_text::standalone, .offers_install = absent};
        return service_view{.status = absent ? service_text::not_installed : service_text::stopped,
                            .can_start = true,
                            .offers_install = absent};
    }
    if (finding.state == service_state::running)
        return service_view{.status = service_text::running, .can_stop = true};
    return std::nullopt;
}

} // namespace tidelink
