#pragma once

namespace xpon::test {

/// Lets the n-th of the wrapped calls fail, counted from the object's beginning: those of the file system and of LMDB
/// that the database makes. The linker puts the wrappers in their place.
class FailingCall {
public:
    explicit FailingCall(int nth);
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;
    ~FailingCall();

    /// The name of the call that failed; null when there were fewer than n.
    [[nodiscard]] static const char* failed();
};

} // namespace xpon::test
