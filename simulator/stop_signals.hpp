#pragma once

namespace xpon::simulator {

/// From now on SIGTERM, SIGINT and SIGHUP ask for a stop instead of ending the process, and writing to a closed
/// pipe is an error like any other.
void install_stop_signals();

bool stop_requested();

} // namespace xpon::simulator
