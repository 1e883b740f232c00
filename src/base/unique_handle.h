#pragma once

#include <utility>

namespace girder {

/// Sole owner of one system handle. `Traits` says what the handle is:
///
///     using raw_type = ...;                           // trivially copyable and comparable
///     static constexpr raw_type empty() noexcept;     // the value that owns nothing
///     static void close(raw_type) noexcept;           // called once for every other value
template <typename Traits>
class unique_handle {
public:
    using raw_type = typename Traits::raw_type;

    unique_handle() noexcept = default;
    explicit unique_handle(raw_type raw) noexcept : raw_(raw) {}
    unique_handle(const unique_handle&) = delete;
    unique_handle& operator=(const unique_handle&) = delete;
    unique_handle(unique_handle&& other) noexcept : raw_(other.release()) {}
    unique_handle& operator=(unique_handle&& other) noexcept
    {
        if (this != &other)
            reset(other.release());
        return *this;
    }
    ~unique_handle() { reset(); }

    raw_type get() const noexcept { return raw_; }
    explicit operator bool() const noexcept { return raw_ != Traits::empty(); }

    /// Gives up ownership without closing.
    [[nodiscard]] raw_type release() noexcept { return std::exchange(raw_, Traits::empty()); }

    /// Closes what is owned and takes over `raw`.
    void reset(raw_type raw = Traits::empty()) noexcept
    {
        const raw_type old = std::exchange(raw_, raw);
        if (old != Traits::empty())
            Traits::close(old);
    }

    /// Closes what is owned and returns the address for a call that fills in a new handle.
    [[nodiscard]] raw_type* put() noexcept
    {
        reset();
        return &raw_;
    }

private:
    raw_type raw_ = Traits::empty();
};

} // namespace girder
