#pragma once

#include <string>

#include <string.h> // explicit_bzero is no part of <cstring>

namespace xpon::api_service {

/// Overwrites a secret text when the scope ends, however it ends.
class WipeAtExit {
public:
    explicit WipeAtExit(std::string& secret) : secret_(secret) {}
    WipeAtExit(const WipeAtExit&) = delete;
    WipeAtExit& operator=(const WipeAtExit&) = delete;
    ~WipeAtExit() {
        explicit_bzero(secret_.data(), secret_.size());
        secret_.clear();
    }

private:
    std::string& secret_;
};

} // namespace xpon::api_service
