#pragma once

namespace io {

/// A value that may be absent. A value can be read also while it is absent: at first a default one, later the last one
/// that was assigned.
template <typename T>
class optional {
public:
    optional() = default;
    /// A value that is present.
    optional(T const & value) : present_(true), value_(value) {}

    /// Makes the value present.
    optional & operator=(T const & value) {
        value_ = value;
        present_ = true;
        return *this;
    }
    /// Makes the value absent, but keeps it for `value()`.
    void clear() noexcept { present_ = false; }

    /// Whether the value is present.
    bool present() const noexcept { return present_; }
    /// The same; of an `optional<bool>` too, whatever its value is.
    explicit operator bool() const noexcept { return present_; }

    /// @{
    /// The value, also if it is absent. Changing it makes it neither present nor absent.
    T const & value() const noexcept { return value_; }
    T & value() noexcept { return value_; }
    T const * operator->() const noexcept { return &value_; }
    T * operator->() noexcept { return &value_; }
    /// @}

private:
    bool present_ = false;
    T value_{};
};

} // namespace io
