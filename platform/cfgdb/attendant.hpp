#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace xpon::cfgdb {

/// How long a call waits for what another process holds. Clients wait meanwhile, so it is well below a second.
inline constexpr std::chrono::milliseconds patience_with_others{500};

/// A thread that takes what may have to wait for another process: one that is stopped keeps its locks for as long as
/// it likes. Who asks for it waits for a limited time only. One user at a time.
class Attendant {
public:
    Attendant();
    /// A thread that still waits is left behind, with what its step owns.
    ~Attendant();
    Attendant(const Attendant&) = delete;
    Attendant& operator=(const Attendant&) = delete;

    using Step = std::function<void()>;

    /// Runs `step` and waits for its end, for up to `limit`. False when that was not enough: then the step is given up,
    /// and whenever it ends, `undo` is run. Both own what they use. Until then no other step begins. What the step
    /// throws in time is thrown here.
    [[nodiscard]] bool run(const Step& step, const Step& undo, std::chrono::milliseconds limit);

    /// Runs `step`, which waits for nobody and throws nothing, and waits for its end. What was begun must be ended also
    /// when there is no memory: none is taken here, nor for a step that holds no more than two pointers.
    void run_to_end(const Step& step) noexcept;

private:
    struct State;

    std::shared_ptr<State> state_;
    std::thread thread_;
};

} // namespace xpon::cfgdb
