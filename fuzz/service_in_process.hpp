#pragma once

#include "api_service/api_service.hpp"
#include "tests/service/doubles.hpp"
#include "tests/support/temporary_olt_root.hpp"

#include <memory>
#include <string>
#include <string_view>

namespace xpon::fuzz {

/// The daemon without its listener and loop, over an OLT_ROOT of its own. An administrator is logged in with the
/// session id "1"; ONT 1/1 with serial SIMU00000001 and ONT 1/2 run.
class ServiceInProcess {
public:
    explicit ServiceInProcess(const std::shared_ptr<ipc::IIpc>& peers);

    /// Answers to all frames of what a client sent, each with its NUL. Ends the program when a frame of which the
    /// service says that it is answered is not, or by what is no JSON text in UTF-8.
    std::string serve(std::string_view received);

    /// Whether the administrator's session is there, still.
    bool has_session();

private:
    test::TemporaryOltRoot root_;
    std::shared_ptr<test::FakePam> pam_ = std::make_shared<test::FakePam>(); ///< outlives its sessions
    api_service::ApiService service_;
};

/// Ends the program, which the fuzzer takes for a finding.
void check(bool holds);

} // namespace xpon::fuzz
