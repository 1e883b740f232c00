#include "async/cancellation.h"

#include <mutex>

namespace girder {
namespace details {

void cancellation_state::request()
{
    const std::lock_guard guard(lock_);
    if (requested_.exchange(true))
        return;
    for (const callback* each : callbacks_)
        (*each)();
}

void cancellation_state::add(const callback& called)
{
    const std::lock_guard guard(lock_);
    callbacks_.push_back(&called);
    if (requested_)
        called();
}

void cancellation_state::remove(const callback& called) noexcept
{
    const std::lock_guard guard(lock_);
    std::erase(callbacks_, &called);
}

} // namespace details

cancellation_callback::cancellation_callback(cancellation cancelled, std::function<void()> callback)
    : cancelled_(std::move(cancelled)), callback_(std::move(callback))
{
    if (cancelled_.state_)
        cancelled_.state_->add(callback_);
}

cancellation_callback::~cancellation_callback()
{
    if (cancelled_.state_)
        cancelled_.state_->remove(callback_);
}

} // namespace girder
