#pragma once

namespace xpon::api_service {

/// Lets one send() on the connected socket `fd` take the largest answer of a full plant, tens of megabytes, whatever
/// the peer does. Without the right to force the size it is raised only where that beats the kernel's own tuning.
void enlarge_send_buffer(int fd);

} // namespace xpon::api_service
