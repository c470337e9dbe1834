#pragma once

namespace xpon::test {

/// Moves this process into network and mount namespaces of its own, where port 9999 is free whatever else runs on
/// the machine. False when the machine does not allow it; then the tests run one after another on the real port.
bool isolate_this_process();

} // namespace xpon::test
