#pragma once

namespace xpon::test {

/// Whether this program runs in network and mount namespaces of its own, which its `main` enters where the machine
/// allows it: port 9999 is free there whatever else runs. Otherwise the tests run one after another on the real port.
bool is_isolated();

} // namespace xpon::test
