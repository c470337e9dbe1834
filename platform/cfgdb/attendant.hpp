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
    /// A thread that still waits is left behind, with what its steps own.
    ~Attendant();
    Attendant(const Attendant&) = delete;
    Attendant& operator=(const Attendant&) = delete;

    using Step = std::function<void()>;

    /// Runs `enter`, which may have to wait for others, and then `work`, which waits for nobody, and waits for their
    /// end. False when `enter` took longer than `limit`: then it is given up, and whenever it ends, `leave` is run
    /// instead of the work; both own what they use. Until then nothing else begins. What a step throws in time is
    /// thrown here, and no step comes after it.
    [[nodiscard]] bool run(Step enter, const Step& work, Step leave, std::chrono::milliseconds limit);

private:
    struct State;

    std::shared_ptr<State> state_;
    bool owes_end_ = false; ///< of a step that was given up
    std::thread thread_;
};

} // namespace xpon::cfgdb
