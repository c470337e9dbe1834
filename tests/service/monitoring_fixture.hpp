#pragma once

#include "tests/service/fake_device.hpp"
#include "tests/service/service_fixture.hpp"

#include <string>

namespace xpon::test {

/// The service over the filled device, with these ONTs in the running configuration:
///   1/1  serial 1, which is activated    1/2  serial 2, which is unactivated    2/3  serial 3, of which nothing is
///   seen
/// and with front port 4 administratively down.
class MonitoringTest : public ServiceTest {
protected:
    MonitoringTest();
    ~MonitoringTest() override;

    /// The answer to a request of the administrator; `members` are added to it.
    std::string request(const std::string& path, const std::string& method, const std::string& members = "");
    std::string get(const std::string& path, const std::string& indices = "[]");
    /// What the answer is when `data` is what it carries, in print form without layout.
    [[nodiscard]] std::string answer(const std::string& data = "") const;
    [[nodiscard]] std::string failure(const std::string& path) const;

    /// Puts the configuration described above into running.
    void configure();

    FakeDevice& device = fake_device();
    const std::string id = log_in("admin");
};

} // namespace xpon::test
